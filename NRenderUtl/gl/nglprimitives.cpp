// Points, lines, polylines and convex polygons, drawn at once.
#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/stateguards.h"

namespace {

template <class Point>
void drawPoint(const Point* point) {
    drawPoints(GL_POINTS, point, 1);
}

template <class Point>
void drawSegment(const Point* p, const Point* q) {
    if (!p || !q)
        return;
    const BeginEnd ends(GL_LINES);
    sendVertex(*p);
    sendVertex(*q);
}

/// A last point without partner is deliberately paired with the one behind it: callers rely on the count
/// being rounded up.
template <class Point>
void drawPairs(const Point* points, std::uint64_t count) {
    drawPoints(GL_LINES, points, count + count % 2);
}

} // namespace

// --- points ------------------------------------------------------------------------------------------------

void ngl_point_2d(double x, double y) {
    const _NgPoint2Str point{x, y};
    drawPoint(&point);
}

void ngl_point_2d_s(const _NgPoint2Str* point) {
    drawPoint(point);
}

void ngl_point_3d(double x, double y, double z) {
    const _NgPoint3Str point{x, y, z};
    drawPoint(&point);
}

void ngl_point_3d_s(const _NgPoint3Str* point) {
    drawPoint(point);
}

void ngl_point_3dGivenSize(double x, double y, double z, float size) {
    glPointSize(size);
    ngl_point_3d(x, y, z);
}

void ngl_point_3d_given_size(int count, const _NgPoint3Str* points, float size) {
    if (count <= 0 || !points)
        return;
    glPointSize(size);
    drawVertices(GL_POINTS, static_cast<std::uint64_t>(count),
                 [=](std::uint64_t i) { glVertex3dv(&points[i].x); });
}

void ngl_point_3f_given_size(int count, const _NgFPoint3Str* points, float size) {
    if (count <= 0 || !points)
        return;
    glPointSize(size);
    drawPoints(GL_POINTS, points, static_cast<std::uint64_t>(count));
}

// --- lines -------------------------------------------------------------------------------------------------

void ngl_line_2d(double x0, double y0, double x1, double y1) {
    const _NgPoint2Str p{x0, y0}, q{x1, y1};
    drawSegment(&p, &q);
}

void ngl_line_2d_s(const _NgPoint2Str* p, const _NgPoint2Str* q) {
    drawSegment(p, q);
}

void ngl_line_3d(double x0, double y0, double z0, double x1, double y1, double z1) {
    const _NgPoint3Str p{x0, y0, z0}, q{x1, y1, z1};
    drawSegment(&p, &q);
}

void ngl_line_3d_s(const _NgPoint3Str* p, const _NgPoint3Str* q) {
    drawSegment(p, q);
}

void ngl_line_3f_s(const _NgFPoint3Str* p, const _NgFPoint3Str* q) {
    drawSegment(p, q);
}

void ngl_lines_2d_s(const _NgPoint2Str* points, std::uint64_t count) {
    drawPairs(points, count);
}

void ngl_lines_2d_p(const _NgPoint2Str* const* points, std::uint64_t count) {
    drawPairs(points, count);
}

void ngl_lines_3d_s(const _NgPoint3Str* points, std::uint64_t count) {
    drawPairs(points, count);
}

void ngl_lines_3d_p(const _NgPoint3Str* const* points, std::uint64_t count) {
    drawPairs(points, count);
}

void ngl_polyline_2d_s(const _NgPoint2Str* points, std::uint64_t count) {
    drawPoints(GL_LINE_STRIP, points, count);
}

void ngl_polyline_2d_p(const _NgPoint2Str* const* points, std::uint64_t count) {
    drawPoints(GL_LINE_STRIP, points, count);
}

void ngl_polyline_3d_s(const _NgPoint3Str* points, std::uint64_t count) {
    drawPoints(GL_LINE_STRIP, points, count);
}

void ngl_polyline_3d_p(const _NgPoint3Str* const* points, std::uint64_t count) {
    drawPoints(GL_LINE_STRIP, points, count);
}

// --- convex polygons ---------------------------------------------------------------------------------------

void ngl_polygon_2d_s(const _NgPoint2Str* points, std::uint64_t count) {
    drawPoints(GL_POLYGON, points, count);
}

void ngl_polygon_2d_p(const _NgPoint2Str* const* points, std::uint64_t count) {
    drawPoints(GL_POLYGON, points, count);
}

void ngl_polygon_3d_s(const _NgPoint3Str* points, std::uint64_t count) {
    drawPoints(GL_POLYGON, points, count);
}

void ngl_polygon_3d_p(const _NgPoint3Str* const* points, std::uint64_t count) {
    drawPoints(GL_POLYGON, points, count);
}

void ngl_polygon_3d_s_with_vertex_array(const _NgPoint3Str* points, const _NgPoint3Str* normals,
                                        std::uint64_t count) {
    if (!points || !normals || count == 0)
        return;
    const CurrentStateGuard current;
    drawVertices(GL_POLYGON, count, [=](std::uint64_t i) {
        glNormal3dv(&normals[i].x);
        sendVertex(points[i]);
    });
}
