// Meshes for tests: built from lists, freed at the end of the block.
#pragma once

#include <cstdint>
#include <vector>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"

namespace nrutest {

/// Elements of one size, by their vertex indices.
struct TestBlock {
    int size;
    std::vector<std::uint32_t> indices;
};

class TestMesh {
public:
    TestMesh(std::vector<double> coords, std::vector<TestBlock> blocks, std::vector<double> normals = {})
        : m_mesh(ngl_create_mesh(static_cast<unsigned>(coords.size() / 3), coords.data(),
                                 normals.empty() ? nullptr : normals.data(), 0, 0, 1)) {
        for (auto& [size, indices] : blocks)
            ngl_add_connect(m_mesh, static_cast<unsigned>(indices.size() / size), size, indices.data(), 1);
    }
    ~TestMesh() {
        NglDestroyMesh(m_mesh);
        NHostFree(m_mesh);
    }
    TestMesh(const TestMesh&) = delete;
    TestMesh& operator=(const TestMesh&) = delete;
    _NgMeshStr* operator->() const { return m_mesh; }
    operator _NgMeshStr*() const { return m_mesh; }

private:
    _NgMeshStr* m_mesh;
};

/// Corners of the cube of half size 1 and its six quads, outward.
inline std::vector<double> cubeCoords() {
    return {-1, -1, -1, 1, -1, -1, 1, 1, -1, -1, 1, -1, -1, -1, 1, 1, -1, 1, 1, 1, 1, -1, 1, 1};
}
inline TestBlock cubeQuads() {
    return {4, {0, 3, 2, 1, 4, 5, 6, 7, 0, 1, 5, 4, 1, 2, 6, 5, 2, 3, 7, 6, 3, 0, 4, 7}};
}

} // namespace nrutest
