// Points and lines in the colours of the contour texture.
#include <optional>

#include "NRenderUtl/gl/NglBatchRender.h"
#include "NRenderUtl/gl/immediate.h"

namespace {

struct Coordinate {
    float s, t;
};

constexpr Coordinate kFirstFlag{0.0f, 0.25f}, kSecondFlag{0.0f, 0.5f}; // rows beside the contour's

/// The coordinate that stands for a flag in place of the values.
std::optional<Coordinate> coordinateOf(bool a, bool b) {
    if (b)
        return kSecondFlag;
    return a ? std::optional(kFirstFlag) : std::nullopt;
}

template <class Point>
void sendAt(Coordinate at, const Point& p) {
    glTexCoord2f(at.s, at.t);
    sendVertex(p);
}

template <class Point>
void drawLine(const Point& p, const Point& q, Coordinate atP, Coordinate atQ) {
    const BeginEnd ends(GL_LINES);
    sendAt(atP, p);
    sendAt(atQ, q);
}

Coordinate coordinateOfValue(const float* values, int i) {
    return {values ? values[i] : 0.0f, 0.0f};
}

template <class Point>
void drawPoints(int count, const Point* points, const float* values, std::optional<Coordinate> flagged) {
    const BeginEnd all(GL_POINTS);
    for (int i = 0; i < count; ++i)
        sendAt(flagged.value_or(coordinateOfValue(values, i)), points[i]);
}

} // namespace

void RenderingDrawLine(const _NgPoint3Str* p, const _NgPoint3Str* q, float s0, float s1, int a, int b) {
    if (!p || !q)
        return;
    const auto flagged = coordinateOf(a != 0, b != 0);
    drawLine(*p, *q, flagged.value_or(Coordinate{s0, 0.0f}), flagged.value_or(Coordinate{s1, 0.0f}));
}

void RenderingDrawLineF(const _NgFPoint3Str* p, const _NgFPoint3Str* q, float s0, float s1, int a, int b) {
    if (!p || !q)
        return;
    const auto flagged = coordinateOf(a != 0, b != 0);
    const Coordinate atP = flagged.value_or(Coordinate{s0, 0.0f});
    const Coordinate atQ = flagged.value_or(Coordinate{s1, 0.0f});
    CNglBatchLineRender* batch = nglActiveLineBatch(false);
    if (!batch)
        return drawLine(*p, *q, atP, atQ);
    const NgColorLong color = ngl_get_color_long();
    batch->add({*p, color, atP.s, atP.t}, {*q, color, atQ.s, atQ.t}, ngl_get_line_style(),
               ngl_get_line_width());
}

void RenderingDrawPointF(const _NgFPoint3Str* point, float s, int a, int b) {
    RenderingDrawPointListF(1, point, &s, a, b);
}

void RenderingDrawPointList(int count, const _NgPoint3Str* points, const float* values, int a, int b) {
    if (count > 0 && points)
        drawPoints(count, points, values, coordinateOf(a != 0, b != 0));
}

void RenderingDrawPointListF(int count, const _NgFPoint3Str* points, const float* values, int a, int b) {
    if (count <= 0 || !points)
        return;
    const auto flagged = coordinateOf(a != 0, b != 0);
    CNglBatchPointRender* batch = nglActivePointBatch();
    if (!batch)
        return drawPoints(count, points, values, flagged);
    const NgColorLong color = ngl_get_color_long();
    for (int i = 0; i < count; ++i) {
        const Coordinate at = flagged.value_or(coordinateOfValue(values, i));
        batch->add({points[i], color, at.s, at.t}, batch->pointSize());
    }
}
