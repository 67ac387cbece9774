// Draws with a texture buffer off-screen to see whether the driver's texture buffers work.
#include "NRenderUtl/shaders/texturebufferprobe.h"

#include <algorithm>
#include <array>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/shaders/programinuse.h"
#include "NRenderUtl/shaders/shadersources.h"

namespace {

constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint8_t kBytes[] = {5, 6, 7, 8, 9};
constexpr float kFloats[] = {0, 1, 2, 3, 4};
constexpr std::int32_t kInts[] = {10, 20, 30, 40, 50};
constexpr std::uint8_t kTexels[5][4] = {{0, 0, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 3, 3}, {4, 4, 4, 4}};

/// Five texels of a format, as the fragment stage expects them, and how it reads them.
struct ProbeFormat {
    GLenum format;
    GLsizeiptr size;
    const void* texels;
    const char* sampler;
    const char* switchName;
    int unit;
};
constexpr ProbeFormat kFormats[] = {
    {GL_R32F, sizeof kFloats, kFloats, "g_buff1", "g_bBuff1", 1},
    {GL_R32I, sizeof kInts, kInts, "g_ibuff2", "g_biBuff2", 2},
    {GL_RGBA8UI, sizeof kTexels, kTexels, "g_ibuff3", "g_biBuff3", 3},
    {GL_R8UI, sizeof kBytes, kBytes, "g_ibuff1", "g_biBuff1", 4},
};

const ProbeFormat& probeFormat(GLenum format) {
    return *std::find_if(std::begin(kFormats), std::end(kFormats),
                         [=](const ProbeFormat& f) { return f.format == format; });
}

/// Uploads to a new buffer, which stays bound; 0 where the driver did not take it all.
GLuint makeBuffer(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
    GLuint buffer = 0;
    GLint uploaded = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, size, data, usage);
    glGetBufferParameteriv(target, GL_BUFFER_SIZE, &uploaded);
    if (uploaded == size)
        return buffer;
    glDeleteBuffers(1, &buffer);
    return 0;
}

/// State of the host that would keep fragments or vertices from the probe.
void neutralizeState() {
    for (const GLenum capability : {GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_CULL_FACE, GL_DEPTH_TEST,
                                    GL_POLYGON_STIPPLE, GL_SCISSOR_TEST, GL_STENCIL_TEST})
        glDisable(capability);
    GLint planes = 0;
    glGetIntegerv(GL_MAX_CLIP_PLANES, &planes);
    for (GLint plane = 0; plane < planes; ++plane)
        glDisable(GL_CLIP_PLANE0 + static_cast<GLenum>(plane));
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDisableVertexAttribArray(0); // would take the place of the vertex array
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    for (const GLenum store : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS})
        glPixelStorei(store, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 4); // a larger one pads the rows of an odd width
}

void pushMatrices(const std::int32_t viewport[4]) {
    const double x = viewport[0], y = viewport[1];
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(x, x + viewport[2], y, y + viewport[3], -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
}

void popMatrices() {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
}

bool isAllGreen(int width, int height) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    NglReadPixelsFromFBO(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return std::all_of(pixels.begin(), pixels.end(), [](std::uint32_t pixel) { return pixel == kGreen; });
}

} // namespace

TextureBufferProbe::TextureBufferProbe() {
    const char* fragment = kProbeFragmentMain;
    CompileProgram(kProbeVertexMain, 1, &fragment, 0, nullptr, 0);
}

TextureBufferProbe::~TextureBufferProbe() {
    if (const auto name = static_cast<GLuint>(m_textureBuffer); m_textureBuffer > 0)
        glDeleteBuffers(1, &name);
    if (const auto name = static_cast<GLuint>(m_texture); m_texture > 0)
        glDeleteTextures(1, &name);
    for (const GLuint name : {m_vertexBuffer, m_indexBuffer})
        if (name != 0)
            glDeleteBuffers(1, &name);
}

// The bindings are put back by hand, as attribute stacks do not keep that of the buffer.
bool TextureBufferProbe::makeTextureBuffer(GLenum format) {
    GLint boundBuffer = 0, boundTexture = 0;
    glGetIntegerv(GL_TEXTURE_BUFFER_BINDING, &boundBuffer);
    glGetIntegerv(GL_TEXTURE_BINDING_BUFFER, &boundTexture);
    const ProbeFormat& f = probeFormat(format);
    const GLuint buffer = makeBuffer(GL_TEXTURE_BUFFER, f.size, f.texels, GL_DYNAMIC_DRAW);
    GLuint texture = 0;
    if (buffer != 0) {
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_BUFFER, texture);
        glTexBuffer(GL_TEXTURE_BUFFER, format, buffer);
    }
    m_textureBuffer = buffer != 0 ? static_cast<std::int32_t>(buffer) : -1;
    m_texture = buffer != 0 ? static_cast<std::int32_t>(texture) : -1;
    glBindBuffer(GL_TEXTURE_BUFFER, static_cast<GLuint>(boundBuffer));
    glBindTexture(GL_TEXTURE_BUFFER, static_cast<GLuint>(boundTexture));
    return m_texture != -1;
}

/// Vertices and indices of a quad over the viewport, bound.
bool TextureBufferProbe::makeQuad() {
    const auto left = static_cast<float>(m_viewport[0]), bottom = static_cast<float>(m_viewport[1]);
    const float right = left + static_cast<float>(m_viewport[2]);
    const float top = bottom + static_cast<float>(m_viewport[3]);
    const float corners[4][3] = {{left, bottom, 0}, {right, bottom, 0}, {right, top, 0}, {left, top, 0}};
    const std::uint32_t indices[] = {0, 1, 2, 3};
    m_vertexBuffer = makeBuffer(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
    if (m_vertexBuffer != 0)
        m_indexBuffer = makeBuffer(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
    return m_indexBuffer != 0;
}

void TextureBufferProbe::draw(GLenum format) {
    const ProgramInUseGuard guard;
    UseProgram(true);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    for (const ProbeFormat& f : kFormats) {
        SetUniformValue(f.switchName, f.format == format ? 1 : 0);
        SetUniformValue(f.sampler, f.unit);
    }
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(probeFormat(format).unit));
    GLint boundTexture = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_BUFFER, &boundTexture);
    glBindTexture(GL_TEXTURE_BUFFER, static_cast<GLuint>(m_texture));
    glDrawElements(GL_QUADS, 4, GL_UNSIGNED_INT, nullptr);
    glBindTexture(GL_TEXTURE_BUFFER, static_cast<GLuint>(boundTexture));
}

bool TextureBufferProbe::drawsGreen(GLenum format, const _NglFBOInfoStr& target) {
    const auto width = static_cast<GLsizei>(target.width), height = static_cast<GLsizei>(target.height);
    neutralizeState();
    const NoRestartGuard wholeIndices;
    const PlainTransferGuard plainColors;
    glViewport(0, 0, width, height); // the framebuffer holds the viewport, wherever that lies
    glShadeModel(GL_FLAT);
    glClearColor(0, 0, 0, 1);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    pushMatrices(m_viewport);
    draw(format);
    const bool green = isAllGreen(width, height);
    popMatrices();
    return green;
}

bool TextureBufferProbe::run(GLenum format) {
    if (!IsProgramValid() || glVersion() < 31 || !makeTextureBuffer(format))
        return false;
    GLint vertexArray = 0;
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArray);
    glBindVertexArray(0);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    const int framebuffer = NglGetBoundFBO();
    double clearDepth = 1.0;
    glGetDoublev(GL_DEPTH_CLEAR_VALUE, &clearDepth);
    ngl_get_viewport(&m_viewport[0], &m_viewport[1], &m_viewport[2], &m_viewport[3]);
    if (!makeQuad())
        return false; // deliberate: the attributes stay pushed on a driver that cannot even hold a quad

    _NglFBOInfoStr target;
    const bool created =
        NglCreateFBO(static_cast<unsigned>(m_viewport[2]), static_cast<unsigned>(m_viewport[3]), GL_RGBA,
                     GL_UNSIGNED_BYTE, &target) == 0 &&
        target.framebuffer != 0;
    // Deliberate: where nothing can be drawn off-screen the texture buffers get the benefit of the doubt.
    const bool works = !created || drawsGreen(format, target);
    glActiveTexture(GL_TEXTURE0);
    NglDestroyFBO(&target);
    NglBindFrameBuffer(static_cast<unsigned>(framebuffer));
    glPopClientAttrib();
    glPopAttrib();
    glClearDepth(clearDepth);
    glBindVertexArray(static_cast<GLuint>(vertexArray));
    return works;
}
