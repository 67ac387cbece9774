// Skins of single elements, of elements that touch, and of flat cells, against closed formulas for area and
// volume.
#include <gmock/gmock.h>

#include "tests/viewer/elements.h"

using namespace nrutest;

namespace {

using testing::ElementsAre;

/// Twice its area long.
Point normalOf(const Piece& piece) {
    return cross(piece[1] - piece[0], piece[2] - piece[0]);
}

// Elements are convex: no node lies outside of any piece of the skin.
TEST(Surface, SkinsOfSolidsAreClosedOutwardAndOfTheRightSize) {
    for (const Solid& solid : kSolids)
        for (const Axes& axes : {kSkew, kMirrored}) {
            const Model model = elementAt(solid.vtkNumber, solid.places, axes);
            SCOPED_TRACE(cellTypeName(model.types[0]));
            const Surface surface = extractSurface(model);
            EXPECT_THAT(solid.skin, ElementsAre(surface.faceCount, surface.triangles.size(),
                                                surface.quads.size(), surface.edges.size()));
            const std::vector<Piece> pieces = piecesOf(model, surface);
            EXPECT_NEAR(volumeOf(pieces), solid.volume * determinant(axes), 1e-12);
            for (const Piece& piece : pieces)
                for (const Point& node : model.nodes)
                    EXPECT_LT(dot(normalOf(piece), node - piece[0]), 1e-12);
        }
}

/// Quadratic shape functions carry a quadratic map exactly, so each centre must land where the map sends it.
Point bend(const Point& p) {
    return p + Point{0.25 * p[1] * p[1], 0.125 * p[0] * p[2], 0.0625 * p[0] * p[0] - 0.25 * p[0] * p[1]};
}

TEST(Surface, CurvedFacesPassThroughTheirTrueCentres) {
    const Model straight = elementAt(25, kHexa + kHexaMiddles, {{{1, 0, 0}, {0, 2, 0}, {0, 0, 3}}});
    Model curved = straight;
    for (Point& node : curved.nodes)
        node = bend(node);
    const std::vector<Point> expected = pointsOf(straight, extractSurface(straight));
    const std::vector<Point> found = pointsOf(curved, extractSurface(curved));
    EXPECT_NEAR(surfaceArea(straight, extractSurface(straight)), 22, 1e-12);
    ASSERT_EQ(found.size(), 26u);
    for (std::size_t i = 20; i < 26; ++i)
        EXPECT_LT(length(found[i] - bend(expected[i])), 1e-12);
}

/// Nodes i + 3 j + 9 k at (i, j, k) for 0, 1, 2, then four at x = 4.
Model gridOf(const std::vector<Cell>& cells) {
    std::vector<Point> nodes = hexahedra(2, 2, 2).nodes;
    nodes.insert(nodes.end(), {{4, 0, 0}, {4, 2, 0}, {4, 0, 2}, {4, 2, 2}});
    return modelOf(nodes, cells);
}

const Cell kFirst = {CellType::Hexa, {0, 1, 4, 3, 9, 10, 13, 12}};
const Cell kSecond = {CellType::Hexa, {1, 2, 5, 4, 10, 11, 14, 13}};
const Cell kBox20 = {CellType::Hexa20,
                     {0, 2, 8, 6, 18, 20, 26, 24, 1, 5, 7, 3, 19, 23, 25, 21, 9, 11, 17, 15}};
const Cell kCollapsed = {CellType::Hexa, {0, 1, 4, 4, 9, 10, 13, 13}};

const Cell kShell = {CellType::Quad, {9, 10, 13, 12}};

TEST(Surface, FacesThatShownCellsShareVanishAndWhatIsShownIsClosed) {
    // Faces, volume and edges of the shown ones: shells on a solid must leave it closed; not a number where
    // nothing is closed; no edges: any number.
    const struct {
        std::string name;
        std::vector<Cell> cells;
        std::size_t faces;
        double volume;
        bool isFirstHidden = false;
        std::size_t edges = 0;
    } rows[] = {
        {"hexaHexa", {kFirst, kSecond}, 10, 2},
        {"quadraticLinear", {kBox20, {CellType::Hexa, {2, 27, 28, 8, 20, 29, 30, 26}}}, 10, 16},
        {"hexaPyramid", {kFirst, {CellType::Pyramid, {9, 10, 13, 12, 18}}}, 9, 1 + 1. / 3},
        {"collapsed01", {{CellType::Hexa, {0, 0, 4, 3, 9, 9, 13, 12}}}, 5, 0.5},
        {"collapsed12", {{CellType::Hexa, {0, 1, 1, 3, 9, 10, 10, 12}}}, 5, 0.5},
        {"collapsed30", {{CellType::Hexa, {0, 1, 4, 0, 9, 10, 13, 9}}}, 5, 0.5},
        {"collapsedTetra", {kCollapsed, {CellType::Tetra, {9, 10, 13, 18}}}, 7, 0.5 + 1. / 6},
        {"edgeOnly", {kFirst, {CellType::Hexa, {14, 13, 16, 17, 23, 22, 25, 26}}}, 12, 2},
        {"shellOnSolid", {kFirst, kShell}, 6, 1},
        {"shellBetween", {kFirst, kSecond, {CellType::Quad, {1, 4, 13, 10}}}, 11, NAN},
        {"solid beside a hidden one", {kFirst, kSecond}, 11, 1, true, 12},
        {"solid under a hidden shell", {kShell, kFirst}, 7, 1, true, 12},
        {"on a hidden solid, a shell", {kFirst, kShell}, 6, NAN, true, 4},
        {"half of a solid's outside", {kSecond, kFirst, kShell}, 11, 1, true, 12},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Model model = gridOf(row.cells);
        std::vector<bool> shown(row.isFirstHidden ? row.cells.size() : 0, true);
        if (row.isFirstHidden)
            shown[0] = false;
        const Surface surface = extractSurface(model, shown);
        EXPECT_EQ(surface.faceCount, row.faces);
        EXPECT_TRUE(row.edges == 0 || surface.edges.size() == row.edges) << surface.edges.size();
        const std::vector<Piece> pieces = piecesOf(model, surface, shown);
        for (const Piece& piece : pieces)
            EXPECT_GT(length(normalOf(piece)), 0.2);
        EXPECT_TRUE(!(std::abs(volumeOf(pieces) - row.volume) > 1e-12)) << volumeOf(pieces);
        EXPECT_TRUE(!row.name.starts_with("shell") || surface.quadCells.back() == row.cells.size() - 1);
    }
}

// In a tilted plane: no piece may turn against the others, so that equal area means no overlap and no gap.
TEST(Surface, FlatCellsAreCoveredOnceInTheirOwnDirection) {
    const Axes axes = {{{4, 2, -1}, {-2, 8, 4}, {0, 0, 0}}};
    const Point square = cross(axes[0], axes[1]);
    // VTK's number of the type, nodes, area in quarters of the axes, positive when counter-clockwise, pieces
    // and edges.
    const std::tuple<const char*, int, const char*, double, std::size_t, std::size_t> rows[] = {
        {"pixel", 8, "000 200 030 230", 6, 1, 4},
        {"strip", 6, "000 100 010 110 020", 1.5, 3, 7},
        {"triangle6", 22, "000 400 040 200 220 020", 8, 4, 6},
        {"triangle7", 34, "000 600 060 300 330 030 220", 18, 3, 6},
        {"quad8", 23, "000 400 420 020 200 410 220 010", 8, 4, 8},
        {"quad9", 28, "000 400 420 020 200 410 220 010 210", 8, 4, 8},
        {"corner", 7, "000 300 310 110 130 030", 5, 4, 6},
        {"clockwise", 7, "030 130 110 310 300 000", -5, 4, 6},
        {"comb", 7, "000 500 530 430 410 310 330 230 210 110 130 030", 11, 10, 12},
        {"cornersInLine", 7, "000 100 200 220 110 020", 3, 4, 6},
    };
    for (const auto& [name, type, nodes, expected, pieces, edges] : rows) {
        SCOPED_TRACE(name);
        const Model model = elementAt(type, nodes, axes);
        const Surface surface = extractSurface(model);
        EXPECT_EQ(surface.triangles.size() + surface.quads.size(), pieces);
        EXPECT_EQ(surface.edges.size(), edges);
        double sum = 0;
        for (const Piece& piece : piecesOf(model, surface)) {
            const double area = 8 * dot(square, normalOf(piece)) / dot(square, square);
            EXPECT_GE(area * expected, -1e-12);
            sum += area;
        }
        EXPECT_NEAR(sum, expected, 1e-12);
    }
}

TEST(Surface, LinesAndPointsComeInPieces) {
    const Surface surface = extractSurface(gridOf({{CellType::Line3, {0, 2, 1}},
                                                   {CellType::PolyLine, {4, 5, 8}},
                                                   {CellType::PolyVertex, {20, 22}},
                                                   {CellType::Vertex, {26}}}));
    EXPECT_THAT(surface.lines,
                ElementsAre(ElementsAre(0, 1), ElementsAre(1, 2), ElementsAre(4, 5), ElementsAre(5, 8)));
    EXPECT_THAT(surface.lineCells, ElementsAre(0, 0, 1, 1));
    EXPECT_THAT(surface.points, ElementsAre(20, 22, 26));
    EXPECT_THAT(surface.pointCells, ElementsAre(2, 2, 3));
}

} // namespace
