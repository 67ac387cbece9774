// Vertices and normals of bodies against what their shapes have in closed form.
#include <numbers>

#include "tests/viewer/elements.h"
#include "viewer/bodies/bodymesh.h"

using namespace nrutest;

namespace {

/// A closed prism about the z axis on n corners, its sides as quads or as triangles; caps are polygons.
Model makePrism(std::uint32_t n, bool triangles) {
    Model model;
    std::vector<std::uint32_t> top, bottom;
    for (std::uint32_t i = 0; i < n; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / n;
        for (double z : {-1.0, 1.0})
            model.nodes.push_back({std::cos(angle), std::sin(angle), z});
        top.push_back(2 * i + 1);
        bottom.push_back(2 * (n - 1 - i));
        const std::array side = {2 * i, 2 * ((i + 1) % n), 2 * ((i + 1) % n) + 1, 2 * i + 1};
        if (triangles) {
            model.addCell(CellType::Triangle, std::array{side[0], side[1], side[2]});
            model.addCell(CellType::Triangle, std::array{side[0], side[2], side[3]});
        } else {
            model.addCell(CellType::Quad, side);
        }
    }
    model.addCell(CellType::Polygon, top);
    model.addCell(CellType::Polygon, bottom);
    return model;
}

ShownModel show(Model model, std::optional<double> creaseDeg = {}) {
    ShownSettings settings;
    settings.creaseDeg = creaseDeg;
    return showModel(std::move(model), settings);
}

Point at(const std::vector<float>& values, std::size_t vertex) {
    return {values[3 * vertex], values[3 * vertex + 1], values[3 * vertex + 2]};
}

std::size_t count(const BodyMesh& mesh) {
    return mesh.positions.size() / 3;
}

} // namespace

// The angles of two triangles add up to those of their quad: the side's normals point away from the axis
// however it is cut, which means by area or by count would not give.
TEST(BodyMesh, SmoothsACylindersSideUpToItsRim) {
    constexpr std::uint32_t kSides = 40;
    for (bool triangles : {false, true}) {
        const BodyMesh mesh = makeBodyMeshes(show(makePrism(kSides, triangles))).at(0);
        ASSERT_EQ(count(mesh), 4 * kSides);
        std::size_t sides = 0;
        for (std::size_t i = 0; i < count(mesh); ++i) {
            const Point p = at(mesh.positions, i), n = at(mesh.normals, i);
            const bool cap = std::abs(n[2]) > 0.5;
            const Point expected = cap ? Point{0, 0, p[2] > 0 ? 1.0 : -1.0} : unit({p[0], p[1], 0});
            EXPECT_LT(length(n - expected), 1e-6) << i;
            sides += cap ? 0 : 1;
        }
        EXPECT_EQ(sides, 2 * kSides);
    }
}

TEST(BodyMesh, SmoothsUpToTheCreaseAngleAndNotBeyond) {
    using Row = std::pair<double, std::size_t>; // of twelve sides, which meet at 30 degrees
    for (const auto& [creaseDeg, corners] :
         {Row{30.0, 4}, {29.9, 6}, {0.0, 6}, {89.0, 4}, {91.0, 2}, {180.0, 2}})
        EXPECT_EQ(count(makeBodyMeshes(show(makePrism(12, false), creaseDeg)).at(0)), corners * 12)
            << creaseDeg;
}

// A cone of 45 degrees: at its tip the mean of the faces within the crease angle leans to the axis; of very
// many faces each keeps its own normal.
TEST(BodyMesh, DoesNotCompareVeryManyFacesAtOnePoint) {
    for (const std::uint32_t sides : {500u, 1500u}) {
        Model model;
        model.nodes = {{0, 0, 1}};
        for (std::uint32_t i = 0; i < sides; ++i) {
            const double angle = 2.0 * std::numbers::pi * i / sides;
            model.nodes.push_back({std::cos(angle), std::sin(angle), 0});
            model.addCell(CellType::Triangle, std::array{0u, i + 1, (i + 1) % sides + 1});
        }
        const BodyMesh mesh = makeBodyMeshes(show(model)).at(0);
        const double angle = std::numbers::pi / sides;
        const double off =
            length(at(mesh.normals, mesh.triangles[0]) - unit({std::cos(angle), std::sin(angle), 1.0}));
        EXPECT_EQ(off > 0.01, sides == 500) << off;
        EXPECT_TRUE(sides == 500 || off < 1e-5) << off;
    }
}

TEST(BodyMesh, GivesEachPartItsFacesAndSmoothsFromPartToPart) {
    constexpr std::uint32_t kSides = 16;
    Model model = makePrism(kSides, false);
    model.parts = {{"first", 0, 5, {}, 1.0}, {"none", 5, 0, {}, 1.0}, {"rest", 5, kSides - 3, {}, 1.0}};
    const ShownModel shown = show(std::move(model));
    const std::vector<BodyMesh> meshes = makeBodyMeshes(shown);
    ASSERT_EQ(meshes.size(), 3u);
    EXPECT_EQ(meshes[0].quads.size(), 4 * 5u);
    EXPECT_EQ(count(meshes[0]), 2 * 6u);
    EXPECT_EQ(count(meshes[1]), 0u);
    EXPECT_EQ(meshes[2].quads.size(), 4 * (kSides - 5u));
    EXPECT_EQ(meshes[2].triangles.size(), 3 * 2 * (kSides - 2u));
    for (std::size_t i = 0; i < count(meshes[0]); ++i) {
        const Point p = at(meshes[0].positions, i);
        EXPECT_LT(length(at(meshes[0].normals, i) - unit({p[0], p[1], 0})), 1e-6);
    }
}

// Two squares of one strip, bent by 20 degrees along the y axis.
TEST(BodyMesh, TakesTheFilesNormalsAndLeavesHiddenFacesOut) {
    const double angle = std::numbers::pi / 9, x = std::cos(angle), z = std::sin(angle);
    Model model = modelOf({{-1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {-1, 1, 0}, {x, 0, z}, {x, 1, z}},
                          {{CellType::Quad, {0, 1, 2, 3}}, {CellType::Quad, {1, 4, 5, 2}}});
    const Point mean = {-std::sin(angle / 2), 0, std::cos(angle / 2)};
    const std::array<float, 3> given = {0.6f, 0.0f, 0.8f};

    const ShownModel smooth = show(model);
    const BodyMesh bent = makeBodyMeshes(smooth).at(0);
    ASSERT_EQ(count(bent), 6u);
    EXPECT_LT(length(at(bent.normals, bent.quads[1]) - mean), 1e-6);
    const Point corner = smooth.drawn(model.nodes[1]);
    EXPECT_LT(length(at(bent.positions, bent.quads[1]) - corner), 1e-6);

    model.cornerNormals.assign(8, {});
    model.cornerNormals[1] = given;
    const BodyMesh split = makeBodyMeshes(show(model)).at(0);
    ASSERT_EQ(count(split), 7u);
    EXPECT_EQ(at(split.normals, split.quads[1]), (Point{given[0], given[1], given[2]}));
    EXPECT_LT(length(at(split.normals, split.quads[4]) - mean), 1e-6) << "none in the file";
    EXPECT_EQ(count(makeBodyMeshes(show(model, 30.0)).at(0)), 6u) << "an angle is asked for";

    ShownSettings settings;
    settings.elements.hidden = {{0, 0}};
    const BodyMesh one = makeBodyMeshes(showModel(model, settings)).at(0);
    ASSERT_EQ(one.quads.size(), 4u);
    EXPECT_LT(length(at(one.normals, one.quads[0]) - Point{-std::sin(angle), 0, std::cos(angle)}), 1e-6);
}
