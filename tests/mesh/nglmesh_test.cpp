// The mesh record: made from flat and indirect arrays, extended, copied, destroyed, with nothing leaked.
#include <cstddef>
#include <cstdlib>
#include <iterator>

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
    EXPECT_EQ(mesh->blocks, nullptr);
    EXPECT_EQ(mesh->edgeCount, 0u);
    EXPECT_EQ(mesh->edges, nullptr);
    NglDestroyMesh(mesh);
    NHostFree(mesh);
}

} // namespace

TEST(NglMesh, KeepsTheHostsLayout) {
    const std::size_t word = sizeof(void*);
    const std::size_t mesh[] = {offsetof(_NgMeshStr, vertexCount),     offsetof(_NgMeshStr, coords),
                                offsetof(_NgMeshStr, normals),         offsetof(_NgMeshStr, reserved),
                                offsetof(_NgMeshStr, edgeCount),       offsetof(_NgMeshStr, edges),
                                offsetof(_NgMeshStr, edgeFaceNormals), offsetof(_NgMeshStr, edgeWeights),
                                offsetof(_NgMeshStr, blocks),          sizeof(_NgMeshStr)};
    for (std::size_t i = 0; i < std::size(mesh); ++i)
        EXPECT_EQ(mesh[i], i * word) << "field " << i;
    EXPECT_EQ(offsetof(_NgConnectStr, elementCount), 4u);
    EXPECT_EQ(offsetof(_NgConnectStr, indices), 8u);
    EXPECT_EQ(offsetof(_NgConnectStr, next), 8 + word);
}

TEST(NglMesh, MakesCopiesAndDestroysWithoutLeaks) {
    const std::size_t before = NHostLiveBlocks();
    double coords[] = {1, 2, 3, 4, 5, 6, 7, 8, 9}, normals[] = {0, 0, 1, 0, 1, 0, 1, 0, 0};
    double* indirect[] = {coords + 6, coords, coords + 3};
    unsigned triangle[] = {0, 1, 2}, bars[] = {2, 1, 1, 0};
    _NgMeshStr* mesh = ngl_create_mesh(3, indirect, normals, 1, 0, 1);
    ngl_add_connect(mesh, 1, 3, triangle, 1);
    ngl_add_connect(mesh, 2, 2, bars, 1);
    ngl_process_mesh_edges(mesh);
    ASSERT_GT(mesh->edgeCount, 0u);
    _NgMeshStr* copy = nullptr;
    ASSERT_EQ(NglCopyNgMesh(mesh, &copy), 0);
    destroyTwice(mesh);

    EXPECT_EQ(listOf(copy->coords, 9), (std::vector<double>{7, 8, 9, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(listOf(copy->normals, 9), listOf(normals, 9));
    ASSERT_TRUE(copy->blocks && copy->blocks->next);
    EXPECT_EQ(listOf(copy->blocks->indices, 3), listOf(triangle, 3));
    EXPECT_EQ(listOf(copy->blocks->next->indices, 4), listOf(bars, 4));
    EXPECT_EQ(copy->blocks->next->elementCount, 2u);
    EXPECT_EQ(copy->blocks->next->next, nullptr);
    EXPECT_EQ(copy->edges, nullptr);
    destroyTwice(copy);
    EXPECT_EQ(NHostLiveBlocks(), before);
}

TEST(NglMesh, TakesOverWhatItDoesNotCopyAndRefusesWhatItCannotHold) {
    const std::size_t before = NHostLiveBlocks();
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
    EXPECT_EQ(NHostLiveBlocks(), before);
}

TEST(NglMesh, GivesBackEverythingWhenMemoryRunsOut) {
    static int allowed = 1000;
    NHostServices services{};
    services.allocate = [](void*, std::size_t bytes, const char*, int) {
        return allowed-- > 0 ? std::malloc(bytes) : nullptr;
    };
    services.release = [](void*, void* block) { std::free(block); };
    ASSERT_EQ(NHostSetServices(&services), 0);
    {
        const TestMesh mesh(cubeCoords(), {cubeQuads(), {3, {0, 1, 2}}}, cubeCoords());
        const std::size_t held = NHostLiveBlocks();
        _NgMeshStr* copy = nullptr;
        int failures = 0;
        for (allowed = 0; NglCopyNgMesh(mesh, &copy) != 0; allowed = ++failures)
            EXPECT_EQ(NHostLiveBlocks(), held) << "after failure " << failures;
        EXPECT_EQ(failures, 7) << "record, coordinates, normals, and two for each block";
        destroyTwice(copy);
        for (allowed = failures = 0; mesh->edges == nullptr; allowed = ++failures) {
            EXPECT_EQ(NHostLiveBlocks(), held);
            ngl_process_mesh_edges(mesh);
        }
        EXPECT_EQ(mesh->edgeCount, 13u);
    }
    EXPECT_EQ(NHostLiveBlocks(), 0u);
    NHostSetServices(nullptr);
}
