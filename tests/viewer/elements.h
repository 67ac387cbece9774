// Elements by their nodes' places, meshes of few cells, and what they measure.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "viewer/model/celltypes.h"
#include "viewer/model/surface.h"
#include "viewer/model/vectors.h"

namespace nrutest {

using namespace nruview;
using Index = std::uint32_t;
using Cell = std::pair<CellType, std::vector<Index>>;

inline Model modelOf(std::vector<Point> nodes, const std::vector<Cell>& cells) {
    Model model;
    model.nodes = std::move(nodes);
    for (const auto& [type, cellNodes] : cells)
        model.addCell(type, cellNodes);
    return model;
}

/// The vectors that the axes of a reference element are sent to.
using Axes = std::array<Point, 3>;
const Axes kSkew = {{{2, 0.25, -0.125}, {0.5, 1.5, 0.375}, {-0.25, 0.125, 3}}};
const Axes kMirrored = {{{-2, 0.25, -0.125}, {-0.5, 1.5, 0.375}, {0.25, 0.125, 3}}};

inline double determinant(const Axes& axes) {
    return std::abs(dot(axes[0], cross(axes[1], axes[2])));
}

/// An element of VTK's type number whose nodes stand at places in quarters of the axes, three digits each.
inline Model elementAt(int vtkNumber, const std::string& places, const Axes& axes) {
    Model model;
    std::vector<Index> nodes;
    for (std::size_t i = 0; i < places.size(); i += 4) {
        Point node{5, -7, 2};
        for (std::size_t k = 0; k < 3; ++k)
            node = node + (places[i + k] - '0') / 4.0 * axes[k];
        model.nodes.push_back(node);
        nodes.push_back(static_cast<Index>(nodes.size()));
    }
    model.addCell(cellTypeOfVtk(vtkNumber).value(), nodes);
    return model;
}

const std::string kTetra = "000 400 040 004", kTetraMiddles = " 200 220 020 002 202 022";
const std::string kHexa = "000 400 440 040 004 404 444 044";
const std::string kHexaMiddles = " 200 420 240 020 204 424 244 024 002 402 442 042";
const std::string kHexaCentres = " 022 422 202 242 220 224 222";
const std::string kWedge = "000 400 040 004 404 044", kWedgeMiddles = " 200 220 020 204 224 024 002 402 042";
const std::string kPyramid = "000 400 440 040 224", kPyramidMiddles = " 200 420 240 020 112 312 332 132";

/// VTK's number of a type, nodes in VTK's order, the volume of the reference element, and how many faces,
/// triangles, quads and edges its skin has.
struct Solid {
    int vtkNumber;
    std::string places;
    double volume;
    std::array<std::size_t, 4> skin;
};
const std::vector<Solid> kSolids = {
    {10, kTetra, 1. / 6, {4, 4, 0, 6}},
    {24, kTetra + kTetraMiddles, 1. / 6, {4, 16, 0, 12}},
    {11, "000 400 040 440 004 404 044 444", 1, {6, 0, 6, 12}},
    {12, kHexa, 1, {6, 0, 6, 12}},
    {25, kHexa + kHexaMiddles, 1, {6, 0, 24, 24}},
    {29, kHexa + kHexaMiddles + kHexaCentres, 1, {6, 0, 24, 24}},
    {13, kWedge, 0.5, {5, 2, 3, 9}},
    {26, kWedge + kWedgeMiddles, 0.5, {5, 8, 12, 18}},
    {32, kWedge + kWedgeMiddles + " 202 222 022", 0.5, {5, 8, 12, 18}},
    {14, kPyramid, 1. / 3, {5, 4, 1, 8}},
    {27, kPyramid + kPyramidMiddles, 1. / 3, {5, 16, 4, 16}},
};

/// Unit hexahedra in a box of these lengths, rows along x first.
inline Model hexahedra(Index nx, Index ny, Index nz) {
    Model model;
    const Index layer = (nx + 1) * (ny + 1);
    for (Index i = 0; i < layer * (nz + 1); ++i)
        model.nodes.push_back({1.0 * (i % (nx + 1)), 1.0 * (i % layer / (nx + 1)), 1.0 * (i / layer)});
    for (Index i = 0; i < nx * ny * nz; ++i) {
        const Index at = i % nx + (nx + 1) * (i / nx % ny) + layer * (i / nx / ny);
        std::array corners = {at, at + 1, at + nx + 2, at + nx + 1};
        // Cells begin at different corners: their faces would be split differently by their own orders.
        std::rotate(corners.begin(), corners.begin() + i % 2, corners.end());
        const auto [a, b, c, d] = corners;
        model.addCell(CellType::Hexa, std::array{a, b, c, d, a + layer, b + layer, c + layer, d + layer});
    }
    return model;
}

/// The points of a skin: the nodes, then the centres by their weights.
inline std::vector<Point> pointsOf(const Model& model, const Surface& surface) {
    std::vector<Point> points = model.nodes;
    for (const Surface::Centre& centre : surface.centres) {
        Point sum{};
        for (std::size_t i = 0; i < 8; ++i)
            sum = sum + centre.weights[i] * model.nodes[centre.nodes[i]];
        points.push_back(sum);
    }
    return points;
}

/// A triangle, or one of those that a face of more corners is cut into.
using Piece = std::array<Point, 3>;

/// Those of cells that are shown; without a list all are.
inline std::vector<Piece> piecesOf(const Model& model, const Surface& surface,
                                   const std::vector<bool>& shown = {}) {
    const std::vector<Point> points = pointsOf(model, surface);
    std::vector<Piece> pieces;
    forEachFace(surface, [&](std::span<const Index> face, Index cell) {
        for (std::size_t i = 2; i < face.size() && (shown.empty() || shown[cell]); ++i)
            pieces.push_back({points[face[0]], points[face[i - 1]], points[face[i]]});
    });
    return pieces;
}

/// By the divergence theorem: positive when closed and outward.
inline double volumeOf(const std::vector<Piece>& pieces) {
    double volume = 0;
    for (const auto& [a, b, c] : pieces)
        volume += dot(a, cross(b - a, c - a)) / 6;
    return volume;
}

inline Point meanOf(const std::vector<Point>& points) {
    Point sum{};
    for (const Point& point : points)
        sum = sum + point;
    return 1.0 / static_cast<double>(points.size()) * sum;
}

/// Corners of which every mean is another, then nodes in the middle of the corners that each word names.
inline std::vector<Point> nodesAmong(int corners, const std::string& words) {
    std::vector<Point> nodes;
    for (int i = 0; i < corners; ++i)
        nodes.push_back({1.0 * i, 1.0 * i * i, std::pow(4.0, i)});
    std::istringstream list(words);
    for (std::string word; list >> word;) {
        std::vector<Point> of;
        for (const char digit : word)
            of.push_back(nodes[static_cast<std::size_t>(digit - '0')]);
        nodes.push_back(meanOf(of));
    }
    return nodes;
}

/// That the nodes of a cell's edges and faces are in the middle of the corners about them.
inline void expectMiddles(const Model& model, std::size_t cell) {
    const auto at = [&](std::size_t place) { return model.nodes[model.cellNodes(cell)[place]]; };
    const auto expect = [&](std::size_t place, const std::vector<Point>& about) {
        EXPECT_LT(length(at(place) - meanOf(about)), 1e-12 * length(at(place)) + 1e-12)
            << cellTypeName(model.types[cell]) << " " << place;
    };
    if (model.types[cell] == CellType::Line3)
        expect(2, {at(0), at(1)});
    if (model.types[cell] == CellType::Hexa27)
        expect(26, {at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7)});
    for (const FaceShape& face : cellShape(model.types[cell]).faces) {
        std::vector<Point> corners;
        for (std::size_t i = 0; i < face.corners; ++i)
            corners.push_back(at(face.nodes[i]));
        for (std::size_t i = 0; i + face.corners < face.count; ++i)
            expect(face.nodes[face.corners + i],
                   i == face.corners ? corners : std::vector{corners[i], corners[(i + 1) % face.corners]});
    }
}

} // namespace nrutest
