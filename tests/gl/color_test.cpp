// The colour model without a context: tables, complement rule, background rules and packed colours.
#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"

namespace {

using Table = std::array<NgColorLong, 256>;

/// The colour of ngl_get_rgb, which the one of ngl_get_rgb_floats must equal.
NgColorLong rgbOf(int index) {
    unsigned char r = 0, g = 0, b = 0;
    float fr = 0, fg = 0, fb = 0;
    EXPECT_EQ(ngl_get_rgb(index, r, g, b), 0);
    EXPECT_EQ(ngl_get_rgb_floats(index, fr, fg, fb), 0);
    EXPECT_EQ((std::array{fr, fg, fb}), (std::array{r / 255.0f, g / 255.0f, b / 255.0f})) << index;
    return ngl_get_color_long_from_rgb(r, g, b) & 0xFFFFFF;
}

Table libraryTable() {
    Table table;
    std::copy_n(NglGetColors(), table.size(), table.begin());
    return table;
}

} // namespace

TEST(NglColor, FirstLookupInstallsTheLibraryTable) {
    EXPECT_EQ(NglGetNglInfo()->palette, nullptr);
    EXPECT_EQ(rgbOf(1), 0x956BFFu);
    EXPECT_EQ(NglGetNglInfo()->palette, NglGetColors());
    EXPECT_EQ(NglGetNglInfo()->colorCount, 256);
}

TEST(NglColor, ComplementInvertsWhatTheBackgroundHides) {
    const struct {
        const char* name;
        NgColorLong background, entry, expected;
    } rows[] = {
        {"13 apart, above and below", 0x808080, 0xFF8D738D, 0x728C72},
        {"14 apart in red", 0x808080, 0xFF80808E, 0x80808E},
        {"14 apart in green", 0x808080, 0xFF808E80, 0x808E80},
        {"14 apart in blue", 0x808080, 0xFF728080, 0x728080},
        {"background's alpha does not count", 0xFF101010, 0x00101010, 0xEFEFEF},
    };
    for (const auto& row : rows) {
        const NgColorLong palette[] = {0, row.entry};
        NglSetWindowBackGroundColor(row.background);
        NglSetForceComplement();
        NglUpdateColor(2, palette);
        EXPECT_EQ(rgbOf(1), row.expected) << row.name;
    }
}

TEST(NglColor, HighlightAndSelectionBeatEveryTable) {
    const std::vector<NgColorLong> palette(256, 0xFF404040);
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(32), 0x2020FFu);
    EXPECT_EQ(rgbOf(33), 0u);
    EXPECT_EQ(NglSetHighlightColor(0x80010203), 0xFF2020FFu);
    NglSetSelectionColor(0x80040506);
    EXPECT_EQ(rgbOf(32), 0x010203u);
    EXPECT_EQ(NglGetColorGivenIndex(32), 0x80010203u);
    EXPECT_EQ(NglGetColorGivenIndex(33), 0x80040506u);
}

TEST(NglColor, ComplementIsReusedUntilItsKeyChangesOrIsForced) {
    const struct {
        const char* name;
        NgColorLong background, entry;
        int count;
        bool force;
        NgColorLong expected;
    } rows[] = {
        {"first", 0, 0xFF0000FF, 256, false, 0x0000FF},
        {"same palette, same background", 0, 0xFF00FF00, 256, false, 0x0000FF},
        {"another background", 1, 0xFF00FF00, 256, false, 0x00FF00},
        {"another count", 1, 0xFFFF0000, 255, false, 0xFF0000},
        {"forced", 1, 0xFFFFFF00, 255, true, 0xFFFF00},
        {"forced only once", 1, 0xFFFFFFFF, 255, false, 0xFFFF00},
    };
    Table palette{}, own{};
    NgColorLong before = 0;
    NglUpdateComplementColor(256, own.data());
    for (const auto& row : rows) {
        palette[5] = row.entry;
        NglSetWindowBackGroundColor(row.background);
        if (row.force)
            NglSetForceComplement();
        EXPECT_EQ(rgbOf(5), before) << row.name << ": waits for the next update";
        NglUpdateColor(row.count, palette.data());
        EXPECT_EQ(rgbOf(5), row.expected) << row.name;
        before = row.expected;
    }
    own[5] = 0xFF000001; // close to the background, yet not inverted
    NglUpdateComplementColor(256, own.data());
    EXPECT_EQ(rgbOf(5), 0x000001u) << "a table of the host's is used as it is";
    EXPECT_EQ(NglGetColorGivenIndex(5), 0xFFFFFFFFu) << "the palette stays";
}

TEST(NglColor, SchemesCopyTheirColoursAndMarkTheComplement) {
    Table expected = libraryTable();
    EXPECT_EQ(expected[63], 0xFFFFFFFFu);
    EXPECT_EQ(std::count(expected.begin() + 64, expected.end(), 0u), 192);
    NglMaxColor = 3;
    NglSetColorScheme(1);
    expected[0] = 0xFF000000, expected[1] = 0xFFFF00FF, expected[2] = 0xFF5F9933;
    EXPECT_EQ(libraryTable(), expected);
    NglMaxColor = 1000;
    NglSetColorScheme(3);
    expected = libraryTable();
    EXPECT_EQ(expected[4], 0xFF01C7FCu);
    NglMaxColor = 0;
    NglSetColorScheme(2);
    EXPECT_EQ(libraryTable(), expected);

    NglMaxColor = 64;
    Table palette{};
    for (const NgColorLong entry : {0xFF0000FFu, 0xFF00FF00u}) {
        palette[9] = entry;
        NglSetColorScheme(4); // unknown: no colours; the second time it is the scheme already
        NglUpdateColor(256, palette.data());
        EXPECT_EQ(rgbOf(9), 0x0000FFu) << "only a change forces the complement";
    }
    EXPECT_EQ(libraryTable(), expected);
}

TEST(NglColor, LookupsStayWithinTheTables) {
    const NgColorLong palette[] = {0xFF000000, 0xFF112233, 0x00112233, 0xFF112233};
    NglSetWindowBackGroundColor(0x808080);
    NglUpdateColor(4, palette);
    const struct {
        int index;
        NgColorLong entry, rgb;
    } rows[] = {{0, 0, 0}, // deliberate: black is "no colour"
                {2, 0x00112233, 0x112233},
                {4, 0, NglGetColors()[4] & 0xFFFFFF},
                {-1, 0, 0xFFFFFF},
                {256, 0, 0xFFFFFF}};
    for (const auto& row : rows) {
        EXPECT_EQ(NglGetColorGivenIndex(row.index), row.entry) << row.index;
        EXPECT_EQ(rgbOf(row.index), row.rgb) << row.index;
    }
    EXPECT_EQ(NglGetIndexGivenColor(0xFF112233), 1);
    EXPECT_EQ(NglGetIndexGivenColor(0x00112233), 2);
    EXPECT_EQ(NglGetIndexGivenColor(0x80112233), -1);
    NglUpdateColor(4, nullptr);
    EXPECT_EQ(NglGetColorGivenIndex(1), 0u);
    EXPECT_EQ(NglGetIndexGivenColor(0xFF112233), -1);
    EXPECT_EQ(rgbOf(1), NglGetColors()[1] & 0xFFFFFF);
    const std::vector<NgColorLong> longPalette(300, 0xFF445566);
    NglUpdateColor(300, longPalette.data());
    EXPECT_EQ(rgbOf(255), 0x445566u);
    EXPECT_EQ(rgbOf(256), 0xFFFFFFu);
}

TEST(NglColor, BackgroundDecidesDarkAndLight) {
    Table palette{};
    palette[15] = 0xFF123456;
    const struct {
        const char* name;
        NgColorLong background;
        int paletteCount; ///< -1: no palette
        int blackish;
        NgColorLong onBackground; ///< of 0x80102030
        int hiddenIndex;
        NgColorLong hiddenColor;
    } rows[] = {
        {"sum 381", 0xFF7F7F7F, 16, 1, 0x80102030, 0, 0},
        {"sum 382", 0x007F7F80, 16, 0, 0x80EFDFCF, 15, 0xFF123456},
        {"sum 382, short palette", 0x007F7F80, 15, 0, 0x80EFDFCF, 15, 0},
        {"white, no palette", 0x00FFFFFF, -1, 1, 0x80EFDFCF, 0, 0},
    };
    for (const auto& row : rows) {
        NglSetWindowBackGroundColor(row.background);
        NglUpdateColor(row.paletteCount, row.paletteCount < 0 ? nullptr : palette.data());
        NglUpdateHiddenColor();
        EXPECT_EQ(NglIsWinBGBlackish(), row.blackish) << row.name;
        EXPECT_EQ(NglGetColorBasedOnWinColor(0x80102030), row.onBackground) << row.name;
        EXPECT_EQ(NglGetHiddenColor(), row.hiddenIndex) << row.name;
        EXPECT_EQ(NglGetHiddenColorRGB(), row.hiddenColor) << row.name;
    }
}

TEST(NglColor, PackedColoursAndTheBlendingWord) {
    EXPECT_EQ(VbNglGetColorFromRGB(256, 0, 0), 0xFF000100u);
    EXPECT_EQ(VbNglGetColorFromRGB(1, 2, 3), 0xFF030201u);
    EXPECT_EQ(ngl_get_color_long_from_rgb(1, 2, 255), 0xFFFF0201u);
    int r, g, b, a;
    VbNglGetRGBAFromColor(0x80030201, &r, &g, &b, &a);
    EXPECT_EQ((std::array{r, g, b, a}), (std::array{1, 2, 3, 128}));
    EXPECT_EQ(ngl_get_blending_value(), 0x7F800000) << "the word as it starts";
    ngl_set_blending_value(0x3C8);
    EXPECT_EQ(ngl_get_blending_value(), static_cast<int>(0xC8000000));
    EXPECT_EQ(ngl_add_transparency_into_rgb_color(0xFF030201), 0xC8030201u);
}
