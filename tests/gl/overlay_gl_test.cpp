// Shapes in window pixels: where they are drawn, at which depth, how they blend and what they leave behind.
#include <cmath>
#include <vector>

#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

constexpr NgColorLong kInk = 0xFF28B4C8;
using Chain = std::vector<_NgPoint2Str>;

class Overlay : public GlTest {
protected:
    /// A turned view in the record, with another one in GL.
    void SetUp() override {
        GlTest::SetUp();
        glMatrixMode(GL_PROJECTION);
        glOrtho(-4, 4, -4, 4, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glRotated(90, 0, 1, 0); // depth along model x: eye z is -x
        NglUpdateNglInfo();
        glTranslated(1, 2, 3);
        ngl_set_color_long(kInk);
        glEnable(GL_DEPTH_TEST);
    }

    int draw(const Chain& points, bool filled, bool translucent = false, const _NgPoint3Str* at = nullptr) {
        return ngl_draw_poly_on_screen(static_cast<int>(points.size()), points.data(), filled, translucent,
                                       at);
    }
    float depthAt(int x, int y) {
        float depth = -1;
        glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        return depth;
    }

    _NglInfoStr& info = *NglGetNglInfo();
    const Chain kRectangle{{10, 20}, {30, 20}, {30, 25}, {10, 25}};
};

TEST_F(Overlay, PolygonsCoverTheirPixels) {
    const GlSnapshot before = GlSnapshot::take();
    EXPECT_EQ(draw(kRectangle, true), 0);
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    const Picture picture = read();
    EXPECT_EQ(picture.countOtherThan(kClear), 20 * 5);
    for (const auto& [x, y] : {std::pair{10, 20}, {29, 20}, {29, 24}, {10, 24}})
        EXPECT_EQ(hex(picture.at(x, y)), hex(kInk)) << x << ", " << y;
}

TEST_F(Overlay, ChainsAreOpen) {
    draw({{10.5, 20.5}, {30.5, 20.5}, {30.5, 40.5}}, false, true); // translucency is for filled shapes
    const Picture picture = read();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(hex(picture.at(10 + i, 20)), hex(kInk)) << i;
        EXPECT_EQ(hex(picture.at(30, 20 + i)), hex(kInk)) << i;
    }
    EXPECT_LE(picture.countOtherThan(kClear), 41) << "a line back to the start";

    clear();
    ngl_draw_line_on_screen(5, 7, 50, 23, nullptr);
    const Picture line = read();
    EXPECT_GE(line.countOtherThan(kClear), 45);
    clear();
    draw({{5, 7}, {50, 23}}, false);
    EXPECT_TRUE(samePicture(read(), line));
}

TEST_F(Overlay, CirclesHaveTheirRadius) {
    const _NgPoint2Str center{30.3, 33.6};
    ngl_draw_circle_on_screen(&center, 20.25f, true, false, nullptr);
    const Picture picture = read();
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            const double outside = std::hypot(x + 0.5 - center.x, y + 0.5 - center.y) - 20.25;
            const bool undecided = std::abs(outside) < 0.002; // a degree's chord lies 0.0008 inside
            EXPECT_TRUE(undecided || (picture.at(x, y) != kClear) == (outside < 0)) << x << ", " << y;
        }
    for (const float radius : {20.25f, -20.25f}) {
        const std::vector<_NgFPoint3Str> ends =
            fedBackLines([&] { ngl_draw_circle_on_screen(&center, radius, false, false, nullptr); });
        ASSERT_EQ(ends.size(), 720u);
        for (std::size_t i = 0; i < 720; ++i) {
            const double angle = (i + 1) / 2 * 3.14159265358979 / 180;
            EXPECT_NEAR(ends[i].x, center.x + 20.25 * std::cos(angle), 1e-4) << i;
            EXPECT_NEAR(ends[i].y, center.y + 20.25 * std::sin(angle), 1e-4) << i;
        }
    }
}

TEST_F(Overlay, LieAtTheDepthOfTheReference) {
    const struct {
        const char* name;
        double x;          ///< of the reference; its window depth is (1 + x) / 2
        double minZ, maxZ; ///< of the record's box
        double depth;      ///< drawn: 1 - 2 (minZ - w) / (minZ - maxZ)
    } rows[] = {{"before the surface", -0.5, 1, -1, 0.25},
                {"behind it", 0.5, 1, -1, 0.75},
                {"a deeper box", 0.5, 2, -2, 0.375},
                {"a box off the middle", 0.5, 1.5, -0.5, 0.25}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        info.orthoMin.z = row.minZ;
        info.orthoMax.z = row.maxZ;
        clear();
        glPushMatrix(), glLoadIdentity();
        glRectf(-4, -4, 0, 4); // at depth 0.5, over the left half
        glPopMatrix();
        const _NgPoint3Str reference{row.x, 2, 1};
        ngl_set_color_long(0xFF0000FF);
        const GlSnapshot before = GlSnapshot::take();
        draw({{24, 10}, {40, 10}, {40, 20}, {24, 20}}, true, false, &reference);
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_NEAR(depthAt(35, 15), row.depth, 1e-6);
        EXPECT_EQ(hex(read().at(35, 15)), "0xFF0000FF");
        EXPECT_EQ(read().at(28, 15) == 0xFF0000FF, row.depth < 0.5);
        EXPECT_NEAR(depthAt(28, 15), std::min(row.depth, 0.5), 1e-6);
        ngl_set_color_long(kInk);
    }
}

TEST_F(Overlay, LieOnTopWithoutReference) {
    glClearDepth(0); // nothing can pass
    clear();
    for (const bool tested : {true, false}) {
        (tested ? glEnable : glDisable)(GL_DEPTH_TEST);
        draw(kRectangle, true);
        EXPECT_EQ(hex(read().at(15, 22)), hex(kInk));
        EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), tested);
    }
}

TEST_F(Overlay, TranslucentPolygonsBlendAndLeaveTheirColor) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_DST_COLOR, GL_ONE);
    const _NgPoint3Str reference{0.5, 0, 0};
    draw(kRectangle, true, true, &reference);
    const NgColorLong drawn = read().at(15, 22);
    for (int shift = 0; shift < 24; shift += 8) {
        const double ink = (kInk >> shift) & 0xFF, under = (kClear >> shift) & 0xFF;
        EXPECT_NEAR((drawn >> shift) & 0xFF, (ink * 50 + under * 205) / 255, 1.0) << shift; // 8-bit rounding
    }
    EXPECT_EQ(depthAt(15, 22), 1);
    EXPECT_EQ(hex(ngl_get_color_long()), "0x3228B4C8");
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    const GlSnapshot defaults = GlSnapshot::take();
    glBlendFunc(GL_ONE, GL_ZERO);
    glDepthMask(GL_TRUE);
    EXPECT_TRUE(defaults.equals(GlSnapshot::take()));
    GLfloat color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    EXPECT_FLOAT_EQ(color[3], 50 / 255.0f);
}

TEST_F(Overlay, TooFewPointsDrawNothing) {
    for (const bool filled : {true, false}) {
        EXPECT_EQ(draw({{32.5, 32.5}}, filled, true), 0);
        EXPECT_EQ(ngl_draw_poly_on_screen(-1, kRectangle.data(), filled, true, nullptr), 0);
        EXPECT_EQ(ngl_draw_poly_on_screen(4, nullptr, filled, true, nullptr), 0);
    }
    EXPECT_EQ(read().countOtherThan(kClear), 0);
}

} // namespace
