// The mesh record: made from flat and indirect arrays, extended, copied, destroyed, with nothing leaked.
#include <cstddef>

#include <gtest/gtest.h>

#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

template <class T>
std::vector<T> listOf(const T* values, std::size_t count) {
    return {values, values + count};
}

void destroyTwice(_NgMeshStr* mesh) {
    NglDestroyMesh(mesh);
    EXPECT_EQ(mesh->vertexCount, 0);
    EXPECT_TRUE(!mesh->blocks && !mesh->edges && mesh->edgeCount == 0);
    NglDestroyMesh(mesh);
    NHostFree(mesh);
}

} // namespace

TEST(NglMesh, KeepsTheHostsLayout) {
    const std::size_t fields[] = {offsetof(_NgMeshStr, vertexCount),     offsetof(_NgMeshStr, coords),
                                  offsetof(_NgMeshStr, normals),         offsetof(_NgMeshStr, reserved),
                                  offsetof(_NgMeshStr, edgeCount),       offsetof(_NgMeshStr, edges),
                                  offsetof(_NgMeshStr, edgeFaceNormals), offsetof(_NgMeshStr, edgeWeights),
                                  offsetof(_NgMeshStr, blocks),          sizeof(_NgMeshStr)};
    EXPECT_EQ(listOf(fields, 10), (std::vector<std::size_t>{0, 8, 16, 24, 32, 40, 48, 56, 64, 72}));
    EXPECT_EQ(offsetof(_NgConnectStr, elementCount), 4u);
    EXPECT_EQ(offsetof(_NgConnectStr, indices), 8u);
    EXPECT_EQ(offsetof(_NgConnectStr, next), 16u);
}

TEST(NglMesh, MakesCopiesAndDestroysWithoutLeaks) {
    double coords[] = {1, 2, 3, 4, 5, 6, 7, 8, 9}, normals[] = {0, 0, 1, 0, 1, 0, 1, 0, 0};
    double* indirect[] = {coords + 6, coords, coords + 3};
    unsigned triangle[] = {0, 1, 2}, bars[] = {2, 1, 1, 0};
    _NgMeshStr* mesh = ngl_create_mesh(3, indirect, normals, 1, 0, 1);
    ngl_add_connect(mesh, 1, 3, triangle, 1);
    ngl_add_connect(mesh, 2, 2, bars, 1);
    ngl_add_connect(mesh, 1, 1, triangle, 1);
    ngl_process_mesh_edges(mesh);
    _NgMeshStr* copy = nullptr;
    ASSERT_EQ(NglCopyNgMesh(mesh, &copy), 0);
    destroyTwice(mesh);

    EXPECT_EQ(listOf(copy->coords, 9), (std::vector<double>{7, 8, 9, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(listOf(copy->normals, 9), listOf(normals, 9));
    ASSERT_TRUE(copy->blocks && copy->blocks->next && copy->blocks->next->next);
    EXPECT_EQ(listOf(copy->blocks->indices, 3), listOf(triangle, 3));
    EXPECT_EQ(listOf(copy->blocks->next->indices, 4), listOf(bars, 4));
    EXPECT_EQ(copy->blocks->next->elementCount, 2u);
    EXPECT_EQ(copy->blocks->next->next->next, nullptr);
    EXPECT_EQ(copy->edges, nullptr);
    destroyTwice(copy);
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}

TEST(NglMesh, TakesOverWhatItDoesNotCopyAndRefusesWhatItCannotHold) {
    auto* coords = static_cast<double*>(NHOST_ALLOCATE(9 * sizeof(double)));
    auto* indices = static_cast<unsigned*>(NHOST_ALLOCATE(3 * sizeof(unsigned)));
    EXPECT_EQ(ngl_create_mesh(0x80000000u, coords, nullptr, 0, 0, 0), nullptr);
    _NgMeshStr* empty = ngl_create_mesh(0, coords, coords, 0, 0, 1);
    _NgMeshStr* copy = empty;
    EXPECT_EQ(NglCopyNgMesh(empty, &copy), 1);
    EXPECT_EQ(copy, empty) << "the output of a refused copy stays as it was";
    destroyTwice(empty);

    _NgMeshStr* mesh = ngl_create_mesh(3, coords, nullptr, 0, 0, 0);
    for (int size : {-1, 0, 32768})
        ngl_add_connect(mesh, 1, size, indices, 1);
    EXPECT_EQ(mesh->blocks, nullptr);
    ngl_add_connect(mesh, 1, 3, indices, 0);
    EXPECT_EQ(mesh->coords, coords);
    EXPECT_EQ(mesh->blocks->indices, indices);
    unsigned listed[] = {0, 1}; // no edges, so not the mesh's own array
    mesh->edges = listed;
    ngl_process_mesh_edges(mesh);
    EXPECT_NE(mesh->edges, listed);
    destroyTwice(mesh);
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}
