// The closed forms against the equations of elasticity, and the sample meshes against the closed forms.
#include <set>
#include <tuple>

#include "tests/viewer/elements.h"
#include "viewer/model/elasticity.h"
#include "viewer/model/fields.h"
#include "viewer/model/samples.h"

using namespace nrutest;

namespace {

using Solution = ElasticState (*)(const Point&);

/// Central differences of everything along an axis.
ElasticState slope(Solution solution, const Point& point, int axis) {
    constexpr double kStep = 1e-3;
    Point before = point, after = point;
    before[axis] -= kStep;
    after[axis] += kStep;
    const ElasticState low = solution(before);
    ElasticState high = solution(after);
    for (int k = 0; k < 6; ++k)
        high.stress[k] = (high.stress[k] - low.stress[k]) / (2.0 * kStep);
    high.displacement = (1.0 / (2.0 * kStep)) * (high.displacement - low.displacement);
    return high;
}

} // namespace

TEST(Elasticity, StressesAreInEquilibriumAndFollowHookesLaw) {
    const std::tuple<const char*, Solution, std::vector<Point>> rows[] = {
        {"cantilever", Cantilever::at, {{30, -7, 2}, {71, 9.5, -4}, {99, 0, 0}}},
        {"hole", PlateWithHole::at, {{10.5, 1, 0}, {-3, 12, 0}, {20, -30, 0}, {-41, -7, 0}}},
    };
    for (const auto& [name, solution, points] : rows)
        for (const Point& p : points) {
            SCOPED_TRACE(name);
            const ElasticState x = slope(solution, p, 0), y = slope(solution, p, 1);
            EXPECT_NEAR(x.stress[0] + y.stress[3], 0.0, 1e-5);
            EXPECT_NEAR(x.stress[3] + y.stress[1], 0.0, 1e-5);
            const double xx = x.displacement[0], yy = y.displacement[1];
            const double xy = y.displacement[0] + x.displacement[1];
            const double plane = kYoung / (1.0 - kPoisson * kPoisson);
            const auto stress = solution(p).stress;
            EXPECT_NEAR(stress[0], plane * (xx + kPoisson * yy), 1e-4);
            EXPECT_NEAR(stress[1], plane * (yy + kPoisson * xx), 1e-4);
            EXPECT_NEAR(stress[3], kYoung / (2.0 + 2.0 * kPoisson) * xy, 1e-4);
        }
}

// With equilibrium, the bending stress and the free side fix the cantilever's force.
TEST(Elasticity, KnownValuesAndFreeRims) {
    constexpr double top = Cantilever::kHeight / 2.0, inertia = 20000.0 / 3.0;
    EXPECT_NEAR(Cantilever::at({40, top, 0}).stress[3], 0.0, 1e-12);
    EXPECT_NEAR(Cantilever::at({0, top, 0}).stress[0], 150.0, 1e-9) << "M c / I, tension on top";
    EXPECT_NEAR(Cantilever::at({100, 0, 0}).displacement[1], -1e9 / (3.0 * 210000.0 * inertia), 1e-12);
    EXPECT_NEAR(length(Cantilever::at({0, 0, 0}).displacement), 0.0, 1e-15);
    constexpr double a = PlateWithHole::kRadius, tension = PlateWithHole::kTension;
    EXPECT_NEAR(PlateWithHole::at({0, a, 0}).stress[0], 3.0 * tension, 1e-9);
    EXPECT_NEAR(PlateWithHole::at({-1e6, 3e5, 0}).stress[0], tension, 1e-6);
    for (double angle : {0.3, 1.9, 4.0}) {
        const Point n = {std::cos(angle), std::sin(angle), 0.0};
        const auto s = PlateWithHole::at(a * n).stress;
        EXPECT_NEAR(s[0] * n[0] + s[3] * n[1], 0.0, 1e-9) << "traction at " << angle;
        EXPECT_NEAR(s[3] * n[0] + s[1] * n[1], 0.0, 1e-9) << "traction at " << angle;
    }
}

TEST(Samples, MeshesHaveTheSizesAskedForAndTurnTheRightWay) {
    // Cells, nodes, and the volume of the boxes or the area of the quads; the hole is a polygon.
    const std::tuple<const char*, std::size_t, std::size_t, double> rows[] = {
        {"cantilever:10", 10 * 2 * 1, 11 * 3 * 2, 20000},
        {"cantilever", 40 * 8 * 4, 41 * 9 * 5, 20000},
        {"hole:3", 36, 48, 1e4 - 12 * 50 * 0.5}};
    for (const auto& [selector, cells, nodes, measure] : rows) {
        SCOPED_TRACE(selector);
        const Model model = makeSample(selector);
        EXPECT_EQ(model.cellCount(), cells);
        EXPECT_EQ(model.nodes.size(), nodes);
        EXPECT_NO_THROW(checkModel(model, selector));
        double sum = 0.0;
        for (std::size_t cell = 0; cell < model.cellCount(); ++cell) {
            const auto n = model.cellNodes(cell);
            const auto edge = [&](int from, int to) { return model.nodes[n[to]] - model.nodes[n[from]]; };
            sum += n.size() == 8 ? dot(cross(edge(0, 1), edge(0, 3)), edge(0, 4))
                                 : 0.5 * cross(edge(0, 2), edge(1, 3))[2];
        }
        EXPECT_NEAR(sum, measure, 1e-6);
    }
    const Scalars stress = selectScalars(makeSample("hole:4"), "S:xx", {});
    EXPECT_NEAR(*std::max_element(stress.values.begin(), stress.values.end()), 300.0, 1e-9);
    const Model beam = makeSample("cantilever:10");
    EXPECT_NEAR(selectScalars(beam, "S_cell", {}).values[0], vonMises(Cantilever::at({5, -5, 0}).stress),
                1e-9);
    EXPECT_EQ(selectScalars(beam, "U:y", {}).values[10], Cantilever::at({100, -10, -5}).displacement[1]);
}

// By integration over the end of the exact shear stress, which has no moment about the axis.
TEST(Samples, TheCantileverHasItsLoadAndItsSupports) {
    for (const char* selector : {"cantilever:1", "cantilever:10", "cantilever"}) {
        SCOPED_TRACE(selector);
        const Model beam = makeSample(selector);
        const Field& force = findField(beam, "F", {});
        double sum = 0.0, moment = 0.0;
        for (std::size_t i = 0; i < beam.nodes.size(); ++i) {
            sum += force.values[3 * i + 1];
            moment += force.values[3 * i + 1] * (beam.nodes[i][1] + beam.nodes[i][2]);
        }
        EXPECT_NEAR(sum, -1000.0, 1e-9);
        EXPECT_NEAR(moment, 0.0, 1e-9);
        ASSERT_EQ(beam.nodeSets.size(), 2u);
        for (const std::size_t end : {0u, 1u}) {
            const auto isThere = [&](const Point& p) { return p[0] == 100.0 * static_cast<double>(end); };
            const std::vector<std::uint32_t>& set = beam.nodeSets[end].nodes;
            EXPECT_EQ(set.size(), std::count_if(beam.nodes.begin(), beam.nodes.end(), isThere));
            for (const std::uint32_t node : set)
                EXPECT_TRUE(isThere(beam.nodes[node]));
        }
    }
    const Model beam = makeSample("cantilever:10"); // heights -10, 0, 10: 3/16, 10/16, 3/16
    EXPECT_NEAR(findField(beam, "F", {}).values[3 * 10 + 1], -500.0 * 3 / 16, 1e-9);
}

TEST(Samples, TheFlangeIsClosedAndFacesOutward) {
    for (const char* selector : {"flange:3", "flange:17", "flange"}) {
        const Model model = makeSample(selector);
        std::set<std::pair<std::uint32_t, std::uint32_t>> sides;
        for (std::size_t cell = 0; cell < model.cellCount(); ++cell)
            for (std::size_t i = 0; i < 4; ++i)
                EXPECT_TRUE(
                    sides.emplace(model.cellNodes(cell)[i], model.cellNodes(cell)[(i + 1) % 4]).second);
        for (const auto& [from, to] : sides)
            EXPECT_TRUE(sides.contains({to, from})) << selector;
        const double volume = volumeOf(piecesOf(model, extractSurface(model)));
        EXPECT_NEAR(volume, 155770.0, selector == std::string_view("flange") ? 400.0 : 10000.0)
            << "turned bodies by Guldin's rule";
    }
}
