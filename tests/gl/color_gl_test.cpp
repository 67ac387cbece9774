// Colours as GL receives them.
#include <array>
#include <cmath>
#include <utility>

#include "NRenderUtl/gl/ngl.h"
#include "tests/support/gltest.h"

namespace {

/// GL's current colour as bytes.
NgColorLong currentColor() {
    std::array<float, 4> c;
    glGetFloatv(GL_CURRENT_COLOR, c.data());
    NgColorLong packed = 0;
    for (int i = 0; i < 4; ++i)
        packed |= static_cast<NgColorLong>(std::lround(c[i] * 255.0f)) << (8 * i);
    return packed;
}

class NglColorGl : public nrutest::GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        for (int i = 0; i < 256; ++i)
            m_palette[i] = 0xFF800000u + static_cast<NgColorLong>(i) * 0x100; // blue 0x80, green = index
        m_palette[5] = 0x40102030;
        m_palette[6] = 0x40FFFFFE;
        NglSetWindowBackGroundColor(0xFFFFFF);
        NglUpdateColor(256, m_palette.data());
    }

    std::array<NgColorLong, 256> m_palette;
};

} // namespace

TEST_F(NglColorGl, IndicesIssueTheirColourWithTheBlendingAlpha) {
    NglSetSelectionColor(0x11AABBCC);
    const struct {
        const char* name;
        int index;
        NgColorLong issued, colorLong;
        int current;
    } rows[] = {
        {"its own alpha is not drawn", 5, 0x7F102030, 0x40102030, 5},
        {"hidden by the background", 6, 0x7F000001, 0xFF000001, 6},
        {"15 is issued as 63", 15, 0x7F803F00, 0xFF803F00, 63},
        {"highlight", 32, 0x7F2020FF, 0xFF2020FF, 32},
        {"selection", 33, 0x7FAABBCC, 0x11AABBCC, 33},
        {"negative does nothing", -1, 0x7FAABBCC, 0x11AABBCC, 33},
        {"beyond every table", 256, 0x7FFFFFFF, 0xFFFFFFFF, 256},
    };
    for (const auto& row : rows) {
        ngl_set_color_based_on_win_color(row.index);
        EXPECT_EQ(currentColor(), row.issued) << row.name;
        EXPECT_EQ(ngl_get_color_long(), row.colorLong) << row.name;
        EXPECT_EQ(ngl_get_color(), row.current) << row.name;
    }
}

TEST_F(NglColorGl, ModeAndTablesAtHandChooseTheColour) {
    constexpr NgColorLong kComplement = 0x7F000001, kPalette = 0x7FFFFFFE, kLibrary = 0x7F5F9933;
    const struct {
        int mode;
        bool hasTables;
        NgColorLong issued, withoutComplement;
    } rows[] = {{0, true, kComplement, kPalette},
                {1, true, kPalette, kPalette},
                {2, true, kLibrary, kPalette},
                {0, false, kLibrary, kLibrary},
                {1, false, kLibrary, kLibrary}};
    for (const auto& row : rows) {
        if (!row.hasTables) {
            NglGetNglInfo()->palette = nullptr;
            NglUpdateComplementColor(0, nullptr);
        }
        NglGetNglInfo()->noComplement = row.mode;
        ngl_set_color(6);
        EXPECT_EQ(currentColor(), row.issued) << row.mode << row.hasTables;
        ngl_set_color_no_complement(6);
        EXPECT_EQ(currentColor(), row.withoutComplement) << row.mode << row.hasTables;
        EXPECT_EQ(NglGetNglInfo()->noComplement, row.mode);
    }
}

TEST_F(NglColorGl, PackedColoursAreDrawnAsTheyAre) {
    ngl_set_color(7);
    for (const auto& [issue, pixel] :
         {std::pair{&ngl_set_color_long, 0x01FF8040u}, {&ngl_set_color_rgb, 0x7FFF8040u}}) {
        issue(0x01FF8040);
        glRectf(-1, -1, 1, 1);
        EXPECT_EQ(nrutest::hex(read().at(20, 30)), nrutest::hex(pixel));
        EXPECT_EQ(ngl_get_color_long(), pixel);
        EXPECT_EQ(ngl_get_color(), 7);
    }
}
