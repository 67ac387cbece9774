#include "viewer/contract/frames.h"

#include <epoxy/gl.h>

#include <cstdio>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/resetstate.h"

namespace nruview {

namespace {

constexpr int kSamples = 4, kColorIndex = 10;

/// A picture that is there before: the left third nearer than most of what is drawn, and marked in the
/// stencil buffer.
void clear() {
    const auto fill = [](float shade, double depth, int stencil) {
        glClearColor(shade, 2 * shade, 3 * shade, 1.0f);
        glClearDepth(depth);
        glClearStencil(stencil);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    };
    glDisable(GL_SCISSOR_TEST);
    fill(1.0f / 15, 1.0, 0);
    glScissor(0, 0, Frames::kSize / 3, Frames::kSize);
    glEnable(GL_SCISSOR_TEST);
    fill(2.0f / 15, 0.45, 1);
    glDisable(GL_SCISSOR_TEST);
    glScissor(0, 0, Frames::kSize, Frames::kSize);
}

/// An oblique view of what lies between -1 and 1.
void loadView() {
    glViewport(0, 0, Frames::kSize, Frames::kSize);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1.21, 1.13, -1.17, 1.19, -4, 4);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glRotated(25, 0.8, 0.6, 0);
}

void setLights() {
    const GLfloat lamp[4] = {300, 200, 900, 1}, some[4] = {0.2f, 0.3f, 0.1f, 1},
                  much[4] = {0.7f, 0.5f, 0.6f, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, lamp);
    glLightfv(GL_LIGHT0, GL_AMBIENT, some);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, much);
    glMaterialfv(GL_FRONT, GL_SPECULAR, some);
    glMaterialf(GL_FRONT, GL_SHININESS, 2);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    for (const GLenum feature : {GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL, GL_NORMALIZE, GL_DEPTH_TEST})
        glEnable(feature);
}

void handOver() {
    NglUpdateNglInfo();
    NglSetWindowBackGroundColor(0x332211);
    NglUpdateColor(NglMaxColor, NglGetColors());
    NglSetSelectionColor(0xFF0010F0);
    NglSetHighlightColor(0xFFE0A000);
    ngl_set_blending_value(255);
    ngl_set_line_style(0);
    ngl_set_color(kColorIndex);
    _NgPoint3Str viewer{200, -300, 900};
    ngl_set_camera_position(&viewer);
    NglGetNglInfo()->perspective = 0;
}

} // namespace

std::string difference(const Picture& a, const Picture& b) {
    int count = 0;
    std::size_t first = 0;
    for (std::size_t i = a.colors.size(); i-- > 0;)
        if (a.colors[i] != b.colors[i] || a.depths[i] != b.depths[i]) {
            ++count;
            first = i;
        }
    char text[160];
    std::snprintf(text, sizeof text, "%d pixels, the first at (%d, %d): 0x%08X at %.5f, not 0x%08X at %.5f",
                  count, static_cast<int>(first) % Frames::kSize, static_cast<int>(first) / Frames::kSize,
                  b.colors[first], static_cast<double>(b.depths[first]), a.colors[first],
                  static_cast<double>(a.depths[first]));
    return text;
}

Frames::Frames() {
    glGetIntegerv(GL_DRAW_BUFFER, &m_windowBuffer);
    if (epoxy_gl_version() < 30)
        return;
    m_encoding = make(GL_SRGB8_ALPHA8, 0);
    m_samples = make(GL_RGBA8, kSamples);
    m_resolved = make(GL_RGBA8, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

Frames::~Frames() {
    for (const auto& [name, color, depth] : {m_encoding, m_samples, m_resolved}) {
        const GLuint buffers[] = {color, depth};
        if (name == 0)
            continue;
        glDeleteFramebuffers(1, &name);
        glDeleteRenderbuffers(2, buffers);
    }
}

Frames::Framebuffer Frames::make(std::uint32_t colorFormat, int samples) {
    Framebuffer made;
    glGenFramebuffers(1, &made.name);
    glBindFramebuffer(GL_FRAMEBUFFER, made.name);
    const auto attach = [samples](GLuint& buffer, GLenum format, GLenum point) {
        glGenRenderbuffers(1, &buffer);
        glBindRenderbuffer(GL_RENDERBUFFER, buffer);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, kSize, kSize);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, buffer);
    };
    attach(made.color, colorFormat, GL_COLOR_ATTACHMENT0);
    attach(made.depth, GL_DEPTH24_STENCIL8, GL_DEPTH_STENCIL_ATTACHMENT);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    return made;
}

void Frames::begin(Target target) const {
    const bool toWindow = target == Target::Window;
    resetState();
    if (epoxy_gl_version() >= 30)
        glBindFramebuffer(GL_FRAMEBUFFER, toWindow                     ? 0
                                          : target == Target::Encoding ? m_encoding.name
                                                                       : m_samples.name);
    for (const auto select : {glDrawBuffer, glReadBuffer})
        select(toWindow ? static_cast<GLenum>(m_windowBuffer) : GL_COLOR_ATTACHMENT0);
    clear();
    loadView();
    setLights();
    handOver();
}

Picture Frames::end(Target target) const {
    constexpr std::size_t kPixels = std::size_t{kSize} * kSize;
    resetState();
    glReadBuffer(target == Target::Window ? static_cast<GLenum>(m_windowBuffer) : GL_COLOR_ATTACHMENT0);
    if (target == Target::Multisampled) {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_resolved.name);
        glBlitFramebuffer(0, 0, kSize, kSize, 0, 0, kSize, kSize, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT,
                          GL_NEAREST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, m_resolved.name);
    }
    Picture picture{std::vector<std::uint32_t>(kPixels), std::vector<float>(kPixels)};
    glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, picture.colors.data());
    glReadPixels(0, 0, kSize, kSize, GL_DEPTH_COMPONENT, GL_FLOAT, picture.depths.data());
    if (target != Target::Window)
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return picture;
}

} // namespace nruview
