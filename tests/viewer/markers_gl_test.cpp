// Markers at known pixels, in the colours of their values, and what is picked of them.
#include "tests/viewer/elements.h"
#include "tests/viewer/scenetest.h"
#include "viewer/markers/markerpick.h"
#include "viewer/markers/supports.h"
#include "viewer/scene/colorbands.h"
#include "viewer/scene/sight.h"

using namespace nrutest;

namespace {

/// A quad from (-2, -2) to (2, 2) with a tensor, and before it a line, which is not shown, with a vector and
/// values at its ends.
Model sheet() {
    Model model = modelOf({{-2, -2, 0}, {2, -2, 0}, {2, 2, 0}, {-2, 2, 0}, {-1, -1, 0.5}, {1, 1, 0.5}},
                          {{CellType::Quad, {0, 1, 2, 3}}, {CellType::Line, {4, 5}}});
    Field force{"F", FieldLocation::Node, 3, std::vector<double>(18, 0.0)};
    force.values[12] = 3.0; // along x from node 4
    force.values[13] = 1.5;
    model.fields = {force,
                    {"T", FieldLocation::Node, 1, {0, 0, 0, 0, 0.1, 0.9}},
                    {"S", FieldLocation::Cell, 6, {2, 2, 0, 2, 0, 0, 9, 9, 9, 9, 9, 9}}};
    return model;
}

ShownModel shownSheet(const char* field = "") {
    return showModel(sheet(), {.field = field, .elements = {.hidden = {{1, 1}}}});
}

const NodeChoice kEnds = {{{4, 5}}, ""};

/// Pixels that differ between two pictures: their box, and the axes of their spread.
struct Change {
    int left = 999, right = -1, bottom = 999, top = -1, count = 0;
    double angleDeg = 0.0, aspect = 0.0;
};

Change changeOf(const Picture& before, const Picture& after) {
    Change change;
    double x1 = 0, y1 = 0, xx = 0, yy = 0, xy = 0;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x) {
            if (before.at(x, y) == after.at(x, y))
                continue;
            change.left = std::min(change.left, x);
            change.right = std::max(change.right, x);
            change.bottom = std::min(change.bottom, y);
            change.top = std::max(change.top, y);
            ++change.count;
            x1 += x;
            y1 += y;
            xx += 1.0 * x * x;
            yy += 1.0 * y * y;
            xy += 1.0 * x * y;
        }
    const double n = std::max(change.count, 1);
    xx = xx / n - x1 / n * (x1 / n);
    yy = yy / n - y1 / n * (y1 / n);
    xy = xy / n - x1 / n * (y1 / n);
    const double centre = (xx + yy) / 2, radius = std::hypot((xx - yy) / 2, xy);
    change.angleDeg = 90.0 / std::acos(-1.0) * std::atan2(2 * xy, xx - yy);
    change.aspect = std::sqrt((centre + radius) / (centre - radius));
    return change;
}

class ViewerMarkers : public SceneTest {
protected:
    Picture drawn(ShownModel shown, const Markers& markers, const View& view = {}, double opacity = 1.0) {
        shown.bounds.low[2] -= 1.0; // room for markers, in depth alone
        shown.bounds.high[2] += 1.0;
        return picture(shown, {.edges = EdgeMode::None, .opacity = opacity}, view, {}, &markers);
    }
    std::string markerAt(const ShownModel& shown, const Markers& markers, const Point& position,
                         double hidden = HUGE_VAL) {
        const auto [x, y] = pixelOf(position);
        const auto picked = pickMarker(shown, markers, x, y, hidden);
        return picked ? picked->text : "nothing";
    }
};

} // namespace

TEST_F(ViewerMarkers, AnArrowReachesFromItsNodeToTheTipOfItsVector) {
    const ShownModel shown = shownSheet();
    const Markers markers = makeMarkers(shown, {.arrows = "F", .arrowScale = 1.0, .nodes = kEnds}, {});
    for (const bool fixed : {false, true}) {
        const Change change =
            changeOf(drawn(shown, {}, {.fixed = fixed}), drawn(shown, markers, {.fixed = fixed}));
        const auto tail = placeOf({-1, -1, 0.5}), tip = placeOf({2, 0.5, 0.5});
        EXPECT_NEAR(change.left, tail[0], 1.5);
        EXPECT_NEAR(change.right, tip[0], 3.0) << "the point ends thinner than a pixel";
        EXPECT_NEAR(change.top, tip[1], 3.0);
        EXPECT_NEAR(change.angleDeg, 26.565, 2.0) << "atan(1 / 2)";
        EXPECT_GT(change.count, 30);
    }
}

TEST_F(ViewerMarkers, ConnectorsHaveTheColorsOfBothValues) {
    const ShownModel shown = shownSheet("T");
    for (const ConnectorShape shape : {ConnectorShape::Rivet, ConnectorShape::Cylinder}) {
        const Markers markers = makeMarkers(shown, {.connectors = {{4, 5}}, .connectorShape = shape}, {});
        const Picture found = drawn(shown, markers);
        const ColorBands bands(12, {0.0, 0.9}, false);
        for (const auto& [at, band] : {std::pair(-0.97, 1), {0.97, 11}})
            EXPECT_LT(differenceInHue(colorAt(found, {at, at, 0.5}), bands.color(band)), 4) << at;
    }
}

TEST_F(ViewerMarkers, SpheresHaveTheirSizeAndTheColorOfTheirValue) {
    const ShownModel shown = shownSheet();
    const Markers markers = makeMarkers(shown, {.spheres = "T", .sphereSize = 1.0, .nodes = kEnds}, {});
    const Picture found = drawn(shown, markers);
    const double diameter = placeOf({1, 0, 0})[0] - placeOf({0, 0, 0})[0];
    const Change change = changeOf(drawn(shown, {}), found);
    EXPECT_NEAR(change.count, 2 * 0.785 * diameter * diameter, 20);
    EXPECT_NEAR(change.right - change.left + 1, 3 * diameter, 2);
    const ColorBands bands(12, {0.1, 0.9}, false);
    for (const auto& [at, band] : {std::pair(-1.0, 0), {1.0, 11}})
        EXPECT_LT(differenceInHue(colorAt(found, {at, at, 0.5}), bands.color(band)), 4);
}

// The tensor pulls along (1, 1, 0) alone: an ellipsoid four times as long as it is thick.
TEST_F(ViewerMarkers, AnEllipsoidLiesAlongItsTensor) {
    const ShownModel shown = shownSheet();
    const Markers markers = makeMarkers(shown, {.tensors = "S"}, {});
    ASSERT_EQ(markers.ellipsoids.markers.size(), 1u) << "tensors of zero have none";
    EXPECT_NEAR(markers.ellipsoids.markers[0].values[0], 4.0, 1e-12);
    const Change change = changeOf(drawn(shown, {}, {}, 0.0), drawn(shown, markers, {}, 0.0));
    EXPECT_NEAR(change.angleDeg, 45.0, 1.5);
    EXPECT_NEAR(change.aspect, 4.0, 0.4);
}

TEST_F(ViewerMarkers, TellWhatTheirColorsMeanUnlessTheFacesDo) {
    const ShownModel shown = shownSheet("T");
    begin(shown);
    const Markers markers =
        makeMarkers(shown, {.arrows = "F", .spheres = "T", .nodes = kEnds, .connectors = {{4, 5}}}, {});
    const Scene scene(shown, {}, {}, &markers);
    std::string headings;
    for (const LegendContent& legend : scene.legends(shown))
        headings += legend.heading + " ";
    EXPECT_EQ(headings, "T F:mag ");
}

// Every pixel of a symbol picks it, and none that is well away from all of them.
TEST_F(ViewerMarkers, SymbolsArePickedWhereTheyAreDrawn) {
    const ShownModel shown = shownSheet();
    for (const char* view : {"xy", "1,0.7,0.8"})
        for (const bool perspective : {false, true})
            for (std::size_t kind = 0; kind < kSupportKinds.size(); ++kind) {
                SCOPED_TRACE(std::string(kSupportKinds[kind]) + " " + view + (perspective ? " persp" : ""));
                const Support support{5, static_cast<SupportKind>(kind), 1, shown.points[5],
                                      shown.points[5] + Point{0, -1.2 / shown.unit, 0}};
                begin(shown, {view, perspective});
                const Picture empty = read();
                drawSupports({support});
                const Picture drawn = read();
                EXPECT_GT(drawn.countOtherThan(kBackground), 15);
                const Change box = changeOf(empty, drawn);
                const bool isLarge = support.kind == SupportKind::Frame || support.kind == SupportKind::Axis;
                const int far = isLarge ? 36 : 20; // the snap test goes on beyond the ends of steep segments
                for (int y = 0; y < kSize; ++y)
                    for (int x = 0; x < kSize; ++x) {
                        const bool isLit = drawn.at(x, y) != empty.at(x, y);
                        const bool isFar = x < box.left - far || x > box.right + far ||
                                           y < box.bottom - far || y > box.top + far;
                        if (isLit || isFar) {
                            ASSERT_EQ(isSupportAt(support, x, kSize - 1 - y), isLit) << x << " " << y;
                        }
                    }
            }
}

// The strokes of a frame lie, with their lengths, along the model's axes, also where x and z turn about one
// axis.
TEST_F(ViewerMarkers, FramesShowTheAxesOfTheModel) {
    const ShownModel shown = shownSheet();
    const Support frame{0, SupportKind::Frame, 0, {}, {}};
    for (const char* view : {"1,0.7,0.8", "-0.3,-1,0.5", "xy", "yz", "zy", "zx"}) {
        SCOPED_TRACE(view);
        begin(shown, {view});
        const Picture empty = read();
        drawSupports({frame});
        const Picture drawn = read();
        const auto isLit = [&](const Point& p) {
            const auto [u, v] = windowPosition(p);
            const int x = std::clamp(static_cast<int>(u), 1, kSize - 1);
            const int y = std::clamp(kSize - 1 - static_cast<int>(v), 0, kSize - 2);
            return drawn.at(x, y) != empty.at(x, y) || drawn.at(x - 1, y) != empty.at(x - 1, y) ||
                   drawn.at(x, y + 1) != empty.at(x, y + 1);
        };
        for (int axis = 0; axis < 3; ++axis) {
            constexpr double kLengths_px[] = {24.0, 21.0, 12.0}; // of x, y, z; x has its head beyond
            Point end{};
            end[axis] = kLengths_px[axis] * pixelLength({});
            const auto [x, y] = windowPosition(end);
            if (std::hypot(x - kSize / 2, y - kSize / 2) < 3.0)
                continue; // seen end on
            EXPECT_TRUE(isLit(0.9 * end)) << "xyz"[axis];
            EXPECT_EQ(isLit(1.2 * end), axis == 0) << "xyz"[axis];
            EXPECT_FALSE(isLit(-0.5 * end)) << "-"
                                            << "xyz"[axis];
        }
    }
}

TEST_F(ViewerMarkers, SymbolsAreNotCutByTheFacesAboutTheirNode) {
    const ShownModel shown = shownSheet();
    for (const SupportKind kind : {SupportKind::Clamp, SupportKind::Pin, SupportKind::Ring}) {
        const Markers markers = makeMarkers(shown, {.supports = {{{{{0, 2}}, ""}, kind}}}, {});
        for (const char* view : {"xy", "1,0.7,0.8", "-0.2,-1,1.2"}) {
            const auto lit = [&](double opacity) {
                return changeOf(drawn(shown, {}, {view}, opacity), drawn(shown, markers, {view}, opacity))
                    .count;
            };
            EXPECT_EQ(lit(1.0), lit(0.0)) << view;
        }
    }
}

TEST_F(ViewerMarkers, ArePickedBySightUnlessHidden) {
    const ShownModel shown = shownSheet("T");
    const Markers markers = makeMarkers(shown,
                                        {.arrows = "F",
                                         .arrowScale = 1.0,
                                         .spheres = "T",
                                         .nodes = kEnds,
                                         .connectors = {{1, 3}},
                                         .supports = {{{{{2, 2}}, ""}, SupportKind::Cross}}},
                                        {});
    begin(shown);
    EXPECT_EQ(markerAt(shown, markers, {0.5, -0.25, 0.5}), "arrow at node 4 at -1 -1 0.5: F:mag = 3.3541");
    EXPECT_EQ(markerAt(shown, markers, {1, 1, 0.5}), "sphere at node 5 at 1 1 0.5: T = 0.9");
    EXPECT_EQ(markerAt(shown, markers, {-1.5, 1.5, 0}), "connector of node 1 and node 3: T = 0 and 0");
    EXPECT_EQ(markerAt(shown, markers, {2, 2, 0}), "support 0 (cross) at node 2 at 2 2 0");
    EXPECT_EQ(markerAt(shown, markers, {-1.5, -1.5, 0}), "nothing");
    const Markers glyphs = makeMarkers(shown, {.tensors = "S"}, {});
    EXPECT_EQ(markerAt(shown, glyphs, {0.2, 0.2, 0}), "ellipsoid of element 0: S:principal = 4");
    EXPECT_EQ(markerAt(shown, glyphs, {0.7, -0.7, 0}), "nothing") << "across it";
    begin(shown, {"0,0,-1"});
    EXPECT_EQ(markerAt(shown, markers, {1, 1, 0.5}, pickAt(shown, {1, 1, 0.5}).distance), "nothing")
        << "behind the sheet";
    EXPECT_EQ(markerAt(shown, markers, {1, 1, 0.5}), "sphere at node 5 at 1 1 0.5: T = 0.9");
}
