// The rubber band: where its lines lie, what it leaves behind, and that the second one erases the first, in
// an off-screen surface, a framebuffer object and windows.
#include <cstdio>
#include <cstdlib>

#include "tests/gl/testgl.h"

// After the GL header, which it would include otherwise.
#include <GLFW/glfw3.h>

using namespace nrutest;

namespace {

constexpr int kSize = 64;
constexpr NgColorLong kBand = 0xFF402010; ///< also the background: the complement of colour 63 differs
std::array<NgColorLong, 64> palette{};

/// A view turned by -10 degrees about z, 8 pixels a unit, in the record, with another one in GL.
void setUpView() {
    palette[63] = kBand;
    NglSetWindowBackGroundColor(kBand);
    NglUpdateColor(64, palette.data());
    glViewport(0, 0, kSize, kSize);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-4, 4, -4, 4, -1, 3);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glRotated(-10, 0, 0, 1);
    NglUpdateNglInfo();
    glEnable(GL_DEPTH_TEST);
    glScaled(2, 2, 2);
}

Picture readBuffer(GLenum buffer) {
    glReadBuffer(buffer);
    return Picture::read(kSize, kSize);
}

/// Draws bands into a buffer of noise that nothing deep can reach, and erases them.
void expectBandsComeAndGo(GLenum buffer) {
    Picture noise(kSize, kSize);
    for (int i = 0; i < kSize * kSize; ++i)
        noise.at(i % kSize, i / kSize) = i * 2654435761u | 0xFF000000;
    glDisable(GL_DEPTH_TEST);
    glDrawBuffer(buffer);
    glWindowPos2i(0, 0);
    glDrawPixels(kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, &noise.at(0, 0));
    glEnable(GL_DEPTH_TEST);
    glClearDepth(0);
    glClear(GL_DEPTH_BUFFER_BIT);
    for (const int kind : {0, 1, 2}) {
        ngl_draw_rubber(kind, 5, 7, 50, 31);
        const Picture band = readBuffer(buffer);
        int changed = 0;
        for (int i = 0; i < kSize * kSize; ++i) {
            const int x = i % kSize, y = i / kSize;
            const NgColorLong change = (noise.at(x, y) ^ band.at(x, y)) & 0xFFFFFF;
            changed += change != 0;
            EXPECT_TRUE(change == 0 || change == (kBand & 0xFFFFFF)) << i;
        }
        EXPECT_NEAR(changed, kind == 0 ? 2 * 45 : kind == 1 ? 2 * 126 : 0, kind == 2 ? 0 : 12) << kind;
        ngl_draw_rubber(kind, 5, 7, 50, 31);
        EXPECT_TRUE(samePicture(readBuffer(buffer), noise));
    }
}

class Rubber : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        setUpView();
    }
};

TEST_F(Rubber, LiesBetweenTheScreenPoints) {
    const auto line = fedBackLines([] { ngl_draw_rubber(0, 5, 7, 50, 31); });
    ASSERT_EQ(line.size(), 2u);
    expectNear(line[0], {5, 57, 0.25}, 1e-4); // in the plane of the model's origin
    expectNear(line[1], {50, 33, 0.25}, 1e-4);
    const auto rectangle = fedBackLines([] { ngl_draw_rubber(1, 5, 7, 50, 31); });
    ASSERT_EQ(rectangle.size(), 8u);
    const double cosine = 0.984807753012208, sine = -0.17364817766693, along = 45 * cosine - 24 * sine;
    const double dx = cosine * along, dy = sine * along; // the side along model x
    const _NgPoint2Str corners[] = {{5, 57}, {5 + dx, 57 + dy}, {50, 33}, {50 - dx, 33 - dy}};
    for (int i = 0; i < 8; ++i) { // halfway into the box
        const _NgPoint2Str corner = corners[(i + 1) / 2 % 4];
        expectNear(rectangle[i], {corner.x, corner.y, 0.5}, 1e-4);
    }
}

TEST_F(Rubber, LeavesColorAndWidth) {
    static int flushes = 0;
    epoxy_glFlush = [] { ++flushes; };
    const Matrix view = flat(NglGetNglInfo()->modelView);
    for (const bool tested : {true, false}) {
        (tested ? glEnable : glDisable)(GL_DEPTH_TEST);
        ngl_set_line_width(5);
        const GlSnapshot before = GlSnapshot::take();
        ngl_draw_rubber(tested, 5, 7, 50, 31);
        EXPECT_TRUE(before.equals(GlSnapshot::take(), {"current value", "shape and shading"}));
        GLfloat width = 0;
        glGetFloatv(GL_LINE_WIDTH, &width);
        EXPECT_EQ(width, 2);
        EXPECT_EQ(ngl_get_line_width(), 2);
        EXPECT_EQ(ngl_get_color(), 63);
        EXPECT_EQ(NglGetNglInfo()->noComplement, 0);
        EXPECT_EQ(flat(NglGetNglInfo()->modelView), view);
    }
    EXPECT_EQ(flushes, 2) << "no swap shows the front buffer";
}

TEST_F(Rubber, ComesAndGoesOffscreen) {
    expectBandsComeAndGo(GL_FRONT);
}

TEST_F(Rubber, ComesAndGoesInAFramebufferObject) {
    NglInitGLExtensions();
    _NglFBOInfoStr info;
    NglCreateFBO(kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, &info);
    ASSERT_NE(info.framebuffer, 0u);
    expectBandsComeAndGo(GL_COLOR_ATTACHMENT0);
    GLint drawBuffer = 0;
    glGetIntegerv(GL_DRAW_BUFFER, &drawBuffer);
    EXPECT_EQ(drawBuffer, GL_COLOR_ATTACHMENT0);
    NglDestroyFBO(&info);
    EXPECT_EQ(read().countOtherThan(kClear), 0) << "the window was drawn to";
}

/// A window, double-buffered or not, on an X server of its own.
class Window : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        char display[9] = ":"; // a free one, which the server tells once it is up
        ASSERT_EQ(fscanf(m_server, "%7s", display + 1), 1) << "Xvfb did not start";
        setenv("DISPLAY", display, 1);
        ASSERT_TRUE(glfwInit());
        glfwWindowHint(GLFW_DOUBLEBUFFER, GetParam());
        GLFWwindow* window = glfwCreateWindow(kSize, kSize, "rubber", nullptr, nullptr);
        ASSERT_NE(window, nullptr);
        glfwMakeContextCurrent(window);
        setUpView();
    }
    void TearDown() override {
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        glfwTerminate();
        pclose(m_server);
    }

private:
    /// Ends with its last client.
    FILE* const m_server = popen("Xvfb -displayfd 1 -terminate -nolisten tcp 2>/dev/null", "r");
};

TEST_P(Window, ShowsTheBandInFront) {
    GLboolean isDouble = GL_FALSE;
    glGetBooleanv(GL_DOUBLEBUFFER, &isDouble);
    ASSERT_EQ(isDouble, GetParam());
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    expectBandsComeAndGo(GL_FRONT);
    GLint drawBuffer = 0;
    glGetIntegerv(GL_DRAW_BUFFER, &drawBuffer);
    EXPECT_EQ(drawBuffer, isDouble ? GL_BACK : GL_FRONT);
    EXPECT_TRUE(!isDouble || readBuffer(GL_BACK).countOtherThan(0x0000FF) == 0);
}

INSTANTIATE_TEST_SUITE_P(Rubber, Window, testing::Bool(),
                         [](const auto& info) { return info.param ? "DoubleBuffered" : "SingleBuffered"; });

} // namespace
