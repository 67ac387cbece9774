// Skins of single elements, of elements that touch, and of flat cells, against closed formulas for area and
// volume.
#include "viewer/surface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using namespace nruview;
using testing::ElementsAre;

Point operator+(const Point& a, const Point& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Point operator-(const Point& a, const Point& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Point operator*(double s, const Point& a) {
    return {s * a[0], s * a[1], s * a[2]};
}
double dot(const Point& a, const Point& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
double length(const Point& a) {
    return std::sqrt(dot(a, a));
}
Point cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

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

/// All pieces as triangles; quads are cut in two.
std::vector<std::array<Point, 3>> piecesOf(const Model& model, const Surface& surface) {
    std::vector<std::array<Point, 3>> pieces;
    const auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        pieces.push_back(
            {pointOf(model, surface, a), pointOf(model, surface, b), pointOf(model, surface, c)});
    };
    for (const auto& [a, b, c] : surface.triangles)
        add(a, b, c);
    for (const auto& [a, b, c, d] : surface.quads) {
        add(a, b, c);
        add(a, c, d);
    }
    return pieces;
}

double areaOf(const std::vector<std::array<Point, 3>>& pieces) {
    double area = 0;
    for (const auto& [a, b, c] : pieces)
        area += length(cross(b - a, c - a)) / 2;
    return area;
}

/// By the divergence theorem: positive when closed and outward.
double volumeOf(const std::vector<std::array<Point, 3>>& pieces) {
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

void PrintTo(const Solid& solid, std::ostream* out) {
    *out << solid.name;
}

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

Model single(CellType type, const std::string& places, const Axes& axes) {
    Model model;
    std::vector<std::uint32_t> nodes;
    for (std::size_t i = 0; i < places.size(); i += 4) {
        Point node{5, -7, 2};
        for (std::size_t k = 0; k < 3; ++k)
            node = node + (places[i + k] - '0') / 4.0 * axes[k];
        model.nodes.push_back(node);
        nodes.push_back(static_cast<std::uint32_t>(nodes.size()));
    }
    model.addCell(type, nodes);
    return model;
}

class SolidSkin : public testing::TestWithParam<Solid> {};
INSTANTIATE_TEST_SUITE_P(Surface, SolidSkin, testing::ValuesIn(kSolids),
                         [](const auto& row) { return row.param.name; });

TEST_P(SolidSkin, IsClosedOutwardAndOfTheRightSize) {
    const Solid& solid = GetParam();
    for (const Axes& axes : {kSkew, kMirrored}) {
        const Model model = single(solid.type, solid.nodes, axes);
        const Surface surface = extractSurface(model);
        EXPECT_EQ(surface.faceCount, solid.faces);
        EXPECT_EQ(surface.triangles.size(), solid.triangles);
        EXPECT_EQ(surface.quads.size(), solid.quads);
        EXPECT_EQ(surface.edges.size(), solid.edges);
        const auto pieces = piecesOf(model, surface);
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

void PrintTo(const Touching& touching, std::ostream* out) {
    *out << touching.name;
}

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

class TouchingCells : public testing::TestWithParam<Touching> {};
INSTANTIATE_TEST_SUITE_P(Surface, TouchingCells, testing::ValuesIn(kTouching),
                         [](const auto& row) { return row.param.name; });

TEST_P(TouchingCells, ShareFacesThatVanish) {
    Model model;
    model.nodes = gridNodes();
    for (const Cell& cell : GetParam().cells)
        model.addCell(cell.type, cell.nodes);
    const Surface surface = extractSurface(model);
    EXPECT_EQ(surface.faceCount, GetParam().faces);
    for (const auto& piece : piecesOf(model, surface))
        EXPECT_GT(areaOf({piece}), 0.1);
    if (!std::isnan(GetParam().volume)) {
        EXPECT_NEAR(volumeOf(piecesOf(model, surface)), GetParam().volume, 1e-12);
    }
    if (GetParam().name.starts_with("shell")) {
        EXPECT_EQ(surface.quadCells.back(), GetParam().cells.size() - 1);
    }
}

struct Flat {
    std::string name;
    CellType type;
    std::vector<std::array<double, 2>> corners;
    double area; ///< positive when counter-clockwise
    std::size_t pieces;
    std::size_t edges;
};

void PrintTo(const Flat& flat, std::ostream* out) {
    *out << flat.name;
}

const std::vector<Flat> kFlat = {
    {"pixel", CellType::Pixel, {{0, 0}, {2, 0}, {0, 3}, {2, 3}}, 6, 1, 4},
    {"strip", CellType::TriangleStrip, {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 2}}, 1.5, 3, 7},
    {"triangle6", CellType::Triangle6, {{0, 0}, {4, 0}, {0, 4}, {2, 0}, {2, 2}, {0, 2}}, 8, 4, 6},
    {"triangle7",
     CellType::Triangle7,
     {{0, 0}, {3, 0}, {0, 3}, {1.5, 0}, {1.5, 1.5}, {0, 1.5}, {1, 1}},
     4.5,
     3,
     6},
    {"quad8", CellType::Quad8, {{0, 0}, {4, 0}, {4, 2}, {0, 2}, {2, 0}, {4, 1}, {2, 2}, {0, 1}}, 8, 4, 8},
    {"quad9",
     CellType::Quad9,
     {{0, 0}, {4, 0}, {4, 2}, {0, 2}, {2, 0}, {4, 1}, {2, 2}, {0, 1}, {2, 1}},
     8,
     4,
     8},
    {"convex", CellType::Polygon, {{0, 0}, {2, -1}, {4, 0}, {3, 2}, {1, 2}}, 8, 3, 5},
    {"corner", CellType::Polygon, {{0, 0}, {3, 0}, {3, 1}, {1, 1}, {1, 3}, {0, 3}}, 5, 4, 6},
    {"cornerClockwise", CellType::Polygon, {{0, 3}, {1, 3}, {1, 1}, {3, 1}, {3, 0}, {0, 0}}, -5, 4, 6},
    {"comb",
     CellType::Polygon,
     {{0, 0}, {5, 0}, {5, 3}, {4, 3}, {4, 1}, {3, 1}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}},
     11,
     10,
     12},
    {"cornersInLine", CellType::Polygon, {{0, 0}, {1, 0}, {2, 0}, {2, 2}, {1, 1}, {0, 2}}, 3, 4, 6},
};

class FlatCells : public testing::TestWithParam<Flat> {};
INSTANTIATE_TEST_SUITE_P(Surface, FlatCells, testing::ValuesIn(kFlat),
                         [](const auto& row) { return row.param.name; });

// In a tilted plane: no piece may turn against the others, so that equal area means no overlap and no gap.
TEST_P(FlatCells, AreCoveredOnceInTheirOwnDirection) {
    const Point u{1, 0.5, -0.25};
    const Point v{-0.5, 2, 1};
    const double scale = length(cross(u, v));
    const Point normal = 1 / scale * cross(u, v);
    Model model;
    std::vector<std::uint32_t> nodes;
    for (const auto& [x, y] : GetParam().corners) {
        model.nodes.push_back(Point{3, 1, -4} + x * u + y * v);
        nodes.push_back(static_cast<std::uint32_t>(nodes.size()));
    }
    model.addCell(GetParam().type, nodes);
    const Surface surface = extractSurface(model);
    EXPECT_EQ(surface.triangles.size() + surface.quads.size(), GetParam().pieces);
    EXPECT_EQ(surface.edges.size(), GetParam().edges);
    double sum = 0;
    for (const auto& [a, b, c] : piecesOf(model, surface)) {
        const double area = dot(normal, cross(b - a, c - a)) / 2 / scale;
        EXPECT_GE(area * GetParam().area, -1e-12);
        sum += area;
    }
    EXPECT_NEAR(sum, GetParam().area, 1e-12);
}

TEST(Surface, LinesAndPointsComeInPieces) {
    Model model;
    model.nodes = gridNodes();
    const std::vector<Cell> cells = {{CellType::Line3, {0, 2, 1}},
                                     {CellType::PolyLine, {4, 5, 8}},
                                     {CellType::Line, {6, 7}},
                                     {CellType::PolyVertex, {20, 22}},
                                     {CellType::Vertex, {26}}};
    for (const Cell& cell : cells)
        model.addCell(cell.type, cell.nodes);
    const Surface surface = extractSurface(model);
    using Pair = std::array<std::uint32_t, 2>;
    EXPECT_THAT(surface.lines, ElementsAre(Pair{0, 1}, Pair{1, 2}, Pair{4, 5}, Pair{5, 8}, Pair{6, 7}));
    EXPECT_THAT(surface.lineCells, ElementsAre(0, 0, 1, 1, 2));
    EXPECT_THAT(surface.points, ElementsAre(20, 22, 26));
    EXPECT_THAT(surface.pointCells, ElementsAre(3, 3, 4));
    EXPECT_TRUE(surface.edges.empty());
}

} // namespace
