// Boxes pixel by pixel against the signed distance in C++, by the program and by fixed function.
#include <epoxy/egl.h>

#include <utility>

#include "NRenderUtl/Texture/ntexture.h"
#include "tests/Texture/roundedbox.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

using Info = N2DBoxDrawer::RenderInfo;

/// Colour of a box at a point in pixels from its lower left corner.
glm::vec4 colorOfBox(const Info& box, const glm::vec2& p) {
    const glm::vec4 fill = unpacked(box.fillColor);
    if (!box.roundedCorners && !box.border)
        return fill;
    const glm::vec2 half = glm::vec2(box.width, box.height) / 2.0f, c = p - half;
    const float border = box.border ? static_cast<float>(box.borderThickness) : 0;
    const float radius = box.roundedCorners ? box.cornerRadii[(c.x > 0 ? 0 : 2) + (c.y > 0 ? 0 : 1)] : 0;
    const glm::vec4 ink(glm::vec3(box.borderColor[0], box.borderColor[1], box.borderColor[2]) / 255.0f, 1);
    return colorAtEdge(fill, c, half - border / 2 - 1.0f,
                       {box.roundedCorners != 0, radius, box.border ? border : -1, ink});
}

class Box : public GlTest {
protected:
    Picture draw(const Info& info) {
        clear();
        N2DBoxDrawer().Render(info);
        return read();
    }
    /// Only the pixels of the box are drawn: its colour, blended.
    void expectBox(const Picture& drawn, const Info& box) {
        const glm::vec4 behind = unpacked(kClear);
        ASSERT_GT(drawn.countOtherThan(kClear), 100);
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x) {
                const glm::ivec2 p(x - box.x, y - box.y);
                const bool isInside = p.x >= 0 && p.x < box.width && p.y >= 0 && p.y < box.height;
                const glm::vec4 color = isInside ? colorOfBox(box, glm::vec2(p) + 0.5f) : glm::vec4(0);
                const glm::vec4 off = 255.0f * (unpacked(drawn.at(x, y)) - glm::mix(behind, color, color.a));
                for (int channel = 0; channel < 4; ++channel)
                    ASSERT_NEAR(off[channel], 0, 2) // blending rounds colour and factors
                        << x << ", " << y << " channel " << channel;
            }
    }
};

constexpr NgColorLong kBlue = 0xFFE06020, kFaint = 0x50E06020, kClearFill = 0x0010A0F0, kNone = 0xFFFFFFFF;

TEST_F(Box, HasTheColorOfItsDistance) {
    const std::pair<const char*, Info> rows[] = {
        {"plain", {5, 7, 48, 40, kBlue}},
        {"plain, translucent", {5, 7, 48, 40, kFaint}},
        {"white", {5, 7, 37, 23, kNone}},
        {"four radii", {5, 7, 48, 40, kBlue, 1, {16, 4, 0, 9}}},
        {"one radius", {5, 7, 37, 23, kBlue, 7, {10, 0, 0, 0}}},
        {"faint fills fade earlier", {9, 3, 40, 50, kFaint, 1, {12, 6, 20, 3}}},
        {"white, rounded", {0, 0, 64, 64, kNone, 1, {32, 32, 32, 32}}},
        {"border alone", {5, 7, 48, 40, kBlue, 0, {16, 16, 16, 16}, 1, 8, {250, 200, 30}}},
        {"border about nothing", {5, 7, 48, 40, kClearFill, 0, {}, 1, 3, {250, 200, 30}}},
        {"rounded border", {5, 7, 47, 41, kFaint, 1, {16, 4, 0, 9}, 2, 5, {250, 20, 130}}},
        {"thin border", {5, 7, 48, 40, kNone, 1, {8, 8, 8, 8}, 1, 1, {250, 20, 130}}},
        {"border without width", {5, 7, 48, 40, kFaint, 1, {8, 8, 8, 8}, 1, 0, {250, 20, 130}}},
        {"partly outside the window", {-9, 40, 48, 40, kBlue, 1, {16, 4, 0, 9}, 1, 4, {250, 20, 130}}}};
    for (const auto& [name, box] : rows) {
        SCOPED_TRACE(name);
        expectBox(draw(box), box);
    }
    const Picture bordered = draw(rows[8].second);
    EXPECT_EQ(hex(bordered.at(5 + 24, 7 + 2)), "0xFF1EC8FA") << "opaque whatever the fill";
    EXPECT_EQ(draw({5, 7, 0, 40, kBlue}).countOtherThan(kClear), 0);
    EXPECT_EQ(draw({5, 7, 48, -1, kBlue, 1}).countOtherThan(kClear), 0);
}

// Square corners lie within the softness of the edge, so that the program too leaves them as they are.
TEST_F(Box, IsTheSameByBothRoutes) {
    const double plane[] = {1, 0, 0, -20}; // in pixels of the box
    glClipPlane(GL_CLIP_PLANE0, plane);
    for (const NgColorLong fill : {kBlue, NgColorLong(0xC0E06020), kNone}) {
        (fill == kNone ? glEnable : glDisable)(GL_CLIP_PLANE0);
        const Info plain{5, 7, 37, 40, fill}, rounded{5, 7, 37, 40, fill, 1};
        const Picture drawn = draw(rounded);
        EXPECT_EQ(drawn.countOtherThan(kClear), fill == kNone ? 17 * 40 : 37 * 40);
        EXPECT_TRUE(samePicture(drawn, draw(plain)));
    }
}

TEST_F(Box, IsPlainWithoutTheProgram) {
    if (ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_shader -GL_ARB_fragment_shader"}}))
        return;
    const Info plain{5, 7, 48, 40, kFaint}, rounded{5, 7, 48, 40, kFaint, 1, {8, 8, 8, 8}, 1, 4};
    EXPECT_FALSE(N2DBoxDrawer().DrawWithVAMode(rounded));
    expectBox(draw(rounded), plain);
}

TEST_F(Box, ProgramIsBuiltOnceAndTriedAgain) {
    static int built;
    const Info plain{5, 7, 48, 40, kFaint}, rounded{5, 7, 48, 40, kFaint, 1, {8, 8, 8, 8}};
    epoxy_glCreateProgram = [] { return GLuint(0 * ++built); };
    expectBox(draw(rounded), plain);
    expectBox(draw(rounded), plain);
    EXPECT_EQ(std::exchange(built, 0), 2);
    epoxy_glCreateProgram = [] {
        ++built;
        return reinterpret_cast<PFNGLCREATEPROGRAMPROC>(eglGetProcAddress("glCreateProgram"))();
    };
    expectBox(draw(rounded), rounded);
    expectBox(draw(rounded), rounded);
    EXPECT_EQ(built, 1);
}

} // namespace
