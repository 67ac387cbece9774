#include "NRenderUtl/mesh/elementtextures.h"

#include <limits>

#include "NRenderUtl/host/hostgl.h"

namespace {

bool hasRoom(std::uint32_t count, int texelBytes) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &most);
    return count <= static_cast<std::uint32_t>(std::max(most, 0)) &&
           std::uint64_t{count} * texelBytes <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

ElementSpan ElementTexture::stale(std::uint32_t count) const {
    return m_texture.IsValid() ? m_changed : ElementSpan{0, count};
}

bool ElementTexture::store(const ElementSpan& span, std::uint32_t count, const void* texels) {
    if (!m_texture.IsValid()) {
        if (hasRoom(count, m_texelBytes))
            m_texture.Create(GL_TEXTURE_BUFFER, texels, static_cast<int>(count) * m_texelBytes,
                             GL_DYNAMIC_DRAW, m_format, static_cast<unsigned>(m_unit));
    } else if (!span.empty()) {
        m_texture.Update(static_cast<int>(span.first) * m_texelBytes,
                         static_cast<int>(span.count()) * m_texelBytes, texels);
    }
    m_changed = {};
    return m_texture.IsValid() != 0;
}
