// The colour model without a context: tables, complement rule, background rules and packed colours.
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"

namespace {

NgColorLong rgbOf(int index) {
    unsigned char r = 0, g = 0, b = 0;
    ngl_get_rgb(index, r, g, b);
    return ngl_get_color_long_from_rgb(r, g, b) & 0xFFFFFF;
}

TEST(NglColor, FirstLookupInstallsTheLibraryTableThatSchemesFill) {
    EXPECT_EQ(NglGetNglInfo()->palette, nullptr);
    EXPECT_EQ(rgbOf(1), 0x956BFFu);
    EXPECT_EQ(NglGetNglInfo()->palette, NglGetColors());
    EXPECT_EQ(NglGetNglInfo()->colorCount, 256);
    NglMaxColor = 3;
    NglSetColorScheme(1);
    EXPECT_EQ(NglGetColors()[2], 0xFF5F9933u);
    EXPECT_EQ(NglGetColors()[3], 0xFFD6D1A6u) << "not copied";
}

TEST(NglColor, ComplementInvertsWhatTheBackgroundHides) {
    const struct {
        const char* name;
        NgColorLong background, entry, expected;
    } rows[] = {{"13 apart, above and below", 0x808080, 0xFF8D738D, 0x728C72},
                {"14 apart in red", 0x808080, 0xFF80808E, 0x80808E},
                {"14 apart in blue", 0x808080, 0xFF728080, 0x728080},
                {"background's alpha does not count", 0xFF101010, 0x00101010, 0xEFEFEF}};
    for (const auto& row : rows) {
        const NgColorLong palette[] = {0, row.entry};
        NglSetWindowBackGroundColor(row.background);
        NglSetForceComplement();
        NglUpdateColor(2, palette);
        EXPECT_EQ(rgbOf(1), row.expected) << row.name;
    }
}

TEST(NglColor, ComplementIsReusedUntilItsKeyChangesOrIsForced) {
    NgColorLong palette[256] = {};
    const auto isReused = [&](int count) {
        palette[5] += 0x102030;
        NglUpdateColor(count, palette);
        return rgbOf(5) != palette[5];
    };
    EXPECT_FALSE(isReused(256));
    EXPECT_TRUE(isReused(256)) << "same palette, same background";
    NglSetWindowBackGroundColor(1);
    EXPECT_FALSE(isReused(256));
    EXPECT_FALSE(isReused(255)) << "another count";
    NglSetForceComplement();
    EXPECT_FALSE(isReused(255));
    EXPECT_TRUE(isReused(255)) << "forced only once";
    NglSetColorScheme(4); // unknown: no colours, yet a change
    EXPECT_FALSE(isReused(255));
}

TEST(NglColor, LookupsStayWithinTheTables) {
    const NgColorLong palette[] = {0xFF000000, 0xFF112233, 0x00112233, 0xFF112233};
    NglSetWindowBackGroundColor(0x808080);
    NglSetSelectionColor(0x80040506);
    NglUpdateColor(4, palette);
    const struct {
        int index;
        NgColorLong entry, rgb;
    } rows[] = {{0, 0, 0}, // deliberate: black is "no colour"
                {2, 0x00112233, 0x112233},
                {4, 0, NglGetColors()[4] & 0xFFFFFF},
                {32, 0xFF2020FF, 0x2020FF},
                {33, 0x80040506, 0x040506},
                {-1, 0, 0xFFFFFF}};
    for (const auto& row : rows) {
        EXPECT_EQ(NglGetColorGivenIndex(row.index), row.entry) << row.index;
        EXPECT_EQ(rgbOf(row.index), row.rgb) << row.index;
    }
    EXPECT_EQ(NglGetIndexGivenColor(0xFF112233), 1);
    EXPECT_EQ(NglGetIndexGivenColor(0x80112233), -1);
    const std::vector<NgColorLong> longPalette(300, 0xFF445566);
    NglUpdateColor(300, longPalette.data());
    EXPECT_EQ(rgbOf(256), 0xFFFFFFu) << "no complement table is longer than 256";
}

TEST(NglColor, BackgroundIsLightFromASumOf382On) {
    const std::vector<NgColorLong> palette(16, 0xFF123456);
    NglSetWindowBackGroundColor(0xFFFFFF);
    EXPECT_EQ(NglIsWinBGBlackish(), 1) << "dark as long as there is no palette";
    NglUpdateColor(16, palette.data());
    for (const auto& [background, isDark] : {std::pair{0xFF7F7F7Fu, true}, {0x007F7F80u, false}}) {
        NglSetWindowBackGroundColor(background);
        NglUpdateHiddenColor();
        EXPECT_EQ(NglIsWinBGBlackish(), isDark);
        EXPECT_EQ(NglGetColorBasedOnWinColor(0x80102030), isDark ? 0x80102030 : 0x80EFDFCF);
        EXPECT_EQ(NglGetHiddenColorRGB(), isDark ? 0 : 0xFF123456);
    }
}

TEST(NglColor, PackedColoursAndTheBlendingWord) {
    EXPECT_EQ(VbNglGetColorFromRGB(256, 2, 3), 0xFF030300u) << "red spills into green";
    ngl_set_blending_value(0x3C8);
    EXPECT_EQ(ngl_get_blending_value(), static_cast<int>(0xC8000000)) << "the word, not the value";
    EXPECT_EQ(ngl_add_transparency_into_rgb_color(0xFF030201), 0xC8030201u);
}

} // namespace
