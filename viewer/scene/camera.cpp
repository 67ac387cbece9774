// The camera is a target with axes about it; the eye stays at one distance, and zooming narrows the frustum.
#include "viewer/scene/camera.h"

#include <algorithm>
#include <charconv>
#include <numbers>

#include "viewer/error.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

const double kTanHalfField = std::tan(15.0 * std::numbers::pi / 180.0); ///< vertical field of view 30 degrees
constexpr double kMargin = 1.05;

ViewAxes axesOf(const Point& right, const Point& up) {
    return {right, up, cross(right, up)};
}

/// A view from a direction with y up; seen along y itself, x points right.
ViewAxes viewFrom(const Point& direction) {
    const Point toward = unit(direction);
    const bool alongY = std::abs(toward[1]) > 0.999;
    const Point right =
        alongY ? unit(Point{1.0, 0.0, 0.0} - toward[0] * toward) : unit(cross({0.0, 1.0, 0.0}, toward));
    return {right, cross(toward, right), toward};
}

/// The point in the camera's axes about its target.
Point inCamera(const Camera& camera, const Point& point) {
    const Point offset = point - camera.target;
    return {dot(offset, camera.axes.right), dot(offset, camera.axes.up), dot(offset, camera.axes.toward)};
}

std::array<Point, 8> cornersOf(const Bounds& bounds) {
    std::array<Point, 8> corners;
    for (unsigned i = 0; i < 8; ++i)
        corners[i] = {i & 1 ? bounds.high[0] : bounds.low[0], i & 2 ? bounds.high[1] : bounds.low[1],
                      i & 4 ? bounds.high[2] : bounds.low[2]};
    return corners;
}

Point rotated(const Point& vector, const Point& axis, double angle) { // Rodrigues
    const double c = std::cos(angle), s = std::sin(angle);
    return c * vector + s * cross(axis, vector) + ((1.0 - c) * dot(axis, vector)) * axis;
}

std::array<double, 16> orthographic(double halfWidth, double halfHeight, double near, double far) {
    std::array<double, 16> m{};
    m[0] = 1.0 / halfWidth;
    m[5] = 1.0 / halfHeight;
    m[10] = -2.0 / (far - near);
    m[14] = -(far + near) / (far - near);
    m[15] = 1.0;
    return m;
}

/// Half of the picture's height, in model length, that far before the target.
double halfHeightAt(const Camera& camera, double nearer) {
    return camera.perspective ? camera.halfHeight * (camera.distance - nearer) / camera.distance
                              : camera.halfHeight;
}

/// What a place of the picture is from the target, to the right and upward, that far before it.
std::array<double, 2> offsetInPicture(const Camera& camera, double x, double y, double nearer, int width,
                                      int height) {
    const double half = halfHeightAt(camera, nearer), aspect = static_cast<double>(width) / height;
    return {(2.0 * x / width - 1.0 - camera.shift[0]) * half * aspect,
            (1.0 - 2.0 * y / height - camera.shift[1]) * half};
}

/// Half sizes are those of the picture at unit distance.
std::array<double, 16> perspective(double halfWidth, double halfHeight, double near, double far) {
    std::array<double, 16> m{};
    m[0] = 1.0 / halfWidth;
    m[5] = 1.0 / halfHeight;
    m[10] = -(far + near) / (far - near);
    m[11] = -1.0;
    m[14] = -2.0 * far * near / (far - near);
    return m;
}

/// Adds multiples of the last row, that of the divisor.
void shiftPicture(std::array<double, 16>& projection, const std::array<double, 2>& shift) {
    for (int column = 0; column < 4; ++column)
        for (int k = 0; k < 2; ++k)
            projection[4 * column + k] += shift[k] * projection[4 * column + 3];
}

} // namespace

void Bounds::add(const Point& point) {
    if (empty())
        low = high = point;
    for (int k = 0; k < 3; ++k) {
        low[k] = std::min(low[k], point[k]);
        high[k] = std::max(high[k], point[k]);
    }
}

Bounds boundsOf(std::span<const Point> points) {
    Bounds bounds;
    for (const Point& point : points)
        bounds.add(point);
    return bounds;
}

ViewAxes parseView(const std::string& text) {
    if (text == "iso")
        return viewFrom({1.0, 1.0, 1.0});
    if (text.size() == 2 && text[0] != text[1] && text.find_first_not_of("xyz") == std::string::npos) {
        Point right{}, up{};
        right[text[0] - 'x'] = up[text[1] - 'x'] = 1.0;
        return axesOf(right, up);
    }
    Point direction{};
    const char* at = text.data();
    const char* end = at + text.size();
    for (int k = 0; k < 3; ++k) {
        const auto [stop, error] = std::from_chars(at, end, direction[k]);
        const bool separated = k < 2 ? stop < end && *stop == ',' : stop == end;
        if (error != std::errc() || !separated)
            throw ViewerError("--view", "'" + text + "' is none of iso, xy, yx, xz, zx, yz, zy and X,Y,Z");
        at = stop + 1;
    }
    if (!(length(direction) > 0.0) || !std::isfinite(length(direction)))
        throw ViewerError("--view", "'" + text + "' is not a direction");
    return viewFrom(direction);
}

Camera fitCamera(const ViewAxes& axes, const Bounds& bounds, double aspect, bool perspective) {
    Camera camera;
    camera.axes = axes;
    camera.perspective = perspective;
    camera.target = 0.5 * bounds.low + 0.5 * bounds.high;
    // What lies nearer to the eye than the target needs a wider picture in perspective.
    double half = 0.0;
    for (const Point& corner : cornersOf(bounds)) {
        const Point p = inCamera(camera, corner);
        const double nearer = perspective ? p[2] * kTanHalfField : 0.0;
        half = std::max({half, std::abs(p[0]) / aspect + nearer, std::abs(p[1]) + nearer});
    }
    camera.halfHeight = half > 0.0 ? kMargin * half : 1.0;
    camera.distance = camera.halfHeight / kTanHalfField;
    return camera;
}

Camera fitCamera(const ViewAxes& axes, const Bounds& bounds, const PictureArea& area, bool perspective) {
    const double width = area.width - area.left, height = area.height - area.top;
    Camera camera = fitCamera(axes, bounds, width / height, perspective);
    camera.halfHeight *= area.height / height;
    centreCamera(camera, area);
    return camera;
}

void centreCamera(Camera& camera, const PictureArea& area) {
    camera.shift = {static_cast<double>(area.left) / area.width,
                    -static_cast<double>(area.top) / area.height};
}

void turnCamera(Camera& camera, double rightRad, double upRad) {
    ViewAxes& axes = camera.axes;
    axes.right = unit(rotated(axes.right, axes.up, -rightRad));
    axes.toward = cross(axes.right, axes.up);
    axes.up = unit(rotated(axes.up, axes.right, upRad));
    axes.toward = unit(cross(axes.right, axes.up));
}

std::array<double, 2> placeInPicture(const Camera& camera, const Point& point, int width, int height) {
    const Point p = inCamera(camera, point);
    const double half = halfHeightAt(camera, p[2]), aspect = static_cast<double>(width) / height;
    return {0.5 * width * (1.0 + p[0] / (half * aspect) + camera.shift[0]),
            0.5 * height * (1.0 - p[1] / half - camera.shift[1])};
}

Point pointInPicture(const Camera& camera, double x, double y, const Point& likeNear, int width, int height) {
    const double nearer = inCamera(camera, likeNear)[2];
    const auto [right, up] = offsetInPicture(camera, x, y, nearer, width, height);
    const ViewAxes& axes = camera.axes;
    return camera.target + right * axes.right + up * axes.up + nearer * axes.toward;
}

void moveCamera(Camera& camera, const Point& point, double x, double y, int width, int height) {
    camera.target = camera.target + (point - pointInPicture(camera, x, y, point, width, height));
}

ViewMatrices viewMatrices(const Camera& camera, const Bounds& bounds, double aspect) {
    const auto& [right, up, toward] = camera.axes;
    ViewMatrices view;
    view.eye = camera.target + camera.distance * toward;
    view.modelView = {right[0],
                      up[0],
                      toward[0],
                      0.0,
                      right[1],
                      up[1],
                      toward[1],
                      0.0,
                      right[2],
                      up[2],
                      toward[2],
                      0.0,
                      -dot(right, view.eye),
                      -dot(up, view.eye),
                      -dot(toward, view.eye),
                      1.0};

    double nearest = -1e300, farthest = 1e300; // along toward
    for (const Point& corner : cornersOf(bounds)) {
        const double z = inCamera(camera, corner)[2];
        nearest = std::max(nearest, z);
        farthest = std::min(farthest, z);
    }
    const double pad = 0.02 * std::max(nearest - farthest, camera.halfHeight);
    double near = camera.distance - nearest - pad;
    const double far = camera.distance - farthest + pad;
    if (camera.perspective)
        near = std::max(near, 0.01 * camera.distance); // the eye may be inside the box
    const double halfHeight = camera.halfHeight;
    view.projection = camera.perspective ? perspective(aspect * halfHeight / camera.distance,
                                                       halfHeight / camera.distance, near, far)
                                         : orthographic(aspect * halfHeight, halfHeight, near, far);
    shiftPicture(view.projection, camera.shift);
    return view;
}

} // namespace nruview
