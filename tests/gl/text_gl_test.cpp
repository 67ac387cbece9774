// Text: what the host's functions are handed.
#include <functional>
#include <string>
#include <utility>

#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

/// A call of one of the host's functions.
struct Call {
    std::string function;
    std::wstring text;
    void* font = nullptr;
    NgColorLong color = 0;
    bool flag = false, otherFlag = false;
    bool isScissored = true; ///< whether the scissor test was on during the call
    bool operator==(const Call&) const = default;
};

Call last;
const _NgPoint3Str point{1.5, -2.25, 1e10};
int fontObject, width, height;
void* const font = &fontObject;
const char* const kNarrow = "R\xC3\xB6hre \xE4\xB8\xAD \xF0\x9F\x94\xA9";
const wchar_t* const kWide = L"R\u00F6hre \u4E2D \U0001F529";

const std::pair<Call, std::function<void()>> rows[] = {
    {{"draw", kWide, nullptr, 0x64123456}, [] { ngl_text_3d(1.5, -2.25, 1e10, kNarrow); }},
    {{"draw", kWide, nullptr, 0x64123456}, [] { ngl_text_3d_p(&point, kNarrow); }},
    {{"draw", kWide, nullptr, 0x80FEFDFC}, [] { ngl_text_3d_p_based_on_win_color(&point, kNarrow); }},
    {{"draw", kWide, nullptr, 7, true}, [] { ngl_text_3d_p_nocolor(&point, 7, kNarrow, 2); }},
    {{"draw", kWide, nullptr, 7}, [] { ngl_text_3d_p_nocolor(&point, 7, kNarrow, 0); }},
    {{"draw", kWide, font, 8, true}, [] { ngl_draw_text_given_font(&point, font, 8, kNarrow, -1); }},
    {{"draw", kWide, font, 8}, [] { ngl_draw_text_given_font(&point, font, 8, kNarrow, 0); }},
    {{"draw", L"", nullptr, 9, true}, [] { ngl_draw_text(&point, L"", 9, true, nullptr, false); }},
    {{"draw", kWide, font, 9, false, true}, [] { ngl_draw_text(&point, kWide, 9, false, font, true); }},
    {{"draw", kWide, font, 9, true, false, false},
     [] { ngl_draw_text_unclipped(&point, kWide, 9, true, font, false); }},
    {{"lines", kWide, font, 10}, [] { ngl_text_multi_line(&point, kNarrow, font, 10); }},
    {{"lines", kWide, font, 11, true}, [] { ngl_text_multi_line(&point, kWide, 11, true, font, false); }},
    {{"lines", L"", nullptr, 11, false, true},
     [] { ngl_text_multi_line(&point, L"", 11, false, nullptr, true); }},
    {{"70 x 12", kWide, font}, [] { EXPECT_EQ(ngl_get_text_dimension(&width, &height, kNarrow, font), 0); }},
    {{"70 x 12", kWide}, [] { EXPECT_EQ(ngl_get_text_dim(&width, &height, kNarrow), 0); }},
    {{"70 x 12", kWide, font}, [] { ngl_get_text_size(&width, &height, kWide, font); }},
    {{"9 x 3", kWide, font}, [] { ngl_get_text_ascent_descent(kWide, &width, &height, font); }}};

void record(const char* function, const wchar_t* text, void* textFont, NgColorLong color, bool flag,
            bool otherFlag) {
    last = {function, text, textFont, color, flag, otherFlag, glIsEnabled(GL_SCISSOR_TEST) != 0};
}

template <bool isMultiLine>
void draw(const _NgPoint3Str* p, const wchar_t* text, NgColorLong color, bool flag, void* textFont,
          bool otherFlag) {
    EXPECT_TRUE(p->x == point.x && p->y == point.y && p->z == point.z);
    record(isMultiLine ? "lines" : "draw", text, textFont, color, flag, otherFlag);
}

void registerFunctions() {
    NglRegisterDrawTextFunc(draw<false>);
    NglRegisterDrawMultiLineTextFunc(draw<true>);
    NglRegisterGetTextDimFunc([](int* w, int* h, const wchar_t* text, void* textFont) {
        record("", text, textFont, 0, false, false);
        *w = 70, *h = 12;
    });
    NglRegisterGetTextAscentDescentFunc([](const wchar_t* text, int* ascent, int* descent, void* textFont) {
        record("", text, textFont, 0, false, false);
        *ascent = 9, *descent = 3;
    });
}

using NglText = GlTest;

TEST_F(NglText, HandsEveryArgumentToTheHost) {
    registerFunctions();
    NglRegisterDrawTextFunc(nullptr); // null keeps what is registered
    NglRegisterDrawMultiLineTextFunc(nullptr);
    NglRegisterGetTextDimFunc(nullptr);
    NglRegisterGetTextAscentDescentFunc(nullptr);
    // A light window, and a current colour that is not that of the current index.
    const NgColorLong palette[4] = {0, 0, 0, 0x80010203};
    NglUpdateColor(4, palette);
    NglSetWindowBackGroundColor(0xFFFFFF);
    ngl_set_color(3);
    ngl_set_color_long(0x64123456);
    glEnable(GL_SCISSOR_TEST);
    for (const auto& [call, run] : rows) {
        last = {};
        width = 0;
        run();
        if (width > 0)
            last.function = std::to_string(width) + " x " + std::to_string(height);
        EXPECT_TRUE(last == call) << "row " << &call - &rows[0].first;
        EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    }
}

TEST_F(NglText, NothingWithoutFunctionsOrText) {
    width = height = -5;
    for (const auto& [call, run] : rows)
        run();
    registerFunctions();
    ngl_text_3d_p(&point, nullptr);
    ngl_text_multi_line(&point, nullptr, font, 1);
    EXPECT_EQ(ngl_get_text_dim(&width, &height, nullptr), 0);
    EXPECT_EQ(width + height, -10);
    EXPECT_TRUE(last == Call{});
}

} // namespace
