// The cell types' tables. Faces are derived from corner faces and edges, so that a mid-side node is written
// once.
#include "viewer/model/celltypes.h"

namespace nruview {

namespace {

constexpr std::uint8_t kNone = 255;
using Corners = std::array<std::uint8_t, 4>; // triangles end with kNone
using Edge = std::array<std::uint8_t, 2>;

/// Cells of one shape: faces as seen from outside, edges in the order of their mid-side nodes, and the face
/// with a node at its centre for each such node, in their order.
template <std::size_t F, std::size_t E>
struct Family {
    std::uint8_t corners;
    std::array<Corners, F> faces;
    std::array<Edge, E> edges;
};

constexpr Family<1, 3> kTriangle = {3, {{{0, 1, 2, kNone}}}, {{{0, 1}, {1, 2}, {2, 0}}}};
constexpr Family<1, 4> kQuad = {4, {{{0, 1, 2, 3}}}, {{{0, 1}, {1, 2}, {2, 3}, {3, 0}}}};
constexpr Family<1, 0> kPixel = {4, {{{0, 1, 3, 2}}}, {}};
constexpr Family<4, 6> kTetra = {4,
                                 {{{0, 2, 1, kNone}, {0, 1, 3, kNone}, {1, 2, 3, kNone}, {2, 0, 3, kNone}}},
                                 {{{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}}};
constexpr Family<6, 12> kHexa = {
    8,
    {{{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}}},
    {{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}}}};
constexpr Family<6, 0> kVoxel = {
    8, {{{0, 4, 6, 2}, {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 2, 3, 1}, {4, 5, 7, 6}}}, {}};
constexpr Family<5, 9> kWedge = {
    6,
    {{{0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}, {0, 2, 1, kNone}, {3, 4, 5, kNone}}},
    {{{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}}}};
constexpr Family<5, 8> kPyramid = {
    5,
    {{{0, 3, 2, 1}, {0, 1, 4, kNone}, {1, 2, 4, kNone}, {2, 3, 4, kNone}, {3, 0, 4, kNone}}},
    {{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}}}};

template <std::size_t E>
constexpr std::uint8_t midSide(const std::array<Edge, E>& edges, std::uint8_t a, std::uint8_t b) {
    for (std::uint8_t i = 0; i < E; ++i)
        if ((edges[i][0] == a && edges[i][1] == b) || (edges[i][0] == b && edges[i][1] == a))
            return i;
    return kNone;
}

/// The faces of one type of a family. The first `centres` faces have a node at their centre: nodes of the
/// cell after its mid-sides.
template <bool kQuadratic, std::size_t kCentres, std::size_t F, std::size_t E>
constexpr std::array<FaceShape, F> makeFaces(const Family<F, E>& family) {
    std::array<FaceShape, F> faces{};
    for (std::size_t f = 0; f < F; ++f) {
        FaceShape& face = faces[f];
        const Corners& corners = family.faces[f];
        face.corners = corners[3] == kNone ? 3 : 4;
        for (std::uint8_t i = 0; i < face.corners; ++i) {
            face.nodes[i] = corners[i];
            if (kQuadratic)
                face.nodes[face.corners + i] =
                    family.corners + midSide(family.edges, corners[i], corners[(i + 1) % face.corners]);
        }
        face.count = kQuadratic ? 2 * face.corners : face.corners;
        if (f < kCentres)
            face.nodes[face.count++] = static_cast<std::uint8_t>(family.corners + E + f);
    }
    return faces;
}

constexpr auto kTriangleFaces = makeFaces<false, 0>(kTriangle);
constexpr auto kTriangle6Faces = makeFaces<true, 0>(kTriangle);
constexpr auto kTriangle7Faces = makeFaces<true, 1>(kTriangle);
constexpr auto kQuadFaces = makeFaces<false, 0>(kQuad);
constexpr auto kQuad8Faces = makeFaces<true, 0>(kQuad);
constexpr auto kQuad9Faces = makeFaces<true, 1>(kQuad);
constexpr auto kPixelFaces = makeFaces<false, 0>(kPixel);
constexpr auto kTetraFaces = makeFaces<false, 0>(kTetra);
constexpr auto kTetra10Faces = makeFaces<true, 0>(kTetra);
constexpr auto kVoxelFaces = makeFaces<false, 0>(kVoxel);
constexpr auto kHexaFaces = makeFaces<false, 0>(kHexa);
constexpr auto kHexa20Faces = makeFaces<true, 0>(kHexa);
constexpr auto kHexa27Faces = makeFaces<true, 6>(kHexa);
constexpr auto kWedgeFaces = makeFaces<false, 0>(kWedge);
constexpr auto kWedge15Faces = makeFaces<true, 0>(kWedge);
constexpr auto kWedge18Faces = makeFaces<true, 3>(kWedge);
constexpr auto kPyramidFaces = makeFaces<false, 0>(kPyramid);
constexpr auto kPyramid13Faces = makeFaces<true, 0>(kPyramid);

// In the order of CellType.
const std::array<CellShape, 25> kShapes = {{
    {"vertex", 1, 1, 1, 0, {}},
    {"poly-vertex", 2, 0, 1, 0, {}},
    {"line", 3, 2, 2, 1, {}},
    {"quadratic line", 21, 3, 3, 1, {}},
    {"polyline", 4, 0, 2, 1, {}},
    {"triangle", 5, 3, 3, 2, kTriangleFaces},
    {"quadratic triangle", 22, 6, 6, 2, kTriangle6Faces},
    {"biquadratic triangle", 34, 7, 7, 2, kTriangle7Faces},
    {"quad", 9, 4, 4, 2, kQuadFaces},
    {"quadratic quad", 23, 8, 8, 2, kQuad8Faces},
    {"biquadratic quad", 28, 9, 9, 2, kQuad9Faces},
    {"polygon", 7, 0, 3, 2, {}},
    {"triangle strip", 6, 0, 3, 2, {}},
    {"pixel", 8, 4, 4, 2, kPixelFaces},
    {"tetrahedron", 10, 4, 4, 3, kTetraFaces},
    {"quadratic tetrahedron", 24, 10, 10, 3, kTetra10Faces},
    {"voxel", 11, 8, 8, 3, kVoxelFaces},
    {"hexahedron", 12, 8, 8, 3, kHexaFaces},
    {"quadratic hexahedron", 25, 20, 20, 3, kHexa20Faces},
    {"triquadratic hexahedron", 29, 27, 27, 3, kHexa27Faces},
    {"wedge", 13, 6, 6, 3, kWedgeFaces},
    {"quadratic wedge", 26, 15, 15, 3, kWedge15Faces},
    {"biquadratic wedge", 32, 18, 18, 3, kWedge18Faces},
    {"pyramid", 14, 5, 5, 3, kPyramidFaces},
    {"quadratic pyramid", 27, 13, 13, 3, kPyramid13Faces},
}};

} // namespace

const CellShape& cellShape(CellType type) {
    return kShapes[static_cast<std::size_t>(type)];
}

std::optional<CellType> cellTypeOfVtk(std::int64_t number) {
    for (std::size_t i = 0; i < kShapes.size(); ++i)
        if (kShapes[i].vtkNumber == number)
            return static_cast<CellType>(i);
    return std::nullopt;
}

} // namespace nruview
