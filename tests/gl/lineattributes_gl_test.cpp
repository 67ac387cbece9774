// Line width and style: what is issued to GL, and what it draws.
#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

class LineAttributes : public GlTest {
protected:
    /// Whether a line across the picture shows a pattern, lowest bit first.
    void expectPattern(unsigned pattern, int factor) {
        clear();
        glEnable(GL_LINE_STIPPLE);
        ngl_line_2d(-1, 1.0 / kSize, 1.01, 1.0 / kSize);
        glDisable(GL_LINE_STIPPLE);
        const Picture picture = read();
        for (int x = 0; x < kSize; ++x)
            EXPECT_EQ(picture.at(x, kSize / 2) != kClear, (pattern >> (x / factor % 16) & 1) != 0) << x;
    }
};

TEST_F(LineAttributes, WidthIsIssuedWhenItChanges) {
    EXPECT_EQ(ngl_get_line_width(), 0);
    epoxy_glLineWidth = [](GLfloat width) { calls() += std::to_string(width) + ";"; };
    for (const int width : {0, 1, -7, 3, 3, 0, 3})
        ngl_set_line_width(width);
    EXPECT_EQ(calls(), "1.000000;3.000000;1.000000;3.000000;");
    NglUpdateNglInfo();
    EXPECT_EQ(ngl_get_line_width(), 1);
    calls().clear();
    ngl_set_line_width(3); // in the next frame
    EXPECT_EQ(calls(), "3.000000;");
}

TEST_F(LineAttributes, StylesDrawTheirPatterns) {
    const struct {
        int style;
        unsigned pattern;
        int factor;
    } rows[] = {{1, 0x1C47, 1},  {2, 0xF0F0, 1}, {3, 0xFFFF, 1}, {4, 0x0101, 1},
                {-1, 0xFFFF, 1}, {5, 0xAAAA, 2}, {0, 0xFFFF, 1}, {6, 0xFFFF, 1}};
    const unsigned foreign = 0x3C5B;
    glLineStipple(1, foreign);
    ngl_set_line_style(0);
    expectPattern(foreign, 1); // style 0 is current at start and not issued
    for (const auto& [style, pattern, factor] : rows) {
        SCOPED_TRACE(style);
        ngl_set_line_style(style);
        EXPECT_EQ(ngl_get_line_style(), style);
        EXPECT_FALSE(glIsEnabled(GL_LINE_STIPPLE)) << "the caller's to enable";
        expectPattern(pattern, factor);
        glLineStipple(1, foreign);
        ngl_set_line_style(style);
        expectPattern(foreign, 1); // nor is any style again
    }
}

} // namespace
