// The closed forms against the equations of elasticity, and the sample meshes against the closed forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "viewer/elasticity.h"
#include "viewer/fields.h"
#include "viewer/samples.h"
#include "viewer/vectors.h"

using namespace nruview;

namespace {

struct SolutionRow {
    const char* name;
    ElasticState (*at)(const Point&);
    std::vector<Point> points;
};

const std::vector<SolutionRow> kSolutions = {
    {"cantilever", Cantilever::at, {{0, 3, 0}, {30, -7, 2}, {71, 9.5, -4}, {99, 0, 0}}},
    {"hole", PlateWithHole::at, {{10.5, 1, 0}, {-3, 12, 0}, {20, -30, 0}, {-41, -7, 0}, {0.5, -11, 0}}},
};

/// Central differences of everything along an axis.
ElasticState slope(const SolutionRow& row, Point point, int axis) {
    constexpr double kStep = 1e-3;
    Point before = point;
    point[axis] += kStep;
    before[axis] -= kStep;
    ElasticState high = row.at(point);
    const ElasticState low = row.at(before);
    for (int k = 0; k < 6; ++k)
        high.stress[k] = (high.stress[k] - low.stress[k]) / (2.0 * kStep);
    high.displacement = (1.0 / (2.0 * kStep)) * (high.displacement - low.displacement);
    return high;
}

/// Volume of the hexahedra (boxes) and area of the quads (in the plane z = 0), positive the right way round.
double measureOf(const Model& model) {
    double sum = 0.0;
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell) {
        const auto n = model.cellNodes(cell);
        const auto edge = [&](int from, int to) { return model.nodes[n[to]] - model.nodes[n[from]]; };
        sum += n.size() == 8 ? dot(cross(edge(0, 1), edge(0, 3)), edge(0, 4))
                             : 0.5 * cross(edge(0, 2), edge(1, 3))[2];
    }
    return sum;
}

} // namespace

TEST(Elasticity, StressesAreInEquilibriumAndFollowHookesLaw) {
    for (const SolutionRow& row : kSolutions)
        for (const Point& p : row.points) {
            SCOPED_TRACE(row.name);
            const ElasticState x = slope(row, p, 0), y = slope(row, p, 1);
            EXPECT_NEAR(x.stress[0] + y.stress[3], 0.0, 1e-5);
            EXPECT_NEAR(x.stress[3] + y.stress[1], 0.0, 1e-5);
            const double xx = x.displacement[0], yy = y.displacement[1];
            const double plane = kYoung / (1.0 - kPoisson * kPoisson);
            const auto stress = row.at(p).stress;
            EXPECT_NEAR(stress[0], plane * (xx + kPoisson * yy), 1e-4);
            EXPECT_NEAR(stress[1], plane * (yy + kPoisson * xx), 1e-4);
            EXPECT_NEAR(stress[3], kYoung / (2.0 + 2.0 * kPoisson) * (y.displacement[0] + x.displacement[1]),
                        1e-4);
        }
}

TEST(Elasticity, CantileverCarriesItsForceAndIsClampedAtItsRoot) {
    constexpr double c = Cantilever::kHeight / 2.0;
    const auto shear = [](double y) { return Cantilever::at({40, y, 0}).stress[3]; };
    // Simpson's rule is exact for the parabola of shear stress: the section carries the whole force.
    EXPECT_NEAR((shear(-c) + 4.0 * shear(0) + shear(c)) * Cantilever::kHeight / 6.0 * Cantilever::kWidth,
                -Cantilever::kForce, 1e-9);
    EXPECT_NEAR(shear(c), 0.0, 1e-12);
    EXPECT_NEAR(Cantilever::at({0, c, 0}).stress[0], 150.0, 1e-9) << "M c / I at the clamp, tension on top";
    EXPECT_NEAR(Cantilever::at({100, 0, 0}).displacement[1], -1000.0 * 1e6 / (3.0 * 210000.0 * 20000.0 / 3.0),
                1e-12);
    EXPECT_NEAR(length(Cantilever::at({0, 0, 0}).displacement), 0.0, 1e-15);
}

TEST(Elasticity, HoleHasAFreeRimAndThreefoldStress) {
    constexpr double a = PlateWithHole::kRadius, tension = PlateWithHole::kTension;
    EXPECT_NEAR(PlateWithHole::at({0, a, 0}).stress[0], 3.0 * tension, 1e-9);
    EXPECT_NEAR(PlateWithHole::at({a, 0, 0}).stress[1], -tension, 1e-9);
    EXPECT_NEAR(PlateWithHole::at({-1e6, 3e5, 0}).stress[0], tension, 1e-6);
    for (double angle : {0.3, 1.9, 4.0}) {
        const Point n = {std::cos(angle), std::sin(angle), 0.0};
        const auto s = PlateWithHole::at(a * n).stress;
        EXPECT_NEAR(s[0] * n[0] + s[3] * n[1], 0.0, 1e-9) << "traction at " << angle;
        EXPECT_NEAR(s[3] * n[0] + s[1] * n[1], 0.0, 1e-9) << "traction at " << angle;
    }
}

TEST(Samples, MeshesHaveTheSizesAskedForAndTurnTheRightWay) {
    /// Area of the plate whose hole is a polygon.
    const auto plate = [](int sides) { return 1e4 - 50.0 * sides * std::sin(2.0 * std::acos(-1.0) / sides); };
    const struct {
        const char* selector;
        std::size_t cells, nodes;
        double measure;
    } rows[] = {{"cantilever:1", 1, 8, 20000},
                {"cantilever:10", 10 * 2 * 1, 11 * 3 * 2, 20000},
                {"cantilever", 40 * 8 * 4, 41 * 9 * 5, 20000},
                {"hole:3", 36, 48, plate(12)},
                {"hole", 4 * 24 * 24, 96 * 25, plate(96)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.selector);
        const Model model = makeSample(row.selector);
        EXPECT_EQ(model.cellCount(), row.cells);
        EXPECT_EQ(model.nodes.size(), row.nodes);
        EXPECT_NEAR(measureOf(model), row.measure, 1e-6);
        EXPECT_NO_THROW(checkModel(model, row.selector));
    }
}

TEST(Samples, FieldsHoldTheClosedForms) {
    const Scalars stress = selectScalars(makeSample("hole:4"), "S:xx", {});
    EXPECT_NEAR(*std::max_element(stress.values.begin(), stress.values.end()), 300.0, 1e-9);
    const Model beam = makeSample("cantilever:10");
    const Scalars cells = selectScalars(beam, "S_cell", {});
    EXPECT_EQ(cells.location, FieldLocation::Cell);
    EXPECT_NEAR(cells.values[0], vonMises(Cantilever::at({5, -5, 0}).stress), 1e-9);
    EXPECT_NEAR(selectScalars(beam, "U:y", {}).values[10], Cantilever::at({100, -10, -5}).displacement[1],
                1e-15);
}
