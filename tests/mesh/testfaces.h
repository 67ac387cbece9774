// Faces for tests of element meshes: nodes, triangles and quads that are added one by one or as sheets.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "NRenderUtl/mesh/nmesh.h"

namespace nrutest {

struct TestFaces {
    std::vector<_NgPoint3Str> nodes;
    std::vector<std::array<std::uint32_t, 3>> triangles;
    std::vector<std::array<std::uint32_t, 4>> quads;

    std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(nodes.size()); }
    /// Cells of quads, or of two triangles each, over nodes at position(column, row) for 0..side.
    template <class Position>
    void addSheet(std::uint32_t side, bool ofQuads, const Position& position) {
        const std::uint32_t first = nodeCount();
        for (std::uint32_t v = 0; v < (side + 1) * (side + 1); ++v)
            nodes.push_back(position(v % (side + 1), v / (side + 1)));
        for (std::uint32_t cell = 0; cell < side * side; ++cell) {
            const std::uint32_t a = first + cell + cell / side, b = a + 1, d = a + side + 1, c = d + 1;
            if (ofQuads)
                quads.push_back({a, b, c, d});
            else
                triangles.insert(triangles.end(), {{a, b, d}, {d, b, c}});
        }
    }
    ngl::NglElementMeshInput input() const {
        ngl::NglElementMeshInput input;
        input.nodeCount = nodeCount();
        input.nodes = nodes.empty() ? nullptr : &nodes[0].x;
        input.triangleCount = static_cast<std::uint32_t>(triangles.size());
        input.triangles = triangles.empty() ? nullptr : triangles[0].data();
        input.quadCount = static_cast<std::uint32_t>(quads.size());
        input.quads = quads.empty() ? nullptr : quads[0].data();
        return input;
    }
};

} // namespace nrutest
