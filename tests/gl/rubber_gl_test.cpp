// The rubber band: where its lines lie, that XOR twice restores what was seen, in a surface without buffers
// of its own, a framebuffer object and windows, and what it leaves behind.
#include "tests/gl/testgl.h"
#include "tests/support/virtualdisplay.h"

// After the GL header, which it would include otherwise.
#include <GLFW/glfw3.h>

using namespace nrutest;

namespace {

constexpr int kSize = 64;
constexpr NgColorLong kBand = 0xFF402010; ///< close to the background, so that the complement differs

/// Noise, and a view turned by 90 degrees about z: model x points up, y to the left; 8 pixels a unit.
void setUpView() {
    static const std::array<NgColorLong, 64> palette = [] {
        std::array<NgColorLong, 64> colors{};
        colors[63] = kBand;
        return colors;
    }();
    NglSetWindowBackGroundColor(kBand);
    NglUpdateColor(64, palette.data());
    glViewport(0, 0, kSize, kSize);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-4, 4, -4, 4, -1, 3);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glRotated(90, 0, 0, 1);
    NglUpdateNglInfo();
    glEnable(GL_DEPTH_TEST);
    glScaled(2, 2, 2); // the record's view counts
}

Picture drawNoise(unsigned seed) {
    Picture noise(kSize, kSize);
    for (int i = 0; i < kSize * kSize; ++i)
        noise.at(i % kSize, i / kSize) = (seed = seed * 1664525 + 1013904223) | 0xFF000000;
    glWindowPos2i(0, 0);
    glDisable(GL_DEPTH_TEST);
    glDrawPixels(kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, &noise.at(0, 0));
    glEnable(GL_DEPTH_TEST);
    return noise;
}

Picture readBuffer(GLenum buffer) {
    glReadBuffer(buffer);
    return Picture::read(kSize, kSize);
}

/// Draws bands into a buffer that holds noise, and erases them.
void expectBandsComeAndGo(GLenum buffer) {
    glClearDepth(0); // nothing passes the depth test
    glClear(GL_DEPTH_BUFFER_BIT);
    const Picture before = readBuffer(buffer);
    for (const int kind : {0, 1}) {
        ngl_draw_rubber(kind, 5, 7, 50, 31);
        const Picture band = readBuffer(buffer);
        int changed = 0;
        for (int i = 0; i < kSize * kSize; ++i) {
            const NgColorLong change = (before.at(i % kSize, i / kSize) ^ band.at(i % kSize, i / kSize));
            changed += (change & 0xFFFFFF) != 0;
            EXPECT_TRUE((change & 0xFFFFFF) == 0 || (change & 0xFFFFFF) == (kBand & 0xFFFFFF)) << i;
        }
        EXPECT_NEAR(changed, kind == 0 ? 2 * 45 : 4 * (45 + 24), 10); // less where corners overlap
        ngl_draw_rubber(kind, 5, 7, 50, 31);
        EXPECT_TRUE(samePicture(readBuffer(buffer), before));
    }
    ngl_draw_rubber(2, 5, 7, 50, 31);
    EXPECT_TRUE(samePicture(readBuffer(buffer), before));
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
    EXPECT_NEAR(line[0].x, 5, 1e-4);
    EXPECT_NEAR(line[0].y, 64 - 7, 1e-4);
    EXPECT_NEAR(line[1].x, 50, 1e-4);
    EXPECT_NEAR(line[1].y, 64 - 31, 1e-4);
    EXPECT_NEAR(line[1].z, 0.25, 1e-6) << "in the plane of the model's origin";

    // In a view turned by -10 degrees the rectangle keeps to the model's axes, halfway into the box.
    glLoadIdentity();
    glRotated(-10, 0, 0, 1);
    NglUpdateNglInfo();
    const auto rectangle = fedBackLines([] { ngl_draw_rubber(1, 5, 7, 50, 31); });
    ASSERT_EQ(rectangle.size(), 8u);
    const double cosine = 0.984807753012208, sine = -0.17364817766693,
                 along = 45 * cosine - 24 * sine; // along model x
    const _NgPoint2Str side{cosine * along, sine * along};
    const _NgPoint2Str corners[] = {{5, 57}, {5 + side.x, 57 + side.y}, {50, 33}, {50 - side.x, 33 - side.y}};
    for (int i = 0; i < 8; ++i) {
        const _NgPoint2Str corner = corners[(i + 1) / 2 % 4];
        expectNear({rectangle[i].x, rectangle[i].y, rectangle[i].z}, {corner.x, corner.y, 0.5}, 1e-4);
    }
}

TEST_F(Rubber, LeavesColorAndWidth) {
    static int flushes = 0;
    epoxy_glFlush = [] { ++flushes; };
    const Matrix view = flat(NglGetNglInfo()->modelView);
    for (const bool tested : {true, false}) {
        (tested ? glEnable : glDisable)(GL_DEPTH_TEST);
        const GlSnapshot before = GlSnapshot::take();
        ngl_set_line_width(5);
        ngl_draw_rubber(tested, 5, 7, 50, 31);
        EXPECT_EQ(ngl_get_line_width(), 2);
        GLfloat width = 0;
        glGetFloatv(GL_LINE_WIDTH, &width);
        EXPECT_EQ(width, 2);
        EXPECT_EQ(ngl_get_color(), 63);
        EXPECT_EQ(NglGetNglInfo()->noComplement, 0);
        EXPECT_EQ(flat(NglGetNglInfo()->modelView), view);
        EXPECT_TRUE(before.equals(GlSnapshot::take(), {"current value", "shape and shading"}));
    }
    EXPECT_EQ(flushes, 2) << "no swap shows the front buffer";
}

TEST_F(Rubber, ComesAndGoesOffscreen) {
    drawNoise(1);
    expectBandsComeAndGo(GL_FRONT);
}

TEST_F(Rubber, ComesAndGoesInAFramebufferObject) {
    NglInitGLExtensions();
    _NglFBOInfoStr info;
    NglCreateFBO(kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, &info);
    ASSERT_NE(info.framebuffer, 0u);
    drawNoise(2);
    const GlSnapshot before = GlSnapshot::take();
    expectBandsComeAndGo(GL_COLOR_ATTACHMENT0);
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"current value", "shape and shading"}));
    NglDestroyFBO(&info);
    EXPECT_EQ(read().countOtherThan(kClear), 0) << "the window was drawn to";
}

/// A window with its context current, double-buffered or not.
class Window : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_display.isUp()) << "Xvfb did not start";
        ASSERT_TRUE(glfwInit());
        glfwWindowHint(GLFW_DOUBLEBUFFER, GetParam());
        m_window = glfwCreateWindow(kSize, kSize, "rubber", nullptr, nullptr);
        ASSERT_NE(m_window, nullptr);
        glfwMakeContextCurrent(m_window);
        setUpView();
    }
    void TearDown() override {
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        glfwTerminate();
    }
    static GLint drawBuffer() {
        GLint buffer = 0;
        glGetIntegerv(GL_DRAW_BUFFER, &buffer);
        return buffer;
    }

private:
    const VirtualDisplay m_display;
    GLFWwindow* m_window = nullptr;
};

TEST_P(Window, ShowsTheBandInFront) {
    GLboolean isDouble = GL_FALSE;
    glGetBooleanv(GL_DOUBLEBUFFER, &isDouble);
    ASSERT_EQ(isDouble, GetParam());
    glDrawBuffer(GL_FRONT);
    const Picture front = drawNoise(3);
    if (!isDouble) {
        expectBandsComeAndGo(GL_FRONT);
        EXPECT_EQ(drawBuffer(), GL_FRONT);
        return;
    }
    glDrawBuffer(GL_BACK);
    const Picture back = drawNoise(4);
    ASSERT_TRUE(samePicture(readBuffer(GL_FRONT), front));
    for (const GLenum selected : {GL_BACK, GL_FRONT}) {
        glDrawBuffer(selected);
        expectBandsComeAndGo(GL_FRONT);
        EXPECT_TRUE(samePicture(readBuffer(GL_BACK), back));
        EXPECT_EQ(drawBuffer(), GL_BACK);
    }
}

INSTANTIATE_TEST_SUITE_P(Rubber, Window, testing::Bool(),
                         [](const auto& info) { return info.param ? "DoubleBuffered" : "SingleBuffered"; });

} // namespace
