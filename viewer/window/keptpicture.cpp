// Renderbuffers in framebuffer objects; a blit makes one sample of several.
#include "viewer/window/keptpicture.h"

#include <epoxy/gl.h>

#include <algorithm>

#include "viewer/error.h"

namespace nruview {

namespace {

unsigned int makeStore(GLenum format, int width, int height, int samples) {
    unsigned int store = 0;
    glGenRenderbuffers(1, &store);
    glBindRenderbuffer(GL_RENDERBUFFER, store);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
    return store;
}

int mostSamples() {
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return most;
}

} // namespace

KeptPicture::KeptPicture(int samples) {
    if (epoxy_gl_version() < 30 && !epoxy_has_gl_extension("GL_ARB_framebuffer_object"))
        throw ViewerError("window",
                          "the driver has no framebuffer objects (OpenGL 3.0); -o FILE.png needs none");
    m_samples = samples > 1 ? std::min(samples, mostSamples()) : 0;
    resize(1, 1);
}

KeptPicture::~KeptPicture() {
    remove(m_drawn);
    remove(m_finished);
}

void KeptPicture::make(Target& target, int width, int height, int samples) {
    target.color = makeStore(GL_RGBA8, width, height, samples);
    target.depth = makeStore(GL_DEPTH24_STENCIL8, width, height, samples);
    glGenFramebuffers(1, &target.framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, target.framebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, target.color);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, target.depth);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        throw ViewerError("window", "the driver cannot draw a picture of " + std::to_string(width) + "x" +
                                        std::to_string(height) + " pixels");
}

void KeptPicture::remove(Target& target) {
    glDeleteFramebuffers(1, &target.framebuffer);
    glDeleteRenderbuffers(1, &target.color);
    glDeleteRenderbuffers(1, &target.depth);
    target = {};
}

bool KeptPicture::resize(int width, int height) {
    if (width == m_width && height == m_height)
        return false;
    m_width = width;
    m_height = height;
    remove(m_drawn);
    remove(m_finished);
    make(m_finished, width, height, 0);
    if (m_samples > 0)
        make(m_drawn, width, height, m_samples);
    beginDrawing();
    return true;
}

void KeptPicture::beginDrawing(bool quickly) {
    m_isQuick = quickly || m_samples == 0;
    glBindFramebuffer(GL_FRAMEBUFFER, m_isQuick ? m_finished.framebuffer : m_drawn.framebuffer);
}

void KeptPicture::endDrawing() {
    if (m_isQuick)
        return;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_finished.framebuffer);
    glBlitFramebuffer(0, 0, m_width, m_height, 0, 0, m_width, m_height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    beginDrawing();
}

void KeptPicture::bindFinished() const {
    glBindFramebuffer(GL_FRAMEBUFFER, m_finished.framebuffer);
}

void KeptPicture::show(int windowHeight) const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, m_finished.framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    const int bottom = windowHeight - m_height;
    glBlitFramebuffer(0, 0, m_width, m_height, 0, bottom, m_width, bottom + m_height, GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

std::vector<std::uint32_t> KeptPicture::pixels() const {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(m_width) * m_height);
    bindFinished();
    glReadPixels(0, 0, m_width, m_height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

} // namespace nruview
