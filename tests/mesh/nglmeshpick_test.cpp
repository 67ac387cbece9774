// Mesh picking: known hits in rows, and equality with the plain traversal on random meshes and rays.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostmath.h"
#include "tests/mesh/pickoracle.h"
#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct Row {
    const char* name;
    double x, y; ///< where a ray along -z meets the plane
    double tolerance;
    _NgPickStatus status;
    std::vector<int> indices;
};

void expectRows(_NgMeshStr* mesh, const std::vector<Row>& rows) {
    NgMatrix identity;
    NglSetIdentity(identity);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const PickResult result = pick(mesh, {row.x, row.y, 5}, {row.x, row.y, -5}, identity, row.tolerance);
        EXPECT_EQ(result.status, row.status);
        EXPECT_EQ(result.indices, row.indices);
    }
}

/// A random mesh of blocks of several sizes, some indices repeated.
struct RandomCase {
    explicit RandomCase(unsigned seed);
    double uniform(double low, double high) { return std::uniform_real_distribution(low, high)(random); }
    int integer(int low, int high) { return std::uniform_int_distribution(low, high)(random); }
    _NgPoint3Str point(double size) {
        return {uniform(-size, size), uniform(-size, size), uniform(-size, size)};
    }

    std::mt19937 random;
    std::vector<double> coords;
    std::vector<TestBlock> blocks;
    NgMatrix matrix;
    double scale;
};

RandomCase::RandomCase(unsigned seed) : random(seed), scale(std::pow(10.0, integer(-6, 6))) {
    const int vertices = integer(12, seed % 16 == 0 ? 900 : 60);
    const bool flat = seed % 3 == 0; // many ties and exact hits
    for (int i = 0; i < vertices * 3; ++i)
        coords.push_back(flat ? (i % 3 == 2 ? 0 : integer(0, 6)) * scale : uniform(0, 6) * scale);
    const int sizes[] = {3, 4, 12, 2, 7, 1};
    for (int b = integer(1, 3); b > 0; --b) {
        TestBlock block{sizes[integer(0, 5)], {}};
        for (int i = block.size * integer(1, 30); i > 0; --i)
            block.indices.push_back(static_cast<std::uint32_t>(integer(0, vertices - 1)));
        blocks.push_back(block);
    }
    NglSetIdentity(matrix);
    if (seed % 2 == 1)
        NglRotate(matrix, uniform(0, 360), point(1));
    if (seed % 5 == 0)
        NglScale(matrix, uniform(-2, 2), 1e-3, 0); // singular
    if (seed % 7 == 0)
        NglTranslate(matrix, 1e5 * scale, -3 * scale, scale);
}

} // namespace

TEST(NglPickMesh, ReportsWhatTheRayMeets) {
    // Two quads side by side: 0 1 2 3 and 1 4 5 2, two units wide and high.
    const TestMesh mesh({0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0, 4, 0, 0, 4, 2, 0},
                        {{4, {0, 1, 2, 3, 1, 4, 5, 2}}});
    expectRows(
        mesh, {
                  {"exactly through a vertex", 4, 2, 0, NgPickVertex, {5}},
                  {"past the end of an edge", 4.1, 2.1, 0.2, NgPickVertex, {5}},
                  {"nearer the start: the entry behind it", 0.5, 0.0625, 0.1, NgPickEdge, {0, 1}},
                  {"nearer the end: the entry before the start", 2.0625, 1.5, 0.1, NgPickEdge, {2, 0}},
                  {"end of the first edge: no entry before it", 1.5, 0.0625, 0.1, NgPickEdge, {1, 0}},
                  {"start of an element's last edge: the next element", 0.0625, 1.5, 0.1, NgPickEdge, {3, 1}},
                  {"halfway counts as the end", 3, 0.0625, 0.1, NgPickEdge, {4, 3}},
                  {"equal distances: the first edge", 1.75, 0.25, 0.3, NgPickEdge, {1, 0}},
                  {"a distance equal to the tolerance", 0.5, 0.0625, 0.0625, NgPickEdge, {0, 1}},
                  {"beyond the tolerance", 0.5, 0.0625, std::nextafter(0.0625, 0), NgPickNothing, {}},
                  {"inside a face", 1, 1, 0.5, NgPickNothing, {}},
                  {"a negative tolerance", 0.5, 0, -1, NgPickNothing, {}},
                  {"a tolerance that is not a number", 0.5, 0, kNaN, NgPickNothing, {}},
              });
}

TEST(NglPickMesh, TakesTheOtherEndBehindTheLastEntry) {
    const TestMesh mesh({0, 0, 0, 2, 0, 0, 2, 2, 0}, {{3, {0, 1, 2}}});
    // The last edge runs from 2 to 0; 2 is picked and nothing stands behind it.
    expectRows(mesh, {{"last edge of the last element", 1.4, 1.5, 0.2, NgPickEdge, {2, 0}}});
}

TEST(NglPickMesh, TestsTenVerticesOfALargeElement) {
    std::vector<double> ring;
    TestBlock polygon{12, {}};
    for (unsigned i = 0; i < 12; ++i) {
        ring.insert(ring.end(), {std::cos(i * M_PI / 6) * 8, std::sin(i * M_PI / 6) * 8, 0});
        polygon.indices.push_back(i);
    }
    const TestMesh mesh(ring, {polygon});
    const double x = ring[30], y = ring[31]; // the eleventh vertex
    const double chordX = (ring[0] + ring[27]) / 2, chordY = (ring[1] + ring[28]) / 2;
    expectRows(mesh,
               {{"the eleventh vertex", x, y, 0.5, NgPickNothing, {}},
                {"the chord from the tenth to the first", chordX * 1.001, chordY, 0.1, NgPickEdge, {0, 8}}});
}

TEST(NglPickMesh, ReportsAnElementWhoseEveryEdgeIsNearerThanTheLast) {
    // Seen along the ray, the edges pass at 0.3, 0.2 and 0.1, and the last one's start is nearer than its
    // end.
    const TestMesh mesh({-0.2887, -0.3, 0, 0.4041, -0.3, 1, 0.0577, 0.3, 5}, {{3, {0, 1, 2}}});
    NgMatrix identity;
    NglSetIdentity(identity);
    const PickResult result = pick(mesh, {0, 0, 5}, {0, 0, -5}, identity, 0.3001, 3);
    EXPECT_EQ(result.status, NgPickElement);
    EXPECT_EQ(result.indices, (std::vector<int>{2, 0, 1}));
    EXPECT_EQ(pick(mesh, {0, 0, 5}, {0, 0, -5}, identity, 0.2999).status, NgPickEdge);
}

TEST(NglPickMesh, EqualsThePlainTraversal) {
    int found[4] = {};
    for (unsigned seed = 0; seed < 4000; ++seed) {
        RandomCase c(seed);
        const TestMesh mesh(c.coords, c.blocks);
        _NgPoint3Str start = c.point(8 * c.scale), end = c.point(8 * c.scale);
        // Many rays go through a vertex, and some have no length.
        const int target = c.integer(0, mesh->vertexCount - 1);
        const _NgPoint3Str vertex = {c.coords[target * 3], c.coords[target * 3 + 1],
                                     c.coords[target * 3 + 2]};
        if (seed % 4 != 0)
            NglTransform33p(vertex, c.matrix, end);
        if (seed % 31 == 0)
            start = end;
        const double tolerances[] = {0, 1e-9, 0.01, 0.3, 3, 100, kInf};
        const double tolerance = tolerances[c.integer(0, 6)] * c.scale;
        const PickResult plain = pickPlainly(*mesh, start, end, c.matrix, tolerance);
        ++found[plain.status];
        ASSERT_EQ(pick(mesh, start, end, c.matrix, tolerance, plain.indices.size()), plain)
            << "seed " << seed;
    }
    for (int status = NgPickEdge; status <= NgPickNothing; ++status)
        EXPECT_GT(found[status], 200) << "the cases no longer meet status " << status;
}

TEST(NglPickMesh, EqualsThePlainTraversalOnOddNumbers) {
    const double odd[] = {kNaN, kInf, -kInf, 1e200, 1e-170, 0, 1e300};
    int hits = 0;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        RandomCase c(seed);
        std::fill(c.coords.begin(), c.coords.begin() + c.integer(0, 3) * 3, odd[seed % 7]);
        for (int i = c.integer(0, 6); i > 0; --i)
            c.coords[c.integer(0, static_cast<int>(c.coords.size()) - 1)] = odd[c.integer(0, 6)];
        if (seed % 8 == 0)
            c.matrix[c.integer(0, 3)][c.integer(0, 2)] = odd[c.integer(0, 6)];
        _NgPoint3Str start = c.point(8), end = c.point(8);
        if (seed % 9 == 0)
            end.x = odd[c.integer(0, 6)];
        if (seed % 10 == 0) // a very short ray
            end = {start.x, start.y, start.z + 1e-120};
        const TestMesh mesh(c.coords, c.blocks);
        const double tolerance = seed % 11 == 0 ? 0 : c.uniform(0, 2) * c.scale;
        const PickResult plain = pickPlainly(*mesh, start, end, c.matrix, tolerance);
        const PickResult fast = pick(mesh, start, end, c.matrix, tolerance, plain.indices.size());
        hits += plain.status != NgPickNothing;
        // Without the points: one that is not a number is unequal to itself.
        ASSERT_EQ(fast.status, plain.status) << "seed " << seed;
        ASSERT_EQ(fast.indices, plain.indices) << "seed " << seed;
    }
    EXPECT_GT(hits, 200);
}

TEST(NglPickMesh, SkipsElementsWithForeignIndices) {
    const TestMesh mesh({0, 0, 0, 2, 0, 0, 2, 2, 0},
                        {{3, {0, 1, 900, 0, 1, 2}}, {7, {0, 1, 2, 1, 0, 1, 0xFFFFFFFF}}});
    // Behind the picked start stands an index that names no vertex only in the first element, which is
    // skipped.
    expectRows(mesh,
               {{"the second element answers", 0.5, 0.1, 0.2, NgPickEdge, {0, 1}},
                {"and its first edge has a foreign entry before it", 1.6, 0.1, 0.2, NgPickEdge, {1, 0}}});
}

TEST(NglPickMesh, FindsNothingWithoutElements) {
    const TestMesh empty({0, 0, 0}, {}), noElements({0, 0, 0}, {{3, {}}});
    for (_NgMeshStr* mesh : {static_cast<_NgMeshStr*>(empty), static_cast<_NgMeshStr*>(noElements)})
        expectRows(mesh, {{"no elements", 0, 0, 1, NgPickNothing, {}}});
}
