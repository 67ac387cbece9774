// Models cut by a plane: what is drawn and picked on both sides of it, and of the cut itself.
#include "tests/viewer/elements.h"
#include "tests/viewer/scenetest.h"
#include "viewer/error.h"
#include "viewer/scene/blockcolors.h"

using namespace nrutest;

namespace {

/// Six hexahedra, 3 x 2 x 1, with the node field x + y and the cells' numbers.
Model boxes() {
    Model model = hexahedra(3, 2, 1);
    Field sum{"sum", FieldLocation::Node, 1, {}};
    for (const Point& node : model.nodes)
        sum.values.push_back(node[0] + node[1]);
    model.parts = {{"low", 0, 3, {}, 1.0}, {"high", 3, 3, {}, 1.0}};
    model.fields = {sum, {"number", FieldLocation::Cell, 1, {0, 1, 2, 3, 4, 5}}};
    return model;
}

ShownSettings cut(const char* field, const SectionPlane& plane) {
    ShownSettings settings;
    settings.field = field;
    settings.section = plane;
    return settings;
}

const SectionPlane kMiddle = {Point{1.5, 1, 0.5}, {1, 0, 0}};

class SectionScene : public SceneTest {};

} // namespace

TEST_F(SectionScene, ShowsTheFieldInTheCutAndNothingBeyond) {
    const ColorBands bands(5, {0, 5}, false);
    const SectionPlane slope = {Point{1.5, 1, 0.5}, {1, 0, 1}}; // x + z = 2
    for (const char* field : {"sum", "number"})
        for (const bool fixed : {false, true}) {
            SCOPED_TRACE(std::string(field) + (fixed ? ", fixed" : ""));
            const ShownModel shown = showModel(boxes(), cut(field, slope));
            const SceneSettings look = {.bands = 5, .range = std::array{0.0, 5.0}, .edges = EdgeMode::None};
            const Picture cap = picture(shown, look, {"1,0,1", false, fixed});
            for (const double x : {1.1, 1.3, 1.7, 1.9})
                for (const double y : {0.45, 0.8, 1.45}) {
                    const int cell = y < 1 ? 1 : 4;
                    const int band = std::string(field) == "sum" ? static_cast<int>(x + y) : cell;
                    EXPECT_LT(differenceInHue(colorAt(cap, {x, y, 2 - x}), bands.color(band)), 2.0)
                        << "at " << x << " " << y;
                }
            const Picture side = picture(shown, look, {"xz", false, fixed});
            EXPECT_TRUE(isShown(side, {1.4, 0, 0.5}));
            EXPECT_FALSE(isShown(side, {1.6, 0, 0.5}));
            EXPECT_FALSE(isShown(side, {2.6, 0, 0.5}));
        }
}

TEST_F(SectionScene, OutlinesTheElementsInTheCut) {
    const ShownModel shown = showModel(boxes(), cut("number", kMiddle));
    for (const EdgeMode mode : {EdgeMode::All, EdgeMode::Feature}) {
        const Picture drawn = picture(shown, {.edges = mode}, {"yz"});
        const auto isEdge = [&](const Point& p) {
            const auto [x, up] = placeOf(p);
            const int column = static_cast<int>(x), row = static_cast<int>(up);
            return isDark(drawn.at(column - 1, row)) || isDark(drawn.at(column, row)) ||
                   isDark(drawn.at(column + 1, row));
        };
        EXPECT_TRUE(isEdge({1.5, 0, 0.4}) && isEdge({1.5, 2, 0.4})) << "the rim";
        EXPECT_EQ(isEdge({1.5, 1, 0.4}), mode == EdgeMode::All) << "between two elements";
        EXPECT_FALSE(isEdge({1.5, 0.5, 0.4})) << "within an element";
    }
}

TEST_F(SectionScene, PicksTheCutAndNothingBeyond) {
    Model model = boxes();
    model.nodes.insert(model.nodes.end(), {{0, 0, 2}, {3, 0, 2}}); // a beam over them
    model.fields[0].values.insert(model.fields[0].values.end(), {0, 3});
    model.fields[1].values.push_back(6);
    model.addCell(CellType::Line, std::array{24u, 25u});
    model.parts.push_back({"beam", 6, 1, {}, 1.0});
    const ShownModel shown = showModel(model, cut("sum", kMiddle));
    using Kind = Picked::Kind;
    begin(shown, {"yz"});
    const Picked inCut = pickAt(shown, {1.5, 1.4, 0.6});
    EXPECT_EQ(inCut.kind, Kind::Element);
    EXPECT_EQ(inCut.cell, 4u);
    EXPECT_NEAR(inCut.position[0], 1.5, 1e-9);
    EXPECT_NEAR(inCut.value, inCut.position[0] + inCut.position[1], 1e-9);
    begin(shown, {"xz"});
    EXPECT_EQ(pickAt(shown, {1.3, 0, 0.6}).cell, 1u);
    EXPECT_EQ(pickAt(shown, {1, 0, 1}).nodes[0], 13u);
    for (const Point& away : {Point{1.7, 0, 0.6}, {2.4, 0, 0.6}, {2, 0, 1}, {3, 0, 0}, {2, 0, 2}})
        EXPECT_EQ(pickAt(shown, away).kind, Kind::Nothing) << away[0] << " " << away[2];
    EXPECT_EQ(pickAt(shown, {1.2, 0, 2}).cell, 6u) << "the rest of a beam";
    begin(shown, {"0,0,-1"}); // from behind, and through where the rest was
    EXPECT_EQ(pickAt(shown, {1.3, 1.4, 0}).cell, 4u);
    EXPECT_EQ(pickAt(shown, {1.7, 1.4, 0}).kind, Kind::Nothing);
}

TEST_F(SectionScene, CutsBodiesToo) {
    for (const bool fixed : {false, true}) {
        const ShownModel shown = showModel(boxes(), cut("", kMiddle));
        BodySettings body;
        body.frontColor = 0xFF2040C0; // red; the inner sides behind the cut are blue
        body.backColor = 0xFFC04020;
        const NgColorLong found = colorAt(picture(shown, {}, {"yz", false, fixed}, body), {1.5, 1.2, 0.5});
        EXPECT_GT(found & 0xFF, 2 * (found >> 16 & 0xFF)) << "closed, fixed " << fixed;
        const Picture side = picture(shown, {}, {"xz", false, fixed}, body);
        EXPECT_TRUE(isShown(side, {1.4, 0, 0.5}));
        EXPECT_FALSE(isShown(side, {1.6, 0, 0.5}));
    }
}

TEST_F(SectionScene, BlocksHaveTheirColorsAndAreHiddenByName) {
    ShownSettings settings = cut("sum", kMiddle);
    settings.colorBy = ColorBy::Block;
    const auto isOfBlock = [](NgColorLong found, std::size_t block) {
        return differenceInHue(found, blockColor(block)) < 2.0;
    };
    for (const bool hidden : {false, true})
        for (const bool fixed : {false, true}) {
            settings.elements.hiddenBlocks.assign(hidden ? 1 : 0, "high");
            const ShownModel shown = showModel(boxes(), settings);
            const Picture cap = picture(shown, {.edges = EdgeMode::None}, {"yz", false, fixed});
            EXPECT_TRUE(isOfBlock(colorAt(cap, {1.5, 0.5, 0.5}), 0));
            EXPECT_EQ(isOfBlock(colorAt(cap, {1.5, 1.5, 0.5}), 1), !hidden);
            const Picture back = picture(shown, {.edges = EdgeMode::None}, {"0,0,-1", false, fixed});
            EXPECT_EQ(isOfBlock(colorAt(back, {0.5, 1.5, 0}), 1), !hidden);
        }
    settings.elements.hiddenBlocks = {"middle"};
    EXPECT_THROW(showModel(boxes(), settings), ViewerError);
}
