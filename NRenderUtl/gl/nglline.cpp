// Line width and style. A value that is current already is not issued to GL again.
#include "NRenderUtl/gl/nglline.h"

#include <algorithm>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"

namespace {

NglLineState& lineState() {
    static NglLineState state;
    return state;
}

struct Stipple {
    GLint factor;
    GLushort pattern;
};

Stipple stippleOf(int style) {
    switch (style) {
    case 1:
        return {1, 0x1C47};
    case 2:
        return {1, 0xF0F0};
    case 4:
        return {1, 0x0101};
    case 5:
        return {2, 0xAAAA};
    default:
        return {1, 0xFFFF};
    }
}

} // namespace

const NglLineState& nglLineState() {
    return lineState();
}

void nglIssueLineWidth(int width) {
    lineState().width = width;
    glLineWidth(static_cast<GLfloat>(width));
}

void ngl_set_line_width(int width) {
    width = std::max(width, 1);
    if (width != lineState().width)
        nglIssueLineWidth(width);
}

int ngl_get_line_width() {
    return lineState().width;
}

void ngl_set_line_style(int style) {
    if (style == lineState().style)
        return;
    lineState().style = style;
    const Stipple stipple = stippleOf(style);
    glLineStipple(stipple.factor, stipple.pattern);
}

int ngl_get_line_style() {
    return lineState().style;
}
