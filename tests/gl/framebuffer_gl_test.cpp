// Off-screen framebuffers, on drivers with each form of the feature and without it.
#include <cstdlib>
#include <cstring>
#include <utility>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/nhost.h"
#include "tests/gl/testgl.h"
#include "tests/support/subprocess.h"

namespace {

class NglFramebufferGl : public nrutest::GlTest {
protected:
    const std::size_t blocks = NHostLiveBlocks();
    _NglFBOInfoStr info{nullptr, 99, 98, 97, 96, 95, 94}; ///< garbage before it is filled

    bool isZero() const {
        const _NglFBOInfoStr zero{};
        return std::memcmp(&info, &zero, sizeof info) == 0;
    }
    int create(unsigned width, unsigned height) {
        return NglCreateFBO(width, height, GL_RGBA, GL_UNSIGNED_BYTE, &info);
    }
};

void fill(double depth, NgColorLong color, float right) {
    ngl_set_color_long(color);
    glLoadIdentity();
    glTranslated(0, 0, depth);
    glRectf(-1, -1, right, 1);
}

TEST_F(NglFramebufferGl, EitherFormIsEnough) {
    if (nrutest::ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object"}}) &&
        nrutest::ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "-GL_EXT_framebuffer_object"}}))
        return;
    const bool core = std::strstr(std::getenv("MESA_EXTENSION_OVERRIDE"), "EXT");
    NglInitGLExtensions();
    ASSERT_EQ((std::array{GLeeEnabled(4), GLeeEnabled(5), GLeeEnabled(6)}), (std::array{!core, core, core}));
    ASSERT_EQ(create(8, 4), 0);
    EXPECT_EQ(NglGetBoundFBO(), static_cast<int>(info.framebuffer));
    glViewport(0, 0, 8, 4);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    fill(-0.5, 0xFF0000FF, 0); // near, over the left half
    fill(0.5, 0xFF00FF00, 1);  // hidden there
    EXPECT_EQ(nrutest::stateOf(GL_STENCIL_BITS), 8);
    ASSERT_EQ(NglReadPixelsFromFBO(0, 0, 8, 4, GL_RGBA, GL_UNSIGNED_BYTE, info.pixels), 0);
    for (unsigned i = 0; i < info.pixelCount; ++i)
        EXPECT_EQ(nrutest::hex(info.pixels[i]), i % 8 < 4 ? "0xFF0000FF" : "0xFF00FF00") << i;

    NglBindFrameBuffer(0);
    EXPECT_EQ(read().countOtherThan(kClear), 0) << "the window was drawn to";
    const GLuint color = info.colorTexture, depth = info.depthTexture;
    GLint filter = 0; // GL's own default would need mipmaps
    glBindTexture(GL_TEXTURE_2D, color);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
    EXPECT_EQ(filter, GL_LINEAR);
    EXPECT_EQ(NglDestroyFBO(&info), 0);
    EXPECT_TRUE(isZero());
    EXPECT_FALSE(glIsTexture(color) || glIsTexture(depth));
    EXPECT_EQ(NHostLiveBlocks(), blocks);
}

TEST_F(NglFramebufferGl, FailuresAreReportedAndTakenApart) {
    NglInitGLExtensions();
    EXPECT_EQ(create(5, 0), 0);
    EXPECT_EQ(std::exchange(info.width, 0), 5u) << "the size that was asked stays";
    EXPECT_TRUE(isZero());
    EXPECT_EQ(NglGetBoundFBO(), 0);
    EXPECT_EQ(NHostLiveBlocks(), blocks);
    EXPECT_EQ(NglReadPixelsFromFBO(0, 0, -1, 2, GL_RGBA, GL_UNSIGNED_BYTE, nullptr), GL_INVALID_VALUE);
    EXPECT_GT(takeGlErrors(), 0);
}

TEST_F(NglFramebufferGl, WithoutFramebuffersEverythingGivesUp) {
    if (nrutest::ranInSubprocess(
            {{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object -GL_EXT_framebuffer_object"}}))
        return;
    NglInitGLExtensions();
    ASSERT_EQ(NglIsFBOSupported(), 0);
    EXPECT_EQ(create(8, 4), -1);
    EXPECT_TRUE(isZero());
    info.framebuffer = 3;
    EXPECT_EQ(NglDestroyFBO(&info), 0);
    NglBindFrameBuffer(3);
    EXPECT_EQ(NglGetBoundFBO(), 0);
}

} // namespace
