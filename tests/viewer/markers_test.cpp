// Principal values against closed forms, and what fields and lists of nodes become as markers.
#include <gmock/gmock.h>

#include "viewer/markers/markers.h"
#include "viewer/markers/principal.h"
#include "viewer/model/samples.h"
#include "viewer/model/vectors.h"

using namespace nruview;
using ::testing::ElementsAre;

namespace {

/// The sum of l d dT over directions d with their values l.
std::array<double, 6> tensorOf(const std::array<double, 3>& values, const std::array<Point, 3>& directions) {
    std::array<double, 6> t{};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& [x, y, z] = directions[i];
        const double products[] = {x * x, y * y, z * z, x * y, y * z, x * z};
        for (std::size_t k = 0; k < 6; ++k)
            t[k] += values[i] * products[k];
    }
    return t;
}

Point times(const std::array<double, 6>& t, const Point& p) {
    const auto& [xx, yy, zz, xy, yz, xz] = t;
    return {dot({xx, xy, xz}, p), dot({xy, yy, yz}, p), dot({xz, yz, zz}, p)};
}

const Point kSkew = unit({1, 2, -3}), kAcross = unit(cross(kSkew, {0, 1, 0}));
const std::array<Point, 3> kTurned = {kSkew, kAcross, cross(kSkew, kAcross)};
const std::array<Point, 3> kStraight = {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}};

ShownModel beam(const ShownSettings& settings = {}) {
    return showModel(makeSample("cantilever:10"), settings);
}

} // namespace

TEST(PrincipalValues, AreThoseThatTheTensorWasMadeOf) {
    const std::array<double, 3> rows[] = {{3, 1, -2},       {100, 0, 0},         {0, 0, -5}, {2, 2, 2},
                                          {7, 7, -1},       {4, -4, -4},         {0, 0, 0},  {1e12, 1, 1e-3},
                                          {1, 1 - 1e-9, 0}, {3e-300, 0, -1e-300}};
    for (const std::array<double, 3>& values : rows)
        for (const std::array<Point, 3>& directions : {kStraight, kTurned}) {
            SCOPED_TRACE(::testing::PrintToString(values));
            const std::array<double, 6> tensor = tensorOf(values, directions);
            const auto [found, axes] = principalValues(tensor);
            const double scale = std::max(std::abs(values[0]), std::abs(values[2]));
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(found[i], values[i], 1e-14 * scale);
                EXPECT_LE(length(times(tensor, axes[i]) - found[i] * axes[i]), 1e-14 * scale);
                EXPECT_NEAR(dot(axes[i], axes[(i + 1) % 3]), 0.0, 1e-14);
                EXPECT_NEAR(length(axes[i]), 1.0, 1e-14);
            }
            EXPECT_NEAR(dot(cross(axes[0], axes[1]), axes[2]), 1.0, 1e-14);
        }
}

TEST(Markers, ArrowsStandAtTheirNodesInTheFieldsDirection) {
    const ShownModel shown = beam();
    const double size = length(shown.bounds.high - shown.bounds.low);
    const Markers markers = makeMarkers(shown, {.arrows = "F"}, {});
    ASSERT_EQ(markers.arrows.markers.size(), 6u) << "of the loaded nodes alone";
    EXPECT_EQ(markers.arrows.label, "F:mag");
    double longest = 0.0;
    for (const Marker& arrow : markers.arrows.markers) {
        EXPECT_EQ(arrow.at, shown.points[arrow.ids[0]]);
        EXPECT_LT(arrow.axes[0][1], 0.0);
        EXPECT_NEAR(length(arrow.axes[0]) / arrow.values[0], 0.1 * size / 312.5, 1e-12);
        longest = std::max(longest, length(arrow.axes[0]));
    }
    EXPECT_NEAR(longest, 0.1 * size, 1e-12);
    const Bounds bounds = boundsWith(shown.bounds, markers);
    EXPECT_LT(bounds.low[1], shown.bounds.low[1]) << "the camera shows them whole";
}

TEST(Markers, TakeTheValuesOfTheFacesOrTheirOwn) {
    const MarkerSettings settings = {
        .arrows = "F", .spheres = "U:mag", .nodes = NodeChoice{{}, "loaded"}, .connectors = {{10, 43}}};
    const ShownModel shown = beam({.field = "U"});
    const Markers markers = makeMarkers(shown, settings, {});
    EXPECT_TRUE(markers.spheres.ofFaces && !markers.arrows.ofFaces);
    EXPECT_EQ(markers.spheres.markers.size(), 6u);
    EXPECT_THAT(markers.connectors.markers.at(0).values,
                ElementsAre(shown.scalars->values[10], shown.scalars->values[43]));
    EXPECT_EQ(makeMarkers(beam({.field = "S_cell"}), settings, {}).connectors.label, "") << "nodes have none";
}

TEST(Markers, EllipsoidsFitIntoTheirElements) {
    const ShownModel shown = showModel(makeSample("cantilever:40"), {.elements = {.hidden = {{5, 9}}}});
    const MarkerLayer layer = makeMarkers(shown, {.tensors = "S"}, {}).ellipsoids;
    ASSERT_EQ(layer.markers.size(), 1275u) << "none of hidden elements";
    double longest = 0.0;
    for (const Marker& marker : layer.markers)
        for (const Point& axis : marker.axes)
            longest = std::max(longest, length(axis));
    EXPECT_NEAR(shown.unit * longest, 0.55 * 0.5 * 2.5 * std::sqrt(3.0), 1e-9) << "cubes of 2.5";
}

TEST(Markers, SupportsReachOutOfTheModel) {
    const ShownModel shown = beam();
    const Markers markers = makeMarkers(
        shown,
        {.supports = {{{{}, "fixed"}, SupportKind::Clamp}, {{{{65, 65}}, ""}, SupportKind::Spring, 1}}}, {});
    ASSERT_EQ(markers.supports.size(), 7u);
    EXPECT_EQ(markers.supports[0].node, 0u);
    const Support& spring = markers.supports[6];
    EXPECT_EQ(spring.at, shown.points[65]);
    EXPECT_GT(spring.ground[1], shown.bounds.high[1]) << "from the upper side upward";
    EXPECT_EQ(spring.ground[0], spring.at[0]);
}

TEST(Markers, StandAtNodesThatNoElementHas) {
    Model model = makeSample("cantilever:10");
    model.fields.clear();
    model.nodes.push_back({200, 50, 0});
    const ShownModel shown = showModel(std::move(model), {});
    const Markers markers = makeMarkers(
        shown, {.connectors = {{65, 66}}, .supports = {{{{{66, 66}}, ""}, SupportKind::Pin}}}, {});
    const Point expected = shown.drawn({200, 50, 0});
    EXPECT_EQ(markers.supports[0].at, expected);
    EXPECT_EQ(markers.connectors.markers[0].at + markers.connectors.markers[0].axes[0], expected);
    EXPECT_GE(boundsWith(shown.bounds, markers).high[0], expected[0]) << "and are in the picture";
}
