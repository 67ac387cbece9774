// Polygons and polylines with a colour for each point, and curves in the colours of the contour.
#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/stateguards.h"

namespace {

/// Keeps the current colour of GL, which sending colours changes.
class CurrentColorGuard {
public:
    CurrentColorGuard() { glGetFloatv(GL_CURRENT_COLOR, m_color); }
    ~CurrentColorGuard() { glColor4fv(m_color); }
    CurrentColorGuard(const CurrentColorGuard&) = delete;
    CurrentColorGuard& operator=(const CurrentColorGuard&) = delete;

private:
    GLfloat m_color[4];
};

void sendColor(NgColorLong color) {
    const auto byte = [=](int i) { return static_cast<GLubyte>(color >> (8 * i)); };
    glColor4ub(byte(0), byte(1), byte(2), byte(3));
}

void drawShaded(GLenum primitive, const _NgPoint3Str* points, const NgColorLong* colors,
                std::uint64_t count) {
    if (!points || !colors || count == 0)
        return;
    const ShadingGuard shading;
    const CurrentColorGuard current;
    glShadeModel(GL_SMOOTH);
    drawVertices(primitive, count, [=](std::uint64_t i) {
        sendColor(colors[i]);
        sendVertex(points[i]);
    });
}

/// A curve of the points point(0), point(1), ..., unlit as the edges of a mesh with a contour are.
template <class PointOf>
void drawContourCurve(const float* values, std::uint64_t count, const PointOf& point) {
    if (!values || count == 0)
        return;
    const LightingGuard lighting(false);
    const CurrentStateGuard current;
    drawVertices(GL_LINE_STRIP, count, [&](std::uint64_t i) {
        glTexCoord2f(values[i], 0.0f);
        sendVertex(point(i));
    });
}

template <class Point>
void drawContourCurve(const Point* points, const float* values, std::uint64_t count) {
    if (points)
        drawContourCurve(values, count, [=](std::uint64_t i) { return points[i]; });
}

} // namespace

void ngl_shade_polygon_3d(const _NgPoint3Str* points, const NgColorLong* colors, std::uint64_t count) {
    drawShaded(GL_POLYGON, points, colors, count);
}

void ngl_shade_polyline_3d(const _NgPoint3Str* points, const NgColorLong* colors, std::uint64_t count) {
    drawShaded(GL_LINE_STRIP, points, colors, count);
}

void ngl_curve_contour_draw(const double* x, const double* y, const double* z, const float* values,
                            std::uint64_t count) {
    if (x && y && z)
        drawContourCurve(values, count, [=](std::uint64_t i) { return _NgPoint3Str{x[i], y[i], z[i]}; });
}

void ngl_curve_contour_draw_s(const _NgPoint3Str* points, const float* values, std::uint64_t count) {
    drawContourCurve(points, values, count);
}

void ngl_curve_contour_draw_p(const _NgPoint3Str* const* points, const float* values, std::uint64_t count) {
    drawContourCurve(points, values, count);
}

void ngl_curve_contour_draw_f(const _NgFPoint3Str* points, const float* values, std::uint64_t count) {
    drawContourCurve(points, values, count);
}
