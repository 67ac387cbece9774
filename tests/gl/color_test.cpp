// The colour model without a context: tables, complement rule, background rules and packed colours.
#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"

namespace {

using Table = std::array<NgColorLong, 256>;

NgColorLong rgbOf(int index) {
    unsigned char r = 0, g = 0, b = 0;
    EXPECT_EQ(ngl_get_rgb(index, r, g, b), 0);
    float fr = 0, fg = 0, fb = 0;
    EXPECT_EQ(ngl_get_rgb_floats(index, fr, fg, fb), 0);
    EXPECT_EQ(fr, static_cast<float>(r / 255.0)) << index;
    EXPECT_EQ(fg, static_cast<float>(g / 255.0)) << index;
    EXPECT_EQ(fb, static_cast<float>(b / 255.0)) << index;
    return (NgColorLong{b} << 16) | (NgColorLong{g} << 8) | r;
}

Table libraryTable() {
    Table table;
    std::copy_n(NglGetColors(), table.size(), table.begin());
    return table;
}

} // namespace

TEST(NglColor, FirstLookupInstallsTheLibraryTable) {
    NglSetWindowBackGroundColor(0x808080);
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
        {"17 apart", 0x808080, 0xFF919191, 0x919191},
        {"12 apart", 0x808080, 0xFF8C8C8C, 0x737373},
        {"13 apart, above and below", 0x808080, 0xFF8D738D, 0x728C72},
        {"14 apart in red", 0x808080, 0xFF80808E, 0x80808E},
        {"14 apart in green", 0x808080, 0xFF808E80, 0x808E80},
        {"14 apart in blue", 0x808080, 0xFF728080, 0x728080},
        {"background's alpha does not count", 0xFF101010, 0xFF101010, 0xEFEFEF},
    };
    for (const auto& row : rows) {
        Table palette{};
        palette[7] = row.entry;
        NglSetWindowBackGroundColor(row.background);
        NglSetForceComplement();
        NglUpdateColor(256, palette.data());
        EXPECT_EQ(rgbOf(7), row.expected) << row.name;
    }
}

TEST(NglColor, HighlightAndSelectionBeatEveryTable) {
    Table palette;
    palette.fill(0xFF404040);
    NglSetWindowBackGroundColor(0x404040);
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(31), 0xBFBFBFu);
    EXPECT_EQ(rgbOf(32), 0x2020FFu);
    EXPECT_EQ(rgbOf(33), 0u);
    EXPECT_EQ(NglSetHighlightColor(0x80010203), 0xFF2020FFu);
    NglSetSelectionColor(0x80040506);
    EXPECT_EQ(rgbOf(32), 0x010203u);
    EXPECT_EQ(NglGetColorGivenIndex(32), 0x80010203u);
    EXPECT_EQ(NglGetColorGivenIndex(33), 0x80040506u);
}

TEST(NglColor, ComplementIsReusedUntilItsKeyChangesOrIsForced) {
    Table palette{};
    palette[5] = 0xFF0000FF;
    NglUpdateColor(256, palette.data());
    palette[5] = 0xFF00FF00;
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(5), 0x0000FFu) << "same palette, same background";
    NglSetWindowBackGroundColor(0x01);
    EXPECT_EQ(rgbOf(5), 0x0000FFu) << "a new background waits for the next update";
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(5), 0x00FF00u);
    palette[5] = 0xFFFF0000;
    NglUpdateColor(255, palette.data());
    EXPECT_EQ(rgbOf(5), 0xFF0000u) << "another count";
    palette[5] = 0xFFFFFF00;
    NglSetForceComplement();
    NglUpdateColor(255, palette.data());
    EXPECT_EQ(rgbOf(5), 0xFFFF00u) << "forced";
    palette[5] = 0xFFFFFFFF;
    NglUpdateColor(255, palette.data());
    EXPECT_EQ(rgbOf(5), 0xFFFF00u) << "forced only once";
}

TEST(NglColor, AComplementTableOfTheHostIsUsedAsItIs) {
    Table palette{}, own{};
    own[5] = 0xFF000001; // close to the background, yet not inverted
    palette[5] = 0xFF0000FF;
    NglUpdateColor(256, palette.data());
    NglUpdateComplementColor(256, own.data());
    EXPECT_EQ(rgbOf(5), 0x000001u);
    EXPECT_EQ(NglGetColorGivenIndex(5), 0xFF0000FFu) << "the palette stays";
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(5), 0x0000FFu);
}

TEST(NglColor, SchemesCopyTheirColoursAndMarkTheComplement) {
    const Table initial = libraryTable();
    EXPECT_TRUE(std::all_of(initial.begin() + 64, initial.end(), [](NgColorLong c) { return c == 0; }));
    NglMaxColor = 3;
    NglSetColorScheme(1);
    Table expected = initial;
    expected[0] = 0xFF000000, expected[1] = 0xFFFF00FF, expected[2] = 0xFF5F9933;
    EXPECT_EQ(libraryTable(), expected);
    NglMaxColor = 1000;
    NglSetColorScheme(3);
    expected = libraryTable();
    EXPECT_EQ(expected[4], 0xFF01C7FCu);
    NglMaxColor = 0;
    NglSetColorScheme(2);
    EXPECT_EQ(libraryTable(), expected);

    Table palette{};
    NglUpdateColor(256, palette.data());
    palette[9] = 0xFF0000FF;
    NglSetColorScheme(4);
    EXPECT_EQ(libraryTable(), expected);
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(9), 0x0000FFu) << "an unknown scheme still forces the complement";
    palette[9] = 0xFF00FF00;
    NglSetColorScheme(4);
    NglUpdateColor(256, palette.data());
    EXPECT_EQ(rgbOf(9), 0x0000FFu) << "the scheme it already has does not";
}

TEST(NglColor, LookupsInTheRecordsPalette) {
    const NgColorLong palette[] = {0xFF000000, 0xFF112233, 0x00112233, 0xFF112233};
    NglUpdateColor(4, palette);
    EXPECT_EQ(NglGetColorGivenIndex(0), 0u);
    EXPECT_EQ(NglGetColorGivenIndex(2), 0x00112233u);
    EXPECT_EQ(NglGetColorGivenIndex(4), 0u);
    EXPECT_EQ(NglGetColorGivenIndex(-1), 0u);
    EXPECT_EQ(NglGetIndexGivenColor(0xFF112233), 1);
    EXPECT_EQ(NglGetIndexGivenColor(0x00112233), 2);
    EXPECT_EQ(NglGetIndexGivenColor(0x80112233), -1);
    NglUpdateColor(0, palette);
    EXPECT_EQ(NglGetIndexGivenColor(0xFF112233), -1);
}

TEST(NglColor, IndicesOutsideATableFallBack) {
    const std::vector<NgColorLong> palette(300, 0xFF445566);
    NglSetWindowBackGroundColor(0x808080);
    NglUpdateColor(static_cast<int>(palette.size()), palette.data());
    EXPECT_EQ(rgbOf(255), 0x445566u);
    for (int index : {256, 299, 1 << 30, -1})
        EXPECT_EQ(rgbOf(index), 0xFFFFFFu) << index;
    NglUpdateColor(10, palette.data());
    EXPECT_EQ(rgbOf(9), 0x445566u);
    EXPECT_EQ(rgbOf(10), NglGetColors()[10] & 0xFFFFFF);
    NglUpdateColor(256, nullptr);
    EXPECT_EQ(rgbOf(1), NglGetColors()[1] & 0xFFFFFF);
    EXPECT_EQ(NglGetColorGivenIndex(1), 0u);
    EXPECT_EQ(NglGetIndexGivenColor(0xFF445566), -1);
}

TEST(NglColor, BackgroundDecidesDarkAndLight) {
    Table palette{};
    palette[15] = 0xFF123456;
    const struct {
        const char* name;
        NgColorLong background;
        int paletteCount; ///< -1: no palette
        int blackish;
        NgColorLong inverted; ///< of 0x80102030
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
        EXPECT_EQ(NglGetColorBasedOnWinColor(0x80102030), row.inverted) << row.name;
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

    EXPECT_EQ(ngl_get_blending_value(), 0x7F800000);
    EXPECT_EQ(ngl_add_transparency_into_rgb_color(0xFF030201), 0x7F030201u);
    ngl_set_blending_value(0x3C8);
    EXPECT_EQ(static_cast<NgColorLong>(ngl_get_blending_value()), 0xC8000000u);
    EXPECT_LT(ngl_get_blending_value(), 0);
    EXPECT_EQ(ngl_add_transparency_into_rgb_color(0xFF030201), 0xC8030201u);
}
