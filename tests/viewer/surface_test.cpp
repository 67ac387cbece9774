// Skins of single elements, of elements that touch, and of flat cells, against closed formulas for area and
// volume.
#include "viewer/surface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "viewer/vectors.h"

namespace {

using namespace nruview;
using testing::ElementsAre;

/// A point of the surface: a node, or a centre by its weights.
Point pointOf(const Model& model, const Surface& surface, std::uint32_t index) {
    if (index < model.nodes.size())
        return model.nodes[index];
    Point sum{};
    const Surface::Centre& centre = surface.centres[index - model.nodes.size()];
    for (std::size_t i = 0; i < 8; ++i)
        sum = sum + centre.weights[i] * model.nodes[centre.nodes[i]];
    return sum;
}

using Pieces = std::vector<std::array<Point, 3>>;

/// All pieces as triangles; quads are cut in two.
Pieces piecesOf(const Model& model, const Surface& surface) {
    Pieces pieces;
    forEachFace(surface, [&](std::span<const std::uint32_t> face, std::uint32_t) {
        for (std::size_t i = 2; i < face.size(); ++i)
            pieces.push_back({pointOf(model, surface, face[0]), pointOf(model, surface, face[i - 1]),
                              pointOf(model, surface, face[i])});
    });
    return pieces;
}

double areaOf(const Pieces& pieces) {
    double area = 0;
    for (const auto& [a, b, c] : pieces)
        area += length(cross(b - a, c - a)) / 2;
    return area;
}

/// By the divergence theorem: positive when closed and outward.
double volumeOf(const Pieces& pieces) {
    double volume = 0;
    for (const auto& [a, b, c] : pieces)
        volume += dot(a, cross(b, c)) / 6;
    return volume;
}

/// The vectors that the axes of a reference element are sent to.
using Axes = std::array<Point, 3>;
constexpr Axes kSkew = {{{2, 0.25, -0.125}, {0.5, 1.5, 0.375}, {-0.25, 0.125, 3}}};
constexpr Axes kMirrored = {{{-2, 0.25, -0.125}, {-0.5, 1.5, 0.375}, {0.25, 0.125, 3}}};

struct Solid {
    std::string name;
    CellType type;
    std::string nodes; ///< places in VTK's order, quarters of the reference element as digits
    double volume;     ///< of the reference element
    double (*area)(const Point&, const Point&, const Point&);
    std::size_t faces, triangles, quads, edges;
};

double boxArea(const Point& a, const Point& b, const Point& c) {
    return 2 * (length(cross(a, b)) + length(cross(b, c)) + length(cross(c, a)));
}
double tetraArea(const Point& a, const Point& b, const Point& c) {
    return (length(cross(a, b)) + length(cross(b, c)) + length(cross(c, a)) + length(cross(b - a, c - a))) /
           2;
}
double wedgeArea(const Point& a, const Point& b, const Point& c) {
    return length(cross(a, b)) + length(cross(a, c)) + length(cross(b, c)) + length(cross(b - a, c));
}
double pyramidArea(const Point& a, const Point& b, const Point& c) {
    return length(cross(a, b)) + (length(cross(a, c + 0.5 * b)) + length(cross(a, c - 0.5 * b)) +
                                  length(cross(b, c + 0.5 * a)) + length(cross(b, c - 0.5 * a))) /
                                     2;
}

const std::string kTetra = "000 400 040 004", kTetraMiddles = " 200 220 020 002 202 022";
const std::string kHexa = "000 400 440 040 004 404 444 044";
const std::string kHexaMiddles = " 200 420 240 020 204 424 244 024 002 402 442 042";
const std::string kHexaCentres = " 022 422 202 242 220 224 222";
const std::string kWedge = "000 400 040 004 404 044", kWedgeMiddles = " 200 220 020 204 224 024 002 402 042";
const std::string kPyramid = "000 400 440 040 224", kPyramidMiddles = " 200 420 240 020 112 312 332 132";

const std::vector<Solid> kSolids = {
    {"tetra", CellType::Tetra, kTetra, 1. / 6, tetraArea, 4, 4, 0, 6},
    {"tetra10", CellType::Tetra10, kTetra + kTetraMiddles, 1. / 6, tetraArea, 4, 16, 0, 12},
    {"voxel", CellType::Voxel, "000 400 040 440 004 404 044 444", 1, boxArea, 6, 0, 6, 12},
    {"hexa", CellType::Hexa, kHexa, 1, boxArea, 6, 0, 6, 12},
    {"hexa20", CellType::Hexa20, kHexa + kHexaMiddles, 1, boxArea, 6, 0, 24, 24},
    {"hexa27", CellType::Hexa27, kHexa + kHexaMiddles + kHexaCentres, 1, boxArea, 6, 0, 24, 24},
    {"wedge", CellType::Wedge, kWedge, 0.5, wedgeArea, 5, 2, 3, 9},
    {"wedgeOtherWay", CellType::Wedge, "004 404 044 000 400 040", 0.5, wedgeArea, 5, 2, 3, 9},
    {"wedge15", CellType::Wedge15, kWedge + kWedgeMiddles, 0.5, wedgeArea, 5, 8, 12, 18},
    {"wedge18", CellType::Wedge18, kWedge + kWedgeMiddles + " 202 222 022", 0.5, wedgeArea, 5, 8, 12, 18},
    {"pyramid", CellType::Pyramid, kPyramid, 1. / 3, pyramidArea, 5, 4, 1, 8},
    {"pyramid13", CellType::Pyramid13, kPyramid + kPyramidMiddles, 1. / 3, pyramidArea, 5, 16, 4, 16},
};

Model single(CellType type, const std::string& places, const Axes& axes, std::size_t dimensions = 3) {
    Model model;
    std::vector<std::uint32_t> nodes;
    for (std::size_t i = 0; i < places.size(); i += dimensions + 1) {
        Point node{5, -7, 2};
        for (std::size_t k = 0; k < dimensions; ++k)
            node = node + (places[i + k] - '0') / 4.0 * axes[k];
        model.nodes.push_back(node);
        nodes.push_back(static_cast<std::uint32_t>(nodes.size()));
    }
    model.addCell(type, nodes);
    return model;
}

TEST(Surface, SkinsOfSolidsAreClosedOutwardAndOfTheRightSize) {
    for (const Solid& solid : kSolids)
        for (const Axes& axes : {kSkew, kMirrored}) {
            SCOPED_TRACE(solid.name);
            const Model model = single(solid.type, solid.nodes, axes);
            const Surface surface = extractSurface(model);
            EXPECT_EQ(surface.faceCount, solid.faces);
            EXPECT_EQ(surface.triangles.size(), solid.triangles);
            EXPECT_EQ(surface.quads.size(), solid.quads);
            EXPECT_EQ(surface.edges.size(), solid.edges);
            const Pieces pieces = piecesOf(model, surface);
            const double determinant = std::abs(dot(axes[0], cross(axes[1], axes[2])));
            EXPECT_NEAR(volumeOf(pieces), solid.volume * determinant, 1e-12);
            EXPECT_NEAR(areaOf(pieces), solid.area(axes[0], axes[1], axes[2]), 1e-12);
        }
}

/// Quadratic shape functions carry a quadratic map exactly, so each centre must land where the map sends it.
Point bend(const Point& p) {
    return p + Point{0.25 * p[1] * p[1], 0.125 * p[0] * p[2], 0.0625 * p[0] * p[0] - 0.25 * p[0] * p[1]};
}

TEST(Surface, CurvedFacesPassThroughTheirMidSidesAndTrueCentres) {
    const Model straight =
        single(CellType::Hexa20, kHexa + kHexaMiddles, {{{1, 0, 0}, {0, 2, 0}, {0, 0, 3}}});
    Model curved = straight;
    for (Point& node : curved.nodes)
        node = bend(node);
    const Surface surface = extractSurface(curved);
    ASSERT_EQ(surface.centres.size(), 6u);
    std::set<std::uint32_t> used;
    for (const auto& quad : surface.quads)
        used.insert(quad.begin(), quad.end());
    EXPECT_EQ(used.size(), 26u);
    for (std::uint32_t i = 20; i < 26; ++i)
        EXPECT_LT(length(pointOf(curved, surface, i) - bend(pointOf(straight, surface, i))), 1e-12);
}

/// Nodes i + 3 j + 9 k at (i, j, k) for 0, 1, 2, then four at x = 4.
std::vector<Point> gridNodes() {
    std::vector<Point> nodes;
    for (int n = 0; n < 27; ++n)
        nodes.push_back({n % 3 * 1.0, n / 3 % 3 * 1.0, n / 9 * 1.0});
    nodes.insert(nodes.end(), {{4, 0, 0}, {4, 2, 0}, {4, 0, 2}, {4, 2, 2}});
    return nodes;
}

struct Cell {
    CellType type;
    std::vector<std::uint32_t> nodes;
};

struct Touching {
    std::string name;
    std::vector<Cell> cells;
    std::size_t faces;
    double volume; ///< shells on a solid must leave it closed; not a number where nothing is closed
};

const Cell kFirst = {CellType::Hexa, {0, 1, 4, 3, 9, 10, 13, 12}};
const Cell kSecond = {CellType::Hexa, {1, 2, 5, 4, 10, 11, 14, 13}};
const Cell kBox20 = {CellType::Hexa20,
                     {0, 2, 8, 6, 18, 20, 26, 24, 1, 5, 7, 3, 19, 23, 25, 21, 9, 11, 17, 15}};
const Cell kCollapsed = {CellType::Hexa, {0, 1, 4, 4, 9, 10, 13, 13}};

const std::vector<Touching> kTouching = {
    {"hexaHexa", {kFirst, kSecond}, 10, 2},
    {"hexaVoxel", {kFirst, {CellType::Voxel, {1, 2, 4, 5, 10, 11, 13, 14}}}, 10, 2},
    {"quadraticLinear", {kBox20, {CellType::Hexa, {2, 27, 28, 8, 20, 29, 30, 26}}}, 10, 16},
    {"hexaPyramid", {kFirst, {CellType::Pyramid, {9, 10, 13, 12, 18}}}, 9, 1 + 1. / 3},
    {"collapsed01", {{CellType::Hexa, {0, 0, 4, 3, 9, 9, 13, 12}}}, 5, 0.5},
    {"collapsed12", {{CellType::Hexa, {0, 1, 1, 3, 9, 10, 10, 12}}}, 5, 0.5},
    {"collapsed23", {kCollapsed}, 5, 0.5},
    {"collapsed30", {{CellType::Hexa, {0, 1, 4, 0, 9, 10, 13, 9}}}, 5, 0.5},
    {"collapsedTetra", {kCollapsed, {CellType::Tetra, {9, 10, 13, 18}}}, 7, 0.5 + 1. / 6},
    {"collapsedWedge", {kCollapsed, {CellType::Wedge, {0, 4, 3, 9, 13, 12}}}, 8, 1},
    {"apart", {kFirst, {CellType::Hexa, {14, 13, 16, 17, 23, 22, 25, 26}}}, 12, 2},
    {"shellOnSolid", {kFirst, {CellType::Quad, {9, 10, 13, 12}}}, 6, 1},
    {"shellBetween", {kFirst, kSecond, {CellType::Quad, {1, 4, 13, 10}}}, 11, NAN},
};

TEST(Surface, FacesThatCellsShareVanish) {
    for (const Touching& touching : kTouching) {
        SCOPED_TRACE(touching.name);
        Model model;
        model.nodes = gridNodes();
        for (const Cell& cell : touching.cells)
            model.addCell(cell.type, cell.nodes);
        const Surface surface = extractSurface(model);
        EXPECT_EQ(surface.faceCount, touching.faces);
        const Pieces pieces = piecesOf(model, surface);
        for (const auto& piece : pieces)
            EXPECT_GT(areaOf({piece}), 0.1);
        EXPECT_TRUE(!(std::abs(volumeOf(pieces) - touching.volume) > 1e-12)) << volumeOf(pieces);
        EXPECT_TRUE(!touching.name.starts_with("shell") ||
                    surface.quadCells.back() == touching.cells.size() - 1);
    }
}

struct Flat {
    std::string name;
    CellType type;
    std::string nodes; ///< as for solids, in the plane
    double area;       ///< positive when counter-clockwise
    std::size_t pieces;
    std::size_t edges;
};

const std::vector<Flat> kFlat = {
    {"pixel", CellType::Pixel, "00 20 03 23", 6, 1, 4},
    {"strip", CellType::TriangleStrip, "00 10 01 11 02", 1.5, 3, 7},
    {"triangle6", CellType::Triangle6, "00 40 04 20 22 02", 8, 4, 6},
    {"triangle7", CellType::Triangle7, "00 60 06 30 33 03 22", 18, 3, 6},
    {"quad8", CellType::Quad8, "00 40 42 02 20 41 22 01", 8, 4, 8},
    {"quad9", CellType::Quad9, "00 40 42 02 20 41 22 01 21", 8, 4, 8},
    {"convex", CellType::Polygon, "01 20 41 33 13", 8, 3, 5},
    {"corner", CellType::Polygon, "00 30 31 11 13 03", 5, 4, 6},
    {"cornerClockwise", CellType::Polygon, "03 13 11 31 30 00", -5, 4, 6},
    {"comb", CellType::Polygon, "00 50 53 43 41 31 33 23 21 11 13 03", 11, 10, 12},
    {"cornersInLine", CellType::Polygon, "00 10 20 22 11 02", 3, 4, 6},
};

// In a tilted plane: no piece may turn against the others, so that equal area means no overlap and no gap.
TEST(Surface, FlatCellsAreCoveredOnceInTheirOwnDirection) {
    const Axes axes = {{{4, 2, -1}, {-2, 8, 4}, {0, 0, 0}}};
    const double scale = length(cross(axes[0], axes[1])) / 16; // places are in quarters of the axes
    const Point normal = unit(cross(axes[0], axes[1]));
    for (const Flat& flat : kFlat) {
        SCOPED_TRACE(flat.name);
        const Model model = single(flat.type, flat.nodes, axes, 2);
        const Surface surface = extractSurface(model);
        EXPECT_EQ(surface.triangles.size() + surface.quads.size(), flat.pieces);
        EXPECT_EQ(surface.edges.size(), flat.edges);
        double sum = 0;
        for (const auto& [a, b, c] : piecesOf(model, surface)) {
            const double area = dot(normal, cross(b - a, c - a)) / 2 / scale;
            EXPECT_GE(area * flat.area, -1e-12);
            sum += area;
        }
        EXPECT_NEAR(sum, flat.area, 1e-12);
    }
}

TEST(Surface, LinesAndPointsComeInPieces) {
    Model model;
    model.nodes = gridNodes();
    const Cell cells[] = {{CellType::Line3, {0, 2, 1}},
                          {CellType::PolyLine, {4, 5, 8}},
                          {CellType::PolyVertex, {20, 22}},
                          {CellType::Vertex, {26}}};
    for (const Cell& cell : cells)
        model.addCell(cell.type, cell.nodes);
    const Surface surface = extractSurface(model);
    EXPECT_THAT(surface.lines,
                ElementsAre(ElementsAre(0, 1), ElementsAre(1, 2), ElementsAre(4, 5), ElementsAre(5, 8)));
    EXPECT_THAT(surface.lineCells, ElementsAre(0, 0, 1, 1));
    EXPECT_THAT(surface.points, ElementsAre(20, 22, 26));
    EXPECT_THAT(surface.pointCells, ElementsAre(2, 2, 3));
    EXPECT_TRUE(surface.edges.empty());
}

} // namespace
