// The geometry of an element mesh: vertices and faces as every route draws and picks them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "NRenderUtl/mesh/nmesh.h"

/// Vertex i below nodeCount is node i; behind them stand the copies of nodes that need another normal. A quad
/// is drawn and picked as the triangles 0 1 2 and 0 2 3 of its corners.
struct ElementSurface {
    using Vector = std::array<float, 3>;

    std::array<double, 3> origin{}; ///< model position of the vertices' zero
    std::uint32_t nodeCount = 0;
    std::uint32_t triangleCount = 0;
    std::uint32_t quadCount = 0;
    std::uint32_t elementCount = 0;
    std::vector<Vector> positions;          ///< of each vertex, relative to the origin
    std::vector<Vector> normals;            ///< of each vertex, unit length
    std::vector<std::uint32_t> copiedNodes; ///< node of vertex nodeCount + i
    std::vector<std::uint32_t> corners;     ///< vertices: 3 for each triangle, then 4 for each quad
    std::vector<std::uint32_t> elements;    ///< of each face, triangles first; empty: face i is element i

    std::uint32_t faceCount() const { return triangleCount + quadCount; }
    /// Vertices of a face, 3 or 4.
    std::span<const std::uint32_t> face(std::uint32_t index) const {
        const std::size_t triangles = 3 * std::size_t{triangleCount};
        return index < triangleCount
                   ? std::span(corners).subspan(3 * std::size_t{index}, 3)
                   : std::span(corners).subspan(triangles + 4 * std::size_t{index - triangleCount}, 4);
    }
    std::uint32_t elementOf(std::uint32_t face) const { return elements.empty() ? face : elements[face]; }
    std::uint32_t nodeOf(std::uint32_t vertex) const {
        return vertex < nodeCount ? vertex : copiedNodes[vertex - nodeCount];
    }
};

/// Checks the host's arrays and makes a surface of them; nothing where they are not in order. Throws
/// std::bad_alloc.
std::optional<ElementSurface> makeElementSurface(const ngl::NglElementMeshInput& input);
