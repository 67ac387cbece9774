// Shapes in window pixels: where they are drawn, at which depth, how they blend and what they leave behind.
#include <cmath>

#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

constexpr NgColorLong kInk = 0xFF28B4C8;
const std::vector<_NgPoint2Str> kChain{{10.5, 20.5}, {30.5, 20.5}, {30.5, 25.5}, {10.5, 25.5}};

/// The chain filled covers this pixel.
constexpr int kX = 15, kY = 22;

int draw(bool filled, bool translucent = false, const _NgPoint3Str* at = nullptr, int count = 4) {
    return ngl_draw_poly_on_screen(count, kChain.data(), filled, translucent, at);
}

float depthDrawn() {
    float depth = -1;
    glReadPixels(kX, kY, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    return depth;
}

class Overlay : public GlTest {
protected:
    /// A view along model x in the record, with another one in GL.
    void SetUp() override {
        GlTest::SetUp();
        glMatrixMode(GL_PROJECTION);
        glOrtho(-4, 4, -4, 4, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glRotated(90, 0, 1, 0);
        NglUpdateNglInfo();
        glTranslated(1, 2, 3);
        ngl_set_color_long(kInk);
        glEnable(GL_DEPTH_TEST);
    }
};

TEST_F(Overlay, ShapesHaveTheirPixels) {
    draw(true);
    EXPECT_EQ(read().countOtherThan(kClear), 20 * 5);
    EXPECT_EQ(hex(read().at(kX, kY)), hex(kInk));
    const auto chain = fedBackLines([] { draw(false); });
    ASSERT_EQ(chain.size(), 6u) << "three segments: the chain is open";
    for (std::size_t i = 0; i < 6; ++i)
        expectNear(chain[i], {kChain[(i + 1) / 2].x, kChain[(i + 1) / 2].y, 0}, 1e-5);
    const auto line = fedBackLines([] { ngl_draw_line_on_screen(5, 7, 50, 23, nullptr); });
    ASSERT_EQ(line.size(), 2u);
    expectNear(line[0], {5, 7, 0}, 1e-5);
    expectNear(line[1], {50, 23, 0}, 1e-5);
}

TEST_F(Overlay, CirclesHaveTheirRadius) {
    const _NgPoint2Str center{30.3, 33.6};
    ngl_draw_circle_on_screen(&center, 20.25f, true, false, nullptr);
    EXPECT_NEAR(read().countOtherThan(kClear), M_PI * 20.25 * 20.25, 8);
    for (const float radius : {20.25f, -20.25f}) {
        const auto ends =
            fedBackLines([&] { ngl_draw_circle_on_screen(&center, radius, false, false, nullptr); });
        ASSERT_EQ(ends.size(), 720u);
        for (std::size_t i = 0; i < 720; ++i) {
            const double angle = (i + 1) / 2 * M_PI / 180;
            const double x = center.x + 20.25 * std::cos(angle), y = center.y + 20.25 * std::sin(angle);
            expectNear(ends[i], {x, y, 0}, 1e-4);
        }
    }
}

TEST_F(Overlay, LieAtTheDepthOfTheReference) {
    const struct {
        const char* name;
        double x;          ///< of the reference; its window depth w is (1 + x) / 2
        double minZ, maxZ; ///< of the record's box
        double depth;      ///< drawn: 1 - 2 (minZ - w) / (minZ - maxZ)
    } rows[] = {{"before the surface", -0.5, 1, -1, 0.25},
                {"behind it", 0.5, 1, -1, 0.75},
                {"a deeper box", 0.5, 2, -2, 0.375},
                {"a box off the middle", 0.5, 1.5, -0.5, 0.25}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NglGetNglInfo()->orthoMin.z = row.minZ;
        NglGetNglInfo()->orthoMax.z = row.maxZ;
        const _NgPoint3Str reference{row.x, 2, 1};
        clear();
        const GlSnapshot before = GlSnapshot::take();
        draw(true, false, &reference);
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_NEAR(depthDrawn(), row.depth, 1e-6);
        glClearDepth(0.5); // a surface
        clear();
        draw(true, false, &reference);
        EXPECT_EQ(read().at(kX, kY) == kInk, row.depth < 0.5);
        glClearDepth(1);
    }
}

TEST_F(Overlay, LieOnTopWithoutReference) {
    glClearDepth(0); // nothing passes the depth test
    for (const bool tested : {true, false}) {
        (tested ? glEnable : glDisable)(GL_DEPTH_TEST);
        clear();
        EXPECT_EQ(draw(true, false, nullptr, 1), 0);
        EXPECT_EQ(read().countOtherThan(kClear), 0);
        const GlSnapshot before = GlSnapshot::take();
        draw(true);
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_EQ(hex(read().at(kX, kY)), hex(kInk));
    }
}

TEST_F(Overlay, TranslucentPolygonsBlendAndLeaveTheirColor) {
    draw(false, true);
    EXPECT_EQ(hex(ngl_get_color_long()), hex(kInk)) << "lines are not translucent";
    clear();
    glEnable(GL_BLEND);
    glBlendFunc(GL_DST_COLOR, GL_ONE);
    const _NgPoint3Str reference{0.5, 0, 0};
    draw(true, true, &reference);
    for (int shift = 0; shift < 24; shift += 8) {
        const double ink = (kInk >> shift) & 0xFF, under = (kClear >> shift) & 0xFF;
        EXPECT_NEAR((read().at(kX, kY) >> shift) & 0xFF, (ink * 50 + under * 205) / 255, 1.0); // rounding
    }
    EXPECT_EQ(depthDrawn(), 1);
    EXPECT_EQ(hex(ngl_get_color_long()), "0x3228B4C8");
    const GlSnapshot after = GlSnapshot::take();
    glDisable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glDepthMask(GL_TRUE);
    ngl_set_color_long(0x3228B4C8);
    EXPECT_TRUE(after.equals(GlSnapshot::take()));
}

} // namespace
