// Off-screen framebuffers with a colour and a depth-stencil texture.
#include <cstdint>
#include <optional>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/nhost.h"

namespace {

/// One of the two families of framebuffer entry points. The capability table answers for a family as a whole:
/// the loader ends the process on a missing entry point instead of giving null.
struct FramebufferApi {
    decltype(glGenFramebuffers) generate;
    decltype(glBindFramebuffer) bind;
    decltype(glCheckFramebufferStatus) checkStatus;
    decltype(glFramebufferTexture2D) attachTexture;
    decltype(glIsFramebuffer) isFramebuffer;
    decltype(glDeleteFramebuffers) remove;
};

std::optional<FramebufferApi> framebufferApi() {
    if (GLeeEnabled(GLeeFramebufferExt))
        return FramebufferApi{glGenFramebuffersEXT,      glBindFramebufferEXT, glCheckFramebufferStatusEXT,
                              glFramebufferTexture2DEXT, glIsFramebufferEXT,   glDeleteFramebuffersEXT};
    if (GLeeEnabled(GLeeFramebufferArb) || GLeeEnabled(GLeeGL30))
        return FramebufferApi{glGenFramebuffers,      glBindFramebuffer, glCheckFramebufferStatus,
                              glFramebufferTexture2D, glIsFramebuffer,   glDeleteFramebuffers};
    return std::nullopt;
}

/// Generates a texture and leaves it bound as the 2D texture, without mipmaps and clamped to its edge.
GLuint makeTexture(const _NglFBOInfoStr& info, GLint internalFormat, GLenum format, GLenum type) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, static_cast<GLsizei>(info.width),
                 static_cast<GLsizei>(info.height), 0, format, type, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

GLuint makeDepthTexture(const _NglFBOInfoStr& info) {
    const GLuint texture = makeTexture(info, GL_DEPTH24_STENCIL8, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8);
    glTexParameteri(GL_TEXTURE_2D, GL_DEPTH_TEXTURE_MODE, GL_LUMINANCE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_R_TO_TEXTURE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LESS);
    return texture;
}

/// The depth texture goes to the depth and to the stencil point: that is the combined depth-stencil
/// attachment, which the EXT form cannot name.
void attach(const FramebufferApi& api, const _NglFBOInfoStr& info) {
    const auto attachAt = [&](GLenum point, GLuint texture) {
        api.attachTexture(GL_FRAMEBUFFER, point, GL_TEXTURE_2D, texture, 0);
    };
    attachAt(GL_COLOR_ATTACHMENT0, info.colorTexture);
    attachAt(GL_DEPTH_ATTACHMENT, info.depthTexture);
    attachAt(GL_STENCIL_ATTACHMENT, info.depthTexture);
}

void deleteTexture(GLuint texture) {
    if (glIsTexture(texture))
        glDeleteTextures(1, &texture);
}

void deleteGlObjects(const FramebufferApi& api, const _NglFBOInfoStr& info) {
    if (api.isFramebuffer(info.framebuffer))
        api.remove(1, &info.framebuffer);
    deleteTexture(info.colorTexture);
    deleteTexture(info.depthTexture);
}

/// Leaves a record without framebuffer, which is how callers see the failure; the size that was asked stays.
void discard(const FramebufferApi& api, _NglFBOInfoStr& info) {
    api.bind(GL_FRAMEBUFFER, 0);
    deleteGlObjects(api, info);
    NHostFree(info.pixels);
    const std::uint32_t width = info.width, height = info.height;
    info = {};
    info.width = width;
    info.height = height;
}

} // namespace

int NglCreateFBO(unsigned int width, unsigned int height, unsigned int format, unsigned int type,
                 _NglFBOInfoStr* info) {
    *info = {};
    const std::optional<FramebufferApi> api = framebufferApi();
    if (!api)
        return -1;
    info->width = width;
    info->height = height;
    info->pixelCount = width * height;
    info->pixels =
        static_cast<std::uint32_t*>(NHOST_ALLOCATE(std::size_t{width} * height * sizeof(std::uint32_t)));
    api->generate(1, &info->framebuffer);
    api->bind(GL_FRAMEBUFFER, info->framebuffer);
    info->colorTexture = makeTexture(*info, GL_RGBA8, format, type);
    info->depthTexture = makeDepthTexture(*info);
    glBindTexture(GL_TEXTURE_2D, 0);
    attach(*api, *info);
    if (api->checkStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        discard(*api, *info);
    return 0;
}

int NglDestroyFBO(_NglFBOInfoStr* info) {
    const std::optional<FramebufferApi> api = framebufferApi();
    if (!api)
        return 0;
    if (info->framebuffer != 0)
        deleteGlObjects(*api, *info);
    NHostFree(info->pixels);
    *info = {};
    return 0;
}

void NglBindFrameBuffer(unsigned int framebuffer) {
    if (const std::optional<FramebufferApi> api = framebufferApi())
        api->bind(GL_FRAMEBUFFER, framebuffer);
}

int NglGetBoundFBO() {
    GLint framebuffer = 0;
    if (framebufferApi())
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    return framebuffer;
}

int NglReadPixelsFromFBO(int x, int y, int width, int height, unsigned int format, unsigned int type,
                         void* pixels) {
    glReadPixels(x, y, width, height, format, type, pixels);
    return static_cast<int>(glGetError());
}
