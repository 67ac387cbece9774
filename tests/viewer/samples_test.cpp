// The closed forms against the equations of elasticity, and the sample meshes against the closed forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "viewer/elasticity.h"
#include "viewer/error.h"
#include "viewer/samples.h"
#include "viewer/vectors.h"

using namespace nruview;

namespace {

using Solution = ElasticState (*)(const Point&);

struct SolutionRow {
    const char* name;
    Solution at;
    std::vector<Point> points;
};

const std::vector<SolutionRow> kSolutions = {
    {"cantilever", Cantilever::at, {{0, 3, 0}, {30, -7, 2}, {71, 9.5, -4}, {99, 0, 0}}},
    {"hole", PlateWithHole::at, {{10.5, 1, 0}, {-3, 12, 0}, {20, -30, 0}, {-41, -7, 0}, {0.5, -11, 0}}},
};

/// Central difference of a quantity along an axis.
template <typename Get>
double slope(const SolutionRow& row, Point point, int axis, Get get) {
    constexpr double kStep = 1e-3;
    Point before = point;
    point[axis] += kStep;
    before[axis] -= kStep;
    return (get(row.at(point)) - get(row.at(before))) / (2.0 * kStep);
}

template <typename Get>
double slopeOfStress(const SolutionRow& row, const Point& point, int axis, Get component) {
    return slope(row, point, axis, [=](const ElasticState& s) { return s.stress[component]; });
}

double slopeOfDisplacement(const SolutionRow& row, const Point& point, int component, int axis) {
    return slope(row, point, axis, [=](const ElasticState& s) { return s.displacement[component]; });
}

const Field& fieldOf(const Model& model, const std::string& name) {
    return *std::find_if(model.fields.begin(), model.fields.end(),
                         [&](const Field& f) { return f.name == name; });
}

} // namespace

TEST(Elasticity, StressesAreInEquilibrium) {
    for (const SolutionRow& row : kSolutions)
        for (const Point& p : row.points) {
            SCOPED_TRACE(row.name);
            EXPECT_NEAR(slopeOfStress(row, p, 0, 0) + slopeOfStress(row, p, 1, 3), 0.0, 1e-5);
            EXPECT_NEAR(slopeOfStress(row, p, 0, 3) + slopeOfStress(row, p, 1, 1), 0.0, 1e-5);
        }
}

TEST(Elasticity, DisplacementsGiveTheStressesByHookesLaw) {
    for (const SolutionRow& row : kSolutions)
        for (const Point& p : row.points) {
            SCOPED_TRACE(row.name);
            const double xx = slopeOfDisplacement(row, p, 0, 0), yy = slopeOfDisplacement(row, p, 1, 1);
            const double xy = slopeOfDisplacement(row, p, 0, 1) + slopeOfDisplacement(row, p, 1, 0);
            const double plane = kYoung / (1.0 - kPoisson * kPoisson);
            const auto stress = row.at(p).stress;
            EXPECT_NEAR(stress[0], plane * (xx + kPoisson * yy), 1e-4);
            EXPECT_NEAR(stress[1], plane * (yy + kPoisson * xx), 1e-4);
            EXPECT_NEAR(stress[3], kYoung / (2.0 * (1.0 + kPoisson)) * xy, 1e-4);
        }
}

TEST(Elasticity, CantileverCarriesItsForceAndIsClampedAtItsRoot) {
    constexpr double c = Cantilever::kHeight / 2.0;
    // Simpson's rule is exact for the parabola of shear stress: the section carries the whole force.
    const double shear = (Cantilever::at({40, -c, 0}).stress[3] + 4.0 * Cantilever::at({40, 0, 0}).stress[3] +
                          Cantilever::at({40, c, 0}).stress[3]) *
                         Cantilever::kHeight / 6.0 * Cantilever::kWidth;
    EXPECT_NEAR(shear, -Cantilever::kForce, 1e-9);
    EXPECT_NEAR(Cantilever::at({40, c, 0}).stress[3], 0.0, 1e-12);
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

TEST(Elasticity, VonMisesOfKnownStates) {
    EXPECT_DOUBLE_EQ(vonMises({-7, 0, 0, 0, 0, 0}), 7.0);
    EXPECT_DOUBLE_EQ(vonMises({0, 0, 0, 0, 2, 0}), 2.0 * std::sqrt(3.0));
    EXPECT_DOUBLE_EQ(vonMises({5, 5, 5, 0, 0, 0}), 0.0);
}

TEST(Samples, MeshesHaveTheSizesAskedFor) {
    const struct {
        const char* selector;
        std::size_t cells, nodes;
    } rows[] = {{"cantilever:1", 1, 8},
                {"cantilever:10", 10 * 2 * 1, 11 * 3 * 2},
                {"cantilever", 40 * 8 * 4, 41 * 9 * 5},
                {"hole:1", 4, 8},
                {"hole:3", 36, 48},
                {"hole", 4 * 24 * 24, 96 * 25}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.selector);
        const Model model = makeSample(row.selector);
        EXPECT_EQ(model.cellCount(), row.cells);
        EXPECT_EQ(model.nodes.size(), row.nodes);
        EXPECT_NO_THROW(checkModel(model, row.selector));
    }
}

TEST(Samples, ElementsTurnTheRightWay) {
    const Model beam = makeSample("cantilever:7"), plate = makeSample("hole:5");
    double volume = 0.0, area = 0.0;
    for (std::size_t cell = 0; cell < beam.cellCount(); ++cell) {
        const auto n = beam.cellNodes(cell);
        const Point o = beam.nodes[n[0]];
        volume += dot(cross(beam.nodes[n[1]] - o, beam.nodes[n[3]] - o), beam.nodes[n[4]] - o);
    }
    for (std::size_t cell = 0; cell < plate.cellCount(); ++cell) {
        const auto n = plate.cellNodes(cell);
        area += 0.5 * cross(plate.nodes[n[2]] - plate.nodes[n[0]], plate.nodes[n[3]] - plate.nodes[n[1]])[2];
    }
    EXPECT_NEAR(volume, 100.0 * 20.0 * 10.0, 1e-6);
    const double rim = 20.0 * 0.5 * 100.0 * std::sin(2.0 * std::acos(-1.0) / 20.0); // 20 sides
    EXPECT_NEAR(area, 100.0 * 100.0 - rim, 1e-6);
}

TEST(Samples, FieldsHoldTheClosedForms) {
    const Model plate = makeSample("hole:4");
    const Field& stress = fieldOf(plate, "S");
    double largest = 0.0;
    for (std::size_t node = 0; node < plate.nodes.size(); ++node)
        largest = std::max(largest, stress.values[6 * node]);
    EXPECT_NEAR(largest, 300.0, 1e-9) << "the node at the hole's side";

    const Model beam = makeSample("cantilever:10");
    const Field& cell = fieldOf(beam, "S_cell");
    EXPECT_EQ(cell.location, FieldLocation::Cell);
    EXPECT_NEAR(cell.values[0], vonMises(Cantilever::at({5, -5, 0}).stress), 1e-9);
    EXPECT_NEAR(fieldOf(beam, "U").values[3 * 10 + 1], Cantilever::at({100, -10, -5}).displacement[1], 1e-15);
}

TEST(Samples, RefusesUnknownNamesAndSizes) {
    const struct {
        const char* selector;
        const char* word;
    } rows[] = {{"bridge", "cantilever"},    {"hole:0", "1 to 2000"},      {"hole:", "1 to 2000"},
                {"cantilever:2001", "2000"}, {"cantilever:12x", "number"}, {"hole:2000", "at most 4000000"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.selector);
        try {
            makeSample(row.selector);
            ADD_FAILURE() << "made a model";
        } catch (const ViewerError& error) {
            EXPECT_NE(std::string(error.what()).find(row.word), std::string::npos) << error.what();
        }
    }
}
