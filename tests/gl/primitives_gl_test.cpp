// Immediate primitives by their pixels: every form against the pixels that its points stand for.
#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

using Draw = std::function<void()>;
using Outline = std::vector<_NgPoint2Str>;

constexpr std::uint32_t kInk = 0xFF40C0F0;

/// The same points in every kind of array. In space they are sheared along z, which the view undoes, so that
/// a lost z shows.
struct Points {
    explicit Points(Outline at) : flat(std::move(at)), solid(flat.size()), solidF(flat.size()) {
        for (std::size_t i = 0; i < flat.size(); ++i) {
            z.push_back(1.0 + i % 3);
            x.push_back(flat[i].x - z[i]);
            y.push_back(flat[i].y);
            solid[i] = {x[i], y[i], z[i]};
            solidF[i] = {static_cast<float>(x[i]), static_cast<float>(y[i]), static_cast<float>(z[i])};
            flatP.push_back(&flat[i]);
            solidP.push_back(&solid[i]);
        }
    }
    Outline flat;
    std::vector<_NgPoint3Str> solid;
    std::vector<_NgFPoint3Str> solidF;
    std::vector<const _NgPoint2Str*> flatP;
    std::vector<const _NgPoint3Str*> solidP;
    std::vector<double> x, y, z;
};

const Points corners({{10.5, 8.5}, {40.5, 8.5}, {55.5, 8.5}, {55.5, 23.5}}); // right, right, up
const _NgPoint2Str* const f = corners.flat.data();
const _NgPoint3Str* const s = corners.solid.data();
const _NgFPoint3Str* const sF = corners.solidF.data();

/// Lines between the corners, step apart, each without its last pixel.
bool isLine(double x, double y, std::size_t step) {
    for (std::size_t i = 0; i < 3; i += step)
        if ((y == f[i].y && x >= f[i].x && x < f[i + 1].x) || (x == f[i].x && y >= f[i].y && y < f[i + 1].y))
            return true;
    return false;
}

/// Parity of the edges that a ray from (x, y) to the right crosses.
bool isInside(double x, double y, const Outline& outline) {
    bool inside = false;
    for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const _NgPoint2Str &a = outline[i], &b = outline[j];
        inside ^= (a.y > y) != (b.y > y) && x < a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y);
    }
    return inside;
}

/// One unit a pixel, and x moved by z.
class Primitives : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        loadOrtho(0, kSize, 0, kSize, -8, 8);
        const double shear[16] = {1, 0, 0, 0, 0, 1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1};
        glMultMatrixd(shear);
        ngl_set_color_long(kInk);
    }
    /// The ink where a test on pixel centres holds.
    template <class Test>
    static Picture painted(const Test& test, std::uint32_t ink = kInk, std::uint32_t ground = kClear) {
        Picture picture(kSize, kSize);
        for (int i = 0; i < kSize * kSize; ++i)
            picture.at(i % kSize, i / kSize) = test(i % kSize + 0.5, i / kSize + 0.5) ? ink : ground;
        return picture;
    }
};

TEST_F(Primitives, EveryFormDrawsItsPixels) {
    const Points quad({{9.25, 4.75}, {51.75, 10.25}, {58.25, 47.75}, {21.75, 59.25}});
    const auto pointsOf = [](double width) {
        return painted([=](double x, double y) {
            return std::ranges::any_of(corners.flat, [=](const _NgPoint2Str& p) {
                return std::max(std::abs(x - p.x), std::abs(y - p.y)) < width / 2;
            });
        });
    };
    const Picture dots = pointsOf(1), squares = pointsOf(3);
    const Picture lines = painted([](double x, double y) { return isLine(x, y, 2); });
    const Picture strip = painted([](double x, double y) { return isLine(x, y, 1); });
    const Picture polygon = painted([&](double x, double y) { return isInside(x, y, quad.flat); });
    const auto each = [](auto draw) { return [=] { draw(0), draw(1), draw(2), draw(3); }; };
    const auto pairs = [](auto draw) { return [=] { draw(0, 1), draw(2, 3); }; };
    const std::tuple<const char*, const Picture&, Draw> rows[] = {
        {"point_2d", dots, each([](int i) { ngl_point_2d(f[i].x, f[i].y); })},
        {"point_2d_s", dots, each([](int i) { ngl_point_2d_s(f + i); })},
        {"point_3d", dots, each([](int i) { ngl_point_3d(s[i].x, s[i].y, s[i].z); })},
        {"point_3d_s", dots, each([](int i) { ngl_point_3d_s(s + i); })},
        {"3dGivenSize", squares, each([](int i) { ngl_point_3dGivenSize(s[i].x, s[i].y, s[i].z, 3); })},
        {"3d_given_size", squares, [] { ngl_point_3d_given_size(4, s, 3); }},
        {"3f_given_size", squares, [] { ngl_point_3f_given_size(4, sF, 3); }},
        {"line_2d", lines, pairs([](int i, int j) { ngl_line_2d(f[i].x, f[i].y, f[j].x, f[j].y); })},
        {"line_2d_s", lines, pairs([](int i, int j) { ngl_line_2d_s(f + i, f + j); })},
        {"line_3d", lines,
         pairs([](int i, int j) { ngl_line_3d(s[i].x, s[i].y, s[i].z, s[j].x, s[j].y, s[j].z); })},
        {"line_3d_s", lines, pairs([](int i, int j) { ngl_line_3d_s(s + i, s + j); })},
        {"line_3f_s", lines, pairs([](int i, int j) { ngl_line_3f_s(sF + i, sF + j); })},
        {"lines_2d_s", lines, [] { ngl_lines_2d_s(f, 4); }},
        {"lines_2d_p", lines, [] { ngl_lines_2d_p(corners.flatP.data(), 4); }},
        {"lines_3d_s", lines, [] { ngl_lines_3d_s(s, 4); }},
        {"lines_3d_p", lines, [] { ngl_lines_3d_p(corners.solidP.data(), 4); }},
        {"the last of three with the one behind", lines, [] { ngl_lines_2d_s(f, 3); }},
        {"polyline_2d_s", strip, [] { ngl_polyline_2d_s(f, 4); }},
        {"polyline_2d_p", strip, [] { ngl_polyline_2d_p(corners.flatP.data(), 4); }},
        {"polyline_3d_s", strip, [] { ngl_polyline_3d_s(s, 4); }},
        {"polyline_3d_p", strip, [] { ngl_polyline_3d_p(corners.solidP.data(), 4); }},
        {"polygon_2d_s", polygon, [&] { ngl_polygon_2d_s(quad.flat.data(), 4); }},
        {"polygon_2d_p", polygon, [&] { ngl_polygon_2d_p(quad.flatP.data(), 4); }},
        {"polygon_3d_s", polygon, [&] { ngl_polygon_3d_s(quad.solid.data(), 4); }},
        {"polygon_3d_p", polygon, [&] { ngl_polygon_3d_p(quad.solidP.data(), 4); }}};
    for (const auto& [name, expected, draw] : rows) {
        SCOPED_TRACE(name);
        clear();
        draw();
        EXPECT_TRUE(samePicture(read(), expected));
        EXPECT_EQ(stateOf(GL_POINT_SIZE), &expected == &squares ? 3 : 1);
        glPointSize(1);
    }
}

TEST_F(Primitives, NothingWithoutPoints) {
    const NgColorLong colors[4] = {};
    const float values[4] = {};
    for (const int n : {0, 4}) { // none of an array, then four of no array
        const auto array = [=](const auto* given) { return n == 0 ? given : nullptr; };
        ngl_point_3d_given_size(n, array(s), 9);
        ngl_point_3f_given_size(-n, sF, 9);
        ngl_polyline_3d_p(array(corners.solidP.data()), n);
        ngl_polygon_3d_s_with_vertex_array(s, array(s), n);
        ngl_concave_polygon_3d(corners.x.data(), corners.y.data(), array(corners.z.data()), n);
        ngl_concave_polygon_3d_s(array(s), n);
        ngl_shade_polygon_3d(s, array(colors), n);
        ngl_curve_contour_draw(corners.x.data(), array(corners.y.data()), corners.z.data(), values, n);
        ngl_curve_contour_draw_s(s, array(values), n);
    }
    ngl_line_2d_s(f, nullptr);
    EXPECT_EQ(read().countOtherThan(kClear), 0);
}

TEST_F(Primitives, NormalsColorsAndValuesOfTheVerticesAreMixed) {
    // Each row fades from this colour on the left to zero on the right: by normals that turn away from the
    // light, by colours, or by a texture, which light would tint.
    const std::uint32_t left = 0xC08040FF, right = 0, texels[4] = {left, right, 1, 2};
    const float diffuse[4] = {1, 64 / 255.0f, 128 / 255.0f, 1}, black[4] = {0, 0, 0, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse);
    glEnable(GL_LIGHT0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    ngl_set_color_long(0xFFFFFFFF);
    const Points square({{0, 0}, {64, 0}, {64, 64}, {0, 64}}), line({{0, 20.5}, {64, 20.5}});
    const _NgPoint3Str normals[4] = {{0, 0, 1}, {1, 0, 0}, {1, 0, 0}, {0, 0, 1}};
    const NgColorLong colors[4] = {left, right, right, left};
    const float values[2] = {0.25f, 0.75f}; // the middles of the texels
    const auto xs = line.x.data(), ys = line.y.data(), zs = line.z.data();
    const std::tuple<const char*, bool, bool, Draw> rows[] = {
        {"normals", true, false,
         [&] { ngl_polygon_3d_s_with_vertex_array(square.solid.data(), normals, 4); }},
        {"polygon", false, false, [&] { ngl_shade_polygon_3d(square.solid.data(), colors, 4); }},
        {"polyline", false, false, [&] { ngl_shade_polyline_3d(line.solid.data(), colors, 2); }},
        {"curve", true, true, [&] { ngl_curve_contour_draw(xs, ys, zs, values, 2); }},
        {"curve, records", true, true, [&] { ngl_curve_contour_draw_s(line.solid.data(), values, 2); }},
        {"curve, pointers", true, true, [&] { ngl_curve_contour_draw_p(line.solidP.data(), values, 2); }},
        {"curve, floats", true, true, [&] { ngl_curve_contour_draw_f(line.solidF.data(), values, 2); }}};
    for (const auto& [name, isLit, isTextured, draw] : rows) {
        SCOPED_TRACE(name);
        clear();
        isLit ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
        isTextured ? glEnable(GL_TEXTURE_2D) : glDisable(GL_TEXTURE_2D);
        glShadeModel(isLit ? GL_SMOOTH : GL_FLAT);
        glNormal3f(0, 0, 0.5f);
        glTexCoord2f(0.5f, 0.25f);
        const GlSnapshot before = GlSnapshot::take();
        draw();
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        const Picture picture = read();
        for (const int x : {0, 20, 47, 63})
            for (int shift = 0; shift < (isLit && !isTextured ? 24 : 32); shift += 8) // lit alpha is even
                EXPECT_NEAR(picture.at(x, 20) >> shift & 0xFF, (left >> shift & 0xFF) * (1 - (x + 0.5) / 64),
                            1)
                    << "column " << x;
    }
}

// --- concave polygons --------------------------------------------------------------------------------------

const std::pair<const char*, Points> outlines[] = {
    {"notch",
     Points({{6.25, 5.75}, {57.75, 5.75}, {57.75, 58.25}, {40.25, 58.25}, {32.25, 20.75}, {9, 58.25}})},
    {"square hole, joined by a seam",
     Points({{4, 4}, {60, 4}, {60, 60}, {4, 60}, {4, 4}, {20, 18}, {20, 44}, {47, 44}, {47, 18}, {20, 18}})},
    {"star with its middle enclosed twice",
     Points({{32.25, 61.75}, {13.75, 5.25}, {61.25, 40.25}, {2.75, 40.25}, {50.75, 5.25}})}};

TEST_F(Primitives, ConcavePolygonsAreFilledByParity) {
    // State of the host that would spoil the filling, or that the filling changes.
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glColorMask(GL_TRUE, GL_TRUE, GL_FALSE, GL_TRUE);
    glStencilFuncSeparate(GL_FRONT, GL_NEVER, 5, 0xF);
    glStencilOpSeparate(GL_BACK, GL_INCR, GL_DECR, GL_ZERO);
    const std::uint32_t ink = (kInk & ~0xFF0000u) | (kClear & 0xFF0000);
    for (const bool records : {false, true})
        for (const auto& [name, p] : outlines) {
            SCOPED_TRACE(::testing::Message() << name << ", records " << records);
            glStencilMask(~0u);
            clear();
            glClearStencil(1);
            glClear(GL_STENCIL_BUFFER_BIT);
            glStencilMask(0x10);
            const GlSnapshot before = GlSnapshot::take();
            records ? glDisable(GL_STENCIL_TEST) : glEnable(GL_STENCIL_TEST);
            records ? ngl_concave_polygon_3d_s(p.solid.data(), p.solid.size())
                    : ngl_concave_polygon_3d(p.x.data(), p.y.data(), p.z.data(), p.x.size());
            EXPECT_TRUE(before.equals(GlSnapshot::take())) << "without the stencil test";
            const auto inside = [&o = p.flat](double x, double y) { return isInside(x, y, o); };
            EXPECT_TRUE(samePicture(read(), painted(inside, ink)));
            std::vector<std::uint8_t> counts(kSize * kSize);
            glReadPixels(0, 0, kSize, kSize, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, counts.data());
            const auto isOdd = [&](double x, double y) { return counts[int(y) * kSize + int(x)] & 1; };
            EXPECT_TRUE(samePicture(painted(isOdd, ink), read())) << "filling changed the stencil";
            // What lies behind is seen in the notches: nothing was left in the depth buffer there.
            const _NgPoint3Str behind[4] = {{7, 0, -7}, {71, 0, -7}, {71, 64, -7}, {7, 64, -7}};
            ngl_set_color_long(0xFF0000FF);
            ngl_polygon_3d_s(behind, 4);
            ngl_set_color_long(kInk);
            EXPECT_TRUE(samePicture(read(), painted(inside, ink, 0xFF0000FF | (kClear & 0xFF0000))));
        }
}

} // namespace
