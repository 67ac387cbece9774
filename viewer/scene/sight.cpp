// The library's conversions between window and model, for points of three doubles.
#include "viewer/scene/sight.h"

#include <algorithm>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/model/vectors.h"

namespace nruview {

Ray rayThrough(int x, int y) {
    Point p, q;
    NglGetViewVector(x, y, &p[0], &p[1], &p[2], &q[0], &q[1], &q[2]);
    return {p, unit(q - p)};
}

Point sightAt(const Point& point) {
    const _NglInfoStr& info = *NglGetNglInfo();
    if (info.perspective == 0)
        return {info.view.x, info.view.y, info.view.z};
    const auto [x, y] = windowPosition(point);
    return rayThrough(static_cast<int>(x), static_cast<int>(y)).direction;
}

double pixelLength(const Point& point) {
    constexpr int kPixels = 16;
    _NgPoint3Str at = {point[0], point[1], point[2]}, from, to;
    ngl_get_offset_pt_in_screen(&at, 0, 0, &from);
    ngl_get_offset_pt_in_screen(&at, kPixels, 0, &to);
    return length(Point{to.x - from.x, to.y - from.y, to.z - from.z}) / kPixels;
}

std::array<double, 2> windowPosition(const Point& point) {
    std::array<double, 2> position{};
    ngl_transform_32(point[0], point[1], point[2], &position[0], &position[1]);
    return position;
}

double nearestPart(const Ray& ray, const Point& from, const Point& to) {
    const Point edge = to - from;
    const Point across = edge - dot(edge, ray.direction) * ray.direction;
    const double size = dot(across, across);
    return size > 0.0 ? std::clamp(dot(ray.origin - from, across) / size, 0.0, 1.0) : 0.0;
}

} // namespace nruview
