// GPU memory of the renderers: buffers and texture buffers. Their GL names are made and deleted only while
// the host declares a context; what is destroyed at another time waits for the clean-up.
#include <vector>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/shaders/gllabel.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "NRenderUtl/shaders/pendingnames.h"

namespace {

constexpr std::uint32_t kFailed = 0xFFFFFFFF;

bool isAlive(std::uint32_t name) {
    return name != 0 && name != kFailed;
}

struct Pending {
    std::vector<GLuint> buffers, textures; ///< in the order of their destruction
};

// Never freed: static objects are destroyed after everything else and still queue their names.
Pending& pending() {
    static Pending& lists = *new Pending;
    return lists;
}

/// The host's declaration decides. A host that forgot to take it back, or ends with it, must not reach a
/// driver that is gone.
bool contextIsActive() {
    return IsRenderingContextActive() && glContextIsCurrent();
}

bool hasBuffers() {
    return glVersion() >= 15 || epoxy_has_gl_extension("GL_ARB_vertex_buffer_object");
}

bool hasTextureBuffers() {
    return glVersion() >= 31 || epoxy_has_gl_extension("GL_ARB_texture_buffer_object") ||
           epoxy_has_gl_extension("GL_EXT_texture_buffer_object");
}

const char* labelOf(GLenum target) {
    switch (target) {
    case GL_ARRAY_BUFFER:
        return "NRenderUtl vertex buffer";
    case GL_ELEMENT_ARRAY_BUFFER:
        return "NRenderUtl index buffer";
    case GL_TEXTURE_BUFFER:
        return "NRenderUtl texture buffer";
    default:
        return "NRenderUtl buffer";
    }
}

void deleteBuffer(GLuint name) {
    glDeleteBuffers(1, &name);
}

void deleteTexture(GLuint name) {
    glDeleteTextures(1, &name);
}

/// A new buffer with its content, or kFailed. Some drivers report lack of memory only by the size.
std::uint32_t makeBuffer(GLenum target, int size, const void* data, GLenum usage) {
    GLuint name = 0;
    glGenBuffers(1, &name);
    if (name == 0)
        return kFailed;
    glBindBuffer(target, name);
    labelGlObject(GL_BUFFER, name, labelOf(target));
    glBufferData(target, size, data, usage);
    GLint allocated = 0;
    glGetBufferParameteriv(target, GL_BUFFER_SIZE, &allocated);
    glBindBuffer(target, 0);
    if (allocated == size)
        return name;
    deleteBuffer(name);
    return kFailed;
}

} // namespace

void deleteTextureOrQueue(std::uint32_t name) {
    contextIsActive() ? deleteTexture(name) : pending().textures.push_back(name);
}

// --- buffer ------------------------------------------------------------------------------------------------

RenderGLBuffer::RenderGLBuffer() : m_buffer(0), m_target(0), m_size(0), m_attributeIndex(-1) {}
RenderGLBuffer::RenderGLBuffer(const RenderGLBuffer&) = default;
RenderGLBuffer& RenderGLBuffer::operator=(const RenderGLBuffer&) = default;

RenderGLBuffer::~RenderGLBuffer() {
    Destroy(true);
}

unsigned int RenderGLBuffer::GetBufferID() const {
    return m_buffer;
}

int RenderGLBuffer::IsValid() const {
    return isAlive(m_buffer);
}

int RenderGLBuffer::IsCreated() const {
    return IsValid();
}

void RenderGLBuffer::Create(unsigned int target, int size, const void* data, unsigned int usage) {
    if (m_buffer != 0)
        return;
    const bool canMake = size >= 0 && contextIsActive() && hasBuffers();
    m_buffer = canMake ? makeBuffer(target, size, data, usage) : kFailed;
    if (m_buffer == kFailed)
        return;
    m_target = target;
    m_size = size;
}

void RenderGLBuffer::Update(const void* data) {
    Update(0, m_size, data);
}

void RenderGLBuffer::Update(int offset, int size, const void* data) {
    if (!IsValid() || offset < 0 || size < 0 || size > m_size - offset)
        return;
    glBindBuffer(m_target, m_buffer);
    glBufferSubData(m_target, offset, size, data);
    glBindBuffer(m_target, 0);
}

void RenderGLBuffer::Bind() {
    if (IsValid())
        glBindBuffer(m_target, m_buffer);
}

void RenderGLBuffer::Bind(int attributeIndex, int components, const void* clientData) {
    if (attributeIndex < 0)
        return;
    Bind();
    m_attributeIndex = attributeIndex;
    const auto attribute = static_cast<GLuint>(attributeIndex);
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, components, GL_FLOAT, GL_FALSE, 0, IsValid() ? nullptr : clientData);
}

// The attribute is disabled without a valid buffer too: it then reads client memory.
void RenderGLBuffer::Unbind() {
    if (IsValid())
        glBindBuffer(m_target, 0);
    if (m_attributeIndex != -1)
        glDisableVertexAttribArray(static_cast<GLuint>(m_attributeIndex));
    m_attributeIndex = -1;
}

void RenderGLBuffer::Destroy(bool reset) {
    if (IsValid()) {
        contextIsActive() ? deleteBuffer(m_buffer) : pending().buffers.push_back(m_buffer);
        m_buffer = 0;
    }
    if (reset)
        m_buffer = 0;
}

// --- texture buffer ----------------------------------------------------------------------------------------

RenderGLTBO::RenderGLTBO() : m_texture(0), m_target(0), m_unit(GL_TEXTURE0) {}
RenderGLTBO::RenderGLTBO(const RenderGLTBO&) = default;
RenderGLTBO& RenderGLTBO::operator=(const RenderGLTBO&) = default;

RenderGLTBO::~RenderGLTBO() {
    Destroy(true);
}

int RenderGLTBO::IsValid() const {
    return isAlive(m_texture);
}

int RenderGLTBO::IsCreated() const {
    return IsValid();
}

void RenderGLTBO::Create(unsigned int target, const void* data, int size, unsigned int usage,
                         unsigned int internalFormat, unsigned int unitOffset) {
    if (m_texture != 0)
        return;
    if (contextIsActive() && hasTextureBuffers())
        m_buffer.Create(target, size, data, usage);
    if (m_buffer.IsValid())
        glGenTextures(1, &m_texture);
    if (m_texture == 0) {
        m_buffer.Destroy(false);
        m_texture = kFailed;
        return;
    }
    m_target = target;
    glBindTexture(m_target, m_texture);
    labelGlObject(GL_TEXTURE, m_texture, "NRenderUtl buffer texture");
    glTexBuffer(m_target, internalFormat, m_buffer.GetBufferID());
    glBindTexture(m_target, 0);
    m_unit += unitOffset;
}

void RenderGLTBO::Update(const void* data) {
    m_buffer.Update(data);
}

void RenderGLTBO::Update(int offset, int size, const void* data) {
    m_buffer.Update(offset, size, data);
}

void RenderGLTBO::Bind(bool activateUnit) {
    if (!IsValid())
        return;
    if (activateUnit)
        glActiveTexture(m_unit);
    glBindTexture(m_target, m_texture);
}

void RenderGLTBO::Unbind() {
    if (!IsValid())
        return;
    m_buffer.Unbind();
    glBindTexture(m_target, 0);
}

void RenderGLTBO::Destroy(bool reset) {
    m_buffer.Destroy(reset);
    if (IsValid()) {
        deleteTextureOrQueue(m_texture);
        m_texture = 0;
    }
    m_unit = GL_TEXTURE0;
    if (reset)
        m_texture = 0;
}

// --- clean-up ----------------------------------------------------------------------------------------------

void RenderGLCleanupBuffers() {
    if (!contextIsActive()) {
        // The missing space is the message's own.
        hostDiagnostic(NHostDiagnosticMisuse,
                       "OpenGL buffer cleanup is being done whileno rendering context is active, please "
                       "review the calls to avoid GPU memory leak!");
        return;
    }
    auto& [buffers, textures] = pending();
    // Deliberate: the figure counts in thirds.
    if (!buffers.empty())
        hostDiagnostic(NHostDiagnosticCount,
                       hostFormat("%d vbo data cleaned", static_cast<int>(buffers.size()) / 3).c_str());
    for (const GLuint name : buffers)
        deleteBuffer(name);
    for (const GLuint name : textures)
        deleteTexture(name);
    buffers.clear();
    textures.clear();
}
