// Mesh picking: known hits in rows, and equality with the plain traversal on random meshes and rays.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostmath.h"
#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct Ray {
    _NgPoint3Str start, end;
    double tolerance;
    NgMatrix matrix;
};

using PickResult = std::pair<_NgPickStatus, std::vector<int>>;

_NgPoint3Str transformed(const _NgMeshStr& mesh, std::uint32_t index, const NgMatrix matrix) {
    _NgPoint3Str out;
    NglTransform33p({mesh.coords[index * 3], mesh.coords[index * 3 + 1], mesh.coords[index * 3 + 2]}, matrix,
                    out);
    return out;
}

/// Tests every edge of every element in order, with nothing left out. Valid indices only.
PickResult pickPlainly(const _NgMeshStr& mesh, const Ray& ray) {
    double best = 1e30;
    PickResult result = {NgPickNothing, {}};
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next) {
        const int size = block->verticesPerElement, n = std::min(size, 10);
        const auto entry = [&](std::size_t k) { return static_cast<int>(block->indices[k]); };
        for (std::size_t first = 0; first < std::size_t{block->elementCount} * size; first += size) {
            int edgeHits = 0, picked = 0;
            for (int i = 0; i < n; ++i) {
                const std::size_t k = first + i, last = first + (i + 1) % n;
                const NgSegmentNearest near = MathNearestPointOnSegmentFromLine(
                    transformed(mesh, entry(k), ray.matrix), transformed(mesh, entry(last), ray.matrix),
                    ray.start, ray.end);
                if (!(near.distance <= ray.tolerance) || !(near.distance < best))
                    continue;
                best = near.distance;
                const bool inside = near.spot == NgSegmentSpot::Inside;
                const bool atStart = inside ? near.t < 0.5 : near.spot == NgSegmentSpot::Start;
                edgeHits += inside;
                picked = atStart ? i : (i + 1) % n;
                result = {inside ? NgPickEdge : NgPickVertex, {entry(first + picked)}};
                if (!inside)
                    continue;
                const std::size_t second = result.second[0] == entry(k) ? k + 1 : k - 1;
                const bool exists = second < std::size_t{block->elementCount} * size;
                result.second.push_back(entry(exists ? second : atStart ? last : k));
            }
            if (edgeHits < n)
                continue;
            result = {NgPickElement, {}};
            for (int i = 0; i < n; ++i)
                result.second.push_back(entry(first + (picked + i) % n));
            return result;
        }
    }
    return result;
}

/// The library's result, of which the points are compared with the indices here.
PickResult pick(_NgMeshStr* mesh, Ray ray, std::size_t elementSize) {
    _NgPoint3Str* points = nullptr;
    int* indices = nullptr;
    PickResult result;
    result.first = NglPickMesh(mesh, &ray.start, &ray.end, &ray.matrix, &points, &indices, &ray.tolerance);
    const std::size_t counts[] = {elementSize, 2, 1, 0};
    if (indices)
        result.second.assign(indices, indices + counts[result.first]);
    for (std::size_t i = 0; i < result.second.size(); ++i)
        EXPECT_EQ(std::memcmp(&points[i], mesh->coords + indices[i] * 3, sizeof *points), 0);
    NHostFree(points);
    NHostFree(indices);
    return result;
}

struct Row {
    const char* name;
    double x, y; ///< where a ray along -z meets the plane
    double tolerance;
    _NgPickStatus status;
    std::vector<int> indices;
};

void expectRows(_NgMeshStr* mesh, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        Ray ray{{row.x, row.y, 5}, {row.x, row.y, -5}, row.tolerance, {}};
        NglSetIdentity(ray.matrix);
        EXPECT_EQ(pick(mesh, ray, 3), PickResult(row.status, row.indices)) << row.name;
    }
}

/// A random mesh of blocks of several sizes, some indices repeated, and a ray.
struct RandomCase {
    std::vector<double> coords;
    std::vector<TestBlock> blocks;
    Ray ray;
};

RandomCase randomCase(unsigned seed, bool withOddNumbers) {
    std::mt19937 random(seed);
    const auto uniform = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    const auto integer = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    const double scale = std::pow(10.0, integer(-6, 6));
    const auto point = [&](double size) {
        return _NgPoint3Str{uniform(-size, size), uniform(-size, size), uniform(-size, size)};
    };
    const double odd[] = {kNaN, kInf, -kInf, 1e200, 1e-170, 0, 1e300};
    RandomCase c;
    const int vertices = integer(12, seed % 16 == 0 ? 900 : 60);
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
    c.ray = {point(8 * scale), point(8 * scale), tolerances[integer(0, 6)] * scale, {}};
    NglSetIdentity(c.ray.matrix);
    if (seed % 2 == 1)
        NglRotate(c.ray.matrix, uniform(0, 360), point(1));
    if (seed % 5 == 0)
        NglScale(c.ray.matrix, uniform(-2, 2), 1e-3, 0); // singular
    if (seed % 7 == 0)
        NglTranslate(c.ray.matrix, 1e5 * scale, -3 * scale, scale);
    if (withOddNumbers && seed % 8 == 0)
        c.ray.matrix[integer(0, 3)][integer(0, 2)] = odd[integer(0, 6)];
    // Many rays go through a vertex, and some have no length or a very small one.
    const double* target = &c.coords[integer(0, vertices - 1) * 3];
    if (seed % 4 != 0)
        NglTransform33p({target[0], target[1], target[2]}, c.ray.matrix, c.ray.end);
    if (seed % 31 == 0)
        c.ray.start = c.ray.end;
    if (withOddNumbers && seed % 10 == 0)
        c.ray.end = {c.ray.start.x, c.ray.start.y, c.ray.start.z + 1e-120};
    return c;
}

} // namespace

TEST(NglPickMesh, ReportsWhatTheRayMeets) {
    // Two quads side by side: 0 1 2 3 and 1 4 5 2, two units wide and high.
    const TestMesh quads({0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0, 4, 0, 0, 4, 2, 0},
                         {{4, {0, 1, 2, 3, 1, 4, 5, 2}}});
    expectRows(quads,
               {{"exactly through a vertex", 4, 2, 0, NgPickVertex, {5}},
                {"past the end of an edge", 4.1, 2.1, 0.2, NgPickVertex, {5}},
                {"nearer the start: the entry behind it", 0.5, 0.0625, 0.1, NgPickEdge, {0, 1}},
                {"nearer the end: the entry before the start", 2.0625, 1.5, 0.1, NgPickEdge, {2, 0}},
                {"end of the first edge: no entry before it", 1.5, 0.0625, 0.1, NgPickEdge, {1, 0}},
                {"start of an element's last edge: the next element", 0.0625, 1.5, 0.1, NgPickEdge, {3, 1}},
                {"halfway counts as the end", 3, 0.0625, 0.1, NgPickEdge, {4, 3}},
                {"equal distances: the first edge", 1.75, 0.25, 0.3, NgPickEdge, {1, 0}},
                {"a distance equal to the tolerance", 0.5, 0.0625, 0.0625, NgPickEdge, {0, 1}},
                {"beyond the tolerance", 0.5, 0.0625, std::nextafter(0.0625, 0), NgPickNothing, {}},
                {"a negative tolerance", 0.5, 0, -1, NgPickNothing, {}},
                {"a tolerance that is not a number", 0.5, 0, kNaN, NgPickNothing, {}}});
    const TestMesh foreign({0, 0, 0, 2, 0, 0, 2, 2, 0},
                           {{3, {0, 1, 900, 0, 1, 2}}, {7, {0, 1, 2, 1, 0, 1, 0xFFFFFFFF}}});
    expectRows(foreign, {{"elements with foreign indices are skipped", 0.5, 0.1, 0.2, NgPickEdge, {0, 1}},
                         {"a foreign entry before the edge", 1.6, 0.1, 0.2, NgPickEdge, {1, 0}},
                         {"nothing behind the last entry", 1.4, 1.5, 0.2, NgPickEdge, {2, 0}}});
    // Seen along the ray, the edges pass at 0.3, 0.2 and 0.1, and the last one's start is nearer than its
    // end.
    const TestMesh nearing({-0.2887, -0.3, 0, 0.4041, -0.3, 1, 0.0577, 0.3, 5}, {{3, {0, 1, 2}}});
    expectRows(nearing, {{"every edge nearer than the last", 0, 0, 0.3001, NgPickElement, {2, 0, 1}},
                         {"the first edge out of reach", 0, 0, 0.2999, NgPickEdge, {2, 0}}});
    expectRows(TestMesh({0, 0, 0}, {{3, {}}}), {{"no elements", 0, 0, 1, NgPickNothing, {}}});
}

TEST(NglPickMesh, EqualsThePlainTraversal) {
    for (const bool odd : {false, true}) {
        int found[4] = {};
        for (unsigned seed = 0; seed < 4000; ++seed) {
            const RandomCase c = randomCase(seed, odd);
            const TestMesh mesh(c.coords, c.blocks);
            const PickResult plain = pickPlainly(*mesh, c.ray);
            ++found[plain.first];
            ASSERT_EQ(pick(mesh, c.ray, plain.second.size()), plain) << "seed " << seed << ", odd " << odd;
        }
        for (int status = NgPickEdge; status <= NgPickNothing; ++status)
            EXPECT_GT(found[status], 200) << "the cases no longer meet status " << status;
    }
}
