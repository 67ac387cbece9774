// Edge data: the edges of known bodies, which of them are features, and their face normals.
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostmath.h"
#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

struct EdgeCount {
    int all = 0, features = 0;
    bool operator==(const EdgeCount&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const EdgeCount& c) {
        return out << c.all << " edges, " << c.features << " features";
    }
};

EdgeCount countEdges(_NgMeshStr* mesh) {
    ngl_process_mesh_edges(mesh);
    EdgeCount count{static_cast<int>(mesh->edgeCount), 0};
    for (std::uint32_t i = 0; i < mesh->edgeCount; ++i)
        count.features += mesh->edgeWeights[i] <= 0;
    return count;
}

/// Two quads that share the edge 0-1 on the y axis, the second turned upward by an angle.
std::vector<double> foldCoords(double angleDeg) {
    const double c = std::cos(angleDeg * M_PI / 180), s = std::sin(angleDeg * M_PI / 180);
    return {0, 0, 0, 0, 3, 0, -2, 3, 0, -2, 0, 0, 2 * c, 0, 2 * s, 2 * c, 3, 2 * s};
}

/// A sphere of quads and triangles at the poles, with some quads split and some elements wound the other way.
struct RandomSphere {
    explicit RandomSphere(unsigned seed, int around = 40, int rings = 20);
    std::vector<double> coords;
    TestBlock triangles{3, {}}, quads{4, {}};

private:
    void add(std::vector<std::uint32_t> corners);
    std::mt19937 m_random;
};

RandomSphere::RandomSphere(unsigned seed, int around, int rings) : m_random(seed) {
    coords = {0, 0, 1, 0, 0, -1};
    for (int r = 1; r < rings; ++r)
        for (int i = 0; i < around; ++i) {
            const double t = M_PI * r / rings, p = 2 * M_PI * i / around;
            coords.insert(coords.end(), {std::sin(t) * std::cos(p), std::sin(t) * std::sin(p), std::cos(t)});
        }
    const auto at = [=](int r, int i) {
        return static_cast<std::uint32_t>(2 + (r - 1) * around + i % around);
    };
    for (int i = 0; i < around; ++i) {
        add({0, at(1, i), at(1, i + 1)});
        add({1, at(rings - 1, i + 1), at(rings - 1, i)});
        for (int r = 1; r + 1 < rings; ++r)
            add({at(r, i), at(r + 1, i), at(r + 1, i + 1), at(r, i + 1)});
    }
}

void RandomSphere::add(std::vector<std::uint32_t> c) {
    if (c.size() == 4 && m_random() % 2) {
        add({c[0], c[1], c[2]});
        add({c[0], c[2], c[3]});
        return;
    }
    if (m_random() % 3 == 0)
        std::reverse(c.begin(), c.end());
    std::vector<std::uint32_t>& list = c.size() == 3 ? triangles.indices : quads.indices;
    list.insert(list.end(), c.begin(), c.end());
}

} // namespace

TEST(NglMeshEdges, EdgesAndFeaturesOfKnownMeshes) {
    TestBlock split{3, {}};
    for (std::size_t q = 0; q < 24; q += 4)
        for (int corner : {0, 1, 2, 0, 2, 3})
            split.indices.push_back(cubeQuads().indices[q + corner]);
    const TestBlock fold{4, {0, 1, 2, 3, 1, 0, 4, 5}}, twisted{4, {0, 1, 2, 3, 0, 1, 5, 4}};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        std::vector<double> coords;
        std::vector<TestBlock> blocks;
        EdgeCount count;
    } rows[] = {
        {"cube of quads", cubeCoords(), {cubeQuads()}, {12, 12}},
        {"cube of triangles", cubeCoords(), {split}, {18, 12}},
        {"cube in two blocks",
         cubeCoords(),
         {{4, {0, 3, 2, 1, 4, 5, 6, 7}}, {4, {0, 1, 5, 4, 1, 2, 6, 5, 2, 3, 7, 6, 3, 0, 4, 7}}},
         {12, 12}},
        {"open sheet", foldCoords(0), {fold}, {7, 6}},
        {"fold below the angle", foldCoords(29.99), {fold}, {7, 6}},
        {"fold above it", foldCoords(30.01), {fold}, {7, 7}},
        {"the other winding, below", foldCoords(-29.99), {twisted}, {7, 6}},
        {"the other winding, above", foldCoords(-30.01), {twisted}, {7, 7}},
        {"folded back on itself", foldCoords(180), {fold}, {7, 7}},
        {"three sheets at one edge", foldCoords(0), {fold, {3, {0, 1, 3}}}, {8, 8}},
        {"a beam along an edge of the sheet", foldCoords(0), {fold, {2, {2, 3}}}, {7, 6}},
        {"a beam along its inner edge", foldCoords(0), {fold, {2, {1, 0}}}, {7, 7}},
        {"a beam alone, and a point", cubeCoords(), {{2, {0, 6, 6, 0}}, {1, {3}}}, {1, 1}},
        {"a face without area", {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0}, {{3, {0, 1, 2, 0, 2, 3}}}, {5, 5}},
        {"a quad collapsed to a triangle", foldCoords(0), {{4, {0, 1, 2, 2, 1, 0, 4, 5}}}, {6, 5}},
        {"a hexagon's outline", foldCoords(0), {{6, {0, 1, 2, 3, 4, 5}}}, {6, 6}},
        {"a foreign index", foldCoords(0), {{4, {0, 1, 2, 6, 1, 0, 4, 5}}, {3, {0, 1, 0xFFFFFFFF}}}, {4, 4}},
        {"not a number", {nan, 0, 0, 0, 1, 0, 1, 0, 0, 1, 1, 0}, {{3, {0, 1, 2, 2, 1, 3}}}, {5, 5}},
        {"coincident vertices are not one",
         {0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, -1, 0, 0},
         {{3, {0, 1, 2, 3, 4, 5}}},
         {6, 6}},
        {"nothing", {0, 0, 0}, {}, {0, 0}},
    };
    for (const auto& row : rows) {
        const TestMesh mesh(row.coords, row.blocks);
        EXPECT_EQ(countEdges(mesh), row.count) << row.name;
        EXPECT_EQ(countEdges(mesh), row.count) << row.name << ", built again";
    }
}

TEST(NglMeshEdges, NormalsOfTheTwoFaces) {
    // Whatever the winding of the second quad, both normals lie on one side of the sheet.
    for (const bool twisted : {false, true}) {
        const TestMesh mesh(foldCoords(20), {{4, {0, 1, 2, 3}},
                                             {4, twisted ? std::vector<std::uint32_t>{0, 1, 5, 4}
                                                         : std::vector<std::uint32_t>{1, 0, 4, 5}}});
        ngl_process_mesh_edges(mesh);
        ASSERT_EQ(mesh->edges[0], 0u);
        ASSERT_EQ(mesh->edges[1], 1u);
        const double* n = mesh->edgeFaceNormals;
        const double expected[6] = {0, 0, 1, -std::sin(M_PI / 9), 0, std::cos(M_PI / 9)};
        for (int i = 0; i < 6; ++i)
            EXPECT_NEAR(n[i], expected[i], 1e-15) << "twisted " << twisted << ", component " << i;
        // Edge 0-3 has one face.
        EXPECT_EQ(n[6 + 2], 1);
        EXPECT_EQ(n[6 + 5], 0);
    }
}

TEST(NglMeshEdges, EulersFormulaOnClosedSurfaces) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        const RandomSphere sphere(seed);
        const TestMesh mesh(sphere.coords, {sphere.triangles, sphere.quads});
        const EdgeCount count = countEdges(mesh);
        const int faces =
            static_cast<int>(sphere.triangles.indices.size() / 3 + sphere.quads.indices.size() / 4);
        EXPECT_EQ(mesh->vertexCount - count.all + faces, 2) << "seed " << seed;
        EXPECT_EQ(count.features, 0) << "a fine sphere has no corners; seed " << seed;
    }
}

TEST(NglMeshEdges, ListsEveryEdgeOnceWhereOneVertexHasMany) {
    // A fan of triangles round vertex 0, whose list of sides is long and not in order.
    constexpr int kSpokes = 5000;
    std::vector<double> coords = {0, 0, 0};
    TestBlock fan{3, {}};
    std::vector<std::uint32_t> rim(kSpokes);
    for (std::uint32_t i = 0; i < kSpokes; ++i)
        rim[i] = i * 7 % kSpokes + 1;
    for (int i = 0; i < kSpokes; ++i) {
        coords.insert(coords.end(), {std::cos(i), std::sin(i), 0});
        const std::uint32_t next = rim[(i + 1) % kSpokes];
        fan.indices.insert(fan.indices.end(), {0, rim[i], next});
    }
    const TestMesh mesh(coords, {fan});
    ngl_process_mesh_edges(mesh);
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> seen;
    for (std::uint32_t i = 0; i < mesh->edgeCount; ++i)
        ++seen[{mesh->edges[2 * i], mesh->edges[2 * i + 1]}];
    EXPECT_EQ(mesh->edgeCount, 2u * kSpokes);
    EXPECT_EQ(seen.size(), 2u * kSpokes);
}
