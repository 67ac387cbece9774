// The rubber band: where its lines lie, what it leaves behind, and that the second one erases the first.
#include <cstdio>
#include <cstdlib>

#include "tests/gl/testgl.h"
#include "tests/support/subprocess.h"

// After the GL header, which it would include otherwise.
#include <GLFW/glfw3.h>

using namespace nrutest;

namespace {

enum Surface { Offscreen, FramebufferObject, SingleBuffered, DoubleBuffered };

class Rubber : public testing::TestWithParam<Surface> {
protected:
    static constexpr int kSize = 64;
    static constexpr NgColorLong kBand = 0x00402010; ///< also the background: its complement differs

    /// In a view turned by -10 degrees about z, 8 pixels a unit, in the record; another one is in GL.
    void SetUp() override {
        if (GetParam() >= SingleBuffered)
            openWindow();
        else
            ASSERT_EQ(m_context.create(kSize, kSize), "");
        NglInitGLExtensions();
        if (GetParam() == FramebufferObject) {
            NglCreateFBO(kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, &m_framebuffer);
            glBindTexture(GL_TEXTURE_2D, m_framebuffer.colorTexture);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_SRGB8_ALPHA8, kSize, kSize, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         nullptr);
        }
        m_palette[63] = kBand;
        NglSetWindowBackGroundColor(kBand);
        NglUpdateColor(64, m_palette.data());
        loadOrtho(-4, 4, -4, 4, -1, 3);
        glRotated(-10, 0, 0, 1);
        NglUpdateNglInfo();
        glScaled(2, 2, 2);
    }
    void TearDown() override {
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        NglDestroyFBO(&m_framebuffer);
    }
    /// On an X server that ends with its last client: this process, which keeps its window.
    void openWindow() {
        FILE* const server = popen("Xvfb -displayfd 1 -terminate -nolisten tcp 2>/dev/null", "r");
        char display[9] = ":"; // a free one, which the server tells once it is up
        ASSERT_EQ(fscanf(server, "%7s", display + 1), 1) << "Xvfb did not start";
        setenv("DISPLAY", display, 1);
        ASSERT_TRUE(glfwInit());
        glfwWindowHint(GLFW_DOUBLEBUFFER, GetParam() == DoubleBuffered);
        GLFWwindow* window = glfwCreateWindow(kSize, kSize, "rubber", nullptr, nullptr);
        ASSERT_NE(window, nullptr);
        glfwMakeContextCurrent(window);
    }
    static Picture read(GLenum buffer) {
        glReadBuffer(buffer);
        return Picture::read(kSize, kSize);
    }

private:
    nruview::OffscreenContext m_context;
    _NglFBOInfoStr m_framebuffer{};
    std::array<NgColorLong, 64> m_palette{};
};

TEST_P(Rubber, LiesBetweenTheScreenPoints) {
    // At the depth of the model's origin.
    expectChain([] { ngl_draw_rubber(0, 5, 7, 50, 31); }, {{5, 57, 0.25}, {50, 33, 0.25}});
    const double cosine = 0.984807753012208, sine = -0.17364817766693, along = 45 * cosine - 24 * sine;
    const double dx = cosine * along, dy = sine * along;  // the side along model x
    expectChain([] { ngl_draw_rubber(1, 5, 7, 50, 31); }, // halfway into the box
                {{5, 57, 0.5}, {5 + dx, 57 + dy, 0.5}, {50, 33, 0.5}, {50 - dx, 33 - dy, 0.5}, {5, 57, 0.5}});
}

TEST_P(Rubber, ComesAndGoes) {
    const GLenum seen = GetParam() == FramebufferObject ? GL_COLOR_ATTACHMENT0 : GL_FRONT;
    glClear(GL_COLOR_BUFFER_BIT); // of the back buffer, where there is one
    glClearDepth(0);              // nothing passes the depth test
    glClear(GL_DEPTH_BUFFER_BIT);
    Picture noise(kSize, kSize);
    for (int i = 0; i < kSize * kSize; ++i)
        noise.at(i % kSize, i / kSize) = i * 2654435761u | 0xFF000000;
    glDrawBuffer(seen);
    glWindowPos2i(0, 0);
    glDrawPixels(kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, &noise.at(0, 0));
    (GetParam() == FramebufferObject ? glEnable : glDisable)(GL_FRAMEBUFFER_SRGB);
    ngl_set_line_width(2);
    glLineWidth(1); // the band's width is issued all the same
    static int flushes = 0;
    epoxy_glFlush = [] { ++flushes; };
    for (const int kind : {0, 1, 2}) {
        (kind == 0 ? glDisable : glEnable)(GL_DEPTH_TEST);
        ngl_draw_rubber(kind, 5, 7, 50, 31);
        const Picture band = read(seen);
        int changed = 0;
        for (int i = 0; i < kSize * kSize; ++i) {
            const int x = i % kSize, y = i / kSize;
            const NgColorLong change = (noise.at(x, y) ^ band.at(x, y)) & 0xFFFFFF;
            changed += change != 0;
            EXPECT_TRUE(change == 0 || change == kBand) << x << ", " << y;
        }
        EXPECT_NEAR(changed, kind == 0 ? 2 * 45 : kind == 1 ? 2 * 126 : 0, kind == 2 ? 0 : 12) << kind;
        ngl_draw_rubber(kind, 5, 7, 50, 31);
        EXPECT_TRUE(samePicture(read(seen), noise));
    }
    EXPECT_EQ(flushes, 6) << "no swap shows the front buffer";
    EXPECT_EQ(ngl_get_color(), 63);
    EXPECT_EQ(ngl_get_line_width(), 2);
    EXPECT_EQ(stateOf(GL_LINE_WIDTH), 2);
    EXPECT_EQ(stateOf(GL_DRAW_BUFFER), GetParam() == DoubleBuffered ? GL_BACK : seen);
    EXPECT_TRUE(GetParam() != DoubleBuffered || read(GL_BACK).countOtherThan(0) == 0);
    if (GetParam() == FramebufferObject && epoxy_gl_version() >= 30) // and where all of it is extensions
        ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "2.1"}});
}

INSTANTIATE_TEST_SUITE_P(In, Rubber,
                         testing::Values(Offscreen, FramebufferObject, SingleBuffered, DoubleBuffered));

} // namespace
