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
constexpr NgColorLong kGrey = 0xFFA0A0A0;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
/// Share of its colour that a face square to the view shows: ambient half, and half by the cosine to the
/// light.
const double kFacing = 0.5 + 0.5 / std::sqrt(0.2 * 0.2 + 0.35 * 0.35 + 1.0);

/// Four unit quads in a row along x, in z = 0, with a field of each kind.
Model strip(std::vector<double> cellValues = {10, 20, 30, 40}) {
    Model model;
    Field node{"x", FieldLocation::Node, 1, {}}, lift{"U", FieldLocation::Node, 3, {}};
    for (int i = 0; i <= 4; ++i)
        for (double y : {0.0, 1.0}) {
            model.nodes.push_back({1.0 * i, y, 0});
            node.values.push_back(i);
            lift.values.insert(lift.values.end(), {0.0, 0.25 * i, 0.0});
        }
    for (std::uint32_t i = 0; i < 4; ++i)
        model.addCell(CellType::Quad, std::array{2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1});
    model.fields = {{"c", FieldLocation::Cell, 1, std::move(cellValues)}, std::move(node), std::move(lift)};
    return model;
}

ShownModel byField(const Model& model, const char* field) {
    ShownSettings settings;
    settings.field = field;
    return showModel(model, settings);
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
        m_shown = &shown;
    }
    Picture picture(const ShownModel& shown, const SceneSettings& settings, const char* view = "xy",
                    bool perspective = false) {
        begin(shown, view, perspective);
        Scene scene(shown, settings);
        scene.draw();
        return read();
    }
    /// Pixel that shows a model position, y from the top.
    std::array<int, 2> pixelOf(const Point& position) const {
        const Point p = m_shown->drawn(position);
        double x = 0.0, y = 0.0;
        ngl_transform_32(p[0], p[1], p[2], &x, &y);
        return {static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))};
    }
    NgColorLong colorAt(const Picture& picture, const Point& p) const {
        const auto [x, y] = pixelOf(p);
        return picture.at(x, kSize - 1 - y);
    }
    /// Whether a dark line joins two points: a pixel at each step along its longer side, or the one beside
    /// it.
    ::testing::AssertionResult isDrawn(const Picture& picture, const Point& from, const Point& to) const {
        const auto [x0, y0] = pixelOf(from);
        const auto [x1, y1] = pixelOf(to);
        const int steps = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
        const int dx = std::abs(x1 - x0) == steps ? 0 : 1, dy = 1 - dx;
        for (int i = 1; i < steps; ++i) {
            const int x = x0 + (x1 - x0) * i / steps, y = kSize - 1 - (y0 + (y1 - y0) * i / steps);
            if (std::min({brightness(picture.at(x, y)), brightness(picture.at(x + dx, y + dy)),
                          brightness(picture.at(x - dx, y - dy))}) > 160)
                return ::testing::AssertionFailure() << "gap at pixel " << x << ", " << y;
        }
        return ::testing::AssertionSuccess();
    }

    const ShownModel* m_shown = nullptr;
};

} // namespace

TEST_F(ViewerScene, ValuesShowTheColorOfTheirBand) {
    const struct {
        const char* name;
        std::vector<double> cells;
        const char* field;
        std::optional<std::array<double, 2>> range;
        const char* view;
        std::vector<std::pair<double, int>> spots; ///< x and the band there; -1: no value
        int bands = 4;
    } rows[] = {
        {"cells", {10, 20, 30, 40}, "c", {}, "xy", {{0.5, 0}, {1.5, 1}, {2.5, 2}, {3.5, 3}}},
        {"from behind", {10, 20, 30, 40}, "c", {}, "0,0,-1", {{0.5, 0}, {1.5, 1}, {2.5, 2}, {3.5, 3}}},
        {"tiny", {1e-30, 2e-30, 3e-30, 4e-30}, "c", {}, "xy", {{0.5, 0}, {1.5, 1}, {2.5, 2}, {3.5, 3}}},
        {"offset", {1e9 + 1, 1e9 + 2, 1e9 + 3, 1e9 + 4}, "c", {}, "xy", {{0.5, 0}, {1.5, 1}, {2.5, 2}}},
        {"huge", {-4e300, -3e300, -2e300, -1e300}, "c", {}, "xy", {{0.5, 0}, {1.5, 1}, {2.5, 2}, {3.5, 3}}},
        {"outside", {-1e30, 1e30, kNaN, 20}, "c", {{5, 25}}, "xy", {{0.5, 0}, {1.5, 3}, {2.5, -1}, {3.5, 3}}},
        {"limits of bands within elements",
         {1, 2, 3, 4},
         "x",
         {{0.5, 3.5}},
         "xy",
         {{0.1, 0}, {1.4, 0}, {1.6, 1}, {2.4, 1}, {2.6, 2}, {3.9, 2}},
         3},
    };
    for (const auto& row : rows)
        for (bool perspective : {false, true}) {
            const ShownModel shown = byField(strip(row.cells), row.field);
            SceneSettings settings = inBands(row.bands);
            settings.range = row.range;
            const ColorBands bands(row.bands, {0, 1}, false);
            const Picture drawn = picture(shown, settings, row.view, perspective);
            for (const auto& [x, band] : row.spots)
                EXPECT_TRUE(near(colorAt(drawn, {x, 0.5, 0}), band < 0 ? kGrey : bands.color(band), kFacing))
                    << row.name << ", x = " << x;
            EXPECT_EQ(colorAt(drawn, {2, 1.5, 0}) & 0xFFFFFF, kBackground & 0xFFFFFF) << row.name;
        }
    const ColorBands bands(4, {0, 1}, false);
    EXPECT_GT(channel(bands.color(0), 2), channel(bands.color(0), 0)) << "low values are blue";
    EXPECT_GT(channel(bands.color(3), 0), channel(bands.color(3), 2)) << "high values are red";
}

TEST_F(ViewerScene, SmearedColorsFollowTheColorScale) {
    const ShownModel shown = byField(strip({0, 0.3, 0.55, 1}), "c");
    SceneSettings settings = inBands(4);
    settings.smeared = true;
    const Picture drawn = picture(shown, settings);
    RenderColorScale scale = ColorBands(4, {0, 1}, true).attributes().colorScale;
    EXPECT_NE(scale.GetColor(0.3f) & 0xFFFFFF, scale.GetColor(0.26f) & 0xFFFFFF);
    EXPECT_TRUE(near(colorAt(drawn, {1.5, 0.5, 0}), scale.GetColor(0.3f), kFacing));
    EXPECT_TRUE(near(colorAt(drawn, {2.5, 0.5, 0}), scale.GetColor(0.55f), kFacing));
}

TEST_F(ViewerScene, FarHugeAndTinyModelsKeepTheirShape) {
    const struct {
        const char* name;
        double shift, size;
    } rows[] = {{"far", 1e9, 1}, {"huge", 0, std::ldexp(1, 1000)}, {"tiny", 0, std::ldexp(1, -1000)}};
    const ShownModel plain = showModel(strip(), {});
    const Picture expected = picture(plain, inBands(1, EdgeMode::All), "iso", true);
    EXPECT_GT(expected.countOtherThan(kBackground), 200);
    for (const auto& row : rows) {
        Model model = strip();
        for (Point& node : model.nodes)
            node = row.size * node + Point{row.shift, row.shift, 0};
        const ShownModel shown = showModel(model, {});
        EXPECT_TRUE(nrutest::samePicture(picture(shown, inBands(1, EdgeMode::All), "iso", true), expected))
            << row.name;
    }
}

TEST_F(ViewerScene, EdgesAreUnbrokenOnFacesOfAnySlope) {
    const ShownModel shown = showModel(strip(), {});
    for (const char* view : {"xy", "0,1,1", "-1,-3,1", "2,1,1", "5,1,2"})
        for (bool perspective : {false, true}) {
            const Picture drawn = picture(shown, inBands(1, EdgeMode::All), view, perspective);
            for (double x : {1.0, 2.0, 3.0})
                EXPECT_TRUE(isDrawn(drawn, {x, 0, 0}, {x, 1, 0})) << view << ", x = " << x;
        }
    const Picture features = picture(shown, inBands(4, EdgeMode::Feature));
    EXPECT_FALSE(isDrawn(features, {2, 0, 0}, {2, 1, 0})) << "an edge within a flat sheet is no feature";
    EXPECT_TRUE(isDrawn(features, {0, 0, 0}, {4, 0, 0})) << "the sheet's outline is one";
}

TEST_F(ViewerScene, EdgesCloseBehindAFaceStayHidden) {
    Model model = strip();
    model.nodes.insert(model.nodes.end(), {{0, 0, 0.1}, {4, 0, 0.1}, {4, 1, 0.1}, {0, 1, 0.1}});
    model.addCell(CellType::Quad, std::array<std::uint32_t, 4>{10, 11, 12, 13});
    const ShownModel shown = showModel(model, {});
    for (bool perspective : {false, true}) {
        const Picture drawn = picture(shown, inBands(1, EdgeMode::All), "1,1,2", perspective);
        for (double x : {1.0, 2.0, 3.0})
            EXPECT_GT(brightness(colorAt(drawn, {x, 0.5, 0})), 160) << x;
    }
}

TEST_F(ViewerScene, FacesOfABoxHaveShadesOfTheirOwnAndNoneIsBlack) {
    const ShownModel shown = showModel(makeSample("cantilever:3"), {});
    for (const char* view : {"1,1,1", "-1,-1,-1", "1,-1,1"}) {
        const Picture drawn = picture(shown, inBands(1), view);
        std::map<NgColorLong, int> shades;
        for (int i = 0; i < kSize * kSize; ++i)
            ++shades[drawn.at(i % kSize, i / kSize) & 0xFFFFFF];
        EXPECT_EQ(shades.size(), 4u) << view << ": three flat faces with sharp edges, and the background";
        for (const auto& [color, count] : shades)
            EXPECT_GT(brightness(color), 300) << hex(color);
    }
}

TEST_F(ViewerScene, BeamsAndPointsShowTheirColorsAndArePicked) {
    Model model;
    model.nodes = {{0, 0, 0}, {4, 0, 0}, {2, 2, 0}, {0, 1, 0}, {4, 1, 0}};
    model.addCell(CellType::Line, std::array<std::uint32_t, 2>{0, 1});
    model.addCell(CellType::Vertex, std::array<std::uint32_t, 1>{2});
    model.addCell(CellType::Line, std::array<std::uint32_t, 2>{3, 4});
    model.fields = {{"c", FieldLocation::Cell, 1, {1, 2, 1}}};
    const ShownModel shown = byField(model, "c");
    const Picture drawn = picture(shown, inBands(2));
    const ColorBands bands(2, {1, 2}, false);
    EXPECT_TRUE(near(colorAt(drawn, {1, 0, 0}), bands.color(0), 1.0));
    EXPECT_TRUE(near(colorAt(drawn, {2, 2, 0}), bands.color(1), 1.0));
    const auto [x, y] = pixelOf({3, 1, 0}); // past the middle of the second beam
    const Picked beam = pick(shown, x, y);
    EXPECT_EQ(describe(shown, beam).substr(0, 20), "element 2 (line) at ");
    EXPECT_NEAR(beam.position[0], 3.0, 0.1);
    EXPECT_EQ(beam.value, 1.0);
}

TEST_F(ViewerScene, DeformationMovesThePictureByTheFactor) {
    ShownSettings settings;
    settings.deformed = true;
    const struct {
        std::optional<double> factor;
        double expected; ///< of a largest displacement of 1
    } rows[] = {{2.0, 2.0}, {-3.0, -3.0}, {{}, 0.1 * std::sqrt(17.0)}};
    for (const auto& row : rows) {
        settings.deformFactor = row.factor;
        const ShownModel shown = showModel(strip(), settings);
        EXPECT_NEAR(shown.deformFactor, row.expected, 1e-12);
        const Picture drawn = picture(shown, inBands(1));
        const double edge = 1.0 + row.expected * 0.75; // the upper one at x = 3
        EXPECT_NE(colorAt(drawn, {3, edge - 0.2, 0}) & 0xFFFFFF, kBackground & 0xFFFFFF);
        EXPECT_EQ(colorAt(drawn, {3, edge + 0.2, 0}) & 0xFFFFFF, kBackground & 0xFFFFFF);
    }
}

TEST_F(ViewerScene, PicksWhatIsUnderThePixel) {
    const ShownModel cells = byField(strip(), "c"), nodes = byField(strip(), "x");
    const struct {
        const char* name;
        const ShownModel& shown;
        Point at;
        std::array<int, 2> offset; ///< pixels to the right and down
        const char* text;
    } rows[] = {
        {"a cell", cells, {2.5, 0.5, 0}, {0, 0}, "element 2 (quad) at 2."},
        {"a cell's value", cells, {2.5, 0.5, 0}, {0, 0}, ": c = 30"},
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
        begin(row.shown, "xy");
        const auto [x, y] = pixelOf(row.at);
        const std::string text = describe(row.shown, pick(row.shown, x + row.offset[0], y + row.offset[1]));
        EXPECT_NE(text.find(row.text), std::string::npos) << row.name << ": " << text;
    }
}

TEST_F(ViewerScene, PicksTheSideOfASolidThatIsSeen) {
    const ShownModel shown = byField(makeSample("cantilever:5"), "S:xx");
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
