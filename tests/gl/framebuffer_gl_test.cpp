// Off-screen framebuffers: drawn to, read back, refused and taken apart, on drivers with each form of the
// feature.
#include <array>
#include <utility>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/nhost.h"
#include "tests/support/gltest.h"
#include "tests/support/subprocess.h"

namespace {

using NglFramebufferGl = nrutest::GlTest;

bool isZero(const _NglFBOInfoStr& info) {
    return !info.pixels && info.framebuffer == 0 && info.colorTexture == 0 && info.depthTexture == 0 &&
           info.width == 0 && info.height == 0 && info.pixelCount == 0;
}

_NglFBOInfoStr garbage() {
    return {nullptr, 99, 98, 97, 96, 95, 94};
}

void fill(double depth, NgColorLong color, float right) {
    ngl_set_color_long(color);
    glLoadIdentity();
    glTranslated(0, 0, depth);
    glRectf(-1, -1, right, 1);
}

/// Makes an 8 x 4 framebuffer, draws near red over the left half and far green behind all, and reads it.
void createDrawReadDestroy(bool ext, bool core) {
    NglInitGLExtensions();
    ASSERT_EQ((std::array{GLeeEnabled(4), GLeeEnabled(5), GLeeEnabled(6)}), (std::array{ext, core, core}));
    const std::size_t blocks = NHostLiveBlocks();
    _NglFBOInfoStr info = garbage();
    ASSERT_EQ(NglCreateFBO(8, 4, GL_RGBA, GL_UNSIGNED_BYTE, &info), 0);
    ASSERT_NE(info.framebuffer, 0u);
    EXPECT_EQ((std::array{info.width, info.height, info.pixelCount}), (std::array{8u, 4u, 32u}));
    EXPECT_EQ(NglGetBoundFBO(), static_cast<int>(info.framebuffer));
    glViewport(0, 0, 8, 4);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_ALWAYS, 1, 1);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    fill(-0.5, 0xFF0000FF, 0); // writes depth and stencil
    fill(0.5, 0xFF00FF00, 1);  // hidden there
    glStencilFunc(GL_NOTEQUAL, 1, 1);
    fill(-0.9, 0xFFFFFFFF, 1); // nothing is left without the stencil mark
    ASSERT_EQ(NglReadPixelsFromFBO(0, 0, 8, 4, GL_RGBA, GL_UNSIGNED_BYTE, info.pixels), 0);
    for (unsigned i = 0; i < info.pixelCount; ++i)
        EXPECT_EQ(nrutest::hex(info.pixels[i]), i % 8 < 4 ? "0xFF0000FF" : "0xFF00FF00") << i;

    NglBindFrameBuffer(0);
    EXPECT_EQ(NglGetBoundFBO(), 0);
    const auto window = nrutest::Picture::read(8, 4);
    EXPECT_EQ(window.countOtherThan(0xFF332211), 0) << "the window was drawn to";
    const GLuint textures[] = {info.colorTexture, info.depthTexture};
    EXPECT_EQ(NglDestroyFBO(&info), 0);
    EXPECT_TRUE(isZero(info));
    EXPECT_FALSE(glIsTexture(textures[0]) || glIsTexture(textures[1]));
    EXPECT_EQ(NHostLiveBlocks(), blocks);
}

/// Size, format, filters and wraps of the bound texture.
std::array<int, 7> textureFacts() {
    std::array<int, 7> facts{};
    auto fact = facts.begin();
    for (GLenum name : {GL_TEXTURE_WIDTH, GL_TEXTURE_HEIGHT, GL_TEXTURE_INTERNAL_FORMAT})
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &*fact++);
    for (GLenum name : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glGetTexParameteriv(GL_TEXTURE_2D, name, &*fact++);
    return facts;
}

} // namespace

// Three drivers: with both forms of the feature, with the extension alone and with the core form alone.

TEST_F(NglFramebufferGl, BothForms) {
    createDrawReadDestroy(true, true);
}

TEST_F(NglFramebufferGl, OnlyTheExtensionForm) {
    if (!nrutest::ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object"}}))
        createDrawReadDestroy(true, false);
}

TEST_F(NglFramebufferGl, OnlyTheCoreForm) {
    if (!nrutest::ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "-GL_EXT_framebuffer_object"}}))
        createDrawReadDestroy(false, true);
}

TEST_F(NglFramebufferGl, TexturesHaveTheirParameters) {
    NglInitGLExtensions();
    _NglFBOInfoStr info;
    NglCreateFBO(16, 8, GL_BGRA, GL_UNSIGNED_BYTE, &info);
    GLint bound = 1, attached = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &attached);
    EXPECT_EQ(attached, static_cast<GLint>(info.depthTexture));
    for (const auto& [texture, format] :
         {std::pair{info.colorTexture, GL_RGBA8}, {info.depthTexture, GL_DEPTH24_STENCIL8}}) {
        glBindTexture(GL_TEXTURE_2D, texture);
        EXPECT_EQ(textureFacts(), (std::array<int, 7>{16, 8, format, GL_LINEAR, GL_LINEAR, GL_CLAMP_TO_EDGE,
                                                      GL_CLAMP_TO_EDGE}));
    }
    for (const auto& [name, expected] : {std::pair{GL_DEPTH_TEXTURE_MODE, GL_LUMINANCE},
                                         {GL_TEXTURE_COMPARE_MODE, GL_COMPARE_R_TO_TEXTURE},
                                         {GL_TEXTURE_COMPARE_FUNC, GL_LESS}}) {
        GLint value = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        EXPECT_EQ(value, expected);
    }
}

TEST_F(NglFramebufferGl, AnIncompleteFramebufferIsTakenApartAgain) {
    NglInitGLExtensions();
    const std::size_t blocks = NHostLiveBlocks();
    _NglFBOInfoStr info = garbage();
    EXPECT_EQ(NglCreateFBO(5, 0, GL_RGBA, GL_UNSIGNED_BYTE, &info), 0);
    EXPECT_EQ(std::exchange(info.width, 0), 5u) << "the size that was asked stays";
    EXPECT_TRUE(isZero(info));
    EXPECT_EQ(NglGetBoundFBO(), 0);
    EXPECT_EQ(NHostLiveBlocks(), blocks);
    EXPECT_EQ(NglDestroyFBO(&info), 0);
}

TEST_F(NglFramebufferGl, ReadingReportsGlsError) {
    std::array<std::uint32_t, 4> pixels{};
    EXPECT_EQ(NglReadPixelsFromFBO(0, 0, -1, 2, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data()), GL_INVALID_VALUE);
    EXPECT_GT(takeGlErrors(), 0);
    EXPECT_EQ(NglReadPixelsFromFBO(3, 3, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data()), 0);
    EXPECT_EQ(nrutest::hex(pixels[3]), nrutest::hex(kClear));
}

TEST_F(NglFramebufferGl, WithoutFramebuffersEverythingGivesUp) {
    _NglFBOInfoStr info = garbage();
    EXPECT_EQ(NglCreateFBO(8, 4, GL_RGBA, GL_UNSIGNED_BYTE, &info), -1) << "before initialisation";
    EXPECT_TRUE(isZero(info));
    if (nrutest::ranInSubprocess(
            {{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object -GL_EXT_framebuffer_object"}}))
        return;
    NglInitGLExtensions();
    ASSERT_EQ(NglIsFBOSupported(), 0);
    info = garbage();
    EXPECT_EQ(NglCreateFBO(8, 4, GL_RGBA, GL_UNSIGNED_BYTE, &info), -1);
    EXPECT_TRUE(isZero(info));
    info.framebuffer = 3;
    EXPECT_EQ(NglDestroyFBO(&info), 0);
    EXPECT_EQ(info.framebuffer, 3u) << "gives up at once";
    NglBindFrameBuffer(3);
    EXPECT_EQ(NglGetBoundFBO(), 0);
}
