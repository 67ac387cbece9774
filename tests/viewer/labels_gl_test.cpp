// What labels draw: texts, the colour bar, marks and axes, at known pixels.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"
#include "viewer/axes.h"
#include "viewer/frame.h"
#include "viewer/labels.h"
#include "viewer/legend.h"
#include "viewer/samples.h"
#include "viewer/scene.h"

using namespace nruview;
using nrutest::Picture;

namespace {

constexpr NgColorLong kWhite = 0xFFFFFFFF, kBlack = 0xFF000000, kRgb = 0xFFFFFF;
constexpr int kWidth = 480, kHeight = 360;
constexpr int kEm_px = 10; ///< of the labels of such a picture

/// Pixels that differ from a colour, or between two pictures.
struct Ink {
    PixelRect box{kWidth, kHeight, 0, 0};
    int count = 0;
    void add(int x, int y) {
        box = {std::min(box.left, x), std::min(box.bottom, y), std::max(box.right, x + 1),
               std::max(box.top, y + 1)};
        ++count;
    }
};

template <typename IsInk>
Ink inkWhere(IsInk isInk) {
    Ink ink;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            if (isInk(x, y))
                ink.add(x, y);
    return ink;
}

Ink inkOn(const Picture& picture, NgColorLong background) {
    return inkWhere([&](int x, int y) { return (picture.at(x, y) & kRgb) != (background & kRgb); });
}

class ViewerLabels : public nrutest::GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        m_session.emplace();
        NglCreateFBO(kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, &m_buffer);
        NglBindFrameBuffer(m_buffer.framebuffer);
    }
    void TearDown() override {
        NglDestroyFBO(&m_buffer);
        m_session.reset();
        GlTest::TearDown();
    }
    void begin(const Camera& camera, const Bounds& bounds, NgColorLong background = kWhite) {
        beginFrame(camera, bounds, kWidth, kHeight, background);
    }
    /// A frame with nothing in it.
    void beginEmpty(NgColorLong background = kBlack, bool perspective = false, double at = 0.0) {
        const Bounds box{{at - 1, at - 1, at - 1}, {at + 1, at + 1, at + 1}};
        begin(fitCamera(parseView("iso"), box, 1.0 * kWidth / kHeight, perspective), box, background);
    }
    static Picture read() { return Picture::read(kWidth, kHeight); }

    std::optional<LibrarySession> m_session;
    _NglFBOInfoStr m_buffer{};
};

/// A frame of a model with its labels.
struct Shown {
    ShownModel model;
    Scene scene;
    PictureLabels labels;
    Camera camera;

    Shown(Model read, const ShownSettings& settings, const SceneSettings& look, const LabelSettings& label,
          const char* view = "iso", bool perspective = false)
        : model(showModel(std::move(read), settings)), scene(model, look),
          labels(model, scene.bands(), label, label.title.value_or("Title")),
          camera(fitCamera(parseView(view), model.bounds, labels.area(kWidth, kHeight), perspective)) {}
    std::array<Picture, 2> draw(NgColorLong background = kWhite) {
        beginFrame(camera, model.bounds, kWidth, kHeight, background);
        scene.draw();
        const Picture bare = Picture::read(kWidth, kHeight);
        labels.draw(camera, kWidth, kHeight, background);
        return {bare, Picture::read(kWidth, kHeight)};
    }
};

/// Whether a text stands somewhere in black on white, all of its pixels.
bool shows(const Picture& picture, const std::string& text) {
    Font font(fontFile(), kEm_px);
    const TextRaster raster = font.raster(GuString(text).Wide());
    const auto isAt = [&](int left, int top) {
        for (int i = 0; i < raster.width * raster.height; ++i) {
            const int found = picture.at(left + i % raster.width, top - i / raster.width) & 0xFF;
            if (std::abs(found - (255 - raster.coverage[static_cast<std::size_t>(i)])) > 1)
                return false;
        }
        return true;
    };
    for (int top = raster.height - 1; top < kHeight; ++top)
        for (int left = 0; left + raster.width <= kWidth; ++left)
            if (isAt(left, top))
                return true;
    return false;
}

/// A triangle with the extremes at two nodes close to each other, in a large one.
Model closeExtremes() {
    Model model;
    model.nodes = {{-3, -2, 0}, {3, -2, 0}, {0, 2, 0}, {0, 0, 0}, {0.15, 0, 0}, {0, 0.15, 0}};
    model.addCell(CellType::Triangle, std::array<std::uint32_t, 3>{0, 1, 2});
    model.addCell(CellType::Triangle, std::array<std::uint32_t, 3>{3, 4, 5});
    model.fields = {{"T", FieldLocation::Node, 1, {0.5, 0.5, 0.5, 4e-17, 1, 0.5}}}; // round-off for 0
    return model;
}

Ink changed(const std::array<Picture, 2>& pictures) {
    return inkWhere([&](int x, int y) { return pictures[0].at(x, y) != pictures[1].at(x, y); });
}

} // namespace

// The raster is FreeType's own; its coverage of white on black is the pixel itself.
TEST_F(ViewerLabels, TextsAreTheirRastersAtThePixelOfTheirPoint) {
    HostText host(fontFile());
    const std::wstring text = L"Größe: -1.5×10⁻³";
    for (const auto& [size, perspective, at] :
         {std::tuple{9, false, 0.0}, {13, true, 0.0}, {30, false, 1e6}, {13, true, 1e4}}) {
        beginEmpty(kBlack, perspective, at);
        Font* font = host.font(size);
        _NgPoint3Str point = {at - 0.6, at + 0.2, at - 0.1}, window{};
        ngl_transform_33_s(&point, &window);
        const auto x = static_cast<int>(std::lround(window.x));
        const auto y = static_cast<int>(std::lround(kHeight - window.y));
        ngl_draw_text(&point, text.c_str(), kWhite, false, font, false);
        const TextRaster raster = font->raster(text);
        const Picture drawn = read();
        int wrong = 0;
        for (int row = 0; row < raster.height; ++row)
            for (int column = 0; column < raster.width; ++column)
                wrong += (drawn.at(x + raster.left + column, y + raster.top - 1 - row) & 0xFF) !=
                         raster.coverage[static_cast<std::size_t>(row * raster.width + column)];
        EXPECT_EQ(wrong, 0) << "size " << size << ", at " << at;
        const Ink ink = inkOn(drawn, kBlack);
        int width = 0, height = 0, ascent = 0, descent = 0;
        ngl_get_text_size(&width, &height, text.c_str(), font);
        ngl_get_text_ascent_descent(text.c_str(), &ascent, &descent, font);
        EXPECT_TRUE(ink.box.top == y + ascent && ink.box.bottom == y - descent) << "measured as it stands";
        EXPECT_TRUE(height == ascent + descent && std::abs(width - ink.box.width()) <= 1 + size / 8);
    }
}

TEST_F(ViewerLabels, TextsLeaveTheStateAndAskForNothing) {
    HostText host(fontFile());
    const auto draw = [](bool atDepth, double z = 0.0) {
        const _NgPoint3Str point = {0, 0, z};
        ngl_draw_text(&point, L"HHH", 0x0000FF, atDepth, nullptr, false);
    };
    beginEmpty();
    draw(false);
    const Picture expected = read();
    EXPECT_GT(inkOn(expected, kBlack).count, 50) << "also a colour without alpha";
    beginEmpty();
    const std::array<double, 4> away = {0, 0, 1, -100};
    glClipPlane(GL_CLIP_PLANE0, away.data());
    for (const GLenum on :
         {GL_CLIP_PLANE0, GL_LIGHTING, GL_FOG, GL_TEXTURE_1D, GL_CULL_FACE, GL_STENCIL_TEST})
        glEnable(on);
    glCullFace(GL_FRONT_AND_BACK);
    glStencilFunc(GL_NEVER, 0, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 3);
    glMatrixMode(GL_TEXTURE);
    glScalef(3, 3, 3);
    const auto before = nrutest::GlSnapshot::take();
    draw(false);
    EXPECT_TRUE(nrutest::GlSnapshot::take().equals(before));
    EXPECT_TRUE(nrutest::samePicture(read(), expected));
}

TEST_F(ViewerLabels, TextsOfManyLinesAtADepthOrWithoutAHost) {
    std::optional<HostText> host(std::in_place, fontFile());
    const Font* font = host->font(13);
    const auto at = [](double x, double y, double z) { return _NgPoint3Str{x, y, z}; };
    beginEmpty();
    const _NgPoint3Str middle = at(0, 0, 0);
    ngl_text_multi_line(&middle, "Hq\n\nHq", nullptr, kWhite);
    const Ink three = inkOn(read(), kBlack);
    beginEmpty();
    ngl_text_3d_p_nocolor(&middle, kWhite, "Hq", 0);
    const Ink one = inkOn(read(), kBlack);
    EXPECT_EQ(three.count, 2 * one.count);
    EXPECT_TRUE(three.box.top == one.box.top &&
                three.box.bottom == one.box.bottom - 2 * font->lineHeight_px());
    beginEmpty();
    glClearDepth(0.5);
    glClear(GL_DEPTH_BUFFER_BIT);
    glClearDepth(1.0);
    const _NgPoint3Str behind = at(-0.5, -0.5, -0.5), before = at(0.5, 0.5, 0.5), nowhere = at(9, 9, 9);
    ngl_text_3d_p_nocolor(&behind, kWhite, "Hq", 1);
    ngl_text_3d_p_nocolor(&nowhere, kWhite, "Hq", 0);
    EXPECT_EQ(inkOn(read(), kBlack).count, 0);
    ngl_text_3d_p_nocolor(&before, kWhite, "Hq", 1);
    EXPECT_EQ(inkOn(read(), kBlack).count, one.count);
    host.reset();
    beginEmpty();
    ngl_text_3d_p_nocolor(&middle, kWhite, "Hq", 0);
    EXPECT_EQ(inkOn(read(), kBlack).count, 0);
}

TEST_F(ViewerLabels, TheBarShowsTheScalesOwnColorsAndLimits) {
    HostText host(fontFile());
    for (const int count : {1, 5, 12, 13, 64})
        for (const bool smeared : {false, true})
            for (const auto& range : {std::array{-3.0, 7.5}, {1e9, 1e9 + 3}, {-2e-9, 4e-10}}) {
                SCOPED_TRACE(std::to_string(count) + (smeared ? " smeared" : "") + ", from " +
                             std::to_string(range[0]));
                const ColorBands bands(count, range, smeared);
                const TextStyle style = {host.font(11), kBlack};
                const auto legend = layOutLegend({bands, "a heading much too long for a column", true},
                                                 {10, 20, 150, 340}, 11, style);
                ASSERT_TRUE(legend);
                beginEmpty(kWhite);
                drawLegend(*legend, style);
                const Picture drawn = read();
                for (int y = legend->bar.bottom; y < legend->bar.top; ++y) {
                    const double part = (y + 0.5 - legend->bar.bottom) / legend->bar.height();
                    const NgColorLong expected = smeared ? bands.scale().GetColor(static_cast<float>(part))
                                                         : bands.color(static_cast<int>(part * count));
                    if (smeared || legend->bar.height() % count == 0) {
                        ASSERT_EQ(nrutest::hex(drawn.at(legend->bar.left + 3, y) | 0xFF000000),
                                  nrutest::hex(expected))
                            << y;
                    }
                }
                EXPECT_EQ(drawn.at(legend->noValue.left, legend->noValue.bottom) & kRgb,
                          kNoValueColor & kRgb);
                EXPECT_LT(legend->noValue.top, legend->bar.bottom);
                const double factor = legend->factor.empty() ? 1.0
                                      : range[1] > 1         ? 1e9
                                                             : 1e-9; // what the rows come to
                EXPECT_TRUE(legend->labels.front().limit == 0 && legend->labels.back().limit == count);
                for (std::size_t i = 0; i < legend->labels.size(); ++i) {
                    const Legend::Label& label = legend->labels[i];
                    EXPECT_NEAR(std::atof(label.text.c_str()) * factor, bands.limit(label.limit),
                                (range[1] - range[0]) / count / 10)
                        << label.text;
                    EXPECT_EQ(drawn.at(legend->bar.right + 2, label.y - (i == 0)) & kRgb, kBlack & kRgb);
                    EXPECT_NEAR(label.y,
                                legend->bar.bottom + 1.0 * legend->bar.height() * label.limit / count, 0.51);
                    if (i > 0) {
                        EXPECT_GE(label.y - legend->labels[i - 1].y, 13) << "no label touches another";
                    }
                }
                EXPECT_TRUE((PixelRect{10, 20, 150, 340}.contains(inkOn(drawn, kWhite).box)));
            }
    const ColorBands flat(4, {2.5, 2.5}, false);
    const auto one = layOutLegend({flat, "x"}, {10, 20, 150, 340}, 11, {host.font(11), kBlack});
    EXPECT_TRUE(one && one->labels.size() == 1 && one->labels[0].text == "2.5");
}

TEST_F(ViewerLabels, MarksStandWhereTheFieldIsSmallestAndLargest) {
    // The beam's stress at the clamp is F l h / 2 I = 150 at the top and less that much at the bottom; shear
    // adds to von Mises between.
    const struct {
        const char *name, *sample, *field, *view;
        ShownSettings settings;
        std::array<const char*, 2> labels;
        std::array<Point, 2> positions; ///< undeformed
    } rows[] = {
        {"nodes",
         "cantilever:10",
         "S:xx",
         "iso",
         {},
         {"Min -150, node 33", "Max 150, node 55"},
         {{{0, -10, 5}, {0, 10, 5}}}},
        {"behind",
         "cantilever:10",
         "S:xx",
         "-1,1,-1",
         {},
         {"Min -150, node 0", "Max 150, node 22"},
         {{{0, -10, -5}, {0, 10, -5}}}},
        {"hidden",
         "cantilever:10",
         "S:xx",
         "iso",
         {.elements = {.hidden = {{0, 1}, {10, 11}}}},
         {"Min -120, node 35", "Max 120, node 57"},
         {{{20, -10, 5}, {20, 10, 5}}}},
        {"deformed",
         "cantilever:10",
         "S:xx",
         "iso",
         {.deformed = true, .deformFactor = 50},
         {"Min -150, node 33", "Max 150, node 55"},
         {{{0, -10, 5}, {0, 10, 5}}}},
        {"elements",
         "cantilever:10",
         "S_cell",
         "xy",
         {},
         {"Min 10.44, element 9", "Max 71.91, element 0"},
         {{{95, -5, 0}, {5, -5, 0}}}},
        {"close together",
         "",
         "T",
         "xy",
         {},
         {"Min 0, node 3", "Max 1, node 4"},
         {{{0, 0, 0}, {0.15, 0, 0}}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ShownSettings settings = row.settings;
        settings.field = row.field;
        Shown shown(row.sample[0] ? makeSample(row.sample) : closeExtremes(), settings,
                    {.edges = EdgeMode::None}, {.legend = false, .axes = false, .title = ""}, row.view);
        const Picture drawn = shown.draw()[1];
        for (int i = 0; i < 2; ++i) {
            EXPECT_TRUE(shows(drawn, row.labels[i])) << row.labels[i];
            const std::array<std::uint32_t, 2> ends = {33, 55};
            const Point at =
                settings.deformed ? shown.model.points[ends[i]] : shown.model.drawn(row.positions[i]);
            double x = 0, y = 0;
            ngl_transform_32(at[0], at[1], at[2], &x, &y);
            const auto px = static_cast<int>(x), py = static_cast<int>(kHeight - y);
            EXPECT_EQ(drawn.at(px, py) & kRgb, kBlack & kRgb) << "its dot";
            EXPECT_EQ(drawn.at(px, py + 2) & kRgb, kWhite & kRgb) << "its ring's inside";
        }
    }
}

TEST_F(ViewerLabels, NothingElseOfThePictureChanges) {
    for (const bool perspective : {false, true})
        for (const NgColorLong background : {kWhite, kBlack}) {
            Shown shown(makeSample("cantilever:10"), {.field = "S:xx"}, {},
                        {.marks = false, .axes = perspective}, "iso", perspective);
            const std::array<Picture, 2> pictures = shown.draw(background);
            const PictureArea area = shown.labels.area(kWidth, kHeight);
            EXPECT_TRUE(area.left > 40 && area.top > 10);
            EXPECT_GT(changed(pictures).count, 1000);
            const Ink inside = inkWhere([&](int x, int y) {
                return x >= area.left && y < kHeight - area.top &&
                       pictures[0].at(x, y) != pictures[1].at(x, y);
            });
            EXPECT_EQ(inside.count, 0) << "of the model's part";
            Shown plain(makeSample("cantilever:10"), {.field = "S:xx"}, {}, {false, false, false, ""}, "iso",
                        perspective);
            EXPECT_EQ(changed(plain.draw(background)).count, 0);
            EXPECT_TRUE(plain.labels.area(kWidth, kHeight).left == 0);
        }
}

TEST_F(ViewerLabels, SmallPicturesKeepTheirModel) {
    Shown shown(makeSample("cantilever:10"), {.field = "S:xx"}, {.bands = 64}, {});
    for (const auto& [width, height] :
         {std::pair{1, 1}, {40, 30}, {200, 150}, {120, 400}, {400, 60}, {4000, 3000}}) {
        const PictureArea area = shown.labels.area(width, height);
        EXPECT_TRUE(area.left <= 0.4 * width + 5 && area.top <= 0.15 * height) << width << " x " << height;
        EXPECT_EQ(area.left > 0, width >= 200 && height >= 150) << width << " x " << height;
    }
}

TEST_F(ViewerLabels, TheAxesTurnWithTheView) {
    HostText host(fontFile());
    constexpr std::array<NgColorLong, 3> kAxisColors = {0xDC, 0xA0 << 8, 0xF0 << 16}; // the strong channel
    const struct {
        const char* view;
        std::array<std::array<int, 2>, 3> towards; ///< right and up, for x, y, z; 0 0: along the view
    } rows[] = {{"xy", {{{1, 0}, {0, 1}, {0, 0}}}},
                {"zx", {{{0, 1}, {0, 0}, {1, 0}}}},
                {"0,0,-1", {{{-1, 0}, {0, 1}, {0, 0}}}},
                {"iso", {{{1, -1}, {0, 1}, {-1, -1}}}}};
    for (const auto& row : rows) {
        beginEmpty(kWhite);
        drawTriad(parseView(row.view), 100, 100, 20, {host.font(20), kBlack});
        const Picture drawn = read();
        const double middle = 100 + triadSize_px(20) / 2.0;
        EXPECT_TRUE((PixelRect{100, 100, 100 + triadSize_px(20), 100 + triadSize_px(20)}.contains(
            inkOn(drawn, kWhite).box)))
            << row.view;
        for (int axis = 0; axis < 3; ++axis) {
            double x = 0, y = 0;
            const Ink ink = inkWhere([&](int px, int py) {
                const NgColorLong color = drawn.at(px, py);
                const bool isOurs = (color & 0xFFu << 8 * axis) == kAxisColors[axis] &&
                                    (color >> 8 * ((axis + 1) % 3) & 0xFF) != (color >> 8 * axis & 0xFF);
                if (isOurs) {
                    x += px + 0.5 - middle;
                    y += py + 0.5 - middle;
                }
                return isOurs;
            });
            ASSERT_GT(ink.count, 5) << row.view << " " << axis;
            const auto way = [&](double sum) { return std::abs(sum / ink.count) < 3 ? 0 : sum > 0 ? 1 : -1; };
            EXPECT_EQ(way(x), row.towards[axis][0]) << row.view << " " << axis;
            EXPECT_EQ(way(y), row.towards[axis][1]) << row.view << " " << axis;
        }
    }
}
