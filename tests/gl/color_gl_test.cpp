// Colours as GL receives them.
#include <cmath>

#include "tests/gl/testgl.h"

namespace {

/// GL's current colour as bytes.
NgColorLong currentColor() {
    float c[4];
    glGetFloatv(GL_CURRENT_COLOR, c);
    NgColorLong packed = 0;
    for (int i = 0; i < 4; ++i)
        packed |= static_cast<NgColorLong>(std::lround(c[i] * 255.0f)) << (8 * i);
    return packed;
}

class NglColorGl : public nrutest::GlTest {
protected:
    NglColorGl() {
        palette[5] = 0x40102030;
        palette[6] = 0x40FFFFFE;
        palette[15] = 0xFF800F00;
        palette[63] = 0xFF803F00;
        NglSetWindowBackGroundColor(0xFFFFFF);
        NglUpdateColor(256, palette);
    }

    NgColorLong palette[256] = {};
};

TEST_F(NglColorGl, IssuedColoursHaveTheBlendingAlpha) {
    NglSetSelectionColor(0x11AABBCC);
    const struct {
        const char* name;
        void (*issue)();
        NgColorLong issued, colorLong;
        int current;
    } rows[] = {
        {"its own alpha is not drawn", [] { ngl_set_color(5); }, 0x7F102030, 0x40102030, 5},
        {"hidden by the background", [] { ngl_set_color(6); }, 0x7F000001, 0xFF000001, 6},
        {"15 is issued as 63", [] { ngl_set_color(15); }, 0x7F803F00, 0xFF803F00, 63},
        {"highlight", [] { ngl_set_color(32); }, 0x7F2020FF, 0xFF2020FF, 32},
        {"selection", [] { ngl_set_color(33); }, 0x7FAABBCC, 0x11AABBCC, 33},
        {"negative does nothing", [] { ngl_set_color(-1); }, 0x7FAABBCC, 0x11AABBCC, 33},
        {"packed, as it is", [] { ngl_set_color_long(0x01FF8040); }, 0x01FF8040, 0x01FF8040, 33},
        {"packed, blended", [] { ngl_set_color_rgb(0x01FF8040); }, 0x7FFF8040, 0x7FFF8040, 33},
    };
    for (const auto& row : rows) {
        row.issue();
        EXPECT_EQ(currentColor(), row.issued) << row.name;
        EXPECT_EQ(ngl_get_color_long(), row.colorLong) << row.name;
        EXPECT_EQ(ngl_get_color(), row.current) << row.name;
    }
}

TEST_F(NglColorGl, ModeAndTablesAtHandChooseTheColour) {
    constexpr NgColorLong kComplement = 0x7F000001, kPalette = 0x7FFFFFFE, kLibrary = 0x7F5F9933;
    const auto issuedIn = [](int mode) {
        NglGetNglInfo()->noComplement = mode;
        ngl_set_color(6);
        return currentColor();
    };
    EXPECT_EQ(issuedIn(0), kComplement);
    EXPECT_EQ(issuedIn(1), kPalette);
    EXPECT_EQ(issuedIn(2), kLibrary);
    ngl_set_color_no_complement(6);
    EXPECT_EQ(currentColor(), kPalette);
    EXPECT_EQ(NglGetNglInfo()->noComplement, 2);
    NglGetNglInfo()->palette = nullptr;
    EXPECT_EQ(issuedIn(1), kLibrary);
    NglUpdateComplementColor(256, palette); // used as it is, seen or not
    EXPECT_EQ(issuedIn(0), kPalette);
    NglUpdateComplementColor(0, nullptr);
    EXPECT_EQ(issuedIn(0), kLibrary);
}

} // namespace
