// Text, drawn and measured by the host's functions.
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

struct TextFunctions {
    NglDrawTextFunc draw = nullptr;
    NglDrawTextFunc drawMultiLine = nullptr;
    NglGetTextDimFunc dimension = nullptr;
    NglGetTextAscentDescentFunc ascentDescent = nullptr;
};

TextFunctions& functions() {
    static TextFunctions instance;
    return instance;
}

/// Keeps the registered function where the new one is null.
template <typename Function>
void keepOrSet(Function& function, Function given) {
    if (given)
        function = given;
}

void drawNarrow(const _NgPoint3Str* point, const char* text, NgColorLong color, bool flag, void* font) {
    if (functions().draw && text)
        functions().draw(point, hostWiden(text).c_str(), color, flag, font, false);
}

/// No scissor test for the length of a block.
class UnclippedScope {
public:
    UnclippedScope() : m_scissored(glIsEnabled(GL_SCISSOR_TEST)) { glDisable(GL_SCISSOR_TEST); }
    ~UnclippedScope() {
        if (m_scissored)
            glEnable(GL_SCISSOR_TEST);
    }
    UnclippedScope(const UnclippedScope&) = delete;
    UnclippedScope& operator=(const UnclippedScope&) = delete;

private:
    const bool m_scissored;
};

} // namespace

void NglRegisterDrawTextFunc(NglDrawTextFunc func) {
    keepOrSet(functions().draw, func);
}

void NglRegisterDrawMultiLineTextFunc(NglDrawTextFunc func) {
    keepOrSet(functions().drawMultiLine, func);
}

void NglRegisterGetTextDimFunc(NglGetTextDimFunc func) {
    keepOrSet(functions().dimension, func);
}

void NglRegisterGetTextAscentDescentFunc(NglGetTextAscentDescentFunc func) {
    keepOrSet(functions().ascentDescent, func);
}

// --- drawing -----------------------------------------------------------------------------------------------

void ngl_text_3d(double x, double y, double z, const char* text) {
    const _NgPoint3Str point{x, y, z};
    ngl_text_3d_p(&point, text);
}

void ngl_text_3d_p(const _NgPoint3Str* point, const char* text) {
    drawNarrow(point, text, ngl_get_color_long(), false, nullptr);
}

void ngl_text_3d_p_based_on_win_color(const _NgPoint3Str* point, const char* text) {
    const NgColorLong color = NglGetColorGivenIndex(ngl_get_color());
    drawNarrow(point, text, NglGetColorBasedOnWinColor(color), false, nullptr);
}

void ngl_text_3d_p_nocolor(const _NgPoint3Str* point, NgColorLong color, const char* text, int flag) {
    drawNarrow(point, text, color, flag != 0, nullptr);
}

void ngl_draw_text_given_font(const _NgPoint3Str* point, void* font, NgColorLong color, const char* text,
                              int flag) {
    drawNarrow(point, text, color, flag != 0, font);
}

void ngl_draw_text(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool flag, void* font,
                   bool otherFlag) {
    if (functions().draw)
        functions().draw(point, text, color, flag, font, otherFlag);
}

void ngl_draw_text_unclipped(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool flag,
                             void* font, bool otherFlag) {
    if (!functions().draw)
        return;
    const UnclippedScope unclipped;
    ngl_draw_text(point, text, color, flag, font, otherFlag);
}

void ngl_text_multi_line(const _NgPoint3Str* point, const char* text, void* font, NgColorLong color) {
    if (functions().drawMultiLine && text)
        ngl_text_multi_line(point, hostWiden(text).c_str(), color, false, font, false);
}

void ngl_text_multi_line(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool flag,
                         void* font, bool otherFlag) {
    if (functions().drawMultiLine)
        functions().drawMultiLine(point, text, color, flag, font, otherFlag);
}

// --- measuring ---------------------------------------------------------------------------------------------

int ngl_get_text_dimension(int* width, int* height, const char* text, void* font) {
    if (functions().dimension && text)
        ngl_get_text_size(width, height, hostWiden(text).c_str(), font);
    return 0;
}

int ngl_get_text_dim(int* width, int* height, const char* text) {
    return ngl_get_text_dimension(width, height, text, nullptr);
}

void ngl_get_text_size(int* width, int* height, const wchar_t* text, void* font) {
    if (functions().dimension)
        functions().dimension(width, height, text, font);
}

void ngl_get_text_ascent_descent(const wchar_t* text, int* ascent, int* descent, void* font) {
    if (functions().ascentDescent)
        functions().ascentDescent(text, ascent, descent, font);
}
