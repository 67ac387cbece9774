#include "NRenderUtl/mesh/meshrendererblock.h"

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/shaders/samplerunits.h"

namespace {

constexpr int kBytes = static_cast<int>(sizeof(MeshRendererBlock::Texels));

} // namespace

BlockUnitGuard::BlockUnitGuard() {
    glGetIntegerv(GL_ACTIVE_TEXTURE, &m_activeUnit);
    glGetIntegerv(GL_TEXTURE_BUFFER, &m_buffer); // which creating and updating leave unbound
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(kBlockUnit));
    glGetIntegerv(GL_TEXTURE_BINDING_BUFFER, &m_texture);
}

BlockUnitGuard::~BlockUnitGuard() {
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(kBlockUnit));
    glBindTexture(GL_TEXTURE_BUFFER, static_cast<GLuint>(m_texture));
    glActiveTexture(static_cast<GLenum>(m_activeUnit));
    glBindBuffer(GL_TEXTURE_BUFFER, static_cast<GLuint>(m_buffer));
}

bool MeshRendererBlock::isUsable() {
    if (IsFastRendererEnabled() == 0 || !IsRenderingContextActive() || !GLeeEnabled(GLeeTextureBufferObjects))
        return false;
    if (!m_texture.IsValid()) {
        const BlockUnitGuard unit;
        m_texture.Create(GL_TEXTURE_BUFFER, nullptr, kBytes, GL_DYNAMIC_DRAW, GL_RGBA32F,
                         static_cast<unsigned>(kBlockUnit));
        m_stale = true;
    }
    return m_texture.IsValid() != 0;
}

void MeshRendererBlock::set(const Texels& texels) {
    m_stale |= texels != m_texels;
    m_texels = texels;
}

void MeshRendererBlock::bind() {
    if (m_stale)
        m_texture.Update(0, kBytes, m_texels.data());
    m_stale = false;
    m_texture.Bind(false);
}
