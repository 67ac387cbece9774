// The viewer's pictures at known pixels, and what it picks there.
#include <set>

#include "tests/viewer/elements.h"
#include "tests/viewer/scenetest.h"
#include "viewer/model/samples.h"

using namespace nrutest;

namespace {

using Kind = Picked::Kind;
constexpr NgColorLong kGrey = 0xFFA0A0A0;
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
    return showModel(model, {.field = field});
}

SceneSettings inBands(int bands, EdgeMode edges = EdgeMode::None) {
    return {.bands = bands, .edges = edges};
}

/// The largest difference of a channel; up to 1.5 is rounding.
double difference(NgColorLong found, NgColorLong expected, double shade = 1.0) {
    double largest = 0.0;
    for (int shift : {0, 8, 16})
        largest = std::max(largest, std::abs((found >> shift & 0xFF) - shade * (expected >> shift & 0xFF)));
    return largest;
}

class ViewerScene : public SceneTest {
protected:
    bool shows(const Picture& picture, const Point& p, NgColorLong color, double shade = 1.0) const {
        return difference(colorAt(picture, p), color, shade) < 1.5;
    }
    /// Whether a dark line joins two points: a pixel at each step along its longer side, or the one beside
    /// it.
    bool isDrawn(const Picture& picture, const Point& from, const Point& to) const {
        const auto [x0, y0] = pixelOf(from);
        const auto [x1, y1] = pixelOf(to);
        const int steps = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
        const int dx = std::abs(x1 - x0) == steps ? 0 : 1, dy = 1 - dx;
        bool isUnbroken = true;
        for (int i = 1; i < steps; ++i) {
            const int x = x0 + (x1 - x0) * i / steps, y = kSize - 1 - (y0 + (y1 - y0) * i / steps);
            isUnbroken &= isDark(picture.at(x, y)) || isDark(picture.at(x + dx, y + dy)) ||
                          isDark(picture.at(x - dx, y - dy));
        }
        return isUnbroken;
    }
};

} // namespace

TEST_F(ViewerScene, ValuesShowTheColorOfTheirBand) {
    using Spots = std::vector<std::pair<double, double>>; // x and the band or part there; -1: no value
    const Spots all = {{0.5, 0}, {1.5, 1}, {2.5, 2}, {3.5, 3}};
    const Spots within = {{0.1, 0}, {1.4, 0}, {1.6, 1}, {2.4, 1}, {2.6, 2}};
    const struct {
        const char *name, *field, *view;
        std::vector<double> cells;
        int bands;
        Spots spots;
        std::optional<std::array<double, 2>> range = {};
        bool smeared = false;
    } rows[] = {
        {"from behind", "c", "0,0,-1", {10, 20, 30, 40}, 4, all},
        {"tiny", "c", "xy", {1e-30, 2e-30, 3e-30, 4e-30}, 4, all},
        {"offset", "c", "xy", {1e9 + 1, 1e9 + 2, 1e9 + 3, 1e9 + 4}, 4, all},
        {"huge", "c", "xy", {-4e300, -3e300, -2e300, -1e300}, 4, all},
        {"not finite", "c", "xy", {-INFINITY, 8, NAN, 10}, 2, {{0.5, 0}, {1.5, 0}, {2.5, -1}, {3.5, 1}}},
        {"outside", "c", "xy", {-1e30, 1e30, 6, 20}, 4, {{0.5, 0}, {1.5, 3}, {2.5, 0}, {3.5, 3}}, {{5, 25}}},
        {"smeared", "c", "xy", {0, 0.3, 0.55, 1}, 4, {{1.5, 0.3}, {2.5, 0.55}}, {}, true},
        {"within elements", "x", "xy", {1, 2, 3, 4}, 3, within, {{0.5, 3.5}}},
    };
    for (const auto& row : rows)
        for (bool perspective : {false, true}) {
            const SceneSettings settings = {row.bands, row.range, row.smeared, EdgeMode::None};
            const ColorBands bands(row.bands, {0, 1}, row.smeared);
            const ShownModel shown = byField(strip(row.cells), row.field);
            const Picture drawn = picture(shown, settings, {row.view, perspective});
            for (const auto& [x, part] : row.spots) {
                const NgColorLong expected = part < 0      ? kGrey
                                             : row.smeared ? bands.scale().GetColor(static_cast<float>(part))
                                                           : bands.color(static_cast<int>(part));
                EXPECT_TRUE(shows(drawn, {x, 0.5, 0}, expected, kFacing)) << row.name << ", x = " << x;
            }
            EXPECT_FALSE(isShown(drawn, {2, 1.5, 0})) << row.name;
        }
}

TEST_F(ViewerScene, ElementsStandOutOrAreLeftOut) {
    Model model = strip();
    model.fields.push_back({"d", FieldLocation::Cell, 1, {15, 22, 25, 5}});
    start();
    const ColorBands bands(4, {0, 1}, false);
    const NgColorLong b0 = bands.color(0), b1 = bands.color(1), b2 = bands.color(2), b3 = bands.color(3);
    const NgColorLong red = 0xFF0000FF, blue = 0xFFFF0000, none = 0;
    const NgColorLong selected = NglGetColorGivenIndex(33), highlighted = NglGetColorGivenIndex(32);
    const struct {
        const char* name;
        ElementSettings elements;
        std::array<NgColorLong, 4> expected;
    } rows[] = {
        {"highlight", {.hidden = {{0, 2}}, .highlighted = {{1, 1}}}, {none, highlighted, none, b3}},
        {"both", {.selected = {{0, 1}}, .highlighted = {{1, 1}}}, {selected, highlighted, b2, b3}},
        {"own colours", {.colored = {{{{0, 0}, {2, 2}}, red}, {{{2, 3}}, blue}}}, {red, b1, blue, blue}},
        {"clipped from both sides", {.clips = {{0, 1, INFINITY}, {0, -INFINITY, 2}}}, {none, b1, none, none}},
        {"failed", {.failLevel = 20, .failField = "c"}, {none, none, b2, b3}},
        {"not yet there", {.failLevel = 25, .failBeforeField = "c"}, {b0, b1, none, none}},
        {"either", {.failLevel = 21, .failField = "d", .failBeforeField = "c"}, {none, b1, none, none}},
    };
    for (int programs : {1, 0})
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.name) + (programs ? "" : ", fixed function"));
            SetUserDefinedFastRenderingMode(programs);
            const ShownModel shown = showModel(model, {.field = "c", .elements = row.elements});
            const Picture drawn = picture(shown, inBands(4, EdgeMode::All));
            for (int i = 0; i < 4; ++i) {
                const Point middle = {i + 0.5, 0.5, 0};
                const bool isThere = row.expected[i] != none;
                EXPECT_TRUE(isThere ? shows(drawn, middle, row.expected[i], kFacing)
                                    : shows(drawn, middle, kBackground))
                    << i;
                EXPECT_EQ(isDrawn(drawn, {i + 0.0, 0, 0}, {i + 1.0, 0, 0}), isThere) << i;
                EXPECT_EQ(pickAt(shown, middle).kind, isThere ? Kind::Element : Kind::Nothing) << i;
            }
        }
}

TEST_F(ViewerScene, ProgramsAndFixedFunctionGiveOnePicture) {
    const ElementSettings some = {
        .hidden = {{3, 5}}, .selected = {{7, 9}}, .colored = {{{{12, 14}}, 0xFF30C0F0}}};
    const struct {
        const char *sample, *field, *view;
        SceneSettings scene;
        ElementSettings elements = {};
    } rows[] = {
        {"cantilever:10", "S:xx", "iso", {.edges = EdgeMode::None}},
        {"cantilever:10", "S:xx", "iso", {.smeared = true, .edges = EdgeMode::None}},
        {"cantilever:10", "S_cell", "-1,-2,-3", {}, some},
        {"cantilever:10", "S_cell", "iso", {.shading = Shading::Flat, .opacity = 0.5}, some},
        {"hole:6", "S:mises", "1,2,3", {.range = {{50, 200}}, .shading = Shading::Element}},
        {"hole:6", "", "xy", {}, some},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.field);
        const ShownModel shown = showModel(makeSample(row.sample),
                                           {.field = row.field, .deformed = true, .elements = row.elements});
        for (bool perspective : {false, true}) {
            start();
            SetUserDefinedFastRenderingMode(1);
            const Picture programs = picture(shown, row.scene, {row.view, perspective});
            SetUserDefinedFastRenderingMode(0);
            const Picture fixed = picture(shown, row.scene, {row.view, perspective});
            EXPECT_GT(programs.countOtherThan(kBackground), 200);
            // Lighting rounds differently, and the end of a band may fall on the next pixel.
            int apart = 0;
            for (int i = 0; i < kSize * kSize; ++i)
                apart += difference(programs.at(i % kSize, i / kSize), fixed.at(i % kSize, i / kSize)) > 1;
            EXPECT_LE(apart, kSize * kSize / 400);
        }
    }
}

TEST_F(ViewerScene, FarHugeAndTinyModelsKeepTheirShape) {
    const ShownModel plain = showModel(strip(), {});
    const Picture expected = picture(plain, inBands(1, EdgeMode::All), {"iso", true});
    EXPECT_GT(expected.countOtherThan(kBackground), 200);
    for (const auto& [shift, size] : {std::pair{1e9, 1.0}, {0.0, 0x1p1000}, {0.0, 0x1p-1000}}) {
        Model model = strip();
        for (Point& node : model.nodes)
            node = size * node + Point{shift, shift, 0};
        model.nodes.push_back({shift, 1e9 * size, 0}); // no element's
        const ShownModel shown = showModel(model, {});
        EXPECT_TRUE(samePicture(picture(shown, inBands(1, EdgeMode::All), {"iso", true}), expected))
            << "size " << size;
    }
}

TEST_F(ViewerScene, EdgesAreUnbrokenOnFacesOfAnySlopeAndHiddenCloseBehindOne) {
    const ShownModel shown = showModel(strip(), {});
    for (const char* view : {"xy", "-1,-3,1", "5,1,2"})
        for (bool perspective : {false, true}) {
            const Picture drawn = picture(shown, inBands(1, EdgeMode::All), {view, perspective});
            for (double x : {1.0, 2.0, 3.0})
                EXPECT_TRUE(isDrawn(drawn, {x, 0, 0}, {x, 1, 0})) << view << ", x = " << x;
        }
    Model covered = strip();
    covered.nodes.insert(covered.nodes.end(), {{0, 0, 0.1}, {4, 0, 0.1}, {4, 1, 0.1}, {0, 1, 0.1}});
    covered.addCell(CellType::Quad, std::array<std::uint32_t, 4>{10, 11, 12, 13});
    for (bool perspective : {false, true}) {
        const ShownModel both = showModel(covered, {});
        const Picture drawn = picture(both, inBands(1, EdgeMode::All), {"1,1,2", perspective});
        for (double x : {1.0, 2.0, 3.0})
            EXPECT_FALSE(isDark(colorAt(drawn, {x, 0.5, 0}))) << x;
    }
    const Picture features = picture(shown, inBands(4, EdgeMode::Feature));
    EXPECT_FALSE(isDrawn(features, {2, 0, 0}, {2, 1, 0})) << "an edge within a flat sheet is no feature";
    EXPECT_TRUE(isDrawn(features, {0, 0, 0}, {4, 0, 0})) << "the sheet's outline is one";
}

TEST_F(ViewerScene, FacesOfABoxHaveShadesOfTheirOwnAndNoneIsBlack) {
    const ShownModel shown = showModel(makeSample("cantilever:3"), {});
    for (const char* view : {"1,1,1", "-1,-1,-1", "1,-1,1"}) {
        const Picture drawn = picture(shown, inBands(1), {view});
        std::set<NgColorLong> shades; // of three flat faces with sharp edges, and of the background
        for (int i = 0; i < kSize * kSize; ++i)
            shades.insert(drawn.at(i % kSize, i / kSize));
        EXPECT_TRUE(shades.size() == 4 && std::none_of(shades.begin(), shades.end(), isDark)) << view;
    }
}

TEST_F(ViewerScene, BeamsAndPointsShowTheirColorsAndArePicked) {
    Model model = modelOf({{0, 0, 0}, {4, 0, 0}, {2, 2, 0}, {0, 1, 0}, {4, 1, 0}},
                          {{CellType::Line, {0, 1}}, {CellType::Vertex, {2}}, {CellType::Line, {3, 4}}});
    model.fields = {{"c", FieldLocation::Cell, 1, {1, 2, 1}}};
    const ShownModel shown = byField(model, "c");
    const Picture drawn = picture(shown, inBands(2));
    const ColorBands bands(2, {1, 2}, false);
    EXPECT_TRUE(shows(drawn, {1, 0, 0}, bands.color(0)));
    EXPECT_TRUE(shows(drawn, {2, 2, 0}, bands.color(1)));
    const ElementSettings elements = {.hidden = {{0, 0}}, .selected = {{1, 1}}, .highlighted = {{2, 2}}};
    const ShownModel some = showModel(model, {.field = "c", .elements = elements});
    const Picture less = picture(some, inBands(2));
    EXPECT_FALSE(isShown(less, {1, 0, 0}));
    EXPECT_EQ(pickAt(some, {1, 0, 0}).kind, Kind::Nothing);
    EXPECT_TRUE(shows(less, {2, 2, 0}, NglGetColorGivenIndex(33)));
    EXPECT_TRUE(shows(less, {1, 1, 0}, NglGetColorGivenIndex(32)));
    const Picked beam = pickAt(shown, {3, 1, 0}); // past the middle of the second beam
    EXPECT_EQ(describe(shown, beam).substr(0, 20), "element 2 (line) at ");
    EXPECT_NEAR(beam.position[0], 3.0, 0.1);
    EXPECT_EQ(beam.value, 1.0);
}

TEST_F(ViewerScene, DeformationMovesThePictureByTheFactor) {
    // The largest displacement is 1; automatic makes it a tenth of the model's size.
    const double automatic = 0.1 * std::sqrt(17.0);
    for (const auto& [factor, expected] :
         {std::pair{std::optional(2.0), 2.0}, {-3.0, -3.0}, {std::nullopt, automatic}}) {
        const ShownModel shown = showModel(strip(), {.deformed = true, .deformFactor = factor});
        EXPECT_NEAR(shown.deformFactor, expected, 1e-12);
        const Picture drawn = picture(shown, inBands(1));
        const double edge = 1.0 + expected * 0.75; // the upper one at x = 3
        EXPECT_TRUE(isShown(drawn, {3, edge - 0.2, 0}));
        EXPECT_FALSE(isShown(drawn, {3, edge + 0.2, 0}));
    }
}

TEST_F(ViewerScene, PicksWhatIsUnderThePixel) {
    const ShownModel cells = byField(strip(), "c"), nodes = byField(strip(), "x");
    const ShownModel solid = byField(makeSample("cantilever:5"), "S:xx");
    const struct {
        const char* name;
        const ShownModel& shown;
        const char* view;
        Point at;
        std::array<int, 2> offset; ///< pixels to the right and down
        const char *start, *end;
    } rows[] = {
        {"element", cells, "xy", {2.5, 0.5, 0}, {0, 0}, "element 2 (quad) at 2.", ": c = 30"},
        {"node", nodes, "xy", {3, 1, 0}, {0, 0}, "node 7 at 3 1 0: x = 3", ""},
        {"node from outside", nodes, "xy", {4, 1, 0}, {2, -2}, "node 9 at 4 1 0: x = 4", ""},
        {"inner edge", nodes, "xy", {1, 0.5, 0}, {1, 0}, "edge 2 3 at 1 0.", ": x = 1"},
        {"far end first in the element", nodes, "xy", {2, 0.36, 0}, {1, 0}, "edge 4 5 at 2 0.3", ""},
        {"far end of the first edge", nodes, "xy", {2.7, 0, 0}, {0, -1}, "edge 4 6 at 2.6", ""},
        {"outline from outside", cells, "xy", {2.5, 1, 0}, {0, -2}, "edge 5 7 at 2.", ""},
        {"beside the model", cells, "xy", {2.5, 1, 0}, {0, -8}, "nothing", ""},
        {"node in front", solid, "xy", {60, 10, 5}, {0, 0}, "node 21 at 60 10 5", ": S:xx = 60"},
        {"node behind", solid, "0,0,-1", {60, 10, -5}, {0, 0}, "node 9 at 60 10 -5", ": S:xx = 60"},
        {"element behind", solid, "0,0,-1", {50, 2, -5}, {0, 0}, "element 2 (hexa", " -5: S:xx"},
    };
    for (const auto& row : rows)
        for (bool perspective : {false, true}) {
            begin(row.shown, {row.view, perspective});
            const std::string text =
                describe(row.shown, pickAt(row.shown, row.at, row.offset[0], row.offset[1]));
            EXPECT_TRUE(text.starts_with(row.start) && text.find(row.end) != text.npos)
                << row.name << ": " << text;
        }
}
