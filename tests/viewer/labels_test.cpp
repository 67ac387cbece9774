// Numbers, thinned labels, texts as pixels and the picture's free part: all that needs no context.
#include "tests/viewer/elements.h"
#include "viewer/error.h"
#include "viewer/labels/font.h"
#include "viewer/labels/hosttext.h"
#include "viewer/labels/labelnumbers.h"
#include "viewer/labels/labels.h"
#include "viewer/labels/legend.h"
#include "viewer/model/extremes.h"

using namespace nrutest;

namespace {

/// With a node that no element has.
const Model kTriangle =
    modelOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {5, 5, 5}}, {{CellType::Triangle, {0, 1, 2}}});

} // namespace

TEST(LabelNumbers, AreShortAlikeInFormAndDistinct) {
    const struct {
        std::vector<double> values;
        std::vector<std::string> texts;
        const char* factor;
    } rows[] = {
        {{-150, -75, 0, 75, 150}, {"-150", "-75", "0", "75", "150"}, ""},
        {{0, 0.25, 0.5}, {"0.00", "0.25", "0.50"}, ""},
        {{0, 100.0 / 3, 200.0 / 3, 100}, {"0.0", "33.3", "66.7", "100.0"}, ""},
        {{-1e-17, 0.0833}, {"0.0000", "0.0833"}, ""},
        {{0.000123, 0.000246}, {"123", "246"}, "×10⁻⁶"},
        {{999.97, 0}, {"1000", "0"}, ""},
        {{1.5e6, 2e6}, {"1.5", "2.0"}, "×10⁶"},
        {{2.1e11, 0}, {"210", "0"}, "×10⁹"},
        {{1e9 + 1, 1e9 + 2}, {"1.000000001", "1.000000002"}, "×10⁹"},
        {{300.001, 300.002}, {"300.001", "300.002"}, ""},
        {{-4e300, -1e300}, {"-4", "-1"}, "×10³⁰⁰"},
        {{-1.7e308, 1.7e308}, {"-170", "170"}, "×10³⁰⁶"},
        {{5e-324, 0}, {"4.941", "0.000"}, "×10⁻³²⁴"},
        {{0, 0}, {"0", "0"}, ""},
        {{7.25}, {"7.25"}, ""},
    };
    for (const auto& row : rows) {
        const NumberLabels labels = labelNumbers(row.values);
        EXPECT_EQ(labels.texts, row.texts);
        EXPECT_EQ(labels.factor, row.factor) << row.texts[0];
    }
}

TEST(LabelledLimits, KeepBothEndsAndTheirDistance) {
    using Limits = std::vector<int>;
    EXPECT_EQ(labelledLimits(64, 7), (Limits{0, 8, 16, 24, 32, 40, 48, 56, 64}));
    EXPECT_EQ(labelledLimits(13, 2), (Limits{0, 2, 4, 6, 8, 10, 13})) << "a prime: the last one is longer";
    EXPECT_EQ(labelledLimits(7, 9), (Limits{0, 7}));
}

TEST(Font, MeasuresWhatItDraws) {
    for (const int size : {9, 13, 40}) {
        Font font(fontFile(), size);
        EXPECT_GE(font.lineHeight_px(), size);
        for (const wchar_t* text : {L"Hg", L"-1.50", L"Größe", L"jÂ|", L"10⁻⁶", L"\U0010FFFF"}) {
            const TextExtent extent = font.extent(text);
            const TextRaster raster = font.raster(text);
            EXPECT_EQ(raster.top, extent.ascent);
            EXPECT_EQ(raster.height, extent.ascent + extent.descent);
            EXPECT_LE(std::abs(extent.width - raster.width), size / 4 + 2) << "but for the bearings";
        }
        EXPECT_EQ(font.extent(L"1111111").width, font.extent(L"8888888").width) << "digits stand in columns";
        EXPECT_TRUE(font.extent(L"g").descent > 0 && font.extent(L"H").descent == 0);
        EXPECT_NEAR(font.extent(L"H").ascent, 0.73 * size, 1.0) << "the capitals of DejaVu Sans";
        EXPECT_TRUE(font.extent(L"").width == 0 && font.raster(L"").coverage.empty());
        EXPECT_EQ(font.raster(L"\U0010FFFF").coverage, font.raster(L"\U0010FFFE").coverage) << "a box";
    }
    Font large(fontFile(), 40);
    EXPECT_LT(large.extent(L"AV").width, large.extent(L"A").width + large.extent(L"V").width) << "kerning";
    EXPECT_THROW(Font("/no/font.ttf", 13), ViewerError);
    EXPECT_THROW(Font("/proc/self/exe", 13), ViewerError);
}

TEST(Extremes, AreThoseOfFiniteValuesThatAreDrawn) {
    const struct {
        std::vector<double> values;
        std::vector<std::uint32_t> smallest, largest; ///< none: all are equal
    } rows[] = {
        {{3, 1, 2, 9}, {1}, {0}}, // the last node has no element
        {{NAN, 1, -INFINITY, 9}, {}, {}}, {{NAN, 1, 2, 9}, {1}, {2}},   {{5, -5, 5, 9}, {1}, {0, 2}},
        {{4, 4, 4, 9}, {}, {}},           {{NAN, NAN, NAN, 9}, {}, {}},
    };
    for (const auto& row : rows) {
        Model model = kTriangle;
        model.fields = {{"T", FieldLocation::Node, 1, row.values}};
        const auto found = findExtremes(showModel(model, {.field = "T"}));
        ASSERT_EQ(found.has_value(), !row.smallest.empty());
        EXPECT_TRUE(!found || ((*found)[0].numbers == row.smallest && (*found)[1].numbers == row.largest));
    }
}

TEST(Title, NamesWhatIsShownAndKeepsBothEndsWhenShortened) {
    Model model = kTriangle;
    for (const char* name : {"T1", "T2", "T9"})
        model.fields.push_back({name, FieldLocation::Node, 1, std::vector(4, 0.5)});
    model.fields.push_back({"U", FieldLocation::Node, 3, std::vector(12, 0.5)});
    const auto title = [&](ShownSettings settings, std::optional<std::string> given = {}) {
        Options options;
        options.file = "/a/b.vtu";
        options.shown = settings;
        options.labels.title = std::move(given);
        return titleOf(showModel(model, settings), options);
    };
    EXPECT_EQ(title({}), "b.vtu");
    EXPECT_EQ(title({.field = "T"}), "b.vtu, T9, step 2");
    EXPECT_EQ(title({.field = "T", .step = 1}), "b.vtu, T2, step 1");
    EXPECT_EQ(title({.field = "U:y", .deformed = true, .deformFactor = 2.5}), "b.vtu, U:y, deformed × 2.5");
    EXPECT_EQ(title({.field = "U"}, "Load case 3"), "Load case 3");

    HostText host(fontFile());
    const TextStyle style = {host.font(13), 0};
    for (int width = 0; width < 140; ++width) {
        const std::string whole = "Zugkräfte, step 2", text = elided(whole, width, style);
        EXPECT_LE(textSize(text, style).width, width);
        EXPECT_TRUE(text.empty() ? width < 35 : text.starts_with('Z') && text.ends_with('2')) << text;
        EXPECT_EQ(text == whole, width >= textSize(whole, style).width) << width;
    }
}
