// The drawable skin of a model: outer faces of solids, faces of shells, lines of beams, single points.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

/// Triangles and quads with the cell each belongs to; cells that are not shown have theirs too. Quadratic
/// faces are split at their mid-side nodes, polygons into triangles; every node is a node of the model but
/// for the centres of quadratic quads without one (see centres).
struct Surface {
    std::vector<std::array<std::uint32_t, 3>> triangles;
    std::vector<std::array<std::uint32_t, 4>> quads;
    std::vector<std::uint32_t> triangleCells; ///< cell of each triangle
    std::vector<std::uint32_t> quadCells;
    std::vector<std::array<std::uint32_t, 2>> lines; ///< pieces of beams and polylines
    std::vector<std::uint32_t> lineCells;
    std::vector<std::uint32_t> points; ///< single-node elements
    std::vector<std::uint32_t> pointCells;
    /// Outlines of the faces of shown cells as the elements have them: pairs of nodes, each once, mid-side
    /// pieces included, no inner edge of a split. In ascending order, the smaller node first.
    std::vector<std::array<std::uint32_t, 2>> edges;
    std::size_t faceCount = 0;                    ///< element faces before splitting
    std::size_t triangleFaces = 0, quadFaces = 0; ///< how many of these have three or four corners

    /// Additional points: point nodeCount + i is the mean of the nodes of centres[i], with the shape-function
    /// weights.
    struct Centre {
        std::array<std::uint32_t, 8> nodes;
        std::array<double, 8> weights;
    };
    std::vector<Centre> centres;
};

/// Outer faces point outward, whatever the node order of their cells; shell faces keep their own order. Of a
/// shell on the outer face of a solid the shell is drawn. Besides the skin of all cells there is that of the
/// shown ones (a flag for each cell; none: all are), so that nothing is missing where others are hidden. The
/// model must have passed checkModel.
Surface extractSurface(const Model& model, const std::vector<bool>& shown = {});

/// The area of all faces, each as the triangles and quads that it is split into.
double surfaceArea(const Model& model, const Surface& surface);

/// Corners of a face by its place in the order of forEachFace.
inline std::span<const std::uint32_t> faceAt(const Surface& surface, std::size_t face) {
    const std::size_t triangles = surface.triangles.size();
    if (face < triangles)
        return surface.triangles[face];
    return surface.quads[face - triangles];
}

/// Calls visit(corners, cell) for every triangle, then every quad.
template <typename Visit>
void forEachFace(const Surface& surface, Visit visit) {
    for (std::size_t i = 0; i < surface.triangles.size(); ++i)
        visit(std::span<const std::uint32_t>(surface.triangles[i]), surface.triangleCells[i]);
    for (std::size_t i = 0; i < surface.quads.size(); ++i)
        visit(std::span<const std::uint32_t>(surface.quads[i]), surface.quadCells[i]);
}

} // namespace nruview
