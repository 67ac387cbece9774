// Mesh picking: known hits in rows, and equality with the plain traversal on random meshes and rays.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostmath.h"
#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

/// A mesh, and a ray that picks from it.
struct Case {
    std::vector<double> coords;
    std::vector<TestBlock> blocks;
    _NgPoint3Str start{}, end{};
    double tolerance = 0;
    NgMatrix matrix = {{1}, {0, 1}, {0, 0, 1}, {0, 0, 0, 1}};

    _NgPoint3Str transformed(std::size_t vertex) const {
        _NgPoint3Str out;
        NglTransform33p({coords[vertex * 3], coords[vertex * 3 + 1], coords[vertex * 3 + 2]}, matrix, out);
        return out;
    }
};

using PickResult = std::pair<_NgPickStatus, std::vector<std::uint32_t>>;

/// Tests every edge of every element in order, with nothing left out.
PickResult pickPlainly(const Case& c) {
    double best = 1e30;
    PickResult result = {NgPickNothing, {}};
    for (const auto& [size, indices] : c.blocks)
        for (std::size_t first = 0; first < indices.size(); first += size) {
            const int n = std::min(size, 10);
            int edgeHits = 0, picked = 0;
            for (int i = 0; i < n; ++i) {
                const std::size_t k = first + i, last = first + (i + 1) % n;
                const NgSegmentNearest near = MathNearestPointOnSegmentFromLine(
                    c.transformed(indices[k]), c.transformed(indices[last]), c.start, c.end);
                if (!(near.distance <= c.tolerance && near.distance < best))
                    continue;
                best = near.distance;
                const bool inside = near.spot == NgSegmentSpot::Inside;
                const bool atStart = inside ? near.t < 0.5 : near.spot == NgSegmentSpot::Start;
                edgeHits += inside;
                picked = atStart ? i : (i + 1) % n;
                const std::uint32_t corner = indices[first + picked];
                const std::size_t second = corner == indices[k] ? k + 1 : k - 1;
                result = {inside ? NgPickEdge : NgPickVertex, {corner}};
                if (inside)
                    result.second.push_back(indices[second < indices.size() ? second : atStart ? last : k]);
            }
            if (edgeHits < n)
                continue;
            result = {NgPickElement, {&indices[first], &indices[first] + n}};
            std::rotate(result.second.begin(), result.second.begin() + picked, result.second.end());
            return result;
        }
    return result;
}

/// The library's result, of which the points are compared with the indices here.
PickResult pick(Case c, std::size_t elementSize) {
    const TestMesh mesh(c.coords, c.blocks);
    _NgPoint3Str* points = nullptr;
    int* indices = nullptr;
    PickResult result;
    result.first = NglPickMesh(mesh, &c.start, &c.end, &c.matrix, &points, &indices, &c.tolerance);
    const std::size_t counts[] = {elementSize, 2, 1, 0};
    if (indices)
        result.second.assign(indices, indices + counts[result.first]);
    for (std::size_t i = 0; i < result.second.size(); ++i)
        EXPECT_EQ(std::memcmp(&points[i], &c.coords[indices[i] * 3], sizeof *points), 0);
    NHostFree(points);
    NHostFree(indices);
    return result;
}

/// A mesh of blocks of several sizes, some indices repeated, and a ray.
Case randomCase(unsigned seed, bool withOddNumbers) {
    std::mt19937 random(seed);
    const auto uniform = [&](double a, double b) { return std::uniform_real_distribution(a, b)(random); };
    const auto integer = [&](int a, int b) { return std::uniform_int_distribution(a, b)(random); };
    const auto point = [&](double size) {
        return _NgPoint3Str{uniform(-size, size), uniform(-size, size), uniform(-size, size)};
    };
    const double odd[] = {kNaN, kInf, -kInf, 1e200, 1e-170, 0, 1e300};
    const double scale = std::pow(10.0, integer(-6, 6));
    const int vertices = integer(12, seed % 16 == 0 ? 900 : 60);
    Case c;
    for (int i = 0; i < vertices * 3; ++i) // every third mesh is flat, with many ties and exact hits
        c.coords.push_back(scale * (seed % 3 != 0 ? uniform(0, 6) : i % 3 == 2 ? 0 : integer(0, 6)));
    for (int i = withOddNumbers ? integer(0, 9) : 0; i > 0; --i)
        c.coords[integer(0, vertices * 3 - 1)] = odd[integer(0, 6)];
    const int sizes[] = {3, 4, 12, 2, 7, 1};
    for (int b = integer(1, 3); b > 0; --b) {
        TestBlock block{sizes[integer(0, 5)], {}};
        for (int i = block.size * integer(1, 30); i > 0; --i)
            block.indices.push_back(static_cast<std::uint32_t>(integer(0, vertices - 1)));
        c.blocks.push_back(block);
    }
    const double tolerances[] = {0, 1e-9, 0.01, 0.3, 3, 100, kInf};
    c.tolerance = tolerances[integer(0, 6)] * scale;
    c.start = point(8 * scale);
    c.end = point(8 * scale);
    if (seed % 2 == 1)
        NglRotate(c.matrix, uniform(0, 360), point(1));
    if (seed % 5 == 0)
        NglScale(c.matrix, uniform(-2, 2), 1e-3, 0); // singular
    if (seed % 7 == 0)
        NglTranslate(c.matrix, 1e5 * scale, -3 * scale, scale);
    // Many rays go through a vertex, and some have no length.
    if (seed % 4 != 0)
        c.end = c.transformed(integer(0, vertices - 1));
    if (seed % 31 == 0)
        c.start = c.end;
    return c;
}

} // namespace

TEST(NglPickMesh, ReportsWhatTheRayMeets) {
    // Two quads side by side: 0 1 2 3 and 1 4 5 2, two units wide and high.
    const Case quads{{0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0, 4, 0, 0, 4, 2, 0}, {{4, {0, 1, 2, 3, 1, 4, 5, 2}}}};
    const Case foreign{{0, 0, 0, 2, 0, 0, 2, 2, 0},
                       {{3, {0, 1, 900, 0, 1, 2}}, {7, {0, 1, 2, 1, 0, 1, 0xFFFFFFFF}}}};
    // Seen along the ray, the edges pass at 0.3, 0.2 and 0.1, and the last one's start is nearer than its
    // end.
    const Case nearing{{-0.2887, -0.3, 0, 0.4041, -0.3, 1, 0.0577, 0.3, 5}, {{3, {0, 1, 2}}}};
    // where a ray along -z meets the plane, the tolerance, and what is picked
    const std::tuple<const char*, Case, double, double, double, PickResult> rows[] = {
        {"past the end of an edge", quads, 4.1, 2.1, 0.2, {NgPickVertex, {5}}},
        {"nearer the start: the entry behind it", quads, 0.5, 0.0625, 0.1, {NgPickEdge, {0, 1}}},
        {"nearer the end: the entry before the start", quads, 2.0625, 1.5, 0.1, {NgPickEdge, {2, 0}}},
        {"end of the first edge: no entry before it", quads, 1.5, 0.0625, 0.1, {NgPickEdge, {1, 0}}},
        {"halfway counts as the end", quads, 3, 0.0625, 0.1, {NgPickEdge, {4, 3}}},
        {"a distance equal to the tolerance", quads, 0.5, 0.0625, 0.0625, {NgPickEdge, {0, 1}}},
        {"a tolerance that is not a number", quads, 0.5, 0, kNaN, {NgPickNothing, {}}},
        {"elements with foreign indices are skipped", foreign, 0.5, 0.1, 0.2, {NgPickEdge, {0, 1}}},
        {"a foreign entry before the edge", foreign, 1.6, 0.1, 0.2, {NgPickEdge, {1, 0}}},
        {"nothing behind the last entry", foreign, 1.4, 1.5, 0.2, {NgPickEdge, {2, 0}}},
        {"every edge nearer than the last", nearing, 0, 0, 0.3001, {NgPickElement, {2, 0, 1}}},
    };
    for (auto [name, c, x, y, tolerance, expected] : rows) {
        c.start = {x, y, 5};
        c.end = {x, y, -5};
        c.tolerance = tolerance;
        EXPECT_EQ(pick(c, 3), expected) << name;
    }
}

TEST(NglPickMesh, EqualsThePlainTraversal) {
    int found[4] = {};
    for (unsigned seed = 0; seed < 8000; ++seed) {
        const Case c = randomCase(seed / 2, seed % 2);
        const PickResult plain = pickPlainly(c);
        ++found[plain.first];
        ASSERT_EQ(pick(c, plain.second.size()), plain) << "seed " << seed;
    }
    for (int count : found)
        EXPECT_GT(count, 150) << "the cases no longer meet every status";
}
