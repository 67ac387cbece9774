// The mesh record: made from flat and indirect arrays, extended, copied, destroyed, with nothing leaked.
#include <cstddef>
#include <cstdlib>
#include <iterator>

#include <gtest/gtest.h>

#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

std::vector<std::uint32_t> indicesOf(const _NgConnectStr* block) {
    return {block->indices, block->indices + std::size_t{block->elementCount} * block->verticesPerElement};
}

void destroy(_NgMeshStr* mesh) {
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
    EXPECT_EQ(offsetof(_NgConnectStr, verticesPerElement), 0u);
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
    destroy(mesh);

    EXPECT_EQ(copy->vertexCount, 3);
    EXPECT_EQ(std::vector<double>(copy->coords, copy->coords + 9),
              (std::vector<double>{7, 8, 9, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(std::vector<double>(copy->normals, copy->normals + 9),
              std::vector<double>(normals, normals + 9));
    ASSERT_TRUE(copy->blocks && copy->blocks->next);
    EXPECT_EQ(indicesOf(copy->blocks), (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(indicesOf(copy->blocks->next), (std::vector<std::uint32_t>{2, 1, 1, 0}));
    EXPECT_EQ(copy->blocks->next->next, nullptr);
    EXPECT_EQ(copy->edges, nullptr);
    EXPECT_EQ(copy->edgeCount, 0u);
    destroy(copy);
    EXPECT_EQ(NHostLiveBlocks(), before);
}

TEST(NglMesh, TakesOverWhatItDoesNotCopy) {
    const std::size_t before = NHostLiveBlocks();
    auto* coords = static_cast<double*>(NHOST_ALLOCATE(9 * sizeof(double)));
    auto* indices = static_cast<unsigned*>(NHOST_ALLOCATE(3 * sizeof(unsigned)));
    _NgMeshStr* mesh = ngl_create_mesh(3, coords, nullptr, 0, 0, 0);
    ngl_add_connect(mesh, 1, 3, indices, 0);
    EXPECT_EQ(mesh->coords, coords);
    EXPECT_EQ(mesh->normals, nullptr);
    EXPECT_EQ(mesh->blocks->indices, indices);
    destroy(mesh);
    EXPECT_EQ(NHostLiveBlocks(), before);
}

TEST(NglMesh, RefusesWhatItCannotHold) {
    const std::size_t before = NHostLiveBlocks();
    double coords[3] = {};
    unsigned indices[3] = {};
    EXPECT_EQ(ngl_create_mesh(0x80000000u, coords, nullptr, 0, 0, 0), nullptr);
    _NgMeshStr* empty = ngl_create_mesh(0, coords, coords, 0, 0, 1);
    for (int size : {-1, 0, 32768})
        ngl_add_connect(empty, 1, size, indices, 1);
    EXPECT_EQ(empty->blocks, nullptr);
    _NgMeshStr* copy = empty;
    EXPECT_EQ(NglCopyNgMesh(empty, &copy), 1);
    EXPECT_EQ(copy, empty) << "the output of a refused copy stays as it was";
    destroy(empty);
    EXPECT_EQ(NHostLiveBlocks(), before);
}

TEST(NglMesh, GivesBackEverythingWhenMemoryRunsOut) {
    static int allowed;
    NHostServices services{};
    services.allocate = [](void*, std::size_t bytes, const char*, int) {
        return allowed-- > 0 ? std::malloc(bytes) : nullptr;
    };
    services.release = [](void*, void* block) { std::free(block); };
    ASSERT_EQ(NHostSetServices(&services), 0);
    allowed = 1000;
    const std::size_t before = NHostLiveBlocks();
    {
        const TestMesh mesh(cubeCoords(), {cubeQuads(), {3, {0, 1, 2}}}, cubeCoords());
        _NgMeshStr* copy = nullptr;
        const std::size_t held = NHostLiveBlocks();
        int failures = 0;
        for (;; ++failures) {
            allowed = failures;
            if (NglCopyNgMesh(mesh, &copy) == 0)
                break;
            EXPECT_EQ(NHostLiveBlocks(), held) << "after failure " << failures;
        }
        EXPECT_EQ(failures, 7) << "record, coordinates, normals, and two for each block";
        destroy(copy);
        for (allowed = 0; mesh->edges == nullptr; allowed = ++failures) {
            EXPECT_EQ(NHostLiveBlocks(), held);
            ngl_process_mesh_edges(mesh);
        }
        EXPECT_EQ(mesh->edgeCount, 13u);
    }
    EXPECT_EQ(NHostLiveBlocks(), before);
    NHostSetServices(nullptr);
}
