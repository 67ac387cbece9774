// Colours as GL receives them.
#include <array>
#include <cmath>

#include "NRenderUtl/gl/ngl.h"
#include "tests/support/gltest.h"

namespace {

using nrutest::GlTest;

/// GL's current colour as bytes.
NgColorLong currentColor() {
    std::array<float, 4> c;
    glGetFloatv(GL_CURRENT_COLOR, c.data());
    NgColorLong packed = 0;
    for (int i = 0; i < 4; ++i)
        packed |= static_cast<NgColorLong>(std::lround(c[i] * 255.0f)) << (8 * i);
    return packed;
}

class NglColorGl : public GlTest {
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
        {"plain", 7, 0x7F800700, 0xFF800700, 7},
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

TEST_F(NglColorGl, ModeChoosesTheTable) {
    const struct {
        const char* name;
        int mode;
        NgColorLong issued;
    } rows[] = {{"complement table", 0, 0x7F000001},
                {"record's palette", 1, 0x7FFFFFFE},
                {"library table", 2, 0x7F5F9933}};
    for (const auto& row : rows) {
        NglGetNglInfo()->noComplement = row.mode;
        ngl_set_color(6);
        EXPECT_EQ(currentColor(), row.issued) << row.name;
        ngl_set_color_no_complement(6);
        EXPECT_EQ(currentColor(), 0x7FFFFFFEu) << row.name;
        EXPECT_EQ(NglGetNglInfo()->noComplement, row.mode);
    }
    NglBeginNoComplementMode();
    ngl_set_color(6);
    EXPECT_EQ(currentColor(), 0x7FFFFFFEu);
    NglGetNglInfo()->palette = nullptr;
    ngl_set_color(6);
    EXPECT_EQ(currentColor(), 0x7F5F9933u) << "no palette";
    NglEndNoComplementMode();
    NglUpdateComplementColor(0, nullptr);
    ngl_set_color(6);
    EXPECT_EQ(currentColor(), 0x7F5F9933u) << "no complement table";
}

TEST_F(NglColorGl, PackedColoursAreDrawnAsTheyAre) {
    ngl_set_color(7);
    const struct {
        const char* name;
        void (*issue)(NgColorLong);
        NgColorLong pixel;
    } rows[] = {{"long", ngl_set_color_long, 0x01FF8040}, {"rgb", ngl_set_color_rgb, 0x7FFF8040}};
    for (const auto& row : rows) {
        row.issue(0x01FF8040);
        glRectf(-1, -1, 1, 1);
        EXPECT_EQ(nrutest::hex(read().at(20, 30)), nrutest::hex(row.pixel)) << row.name;
        EXPECT_EQ(ngl_get_color_long(), row.pixel) << row.name;
        EXPECT_EQ(ngl_get_color(), 7) << row.name;
    }
}
