// Builds the library's mesh records vertex by vertex.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/model/model.h"

namespace nruview {

struct MeshDeleter {
    void operator()(_NgMeshStr* mesh) const {
        NglDestroyMesh(mesh);
        NHostFree(mesh);
    }
};
using MeshPtr = std::unique_ptr<_NgMeshStr, MeshDeleter>;

/// A mesh with a contour texture coordinate for each vertex.
struct ContourMesh {
    MeshPtr mesh; ///< null when there is nothing in it
    std::vector<float> values;
};

class MeshBuilder {
public:
    /// Returns the index of the new vertex.
    std::uint32_t addVertex(const Point& position, float value = 0.0f);
    /// Three or four vertices.
    void addFace(std::span<const std::uint32_t> corners);
    void addEdge(std::uint32_t from, std::uint32_t to);
    ContourMesh finish();

private:
    std::vector<Point> m_positions;
    std::vector<float> m_values;
    std::vector<std::uint32_t> m_triangles, m_quads, m_edges;
};

} // namespace nruview
