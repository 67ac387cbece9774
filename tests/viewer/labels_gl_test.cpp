// What labels draw: texts, the colour bar, marks and axes, at known pixels.
#include "tests/support/glsnapshot.h"
#include "tests/viewer/elements.h"
#include "tests/viewer/scenetest.h"
#include "viewer/labels/axes.h"
#include "viewer/labels/labels.h"
#include "viewer/labels/legend.h"
#include "viewer/model/samples.h"

using namespace nrutest;

namespace {

constexpr NgColorLong kWhite = 0xFFFFFFFF, kBlack = 0xFF000000, kRgb = 0xFFFFFF;
constexpr int kWidth = 480, kHeight = 360;
constexpr int kEm_px = 10; ///< of the labels of such a picture

/// Pixels of a kind: how many, and where.
struct Ink {
    PixelRect box{kWidth, kHeight, 0, 0};
    int count = 0;
};

template <typename IsInk>
Ink inkWhere(IsInk isInk) {
    Ink ink;
    for (int i = 0; i < kWidth * kHeight; ++i)
        if (const int x = i % kWidth, y = i / kWidth; isInk(x, y)) {
            ink.box = {std::min(ink.box.left, x), std::min(ink.box.bottom, y), std::max(ink.box.right, x + 1),
                       std::max(ink.box.top, y + 1)};
            ++ink.count;
        }
    return ink;
}

Ink inkOn(const Picture& picture, NgColorLong background) {
    return inkWhere([&](int x, int y) { return (picture.at(x, y) & kRgb) != (background & kRgb); });
}

class ViewerLabels : public SceneTest {
protected:
    void SetUp() override {
        SceneTest::SetUp();
        start();
        NglCreateFBO(kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, &m_buffer);
        NglBindFrameBuffer(m_buffer.framebuffer);
    }
    void TearDown() override {
        NglDestroyFBO(&m_buffer);
        SceneTest::TearDown();
    }
    /// A frame with nothing in it.
    void beginEmpty(NgColorLong background = kBlack, bool perspective = false, double at = 0.0) {
        const Bounds box{{at - 1, at - 1, at - 1}, {at + 1, at + 1, at + 1}};
        beginFrame(fitCamera(parseView("iso"), box, 1.0 * kWidth / kHeight, perspective), box, kWidth,
                   kHeight, background);
    }
    static Picture read() { return Picture::read(kWidth, kHeight); }
    static int inked() { return inkOn(read(), kBlack).count; }

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
          labels(model, scene.legends(model), label, label.title.value_or("Title")),
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
            if (std::abs(found - 255 + raster.coverage[static_cast<std::size_t>(i)]) > 1)
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
    Model model = modelOf({{-3, -2, 0}, {3, -2, 0}, {0, 2, 0}, {0, 0, 0}, {0.15, 0, 0}, {0, 0.15, 0}},
                          {{CellType::Triangle, {0, 1, 2}}, {CellType::Triangle, {3, 4, 5}}});
    model.fields = {{"T", FieldLocation::Node, 1, {0.5, 0.5, 0.5, 4e-17, 1, 0.5}}}; // round-off for 0
    return model;
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
    const auto draw = [] {
        const _NgPoint3Str point{};
        ngl_draw_text(&point, L"HHH", 0x0000FF, false, nullptr, false);
    };
    beginEmpty();
    draw();
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
    const auto before = GlSnapshot::take();
    draw();
    EXPECT_TRUE(GlSnapshot::take().equals(before));
    EXPECT_TRUE(samePicture(read(), expected));
}

TEST_F(ViewerLabels, TextsOfManyLinesAtADepthOrWithoutAHost) {
    std::optional<HostText> host(std::in_place, fontFile());
    const int lineHeight_px = host->font(13)->lineHeight_px();
    const auto show = [](double at, int atDepth) {
        const _NgPoint3Str point = {at, at, at};
        ngl_text_3d_p_nocolor(&point, kWhite, "Hq", atDepth);
    };
    beginEmpty();
    const _NgPoint3Str middle{};
    ngl_text_multi_line(&middle, "Hq\n\nHq", nullptr, kWhite);
    const Ink three = inkOn(read(), kBlack);
    beginEmpty();
    show(0, 0);
    const Ink one = inkOn(read(), kBlack);
    EXPECT_EQ(three.count, 2 * one.count);
    EXPECT_EQ(three.box.top, one.box.top);
    EXPECT_EQ(three.box.bottom, one.box.bottom - 2 * lineHeight_px);
    beginEmpty();
    glClearDepth(0.5);
    glClear(GL_DEPTH_BUFFER_BIT);
    glClearDepth(1.0);
    show(-0.5, 1);
    show(9, 0); // outside of the picture
    EXPECT_EQ(inked(), 0);
    show(0.5, 1);
    EXPECT_EQ(inked(), one.count);
    host.reset();
    beginEmpty();
    show(0, 0);
    EXPECT_EQ(inked(), 0);
}

TEST_F(ViewerLabels, TheBarShowsTheScalesOwnColorsAndLimits) {
    HostText host(fontFile());
    for (const int count : {1, 5, 12, 13, 64})
        for (const bool smeared : {false, true})
            for (const auto& range : {std::array{-3.0, 7.5}, {1e9, 1e9 + 3}, {-2e-9, 4e-10}}) {
                SCOPED_TRACE(::testing::PrintToString(std::tuple(count, smeared, range)));
                const ColorBands bands(count, range, smeared);
                const TextStyle style = {host.font(11), kBlack};
                const PixelRect room = {10, 20, 150, 340};
                const auto legend =
                    layOutLegend({bands, "a heading much too long for a column", true}, room, 11, style);
                ASSERT_TRUE(legend);
                beginEmpty(kWhite);
                drawLegend(*legend, style);
                const Picture drawn = read();
                const PixelRect& bar = legend->bar;
                for (int y = bar.bottom; y < bar.top; ++y) {
                    const double part = (y + 0.5 - bar.bottom) / bar.height();
                    const NgColorLong expected = smeared ? bands.scale().GetColor(static_cast<float>(part))
                                                         : bands.color(static_cast<int>(part * count));
                    ASSERT_TRUE((!smeared && bar.height() % count != 0) ||
                                (drawn.at(bar.left + 3, y) | 0xFF000000) == expected)
                        << y;
                }
                const PixelRect& none = legend->noValue;
                EXPECT_EQ(drawn.at(none.left, none.bottom) & kRgb, kNoValueColor & kRgb);
                EXPECT_LT(none.top, bar.bottom);
                const double factor = legend->factor.empty() ? 1.0 : range[1] > 1 ? 1e9 : 1e-9;
                EXPECT_TRUE(legend->labels.front().limit == 0 && legend->labels.back().limit == count);
                for (std::size_t i = 0; i < legend->labels.size(); ++i) {
                    const Legend::Label& label = legend->labels[i];
                    EXPECT_NEAR(std::atof(label.text.c_str()) * factor, bands.limit(label.limit),
                                (range[1] - range[0]) / count / 10)
                        << label.text;
                    EXPECT_EQ(drawn.at(bar.right + 2, label.y - (i == 0)) & kRgb, kBlack & kRgb);
                    EXPECT_NEAR(label.y, bar.bottom + 1.0 * bar.height() * label.limit / count, 0.51);
                    EXPECT_TRUE(i == 0 || label.y - legend->labels[i - 1].y >= 13) << "apart";
                }
                EXPECT_TRUE(room.contains(inkOn(drawn, kWhite).box));
            }
    const ColorBands flat(4, {2.5, 2.5}, false);
    const auto one = layOutLegend({flat, "x"}, {10, 20, 150, 340}, 11, {host.font(11), kBlack});
    EXPECT_TRUE(one && one->labels.size() == 1 && one->labels[0].text == "2.5");
}

TEST_F(ViewerLabels, MarksStandWhereTheFieldIsSmallestAndLargest) {
    // The beam's stress at the clamp is F l h / 2 I = 150 at the top and less that much at the bottom; shear
    // adds to von Mises between.
    const struct {
        const char *field, *view;
        std::array<std::string, 2> labels; ///< end with the number of the node or element
        double deformFactor = 0;
        ElementList hidden = {};
    } rows[] = {
        {"S:xx", "-1,1,-1", {"Min -150, node 0", "Max 150, node 22"}},
        {"S:xx", "iso", {"Min -120, node 35", "Max 120, node 57"}, 0, {{0, 1}, {10, 11}}},
        {"S:xx", "iso", {"Min -150, node 33", "Max 150, node 55"}, 50},
        {"S_cell", "xy", {"Min 10.44, element 9", "Max 71.91, element 0"}},
        {"T", "xy", {"Min 0, node 3", "Max 1, node 4"}},
    };
    for (const auto& row : rows) {
        Shown shown(row.field[0] == 'S' ? makeSample("cantilever:10") : closeExtremes(),
                    {.field = row.field,
                     .deformed = row.deformFactor != 0,
                     .deformFactor = row.deformFactor,
                     .elements = {.hidden = row.hidden}},
                    {.edges = EdgeMode::None}, {.legend = false, .axes = false, .title = ""}, row.view);
        const Picture drawn = shown.draw()[1];
        for (const std::string& label : row.labels) {
            SCOPED_TRACE(label);
            EXPECT_TRUE(shows(drawn, label));
            const int number = std::stoi(label.substr(label.rfind(' ')));
            const Point at = label.find("element") == label.npos
                                 ? shown.model.points[number]
                                 : shown.model.drawn({10.0 * number + 5, -5, 0}); // the lower of two rows
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
            const auto [bare, labelled] = shown.draw(background);
            const PictureArea area = shown.labels.area(kWidth, kHeight);
            EXPECT_TRUE(area.left > 40 && area.top > 10);
            int outside = 0, inside = 0;
            for (int i = 0; i < kWidth * kHeight; ++i)
                if (const int x = i % kWidth, y = i / kWidth; bare.at(x, y) != labelled.at(x, y))
                    ++(x >= area.left && y < kHeight - area.top ? inside : outside);
            EXPECT_GT(outside, 1000);
            EXPECT_EQ(inside, 0) << "of the model's part";
        }
}

// As over an environment, which the window's background says nothing of.
TEST_F(ViewerLabels, LettersStandOutFromWhatIsBehindThem) {
    Shown shown(makeSample("flange:4"), {}, {}, {.legend = false});
    for (const int dark : {0, kHeight / 2}) { // the darker half of the picture
        beginEmpty(kWhite);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, dark, kWidth, kHeight / 2);
        glClearColor(0.2f, 0.2f, 0.2f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
        shown.labels.draw(shown.camera, kWidth, kHeight, kWhite);
        const Picture picture = read();
        const auto letters = [&](bool white, int half) {
            const auto isLetter = [&](int x, int y) {
                const NgColorLong color = picture.at(x, y) & kRgb, grey = color & 0xFF;
                return y / (kHeight / 2) == half && color == grey * 0x010101 &&
                       (white ? grey > 180 : grey < 80);
            };
            return inkWhere(isLetter).count;
        };
        EXPECT_GT(letters(dark != 0, 1), 20) << "title";
        EXPECT_GT(letters(dark == 0, 0), 3) << "axes";
    }
}

// Something grey behind it, as an environment is.
TEST_F(ViewerLabels, TheLegendStandsOnARoundedTranslucentPanel) {
    constexpr NgColorLong kBehind = 0xFF808080;
    Shown shown(makeSample("cantilever:10"), {.field = "S:xx"}, {}, {.marks = false, .axes = false});
    beginEmpty(kBehind);
    shown.labels.draw(shown.camera, kWidth, kHeight, kWhite);
    const Picture picture = read();
    const auto [box, count] =
        inkWhere([&](int x, int y) { return (picture.at(x, y) & 0xFF) == 0xEC; }); // 128 + 0.847 * 127
    EXPECT_GT(count, box.width() * box.height() / 2);
    EXPECT_TRUE(box.left > 0 && box.right < shown.labels.area(kWidth, kHeight).left);
    EXPECT_TRUE(box.bottom > 0 && box.top < kHeight);
    for (const int x : {box.left - 1, box.right})
        EXPECT_EQ(picture.at(x, box.top) & kRgb, kBehind & kRgb) << "round at " << x;
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
    constexpr NgColorLong kAxisColors[] = {0xFF3C3CDC, 0xFF3CA03C, 0xFFF07846};
    using Places = std::array<std::array<int, 2>, 3>; // of x, y, z, in pixels from the middle
    const int size = triadSize_px(20), middle = 100 + size / 2;
    for (const auto& [view, places] : {std::pair{"xy", Places{{{20, 0}, {0, 20}, {3, 0}}}},
                                       {"0,0,-1", {{{-20, 0}, {0, 20}, {3, -3}}}},
                                       {"iso", {{{14, -8}, {0, 16}, {-14, -8}}}}}) {
        beginEmpty(kWhite);
        drawTriad(parseView(view), 100, 100, 20, {host.font(20), kBlack});
        const Picture drawn = read();
        EXPECT_TRUE((PixelRect{100, 100, 100 + size, 100 + size}.contains(inkOn(drawn, kWhite).box))) << view;
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(drawn.at(middle + places[axis][0], middle + places[axis][1]) | 0xFF000000,
                      kAxisColors[axis])
                << view << ", axis " << axis;
    }
}
