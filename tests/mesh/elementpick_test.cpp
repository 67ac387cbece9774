// Picking on element surfaces: known hits in rows, equality with a test of every face, and no gaps.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/mesh/elementpick.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

using ngl::NglElementPick;
using Corners = std::vector<std::uint32_t>;

struct Mesh {
    std::vector<double> nodes;
    Corners triangles, quads;

    std::uint32_t node(double x, double y, double z) {
        nodes.insert(nodes.end(), {x, y, z});
        return static_cast<std::uint32_t>(nodes.size() / 3 - 1);
    }
    ElementSurface surface() const {
        ngl::NglElementMeshInput input;
        input.nodeCount = static_cast<std::uint32_t>(nodes.size() / 3);
        input.nodes = nodes.data();
        input.triangleCount = static_cast<std::uint32_t>(triangles.size() / 3);
        input.triangles = triangles.data();
        input.quadCount = static_cast<std::uint32_t>(quads.size() / 4);
        input.quads = quads.data();
        return makeElementSurface(input).value();
    }
};

bool all(std::uint32_t) {
    return true;
}

// --- meshes ------------------------------------------------------------------------------------------------

constexpr std::uint32_t kSide = 40;

/// A wavy sheet of quads over the square 0..kSide, or narrowed in y.
Mesh sheet(double scaleY) {
    Mesh mesh;
    for (std::uint32_t y = 0; y <= kSide; ++y)
        for (std::uint32_t x = 0; x <= kSide; ++x)
            mesh.node(x, y * scaleY, 2 * std::sin(x * 0.5) * std::cos(y * 0.3));
    for (std::uint32_t y = 0; y < kSide; ++y)
        for (std::uint32_t x = 0; x < kSide; ++x) {
            const std::uint32_t v = y * (kSide + 1) + x;
            mesh.quads.insert(mesh.quads.end(), {v, v + 1, v + kSide + 2, v + kSide + 1});
        }
    return mesh;
}

/// The sheet in no order, a face that is much larger than it and one that is far away.
Mesh shuffled() {
    Mesh mesh = sheet(1);
    std::vector<std::array<std::uint32_t, 4>> quads(kSide * kSide);
    std::memcpy(quads.data(), mesh.quads.data(), mesh.quads.size() * sizeof mesh.quads[0]);
    std::shuffle(quads.begin(), quads.end(), std::mt19937(1));
    std::memcpy(mesh.quads.data(), quads.data(), mesh.quads.size() * sizeof mesh.quads[0]);
    const std::uint32_t v = mesh.node(-1e5, -1e5, -3);
    mesh.node(1e5, -1e5, -3);
    mesh.node(0, 2e5, -3);
    mesh.node(1e6, 1e6, 1e6);
    mesh.node(1e6, 1e6 + 1, 1e6);
    mesh.triangles = {v, v + 1, v + 2, v + 2, v + 3, v + 4};
    return mesh;
}

/// Faces of any shape through each other, some without area, some twice.
Mesh tangle() {
    Mesh mesh;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0, kSide), offset(-3, 3);
    for (std::uint32_t v = 0; v < 1200; v += 4) {
        const double x = place(random), y = place(random), z = offset(random);
        for (int corner = 0; corner < 4; ++corner)
            mesh.node(x + offset(random), y + offset(random), z + offset(random));
        mesh.quads.insert(mesh.quads.end(), {v, v + 1, v % 20 == 0 ? v : v + 2, v % 28 == 0 ? v : v + 3});
        for (std::uint32_t i = 0; i <= v % 3; ++i)
            mesh.triangles.insert(mesh.triangles.end(), {v, v + 3, v % 8 == 0 ? v + 3 : v + 1});
    }
    return mesh;
}

/// Many times one face.
Mesh stack() {
    Mesh mesh;
    for (std::uint32_t i = 0; i < 4; ++i)
        mesh.node(kSide * (i == 1 || i == 2), kSide * (i / 2), i % 2);
    for (int i = 0; i < 400; ++i)
        mesh.quads.insert(mesh.quads.end(), {0, 1, 2, 3});
    return mesh;
}

/// A dented ball, which every ray from about its middle meets.
Mesh ball(double middle) {
    constexpr std::uint32_t kRows = 24, kColumns = 31;
    Mesh mesh;
    for (std::uint32_t row = 0; row <= kRows; ++row)
        for (std::uint32_t column = 0; column < kColumns; ++column) {
            const double a = 2 * M_PI * column / kColumns, b = M_PI * row / kRows;
            const double r = 1 + (row % kRows == 0 ? 0 : 0.1 * std::sin(7.0 * column + row));
            mesh.node(middle + r * std::cos(a) * std::sin(b), middle + r * std::sin(a) * std::sin(b),
                      middle + r * std::cos(b));
            const std::uint32_t v = row * kColumns + column, w = row * kColumns + (column + 1) % kColumns;
            if (row < kRows)
                mesh.quads.insert(mesh.quads.end(), {v, v + kColumns, w + kColumns, w});
        }
    return mesh;
}

// --- the other route ---------------------------------------------------------------------------------------

using Long = std::array<long double, 3>;

Long difference(const Long& a, const Long& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Long cross(const Long& a, const Long& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
long double dot(const Long& a, const Long& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

struct Ray {
    _NgPoint3Str start, end;
};

/// What a test of every face finds; unclear where a border or another face is too near to tell.
struct Found {
    std::uint32_t face = 0;
    long double distance = kInf;
    bool clear = true;
};

/// Moeller and Trumbore (1997) on all triangles, in extended precision.
Found testEveryFace(const ElementSurface& surface, const Ray& ray,
                    const std::function<bool(std::uint32_t)>& shown) {
    constexpr long double kUnclear = 1e-8;
    const Long origin = {ray.start.x - surface.origin[0], ray.start.y - surface.origin[1],
                         ray.start.z - surface.origin[2]};
    const Long along = difference({ray.end.x, ray.end.y, ray.end.z}, {ray.start.x, ray.start.y, ray.start.z});
    Found found;
    long double unclear = kInf;
    for (std::uint32_t face = 0; face < surface.faceCount(); ++face) {
        const auto corners = surface.face(face);
        for (std::size_t i = 2; i < corners.size() && shown(surface.elementOf(face)); ++i) {
            const auto position = [&](std::size_t corner) {
                const auto& p = surface.positions[corners[corner]];
                return Long{p[0], p[1], p[2]};
            };
            const Long ab = difference(position(i - 1), position(0)),
                       ac = difference(position(i), position(0));
            const Long p = cross(along, ac), from = difference(origin, position(0)), q = cross(from, ab);
            const long double size = dot(ab, p);
            if (size == 0)
                continue;
            const long double u = dot(from, p) / size, v = dot(along, q) / size;
            const long double distance = dot(ac, q) / size * std::sqrt(dot(along, along));
            const long double inside = std::min({u, v, 1 - u - v});
            if (distance < -kUnclear || inside < -kUnclear)
                continue;
            if (inside < kUnclear || distance < kUnclear ||
                (distance != found.distance &&
                 std::abs(distance - found.distance) < kUnclear * (1 + distance)))
                unclear = std::min(unclear, distance);
            if (distance < found.distance)
                found = {face, distance, true};
        }
    }
    found.clear = unclear == kInf || unclear > found.distance + kUnclear * (1 + found.distance);
    return found;
}

/// A ray through somewhere over 0..kSide, from near or far.
Ray randomRay(std::mt19937& random, double scaleY) {
    std::uniform_real_distribution<double> place(-2, kSide + 2), offset(-1, 1), exponent(0, 3);
    const double far = std::pow(10.0, exponent(random)), length = std::pow(10.0, exponent(random) - 2);
    const Long to = {place(random), place(random) * scaleY, offset(random)};
    const Long d = {offset(random), offset(random) * scaleY, offset(random)};
    const auto at = [&](double t) {
        return _NgPoint3Str{double(to[0] + t * d[0]), double(to[1] + t * d[1]), double(to[2] + t * d[2])};
    };
    return {at(-far), at(-far + length)};
}

} // namespace

TEST(ElementPick, FindsElementEdgeAndNode) {
    // A roof of two quads with its ridge at x = 2, a triangle twice beside it, and below a quad of three
    // corners; all far from zero.
    constexpr double kFar = 1e7;
    Mesh mesh;
    const double nodes[][3] = {{0, 0, 0}, {2, 0, 1}, {2, 4, 1},  {0, 4, 0},  {4, 0, 0}, {4, 4, 0},
                               {6, 0, 0}, {6, 4, 0}, {0, 0, -9}, {8, 0, -9}, {8, 4, -9}};
    for (const auto& [x, y, z] : nodes)
        mesh.node(kFar + x, kFar + y, kFar + z);
    mesh.triangles = {4, 6, 7, 6, 7, 4};
    mesh.quads = {0, 1, 2, 3, 1, 4, 5, 2, 8, 8, 9, 10};
    const ElementSurface surface = mesh.surface();
    ASSERT_FALSE(surface.copiedNodes.empty());
    ElementPicker picker;
    const auto below = [](std::uint32_t element) { return element == 4; };
    // Rays along -z from z = 3 at x and y; then the face, its edge and node, the height, and the two
    // distances.
    const std::tuple<const char*, double, double, bool (*)(std::uint32_t), std::uint32_t, Corners,
                     std::uint32_t, double, double, double>
        rows[] = {
            {"first half of a quad", 1.5, 0.5, all, 2, {0, 1}, 1, 0.75, 0.5, 0.75},
            {"second half of a quad", 0.5, 3, all, 2, {3, 0}, 3, 0.25, std::sqrt(0.3125), std::sqrt(1.3125)},
            {"the diagonal is no edge", 1, 2, all, 2, {1, 2}, 0, 0.5, std::sqrt(1.25), std::sqrt(5.25)},
            {"an edge of two quads", 2, 1, all, 2, {1, 2}, 1, 1, 0, 1},
            {"a node of two quads", 2, 4, all, 2, {1, 2}, 2, 1, 0, 0},
            {"two faces at one distance", 5.5, 1, all, 0, {6, 7}, 6, 0, 0.5, std::sqrt(1.25)},
            {"below what is hidden", 3, 0.5, below, 4, {8, 9}, 8, -9, 0.5, std::sqrt(9.25)},
            {"an edge without length", 0, 0, below, 4, {8, 9}, 8, -9, 0, 0},
        };
    for (const auto& [name, x, y, shown, face, edge, node, z, edgeDistance, nodeDistance] : rows) {
        SCOPED_TRACE(name);
        NglElementPick picked{};
        ASSERT_TRUE(picker.pick(surface, {kFar + x, kFar + y, kFar + 3}, {kFar + x, kFar + y, kFar + 2.5},
                                shown, picked));
        EXPECT_EQ(picked.face, face);
        EXPECT_EQ(picked.element, face);
        EXPECT_EQ((Corners{picked.edge[0], picked.edge[1]}), edge);
        EXPECT_EQ(picked.node, node);
        EXPECT_NEAR(picked.edgeDistance, edgeDistance, 1e-12);
        EXPECT_NEAR(picked.nodeDistance, nodeDistance, 1e-12);
        EXPECT_NEAR(picked.distance, 3 - z, 1e-12);
        EXPECT_NEAR(picked.point.x, kFar + x, 1e-8);
        EXPECT_NEAR(picked.point.y, kFar + y, 1e-8);
        EXPECT_NEAR(picked.point.z, kFar + z, 1e-8);
    }
}

TEST(ElementPick, TakesRaysThatHaveADirection) {
    Mesh mesh;
    for (int i = 0; i < 3; ++i)
        mesh.node(i % 2, i / 2, 0);
    mesh.triangles = {0, 1, 2};
    const std::tuple<const char*, Ray, bool> rows[] = {
        {"to before the face", {{0.2, 0.2, 9}, {0.2, 0.2, 8}}, true},
        {"from behind the face", {{0.2, 0.2, -1e-300}, {0.2, 0.2, 7}}, true},
        {"away from the face", {{0.2, 0.2, 1e-9}, {0.2, 0.2, 1}}, false},
        {"from the face", {{0.2, 0.2, 0}, {0.2, 0.2, 1}}, true},
        {"along the face", {{-1, 0.2, 0}, {1, 0.2, 0}}, false},
        {"past the face", {{0.6, 0.6, 1}, {0.6, 0.6, 0}}, false},
        {"as long as can be", {{0.2, 0.2, 1}, {0.2, 0.2, -1e308}}, true},
        {"as short as can be", {{0.2, 0.2, 0}, {0.2, 0.2, 5e-324}}, true},
        {"no length", {{0.2, 0.2, 1}, {0.2, 0.2, 1}}, false},
        {"a start that is no number", {{0.2, kNaN, 1}, {0.2, 0.2, 0}}, false},
        {"an end that is no number", {{0.2, 0.2, 1}, {0.2, kNaN, 0}}, false},
        {"an infinite start", {{0.2, 0.2, kInf}, {0.2, 0.2, 0}}, false},
        {"an infinite end", {{0.2, 0.2, 1}, {0.2, 0.2, -kInf}}, false},
    };
    const ElementSurface surface = mesh.surface();
    ElementPicker picker;
    for (const auto& [name, ray, hit] : rows) {
        NglElementPick picked{};
        picked.face = 77;
        EXPECT_EQ(picker.pick(surface, ray.start, ray.end, all, picked), hit) << name;
        EXPECT_EQ(picked.face, hit ? 0u : 77u) << name;
    }
    NglElementPick picked;
    EXPECT_FALSE(ElementPicker().pick(Mesh().surface(), {0, 0, 1}, {0, 0, 0}, all, picked)) << "no faces";
}

TEST(ElementPick, EqualsATestOfEveryFace) {
    const std::tuple<const char*, Mesh, double> rows[] = {{"sheet", sheet(1), 1},
                                                          {"shuffled", shuffled(), 1},
                                                          {"strip", sheet(1e-5), 1e-5},
                                                          {"tangle", tangle(), 1},
                                                          {"stack", stack(), 1}};
    for (const auto& [name, mesh, scaleY] : rows) {
        SCOPED_TRACE(name);
        const ElementSurface surface = mesh.surface();
        ElementPicker picker;
        std::mt19937 random(3);
        int hits = 0, unclear = 0;
        constexpr int kRays = 1000;
        for (int i = 0; i < kRays; ++i) {
            const Ray ray = randomRay(random, scaleY);
            const auto shown = [i](std::uint32_t element) { return i % 2 == 0 || element * 7919u % 8 == 0; };
            NglElementPick picked;
            const bool hit = picker.pick(surface, ray.start, ray.end, shown, picked);
            const Found found = testEveryFace(surface, ray, shown);
            unclear += !found.clear;
            if (!found.clear)
                continue;
            ASSERT_EQ(hit, found.distance < kInf) << i;
            hits += hit;
            if (hit) {
                ASSERT_EQ(picked.face, found.face) << i;
                ASSERT_NEAR(picked.distance, static_cast<double>(found.distance), 1e-9 * picked.distance)
                    << i;
            }
        }
        EXPECT_GT(hits, kRays / 5);
        EXPECT_LT(unclear, kRays / 20);
    }
}

TEST(ElementPick, LeavesNoGaps) {
    for (const double middle : {0.0, 1e7}) {
        const ElementSurface surface = ball(middle).surface();
        ElementPicker picker;
        std::mt19937 random(5);
        std::uniform_real_distribution<double> inside(middle - 0.4, middle + 0.4), part(0, 1);
        for (int i = 0; i < 20000; ++i) {
            // Through a node, or a point of an edge or a diagonal, as they are drawn.
            const auto face = surface.face(random() % surface.faceCount());
            const auto& a = surface.positions[face[random() % 4]];
            const auto& b = surface.positions[face[random() % 4]];
            const double t = part(random);
            const auto at = [&](int k) { return surface.origin[k] + a[k] + t * (double{b[k]} - a[k]); };
            const _NgPoint3Str start = {inside(random), inside(random), inside(random)};
            NglElementPick picked;
            ASSERT_TRUE(picker.pick(surface, start, {at(0), at(1), at(2)}, all, picked)) << i;
        }
    }
}

TEST(FaceTree, HasFewBoxesOverOnePlace) {
    // Down from a node, boxes that reach over (x, y).
    const std::function<int(const FaceTree&, int, std::uint32_t, float, float)> boxesOver =
        [&](const FaceTree& tree, int level, std::uint32_t index, float x, float y) {
            const FaceTree::Node& node = tree.node(level, index);
            int boxes = 0;
            for (std::uint32_t i = 0; i < FaceTree::kWidth; ++i)
                if (node.low[0][i] <= x && x <= node.high[0][i] && node.low[1][i] <= y &&
                    y <= node.high[1][i])
                    boxes += 1 + (level > 0 ? boxesOver(tree, level - 1, 4 * index + i, x, y) : 0);
            return boxes;
        };
    const std::tuple<const char*, Mesh, int> rows[] = {
        {"sheet", sheet(1), 12}, {"shuffled", shuffled(), 20}, {"strip", sheet(1e-5), 27}};
    for (const auto& [name, mesh, most] : rows) {
        const ElementSurface surface = mesh.surface();
        FaceTree tree;
        tree.build(surface);
        int boxes = 0;
        for (const auto& [x, y, z] : surface.positions)
            boxes += boxesOver(tree, tree.levels() - 1, 0, x, y);
        EXPECT_LT(boxes, most * static_cast<int>(surface.positions.size())) << name;
    }
}
