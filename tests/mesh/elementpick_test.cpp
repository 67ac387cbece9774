// Picking on element surfaces: known hits in rows, equality with a test of every face, and no gaps.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/mesh/elementpick.h"
#include "tests/mesh/testfaces.h"

using namespace nrutest;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

using ngl::NglElementPick;
using Corners = std::vector<std::uint32_t>;

ElementSurface surfaceOf(const TestFaces& faces) {
    return makeElementSurface(faces.input()).value();
}

bool all(std::uint32_t) {
    return true;
}

// --- meshes ------------------------------------------------------------------------------------------------

constexpr std::uint32_t kSide = 40;

/// A wavy sheet of quads over the square 0..kSide, narrowed in y.
TestFaces sheet(double scaleY) {
    TestFaces faces;
    faces.addSheet(kSide, true, [=](std::uint32_t x, std::uint32_t y) {
        return _NgPoint3Str{double(x), y * scaleY, 2 * std::sin(x * 0.5) * std::cos(y * 0.3)};
    });
    return faces;
}

/// The sheet in no order, a face that is much larger than it and one that is far away.
TestFaces outliers() {
    TestFaces faces = sheet(1);
    std::shuffle(faces.quads.begin(), faces.quads.end(), std::mt19937(1));
    const std::uint32_t v = faces.nodeCount();
    faces.nodes.insert(
        faces.nodes.end(),
        {{-1e5, -1e5, -3}, {1e5, -1e5, -3}, {0, 2e5, -3}, {1e6, 1e6, 1e6}, {1e6, 1e6 + 1, 1e6}});
    faces.triangles = {{v, v + 1, v + 2}, {v + 2, v + 3, v + 4}};
    return faces;
}

/// Faces of any shape through each other, some without area, some twice.
TestFaces tangle() {
    TestFaces faces;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0, kSide), offset(-3, 3);
    for (std::uint32_t v = 0; v < 1200; v += 4) {
        const double x = place(random), y = place(random), z = offset(random);
        for (int corner = 0; corner < 4; ++corner)
            faces.nodes.push_back({x + offset(random), y + offset(random), z + offset(random)});
        faces.quads.push_back({v, v + 1, v % 20 == 0 ? v : v + 2, v % 28 == 0 ? v : v + 3});
        faces.triangles.insert(faces.triangles.end(), 1 + v % 3, {v, v + 3, v % 8 == 0 ? v + 3 : v + 1});
    }
    return faces;
}

// --- the other route ---------------------------------------------------------------------------------------

/// What a test of every face finds; unclear where a border or another face is too near to tell.
struct Found {
    std::uint32_t face = 0;
    double distance = kInf, leastUnclear = kInf;
    bool isClear() const { return leastUnclear == kInf || leastUnclear > distance * (1 + 1e-8); }
};

/// Moeller and Trumbore (1997) on a triangle of a face, seen from the ray's start.
void testTriangle(const std::array<_NgPoint3Str, 3>& p, const _NgPoint3Str& along, std::uint32_t face,
                  Found& found) {
    constexpr double kUnclear = 1e-8;
    const _NgPoint3Str ab = MathDifference(p[1], p[0]), ac = MathDifference(p[2], p[0]);
    const _NgPoint3Str n = MathCross(along, ac), q = MathCross(ab, p[0]);
    const double size = MathDot(ab, n), u = -MathDot(p[0], n) / size, v = MathDot(along, q) / size;
    const double distance = MathDot(ac, q) / size * MathLength(along), inside = std::min({u, v, 1 - u - v});
    if (size == 0 || distance < -kUnclear || inside < -kUnclear)
        return;
    const double apart = std::abs(distance - found.distance);
    if (inside < kUnclear || distance < kUnclear || (apart != 0 && apart < kUnclear * distance))
        found.leastUnclear = std::min(found.leastUnclear, distance);
    if (distance < found.distance)
        found = {face, distance, found.leastUnclear};
}

template <class Shown>
Found testEveryFace(const ElementSurface& surface, const ElementRay& ray, const Shown& shown) {
    Found found;
    for (std::uint32_t face = 0; face < surface.faceCount(); ++face) {
        std::vector<_NgPoint3Str> p;
        for (const std::uint32_t vertex : surface.face(face)) {
            const auto& [x, y, z] = surface.positions[vertex];
            p.push_back(MathDifference({x, y, z}, ray.start));
        }
        for (std::size_t i = 2; i < p.size() && shown(surface.elementOf(face)); ++i)
            testTriangle({p[0], p[i - 1], p[i]}, ray.direction, face, found);
    }
    return found;
}

/// A ray through somewhere over 0..kSide, from near or far.
ElementRay randomRay(const ElementSurface& surface, std::mt19937& random, double scaleY) {
    std::uniform_real_distribution<double> place(-2, kSide + 2), offset(-1, 1), exponent(0, 3);
    const _NgPoint3Str through = {place(random), place(random) * scaleY, offset(random)};
    const _NgPoint3Str along = {offset(random), offset(random) * scaleY, offset(random)};
    const _NgPoint3Str start = MathAdd(through, MathScaled(along, -std::pow(10.0, exponent(random))));
    return elementRay(surface, start, MathAdd(start, along));
}

} // namespace

TEST(ElementPick, FindsElementEdgeAndNode) {
    // A roof of two quads with its ridge at x = 2, a triangle twice beside it, and below a quad of three
    // corners; all far from zero.
    constexpr double kFar = 1e7;
    TestFaces faces;
    const double places[][3] = {{0, 0, 0}, {2, 0, 1}, {2, 4, 1},  {0, 4, 0},  {4, 0, 0}, {4, 4, 0},
                                {6, 0, 0}, {6, 4, 0}, {0, 0, -9}, {8, 0, -9}, {8, 4, -9}};
    for (const auto& [x, y, z] : places)
        faces.nodes.push_back({kFar + x, kFar + y, kFar + z});
    faces.triangles = {{4, 6, 7}, {6, 7, 4}};
    faces.quads = {{0, 1, 2, 3}, {1, 4, 5, 2}, {8, 8, 9, 10}};
    const ElementSurface surface = surfaceOf(faces);
    ASSERT_FALSE(surface.copiedNodes.empty());
    ElementPicker picker;
    const auto below = [](std::uint32_t element) { return element == 4; };
    // Rays along -z from z = 3 at x and y; then the face, its edge and node, the height, and the two
    // distances.
    const std::tuple<const char*, double, double, bool (*)(std::uint32_t), std::uint32_t, Corners,
                     std::uint32_t, double, double, double>
        rows[] = {
            {"second half of a quad", 0.5, 3, all, 2, {3, 0}, 3, 0.25, std::sqrt(0.3125), std::sqrt(1.3125)},
            {"an edge of two quads", 2, 1, all, 2, {1, 2}, 1, 1, 0, 1},
            {"a node of two quads", 2, 4, all, 2, {1, 2}, 2, 1, 0, 0},
            {"two faces at one distance", 5.5, 1, all, 0, {6, 7}, 6, 0, 0.5, std::sqrt(1.25)},
            {"below what is hidden", 3, 0.5, below, 4, {8, 9}, 8, -9, 0.5, std::sqrt(9.25)},
            {"an edge without length", 0, 0, below, 4, {8, 9}, 8, -9, 0, 0},
        };
    for (const auto& [name, x, y, shown, face, edge, node, z, edgeDistance, nodeDistance] : rows) {
        SCOPED_TRACE(name);
        NglElementPick picked{};
        const _NgPoint3Str start = {kFar + x, kFar + y, kFar + 3}, end = {kFar + x, kFar + y, kFar + 2.5};
        ASSERT_TRUE(picker.pick(surface, elementRay(surface, start, end), shown, picked));
        EXPECT_EQ(picked.face, face);
        EXPECT_EQ(picked.element, face);
        EXPECT_EQ((Corners{picked.edge[0], picked.edge[1]}), edge);
        EXPECT_EQ(picked.node, node);
        EXPECT_NEAR(picked.edgeDistance, edgeDistance, 1e-12);
        EXPECT_NEAR(picked.nodeDistance, nodeDistance, 1e-12);
        EXPECT_NEAR(picked.distance, 3 - z, 1e-12);
        EXPECT_LT(MathDistance(picked.point, {kFar + x, kFar + y, kFar + z}), 1e-8);
    }
}

TEST(ElementPick, TakesRaysThatHaveADirection) {
    TestFaces faces;
    faces.nodes = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    faces.triangles = {{0, 1, 2}};
    const std::tuple<const char*, _NgPoint3Str, _NgPoint3Str, bool> rows[] = {
        {"from behind the face", {0.2, 0.2, -1e-300}, {0.2, 0.2, 7}, true},
        {"from the face", {0.2, 0.2, 0}, {0.2, 0.2, 1}, true},
        {"along the face", {-1, 0.2, 0}, {1, 0.2, 0}, false},
        {"as short as can be", {0.2, 0.2, 0}, {0.2, 0.2, 5e-324}, true},
        {"no length", {0.2, 0.2, 1}, {0.2, 0.2, 1}, false},
        {"a start that is no number", {0.2, kNaN, 1}, {0.2, 0.2, 0}, false},
        {"an infinite end", {0.2, 0.2, 1}, {0.2, 0.2, -kInf}, false},
    };
    const ElementSurface surface = surfaceOf(faces);
    ElementPicker picker;
    for (const auto& [name, start, end, hit] : rows) {
        NglElementPick picked{};
        picked.face = 77;
        EXPECT_EQ(picker.pick(surface, elementRay(surface, start, end), all, picked), hit) << name;
        EXPECT_EQ(picked.face, hit ? 0u : 77u) << name;
    }
    NglElementPick picked;
    EXPECT_FALSE(ElementPicker().pick(surfaceOf({}), {{0, 0, 1}, {0, 0, -1}}, all, picked)) << "no faces";
}

TEST(ElementPick, EqualsATestOfEveryFace) {
    const std::tuple<const char*, TestFaces, double> rows[] = {{"sheet", sheet(1), 1},
                                                               {"outliers", outliers(), 1},
                                                               {"strip", sheet(1e-5), 1e-5},
                                                               {"tangle", tangle(), 1}};
    for (const auto& [name, faces, scaleY] : rows) {
        SCOPED_TRACE(name);
        const ElementSurface surface = surfaceOf(faces);
        ElementPicker picker;
        std::mt19937 random(3);
        int hits = 0;
        constexpr int kRays = 1000;
        for (int i = 0; i < kRays; ++i) {
            const ElementRay ray = randomRay(surface, random, scaleY);
            const auto shown = [i](std::uint32_t element) { return i % 2 == 0 || element * 7919u % 8 == 0; };
            NglElementPick picked;
            const bool hit = picker.pick(surface, ray, shown, picked);
            const Found found = testEveryFace(surface, ray, shown);
            if (!found.isClear())
                continue;
            ASSERT_EQ(hit, found.distance < kInf) << i;
            hits += hit;
            ASSERT_TRUE(!hit || picked.face == found.face) << i;
            ASSERT_TRUE(!hit || std::abs(picked.distance / found.distance - 1) < 1e-9) << i;
        }
        EXPECT_GT(hits, kRays / 4);
    }
}

TEST(ElementPick, LeavesNoGaps) {
    for (const double far : {0.0, 1e7}) {
        TestFaces faces = sheet(1);
        for (_NgPoint3Str& node : faces.nodes)
            node = MathAdd(node, {far, far, far});
        const ElementSurface surface = surfaceOf(faces);
        ElementPicker picker;
        std::mt19937 random(5);
        std::uniform_real_distribution<double> part(0, 1);
        for (int i = 0; i < 40000; ++i) {
            // Through a node, or a point of an edge or a diagonal, as they are drawn inside the sheet.
            const std::uint32_t row = 1 + random() % (kSide - 2), column = 1 + random() % (kSide - 2);
            const auto face = surface.face(row * kSide + column);
            const auto& a = surface.positions[face[0]];
            const auto& b = surface.positions[face[random() % 4]];
            const double t = part(random);
            const auto at = [&](int k) { return surface.origin[k] + a[k] + t * (double{b[k]} - a[k]); };
            const double height = 30 * part(random); // and steeper than the sheet is anywhere
            const _NgPoint3Str start = {at(0) + height * (part(random) - 0.5),
                                        at(1) + height * (part(random) - 0.5), at(2) + height};
            NglElementPick picked;
            ASSERT_TRUE(picker.pick(surface, elementRay(surface, start, {at(0), at(1), at(2)}), all, picked))
                << i;
        }
    }
}
