// Shapes in window pixels: where they are drawn, at which depth, how they blend and what they leave behind.
#include <cmath>

#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

constexpr NgColorLong kInk = 0xFF28B4C8;
const std::vector<_NgPoint2Str> kChain{{10.5, 20.5}, {30.5, 20.5}, {30.5, 25.5}, {10.5, 25.5}};
constexpr int kX = 15, kY = 22; ///< a pixel within the chain

class Overlay : public GlTest {
protected:
    /// A view along model x in the record, with another one in GL.
    void SetUp() override {
        GlTest::SetUp();
        loadOrtho(-4, 4, -4, 4, -1, 1);
        glRotated(90, 0, 1, 0);
        NglUpdateNglInfo();
        glTranslated(1, 2, 3);
        ngl_set_color_long(kInk);
        glEnable(GL_DEPTH_TEST);
        const char* source = "void main() { discard; }"; // in use by the host
        glUseProgram(glCreateShaderProgramv(GL_FRAGMENT_SHADER, 1, &source));
    }
    /// Draws the chain filled over a surface; returns the pixel. Only translucency may change the state.
    NgColorLong draw(double surface, bool translucent, const _NgPoint3Str* at) {
        glClearDepth(surface);
        clear();
        glMatrixMode(GL_TEXTURE);
        const GlSnapshot before = GlSnapshot::take();
        ngl_draw_poly_on_screen(4, kChain.data(), true, translucent, at);
        EXPECT_TRUE(translucent || before.equals(GlSnapshot::take()));
        glReadPixels(kX, kY, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        return read().at(kX, kY);
    }
    float depth = -1; ///< of the pixel
};

TEST_F(Overlay, ShapesHaveTheirPixels) {
    ngl_draw_poly_on_screen(1, kChain.data(), false, true, nullptr);
    EXPECT_EQ(read().countOtherThan(kClear), 0);
    ngl_draw_poly_on_screen(4, kChain.data(), true, false, nullptr);
    EXPECT_EQ(read().countOtherThan(kClear), 20 * 5);
    expectChain([] { ngl_draw_poly_on_screen(4, kChain.data(), false, true, nullptr); },
                {{10.5, 20.5, 0}, {30.5, 20.5, 0}, {30.5, 25.5, 0}, {10.5, 25.5, 0}});
    EXPECT_EQ(ngl_get_color_long(), kInk) << "lines are not translucent";
    const _NgPoint3Str at{0.5, 2, 1}; // at depth 0.75
    expectChain([] { ngl_draw_line_on_screen(5, 7, 50, 23, nullptr); }, {{5, 7, 0}, {50, 23, 0}});
    expectChain([&] { ngl_draw_line_on_screen(5, 7, 50, 23, &at); }, {{5, 7, 0.75}, {50, 23, 0.75}});
    const _NgPoint2Str center{30.3, 33.6};
    std::vector<_NgPoint3Str> circle;
    for (int deg = 0; deg <= 360; ++deg)
        circle.push_back(
            {30.3 + 20.25 * std::cos(deg * M_PI / 180), 33.6 + 20.25 * std::sin(deg * M_PI / 180), 0.75});
    expectChain([&] { ngl_draw_circle_on_screen(&center, -20.25f, false, false, &at); }, circle);
}

TEST_F(Overlay, AreInListsAndFeedbackWhatTheyAreInPolygons) {
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    ngl_draw_poly_on_screen(4, kChain.data(), true, false, nullptr);
    glEndList();
    glColor4ub(0x12, 0x34, 0x56, 0xFF); // of the host's when it calls
    glCallList(list);
    EXPECT_EQ(hex(read().at(kX, kY)), "0xFF563412");
    const _NgPoint2Str center{32, 32};
    std::vector<_NgPoint2Str> rim;
    for (int deg = 0; deg <= 360; ++deg)
        rim.push_back({32 + 9 * std::cos(deg * M_PI / 180), 32 + 9 * std::sin(deg * M_PI / 180)});
    std::vector<GLfloat> fed(1 << 14);
    const auto count = [&](const auto& draw) {
        glFeedbackBuffer(1 << 14, GL_2D, fed.data());
        glRenderMode(GL_FEEDBACK);
        draw();
        return glRenderMode(GL_RENDER);
    };
    EXPECT_EQ(count([&] { ngl_draw_circle_on_screen(&center, 9, true, false, nullptr); }),
              count([&] { ngl_draw_poly_on_screen(361, rim.data(), true, false, nullptr); }));
}

TEST_F(Overlay, CirclesShowThePixelsOfTheirPolygons) {
    const _NgPoint2Str centers[] = {{32, 32}, {20, 41}, {0, 3}, {32.5, 30}};
    for (int row = 0; row < 4 * 41; ++row) {
        const _NgPoint2Str center = centers[row % 4];
        const int radius = row / 4 + 1;
        std::vector<_NgPoint2Str> rim;
        for (int deg = 0; deg <= 360; ++deg)
            rim.push_back({center.x + radius * std::cos(deg * M_PI / 180),
                           center.y + radius * std::sin(deg * M_PI / 180)});
        glPolygonMode(GL_FRONT_AND_BACK, radius == 9 ? GL_LINE : GL_FILL); // of the host
        clear();
        ngl_draw_circle_on_screen(&center, static_cast<float>(radius), true, true, nullptr);
        const Picture circle = read();
        clear();
        ngl_draw_poly_on_screen(361, rim.data(), true, true, nullptr);
        EXPECT_TRUE(samePicture(circle, read())) << center.x << ", " << center.y << " radius " << radius;
        EXPECT_GT(circle.countOtherThan(kClear), 0);
    }
}

TEST_F(Overlay, LieAtTheDepthOfTheReferenceOrOnTop) {
    const struct {
        double x;          ///< of the reference; its window depth w is (1 + x) / 2
        double minZ, maxZ; ///< of the record's box
        double depth;      ///< drawn: 1 - 2 (minZ - w) / (minZ - maxZ)
    } rows[] = {{-0.5, 1, -1, 0.25}, {0.5, 1, -1, 0.75}, {0.5, 2, -2, 0.375}, {0.5, 1.5, -0.5, 0.25}};
    glBlendFunc(GL_DST_COLOR, GL_ONE); // the host's, which opaque shapes leave
    for (const auto& row : rows) {
        NglGetNglInfo()->orthoMin.z = row.minZ;
        NglGetNglInfo()->orthoMax.z = row.maxZ;
        const _NgPoint3Str reference{row.x, 2, 1};
        EXPECT_EQ(hex(draw(row.depth - 0.01, false, &reference)), hex(kClear)) << "behind a surface";
        EXPECT_EQ(hex(draw(row.depth + 0.01, false, &reference)), hex(kInk));
        EXPECT_NEAR(depth, row.depth, 1e-6);
    }
    EXPECT_EQ(hex(draw(0, false, nullptr)), hex(kInk));
    glDisable(GL_DEPTH_TEST);
    EXPECT_EQ(hex(draw(0, false, nullptr)), hex(kInk));
}

TEST_F(Overlay, TranslucentPolygonsBlendAndLeaveTheirColor) {
    const _NgPoint3Str reference{0.5, 0, 0};
    for (const bool hostBlends : {false, true}) {
        (hostBlends ? glEnable : glDisable)(GL_BLEND);
        glBlendFunc(GL_DST_COLOR, GL_ONE);
        const NgColorLong drawn = draw(1, true, &reference);
        for (int shift = 0; shift < 24; shift += 8) {
            const double ink = (kInk >> shift) & 0xFF, under = (kClear >> shift) & 0xFF;
            EXPECT_NEAR((drawn >> shift) & 0xFF, (ink * 50 + under * 205) / 255, 1.0); // rounding
        }
    }
    EXPECT_EQ(depth, 1);
    EXPECT_EQ(hex(ngl_get_color_long()), "0x3228B4C8");
    EXPECT_TRUE(!glIsEnabled(GL_BLEND) && stateOf(GL_BLEND_SRC) == GL_ONE &&
                stateOf(GL_DEPTH_WRITEMASK) == 1);
}

} // namespace
