// Edge data: the edges of known bodies, which of them are features, and their face normals.
#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include <gtest/gtest.h>

#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

/// Two quads that share the edge 0-1 on the y axis, the second turned upward by an angle.
std::vector<double> foldCoords(double angleDeg) {
    const double c = std::cos(angleDeg * M_PI / 180), s = std::sin(angleDeg * M_PI / 180);
    return {0, 0, 0, 0, 3, 0, -2, 3, 0, -2, 0, 0, 2 * c, 0, 2 * s, 2 * c, 3, 2 * s};
}
const TestBlock kFold{4, {0, 1, 2, 3, 1, 0, 4, 5}}, kTwisted{4, {0, 1, 2, 3, 0, 1, 5, 4}};

} // namespace

TEST(NglMeshEdges, EdgesAndFeaturesOfKnownMeshes) {
    TestBlock split{3, {}};
    for (std::size_t q = 0; q < 24; q += 4)
        for (int corner : {0, 1, 2, 0, 2, 3})
            split.indices.push_back(cubeQuads().indices[q + corner]);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // coordinates, blocks, number of edges and of feature edges, all others being silhouettes
    const std::tuple<const char*, std::vector<double>, std::vector<TestBlock>, unsigned, int> rows[] = {
        {"cube of quads", cubeCoords(), {cubeQuads()}, 12, 12},
        {"cube of triangles", cubeCoords(), {split}, 18, 12},
        {"fold below the angle", foldCoords(29.99), {kFold}, 7, 6},
        {"fold above it", foldCoords(30.01), {kFold}, 7, 7},
        {"the other winding, below", foldCoords(-29.99), {kTwisted}, 7, 6},
        {"the other winding, above", foldCoords(-30.01), {kTwisted}, 7, 7},
        {"three sheets at one edge", foldCoords(0), {kFold, {3, {0, 1, 3}}}, 8, 8},
        {"a beam along the inner edge", foldCoords(0), {kFold, {2, {1, 0}}}, 7, 7},
        {"a beam alone, and a point", cubeCoords(), {{2, {0, 6, 6, 0}}, {1, {3}}}, 1, 1},
        {"a face without area", {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0}, {{3, {0, 1, 2, 0, 2, 3}}}, 5, 5},
        {"a quad collapsed to a triangle", foldCoords(0), {{4, {0, 1, 2, 2, 1, 0, 4, 5}}}, 6, 5},
        {"foreign indices", foldCoords(0), {{4, {0, 1, 2, 6, 1, 0, 4, 5}}, {3, {0, 1, 0xFFFFFFFF}}}, 4, 4},
        {"not a number", {nan, 0, 0, 0, 1, 0, 1, 0, 0, 1, 1, 0}, {{3, {0, 1, 2, 2, 1, 3}}}, 5, 5},
        {"coincident vertices are not one", std::vector<double>(18), {{3, {0, 1, 2, 3, 4, 5}}}, 6, 6},
    };
    for (const auto& [name, coords, blocks, edges, features] : rows) {
        const TestMesh mesh(coords, blocks);
        for (const char* pass : {"", ", built again"}) {
            ngl_process_mesh_edges(mesh);
            ASSERT_EQ(mesh->edgeCount, edges) << name << pass;
            EXPECT_EQ(std::count(mesh->edgeWeights, mesh->edgeWeights + edges, 0.0), features)
                << name << pass;
        }
    }
}

TEST(NglMeshEdges, NormalsOfTheTwoFaces) {
    // Whatever the winding of the second quad, both normals lie on one side of the sheet. Edge 0-3 has one
    // face.
    for (const TestBlock& block : {kFold, kTwisted}) {
        const TestMesh mesh(foldCoords(20), {block});
        ngl_process_mesh_edges(mesh);
        ASSERT_EQ(mesh->edges[1], 1u);
        const double expected[12] = {0, 0, 1, -std::sin(M_PI / 9), 0, std::cos(M_PI / 9), 0, 0, 1, 0, 0, 0};
        for (int i = 0; i < 12; ++i)
            EXPECT_NEAR(mesh->edgeFaceNormals[i], expected[i], 1e-15) << "component " << i;
    }
}
