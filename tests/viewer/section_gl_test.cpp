// Models cut by a plane: what is drawn and picked on both sides of it, and of the cut itself.
#include <algorithm>
#include <cmath>

#include "tests/support/gltest.h"
#include "viewer/error.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/blockcolors.h"
#include "viewer/scene/frame.h"
#include "viewer/scene/pick.h"
#include "viewer/scene/scene.h"

using namespace nruview;
using nrutest::Picture;

namespace {

using Index = std::uint32_t;
constexpr NgColorLong kBackground = 0xFF80FF80;

/// Six hexahedra, 3 x 2 x 1, in a box of these lengths, with the node field x + y and the cells' numbers; a
/// beam from (0, 0, 0) to (3, 0, 2) over them.
Model boxes() {
    Model model;
    Field sum{"sum", FieldLocation::Node, 1, {}}, number{"number", FieldLocation::Cell, 1, {}};
    for (int i = 0; i < 24; ++i) {
        model.nodes.push_back({1.0 * (i % 4), 1.0 * (i / 4 % 3), 1.0 * (i / 12)});
        sum.values.push_back(model.nodes.back()[0] + model.nodes.back()[1]);
    }
    for (Index i = 0; i < 6; ++i) {
        const Index at = i % 3 + 4 * (i / 3);
        model.addCell(CellType::Hexa,
                      std::array{at, at + 1, at + 5, at + 4, at + 12, at + 13, at + 17, at + 16});
        number.values.push_back(i);
    }
    model.parts = {{"low", 0, 3, {}, 1.0}, {"high", 3, 3, {}, 1.0}};
    model.fields = {sum, number};
    return model;
}

class SectionScene : public nrutest::GlTest {
protected:
    void begin(const ShownModel& shown, const char* view, bool fixed = false) {
        if (!m_session || fixed != m_isFixed)
            m_session.reset();
        if (!m_session)
            m_session.emplace(fixed);
        m_isFixed = fixed;
        beginFrame(fitCamera(parseView(view), shown.bounds, 1.0, false), shown.bounds, kSize, kSize,
                   kBackground);
        m_shown = &shown;
    }
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
    /// Whether a colour is another one in any shade: hue tells bands apart.
    bool isShadeOf(NgColorLong found, NgColorLong color) const {
        const auto channel = [](NgColorLong c, int i) { return static_cast<double>(c >> 8 * i & 0xFF); };
        double factor = 0.0, size = 0.0, error = 0.0;
        for (int i = 0; i < 3; ++i) {
            factor += channel(found, i) * channel(color, i);
            size += channel(color, i) * channel(color, i);
        }
        for (int i = 0; i < 3; ++i)
            error = std::max(error, std::abs(channel(found, i) - factor / size * channel(color, i)));
        return error <= 2.0 && factor / size > 0.45;
    }
    void TearDown() override {
        m_session.reset();
        GlTest::TearDown();
    }

    const ShownModel* m_shown = nullptr;
    bool m_isFixed = false;
    std::optional<LibrarySession> m_session;
};

ShownSettings cut(const char* field, const SectionPlane& plane) {
    ShownSettings settings;
    settings.field = field;
    settings.section = plane;
    return settings;
}

} // namespace

TEST_F(SectionScene, ShowsTheFieldInTheCutAndNothingBeyond) {
    const ColorBands bands(5, {0, 5}, false);
    const SectionPlane slope = {Point{1.5, 1, 0.5}, {1, 0, 1}}; // x + z = 2
    for (const char* field : {"sum", "number"})
        for (const bool fixed : {false, true}) {
            SCOPED_TRACE(std::string(field) + (fixed ? ", fixed" : ""));
            const ShownModel shown = showModel(boxes(), cut(field, slope));
            begin(shown, "1,0,1", fixed);
            Scene scene(shown, {.bands = 5, .range = std::array{0.0, 5.0}, .edges = EdgeMode::None});
            scene.draw();
            const Picture picture = read();
            for (const double x : {1.1, 1.3, 1.7, 1.9})
                for (const double y : {0.45, 0.8, 1.45}) {
                    const int cell = y < 1 ? 1 : 4;
                    const int band = std::string(field) == "sum" ? static_cast<int>(x + y) : cell;
                    EXPECT_TRUE(isShadeOf(colorAt(picture, {x, y, 2 - x}), bands.color(band)))
                        << "at " << x << " " << y;
                }
            begin(shown, "xz", fixed);
            scene.draw();
            const Picture side = read();
            EXPECT_NE(colorAt(side, {1.4, 0, 0.5}), kBackground);
            EXPECT_EQ(colorAt(side, {1.6, 0, 0.5}), kBackground);
            EXPECT_EQ(colorAt(side, {2.6, 0, 0.5}), kBackground);
        }
}

TEST_F(SectionScene, OutlinesTheElementsInTheCut) {
    const ShownModel shown = showModel(boxes(), cut("number", {Point{1.5, 1, 0.5}, {1, 0, 0}}));
    for (const EdgeMode mode : {EdgeMode::All, EdgeMode::Feature}) {
        begin(shown, "yz");
        Scene scene(shown, {.edges = mode});
        scene.draw();
        const Picture picture = read();
        const auto isDark = [&](const Point& p) {
            const auto [x, y] = pixelOf(p);
            bool found = false;
            for (const int d : {-1, 0, 1})
                found |= (picture.at(x + d, kSize - 1 - y) & 0xFF) < 0x40 &&
                         (picture.at(x + d, kSize - 1 - y) >> 8 & 0xFF) < 0x40;
            return found;
        };
        EXPECT_TRUE(isDark({1.5, 0, 0.4}) && isDark({1.5, 2, 0.4})) << "the rim";
        EXPECT_EQ(isDark({1.5, 1, 0.4}), mode == EdgeMode::All) << "between two elements";
        EXPECT_FALSE(isDark({1.5, 0.5, 0.4})) << "within an element";
    }
}

TEST_F(SectionScene, PicksTheCutAndNothingBeyond) {
    Model model = boxes();
    model.nodes.push_back({0, 0, 2});
    model.nodes.push_back({3, 0, 2});
    model.fields[0].values.insert(model.fields[0].values.end(), {0, 3});
    model.fields[1].values.push_back(6);
    model.addCell(CellType::Line, std::array{Index{24}, Index{25}});
    model.parts.push_back({"beam", 6, 1, {}, 1.0});
    const ShownModel shown = showModel(model, cut("sum", {Point{1.5, 1, 0.5}, {1, 0, 0}}));
    using Kind = Picked::Kind;
    const auto pickAt = [&](const Point& p) {
        const auto [x, y] = pixelOf(p);
        return pick(shown, x, y);
    };
    begin(shown, "yz");
    const Picked inCut = pickAt({1.5, 1.4, 0.6});
    EXPECT_EQ(inCut.kind, Kind::Element);
    EXPECT_EQ(inCut.cell, 4u);
    EXPECT_NEAR(inCut.position[0], 1.5, 1e-9);
    EXPECT_NEAR(inCut.value, inCut.position[0] + inCut.position[1], 1e-9);
    begin(shown, "xz");
    EXPECT_EQ(pickAt({1.3, 0, 0.6}).cell, 1u);
    EXPECT_EQ(pickAt({1, 0, 1}).nodes[0], 13u);
    for (const Point& away : {Point{1.7, 0, 0.6}, {2.4, 0, 0.6}, {2, 0, 1}, {3, 0, 0}, {2, 0, 2}})
        EXPECT_EQ(pickAt(away).kind, Kind::Nothing) << away[0] << " " << away[2];
    EXPECT_EQ(pickAt({1.2, 0, 2}).cell, 6u) << "the rest of a beam";
    begin(shown, "0,0,-1"); // from behind, and through where the rest was
    EXPECT_EQ(pickAt({1.3, 1.4, 0}).cell, 4u);
    EXPECT_EQ(pickAt({1.7, 1.4, 0}).kind, Kind::Nothing);
}

TEST_F(SectionScene, CutsBodiesToo) {
    for (const bool fixed : {false, true}) {
        const ShownModel shown = showModel(boxes(), cut("", {Point{1.5, 1, 0.5}, {1, 0, 0}}));
        BodySettings body;
        body.frontColor = 0xFF2040C0; // red; the inner sides behind the cut are blue
        body.backColor = 0xFFC04020;
        begin(shown, "yz", fixed);
        Scene scene(shown, {}, body);
        scene.draw();
        const NgColorLong found = colorAt(read(), {1.5, 1.2, 0.5});
        EXPECT_GT(found & 0xFF, 2 * (found >> 16 & 0xFF)) << "closed, fixed " << fixed;
        begin(shown, "xz", fixed);
        scene.draw();
        const Picture side = read();
        EXPECT_NE(colorAt(side, {1.4, 0, 0.5}), kBackground);
        EXPECT_EQ(colorAt(side, {1.6, 0, 0.5}), kBackground);
    }
}

TEST_F(SectionScene, BlocksHaveTheirColorsAndAreHiddenByName) {
    ShownSettings settings = cut("sum", {Point{1.5, 1, 0.5}, {1, 0, 0}});
    settings.colorBy = ColorBy::Block;
    for (const bool hidden : {false, true})
        for (const bool fixed : {false, true}) {
            settings.elements.hiddenBlocks.assign(hidden ? 1 : 0, "high");
            const ShownModel shown = showModel(boxes(), settings);
            begin(shown, "yz", fixed);
            Scene scene(shown, {.edges = EdgeMode::None});
            scene.draw();
            const Picture cap = read();
            EXPECT_TRUE(isShadeOf(colorAt(cap, {1.5, 0.5, 0.5}), blockColor(0)));
            EXPECT_EQ(isShadeOf(colorAt(cap, {1.5, 1.5, 0.5}), blockColor(1)), !hidden);
            begin(shown, "0,0,-1", fixed);
            scene.draw();
            EXPECT_EQ(isShadeOf(colorAt(read(), {0.5, 1.5, 0}), blockColor(1)), !hidden);
        }
    settings.elements.hiddenBlocks = {"middle"};
    EXPECT_THROW(showModel(boxes(), settings), ViewerError);
}
