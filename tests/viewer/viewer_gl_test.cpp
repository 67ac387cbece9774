// The viewer's pictures at known pixels, and what it picks there.
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "tests/support/gltest.h"
#include "viewer/frame.h"
#include "viewer/pick.h"
#include "viewer/samples.h"
#include "viewer/scene.h"
#include "viewer/vectors.h"

using namespace nruview;
using nrutest::hex;
using nrutest::Picture;

namespace {

constexpr NgColorLong kBackground = 0xFF80FF80;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
/// Share of its colour that a face square to the view shows: ambient half, and half by the cosine to the
/// light.
const double kFacing = 0.5 + 0.5 / std::sqrt(0.2 * 0.2 + 0.35 * 0.35 + 1.0);

/// Four unit quads in a row along x, in z = 0, with a field of each kind.
Model strip(std::vector<double> cellValues = {10, 20, 30, 40}) {
    Model model;
    for (int i = 0; i <= 4; ++i) {
        model.nodes.push_back({1.0 * i, 0, 0});
        model.nodes.push_back({1.0 * i, 1, 0});
    }
    for (std::uint32_t i = 0; i < 4; ++i)
        model.addCell(CellType::Quad, std::array{2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1});
    Field node{"x", FieldLocation::Node, 1, {}}, lift{"U", FieldLocation::Node, 3, {}};
    for (const Point& p : model.nodes) {
        node.values.push_back(p[0]);
        lift.values.insert(lift.values.end(), {0.0, 0.25 * p[0], 0.0});
    }
    model.fields = {{"c", FieldLocation::Cell, 1, std::move(cellValues)}, std::move(node), std::move(lift)};
    return model;
}

ShownSettings byField(const char* field) {
    ShownSettings settings;
    settings.field = field;
    return settings;
}

SceneSettings inBands(int bands, EdgeMode edges = EdgeMode::None) {
    SceneSettings settings;
    settings.bands = bands;
    settings.edges = edges;
    return settings;
}

int channel(NgColorLong color, int k) {
    return static_cast<int>(color >> (8 * k) & 0xFF);
}

::testing::AssertionResult near(NgColorLong found, NgColorLong expected, double shade) {
    for (int k = 0; k < 3; ++k)
        if (std::abs(channel(found, k) - channel(expected, k) * shade) > 1.5)
            return ::testing::AssertionFailure()
                   << hex(found) << " is not " << hex(expected) << " times " << shade;
    return ::testing::AssertionSuccess();
}

int brightness(NgColorLong color) {
    return channel(color, 0) + channel(color, 1) + channel(color, 2);
}

class ViewerScene : public nrutest::GlTest {
protected:
    void begin(const ShownModel& shown, const char* view, bool perspective = false) {
        startLibrary();
        beginFrame(fitCamera(parseView(view), shown.bounds, 1.0, perspective), shown.bounds, kSize, kSize,
                   kBackground);
    }
    Picture picture(const ShownModel& shown, const SceneSettings& settings, const char* view = "xy",
                    bool perspective = false) {
        begin(shown, view, perspective);
        Scene scene(shown, settings);
        scene.draw();
        return read();
    }
    /// Pixel that shows a point, y from the top.
    std::array<int, 2> pixelOf(const Point& p) const {
        double x = 0.0, y = 0.0;
        ngl_transform_32(p[0], p[1], p[2], &x, &y);
        return {static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))};
    }
    NgColorLong colorAt(const Picture& picture, const Point& p) const {
        const auto [x, y] = pixelOf(p);
        return picture.at(x, kSize - 1 - y);
    }
    /// Whether a dark line joins two points: a pixel at each step along its longer side.
    ::testing::AssertionResult isDrawn(const Picture& picture, const Point& from, const Point& to) const {
        const auto [x0, y0] = pixelOf(from);
        const auto [x1, y1] = pixelOf(to);
        const int steps = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
        const bool wide = std::abs(x1 - x0) == steps;
        for (int i = 1; i < steps; ++i) {
            const int x = x0 + (x1 - x0) * i / steps, y = kSize - 1 - (y0 + (y1 - y0) * i / steps);
            int least = brightness(picture.at(x, y));
            for (int side : {-1, 1})
                least = std::min(least, brightness(wide ? picture.at(x, y + side) : picture.at(x + side, y)));
            if (least > 160)
                return ::testing::AssertionFailure() << "gap at pixel " << x << ", " << y;
        }
        return ::testing::AssertionSuccess();
    }
    /// Brightness of a line through a point; one that falls between two columns of pixels may take either.
    int lineBrightness(const Picture& picture, const Point& p) const {
        const auto [x, y] = pixelOf(p);
        return std::min(brightness(picture.at(x, kSize - 1 - y)),
                        brightness(picture.at(x - 1, kSize - 1 - y)));
    }
};

} // namespace

TEST_F(ViewerScene, CellsShowTheirBand) {
    const ShownModel shown = showModel(strip(), byField("c"));
    const ColorBands bands(4, {10, 40}, false);
    for (bool perspective : {false, true}) {
        const Picture drawn = picture(shown, inBands(4), "xy", perspective);
        for (int i = 0; i < 4; ++i)
            EXPECT_TRUE(near(colorAt(drawn, {i + 0.5, 0.5, 0}), bands.color(i), kFacing)) << "cell " << i;
        EXPECT_EQ(colorAt(drawn, {2, 1.5, 0}) & 0xFFFFFF, kBackground & 0xFFFFFF);
    }
    EXPECT_GT(channel(bands.color(0), 2), channel(bands.color(0), 0)) << "low values are blue";
    EXPECT_GT(channel(bands.color(3), 0), channel(bands.color(3), 2)) << "high values are red";
}

TEST_F(ViewerScene, NodeValuesCutTheFacesAtTheLimitsOfTheBands) {
    ShownSettings settings = byField("x");
    const ShownModel shown = showModel(strip(), settings);
    SceneSettings scene = inBands(3);
    scene.range = {{0.5, 3.5}}; // limits at 1.5 and 2.5, in the middle of elements
    const ColorBands bands(3, *scene.range, false);
    const Picture drawn = picture(shown, scene);
    const struct {
        double x;
        int band;
    } rows[] = {{0.1, 0}, {1.4, 0}, {1.6, 1}, {2.4, 1}, {2.6, 2}, {3.9, 2}};
    for (const auto& row : rows)
        EXPECT_TRUE(near(colorAt(drawn, {row.x, 0.5, 0}), bands.color(row.band), kFacing)) << "x = " << row.x;
}

TEST_F(ViewerScene, BandsHoldForTinyAndForOffsetValues) {
    for (const auto& values : std::vector<std::vector<double>>{{1e-30, 2e-30, 3e-30, 4e-30},
                                                               {1e9 + 1, 1e9 + 2, 1e9 + 3, 1e9 + 4},
                                                               {-4e300, -3e300, -2e300, -1e300}}) {
        const ShownModel shown = showModel(strip(values), byField("c"));
        const ColorBands bands(4, {0, 1}, false);
        const Picture drawn = picture(shown, inBands(4));
        for (int i = 0; i < 4; ++i)
            EXPECT_TRUE(near(colorAt(drawn, {i + 0.5, 0.5, 0}), bands.color(i), kFacing)) << values[i];
    }
}

TEST_F(ViewerScene, ValuesOutsideTheRangeTakeItsEndsAndNoneIsGrey) {
    const ShownModel shown = showModel(strip({-1e30, 1e30, kNaN, 20}), byField("c"));
    SceneSettings settings = inBands(5);
    settings.range = {{10, 30}};
    const ColorBands bands(5, *settings.range, false);
    const Picture drawn = picture(shown, settings);
    EXPECT_TRUE(near(colorAt(drawn, {0.5, 0.5, 0}), bands.color(0), kFacing));
    EXPECT_TRUE(near(colorAt(drawn, {1.5, 0.5, 0}), bands.color(4), kFacing));
    EXPECT_TRUE(near(colorAt(drawn, {3.5, 0.5, 0}), bands.color(2), kFacing));
    const NgColorLong grey = colorAt(drawn, {2.5, 0.5, 0});
    EXPECT_EQ(channel(grey, 0), channel(grey, 1));
    EXPECT_EQ(channel(grey, 1), channel(grey, 2));
}

TEST_F(ViewerScene, SmearedColorsFollowTheColorScale) {
    const ShownModel shown = showModel(strip({0, 0.3, 0.55, 1}), byField("c"));
    SceneSettings settings = inBands(4);
    settings.smeared = true;
    const Picture drawn = picture(shown, settings);
    RenderColorScale scale = ColorBands(4, {0, 1}, true).attributes().colorScale;
    EXPECT_NE(scale.GetColor(0.3f) & 0xFFFFFF, scale.GetColor(0.26f) & 0xFFFFFF);
    EXPECT_TRUE(near(colorAt(drawn, {1.5, 0.5, 0}), scale.GetColor(0.3f), kFacing));
    EXPECT_TRUE(near(colorAt(drawn, {2.5, 0.5, 0}), scale.GetColor(0.55f), kFacing));
}

TEST_F(ViewerScene, ElementEdgesAreDarkAndUnbroken) {
    const ShownModel shown = showModel(strip(), byField("c"));
    const Picture drawn = picture(shown, inBands(4, EdgeMode::All));
    for (int edge = 1; edge <= 3; ++edge)
        for (double y = 0.05; y < 1.0; y += 0.1)
            EXPECT_LT(lineBrightness(drawn, {1.0 * edge, y, 0}), 160)
                << "edge at x = " << edge << ", y = " << y;
    EXPECT_TRUE(nrutest::samePicture(drawn, picture(shown, inBands(4, EdgeMode::All))));
    const Picture features = picture(shown, inBands(4, EdgeMode::Feature));
    EXPECT_GT(lineBrightness(features, {2, 0.5, 0}), 160) << "an edge within a flat sheet is no feature";
    EXPECT_LT(brightness(colorAt(features, {2.3, 0, 0})), 160) << "the sheet's outline is one";
}

TEST_F(ViewerScene, EdgesStandOutOnSlopingFaces) {
    const ShownModel shown = showModel(strip(), {});
    for (const char* view : {"0,1,1", "-1,-3,1", "2,1,1", "5,1,2"})
        for (bool perspective : {false, true}) {
            const Picture drawn = picture(shown, inBands(1, EdgeMode::All), view, perspective);
            for (double x : {1.0, 2.0, 3.0})
                EXPECT_TRUE(isDrawn(drawn, {x, 0, 0}, {x, 1, 0})) << view << ", x = " << x;
        }
}

TEST_F(ViewerScene, EdgesCloseBehindAFaceStayHidden) {
    Model model = strip();
    model.fields.clear();
    for (const Point& corner : {Point{0, 0, 0.1}, {4, 0, 0.1}, {4, 1, 0.1}, {0, 1, 0.1}})
        model.nodes.push_back(corner);
    model.addCell(CellType::Quad, std::array<std::uint32_t, 4>{10, 11, 12, 13});
    const ShownModel shown = showModel(model, {});
    for (bool perspective : {false, true}) {
        const Picture drawn = picture(shown, inBands(1, EdgeMode::All), "1,1,2", perspective);
        for (double x : {1.0, 2.0, 3.0})
            EXPECT_GT(lineBrightness(drawn, {x, 0.5, 0}), 160) << x;
    }
}

TEST_F(ViewerScene, SplitFacesHideTheirInnerEdges) {
    Model model;
    model.nodes = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {1, 0, 0}, {2, 1, 0}, {1, 2, 0}, {0, 1, 0}};
    model.addCell(CellType::Quad8, std::array<std::uint32_t, 8>{0, 1, 2, 3, 4, 5, 6, 7});
    const ShownModel shown = showModel(model, {});
    const Picture drawn = picture(shown, inBands(1, EdgeMode::All));
    for (double t = 0.2; t < 1.9; t += 0.05) {
        EXPECT_GT(brightness(colorAt(drawn, {t, 1.0, 0})), 160);
        EXPECT_GT(brightness(colorAt(drawn, {1.0, t, 0})), 160);
        EXPECT_GT(brightness(colorAt(drawn, {t, t, 0})), 160);
    }
    EXPECT_LT(brightness(colorAt(drawn, {0.5, 0, 0})), 160);
}

TEST_F(ViewerScene, FacesOfABoxHaveShadesOfTheirOwnAndNoneIsBlack) {
    const ShownModel shown = showModel(makeSample("cantilever:3"), {});
    for (const char* view : {"1,1,1", "-1,-1,-1", "1,-1,1"}) {
        const Picture drawn = picture(shown, inBands(1), view);
        std::map<NgColorLong, int> shades;
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x)
                if ((drawn.at(x, y) & 0xFFFFFF) != (kBackground & 0xFFFFFF))
                    ++shades[drawn.at(x, y)];
        EXPECT_EQ(shades.size(), 3u) << view << ": flat faces, sharp edges";
        for (const auto& [color, count] : shades)
            EXPECT_GT(brightness(color), 300) << hex(color);
    }
}

TEST_F(ViewerScene, ASheetLooksTheSameFromBehind) {
    const ShownModel shown = showModel(strip(), byField("c"));
    const ColorBands bands(4, {10, 40}, false);
    const Picture drawn = picture(shown, inBands(4), "0,0,-1");
    EXPECT_TRUE(near(colorAt(drawn, {0.5, 0.5, 0}), bands.color(0), kFacing));
}

TEST_F(ViewerScene, BeamsAndPointsShowTheirColors) {
    Model model;
    model.nodes = {{0, 0, 0}, {4, 0, 0}, {2, 2, 0}, {0, 1, 0}, {4, 1, 0}};
    model.addCell(CellType::Line, std::array<std::uint32_t, 2>{0, 1});
    model.addCell(CellType::Vertex, std::array<std::uint32_t, 1>{2});
    model.addCell(CellType::Line, std::array<std::uint32_t, 2>{3, 4});
    model.fields = {{"c", FieldLocation::Cell, 1, {1, 2, 1}}};
    const ShownModel shown = showModel(model, byField("c"));
    const Picture drawn = picture(shown, inBands(2));
    const ColorBands bands(2, {1, 2}, false);
    EXPECT_TRUE(near(colorAt(drawn, {1, 0, 0}), bands.color(0), 1.0));
    EXPECT_TRUE(near(colorAt(drawn, {2, 2, 0}), bands.color(1), 1.0));
    const auto [x, y] = pixelOf({1, 0, 0});
    const Picked beam = pick(shown, x, y);
    EXPECT_EQ(describe(shown, beam).substr(0, 20), "element 0 (line) at ");
    EXPECT_NEAR(beam.position[0], 1.0, 0.1);
    EXPECT_EQ(beam.value, 1.0);
    const auto [u, v] = pixelOf({3, 1, 0}); // past the middle of the second beam
    EXPECT_EQ(pick(shown, u, v).cell, 2u);
}

TEST_F(ViewerScene, DeformationMovesThePictureByTheFactor) {
    ShownSettings settings;
    settings.deformed = true;
    settings.deformFactor = 2.0;
    EXPECT_DOUBLE_EQ(showModel(strip(), settings).bounds.high[1], 1.0 + 2.0 * 0.25 * 4.0);
    settings.deformFactor.reset();
    EXPECT_NEAR(showModel(strip(), settings).deformFactor, 0.1 * std::sqrt(17.0), 1e-12)
        << "the largest displacement is 1";
    const ShownModel shown = showModel(strip(), settings);
    EXPECT_NE(colorAt(picture(shown, inBands(1)), {3.9, 1.3, 0}) & 0xFFFFFF, kBackground & 0xFFFFFF);
}

TEST_F(ViewerScene, PicksWhatIsUnderThePixel) {
    const ShownModel cells = showModel(strip(), byField("c")), nodes = showModel(strip(), byField("x"));
    const struct {
        const char* name;
        const ShownModel& shown;
        Point at;
        std::array<int, 2> offset; ///< pixels to the right and down
        const char* text;
    } rows[] = {
        {"a cell and its value", cells, {2.5, 0.5, 0}, {0, 0}, "element 2 (quad) at 2."},
        {"a cell", cells, {2.5, 0.5, 0}, {0, 0}, ": c = 30"},
        {"a node", nodes, {3, 1, 0}, {0, 0}, "node 7 at 3 1 0: x = 3"},
        {"a node from outside", nodes, {4, 1, 0}, {2, -2}, "node 9 at 4 1 0: x = 4"},
        {"an inner edge", nodes, {1, 0.5, 0}, {1, 0}, "edge 2 3 at 1 0."},
        {"an inner edge's value", nodes, {1, 0.5, 0}, {-1, 0}, ": x = 1"},
        {"a far end first in the element", nodes, {2, 0.36, 0}, {1, 0}, "edge 4 5 at 2 0.3"},
        {"the far end of an element's first edge", nodes, {2.7, 0, 0}, {0, -1}, "edge 4 6 at 2.6"},
        {"the outline from outside", cells, {2.5, 1, 0}, {0, -2}, "edge 5 7 at 2."},
        {"beside the model", cells, {2.5, 1, 0}, {0, -8}, "nothing"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        begin(row.shown, "xy");
        const auto [x, y] = pixelOf(row.at);
        const std::string text = describe(row.shown, pick(row.shown, x + row.offset[0], y + row.offset[1]));
        EXPECT_NE(text.find(row.text), std::string::npos) << text;
    }
}

TEST_F(ViewerScene, PicksTheSideOfASolidThatIsSeen) {
    const ShownModel shown = showModel(makeSample("cantilever:5"), byField("S:xx"));
    for (const auto& [view, z] : std::map<const char*, double>{{"xy", 5.0}, {"0,0,-1", -5.0}})
        for (bool perspective : {false, true}) {
            SCOPED_TRACE(view);
            begin(shown, view, perspective);
            const auto [x, y] = pixelOf({60, 10, z});
            const Picked corner = pick(shown, x, y);
            EXPECT_EQ(corner.kind, Picked::Kind::Node);
            EXPECT_EQ(corner.position, (Point{60, 10, z})) << "not the node behind it";
            EXPECT_NEAR(corner.value, 1000.0 * 40.0 * 10.0 / (20000.0 / 3.0), 1e-9);
            const auto [u, v] = pixelOf({50, 2, z});
            const Picked inside = pick(shown, u, v);
            EXPECT_EQ(inside.kind, Picked::Kind::Element);
            EXPECT_EQ(inside.cell, 2u);
            EXPECT_NEAR(inside.position[0], 50.0, 3.5);
            EXPECT_NEAR(inside.position[2], z, 1e-9);
        }
}
