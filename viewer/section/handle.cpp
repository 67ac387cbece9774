// Moving follows the line through the place where the handle was taken; turning follows the ball that the
// arrow's tip moves on.
#include "viewer/section/handle.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>

#include "viewer/markers/markersection.h"

namespace nruview {

namespace {

constexpr double kArrow = 0.2, kBeyond = 0.04; ///< length, and distance of the frame, by the model's size
constexpr double kTip = 0.35;                  ///< part of the arrow that turns it
constexpr double kReach_px = 6.0, kFrame_px = 1.5;
constexpr double kGrazing = 0.02; ///< sine of the angle between ray and normal below which nothing moves
constexpr NgColorLong kColor = 0xFF3C8CFF; ///< orange, which is no end of the contour's ramp

/// The axis that lies most across a direction.
Point axisAcross(const Point& direction) {
    std::size_t least = 0;
    for (std::size_t k = 1; k < 3; ++k)
        if (std::abs(direction[k]) < std::abs(direction[least]) - 1e-9)
            least = k;
    Point axis{};
    axis[least] = 1.0;
    return axis;
}

/// Where a plane crosses the edges of a box; where it passes by, the box's place nearest to it.
std::vector<Point> crossings(const Bounds& bounds, const Plane& plane) {
    std::vector<Point> corners, found;
    for (unsigned i = 0; i < 8; ++i)
        corners.push_back({i & 1 ? bounds.high[0] : bounds.low[0], i & 2 ? bounds.high[1] : bounds.low[1],
                           i & 4 ? bounds.high[2] : bounds.low[2]});
    for (unsigned i = 0; i < 8; ++i)
        for (unsigned axis = 1; axis < 8; axis *= 2) {
            const Point &a = corners[i & ~axis], &b = corners[i | axis];
            const double from = plane.distance(a), to = plane.distance(b);
            if ((from < 0.0) != (to < 0.0))
                found.push_back(a + (from / (from - to)) * (b - a));
        }
    if (found.empty())
        found.push_back(
            *std::min_element(corners.begin(), corners.end(), [&](const Point& a, const Point& b) {
                return std::abs(plane.distance(a)) < std::abs(plane.distance(b));
            }));
    return found;
}

/// Smallest and largest place of points along a direction.
std::array<double, 2> extentOf(const std::vector<Point>& points, const Point& direction) {
    std::array<double, 2> extent = {HUGE_VAL, -HUGE_VAL};
    for (const Point& point : points) {
        extent[0] = std::min(extent[0], dot(point, direction));
        extent[1] = std::max(extent[1], dot(point, direction));
    }
    return extent;
}

double distanceToSegment(const Ray& ray, const Point& from, const Point& to) {
    const Point near = from + nearestPart(ray, from, to) * (to - from);
    const Point offset = near - ray.origin;
    return length(offset - dot(offset, ray.direction) * ray.direction);
}

std::array<Point, 4> cornersOf(const SectionHandle& handle) {
    const auto& [centre, normal, right, up, tip] = handle;
    return {centre - right - up, centre + right - up, centre + right + up, centre - right + up};
}

/// Place along a line where it comes nearest to a ray; nothing where they are all but parallel.
std::optional<double> placeAlong(const Point& at, const Point& direction, const Ray& ray) {
    const double cosine = dot(direction, ray.direction), sine2 = 1.0 - cosine * cosine;
    if (sine2 < kGrazing * kGrazing)
        return {};
    const Point offset = ray.origin - at;
    return (dot(offset, direction) - cosine * dot(offset, ray.direction)) / sine2;
}

/// Where a ray meets the handle's plane; if hardly anywhere, the centre.
Point onPlane(const SectionHandle& handle, const Ray& ray) {
    const double slope = dot(handle.normal, ray.direction);
    if (std::abs(slope) < kGrazing)
        return handle.centre;
    return ray.origin + (dot(handle.centre - ray.origin, handle.normal) / slope) * ray.direction;
}

/// Where a ray meets the ball about the handle's centre that the tip moves on, on the side to the viewer or
/// behind; beside it the nearest place.
Point onBall(const SectionHandle& handle, const Ray& ray, bool behind) {
    const double radius = length(handle.tip - handle.centre);
    const double along = dot(handle.centre - ray.origin, ray.direction);
    const Point nearest = ray.origin + along * ray.direction - handle.centre;
    const double rest = radius * radius - dot(nearest, nearest);
    if (rest <= 0.0)
        return unit(nearest);
    return unit(nearest + (behind ? 1.0 : -1.0) * std::sqrt(rest) * ray.direction);
}

void addCorners(const std::array<Point, 4>& corners) {
    for (const Point& corner : corners)
        glVertex3dv(corner.data());
}

void drawOutline(const SectionHandle& handle, GLenum depthFunc, unsigned char alpha) {
    glDepthFunc(depthFunc);
    glColor4ub(kColor & 0xFF, kColor >> 8 & 0xFF, kColor >> 16 & 0xFF, alpha);
    glBegin(GL_LINE_LOOP);
    addCorners(cornersOf(handle));
    glEnd();
}

void drawFrame(const SectionHandle& handle, double scale) {
    constexpr unsigned char kOfFrame = 0x28, kHidden = 0x50;
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    glColor4ub(kColor & 0xFF, kColor >> 8 & 0xFF, kColor >> 16 & 0xFF, kOfFrame);
    glBegin(GL_QUADS);
    addCorners(cornersOf(handle));
    glEnd();
    glLineWidth(static_cast<float>(kFrame_px * scale));
    drawOutline(handle, GL_LEQUAL, 0xFF);
    drawOutline(handle, GL_GREATER, kHidden);
    glPopAttrib();
}

_NgFPoint3Str singlePoint(const Point& p) {
    return {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
}

/// Before all else: in a part of the depths that nothing else is in.
void drawArrow(const SectionHandle& handle) {
    constexpr float kWidth = 0.09f;
    const _NgFPoint3Str start = singlePoint(handle.centre), vector = singlePoint(handle.tip - handle.centre);
    const NgColorLong color = kColor;
    glDepthRange(0.0, 0.01);
    ngl_set_color_long(color);
    {
        const MarkerSection arrows(RENDER_3D_MARKER_ARROW_ONE_WAY);
        RenderDraw3DMarker(&start, &vector, 0.0f, kWidth, &color, false, 0.0f, 0.0f, 0, 0);
    }
    glDepthRange(0.0, 1.0);
}

} // namespace

SectionHandle handleOf(const ShownModel& shown) {
    const Plane& plane = shown.section->plane;
    const double size = length(shown.bounds.high - shown.bounds.low);
    const Point right = unit(cross(axisAcross(plane.normal), plane.normal)), up = cross(plane.normal, right);
    const std::vector<Point> cut = crossings(shown.bounds, plane);
    const auto [left, rightEnd] = extentOf(cut, right);
    const auto [bottom, top] = extentOf(cut, up);
    SectionHandle handle;
    handle.normal = plane.normal;
    handle.centre =
        plane.offset * plane.normal + (0.5 * (left + rightEnd)) * right + (0.5 * (bottom + top)) * up;
    handle.right = (0.5 * (rightEnd - left) + kBeyond * size) * right;
    handle.up = (0.5 * (top - bottom) + kBeyond * size) * up;
    handle.tip = handle.centre + kArrow * size * plane.normal;
    return handle;
}

Bounds boundsWith(const Bounds& bounds, const SectionHandle& handle) {
    Bounds all = bounds;
    for (const Point& corner : cornersOf(handle))
        all.add(corner);
    all.add(handle.tip);
    return all;
}

std::optional<HandlePart> handlePartAt(const SectionHandle& handle, const Ray& ray, double reach) {
    const Point neck = handle.tip - kTip * (handle.tip - handle.centre);
    if (distanceToSegment(ray, neck, handle.tip) <= 1.5 * reach)
        return HandlePart::Tip;
    if (distanceToSegment(ray, handle.centre, neck) <= reach)
        return HandlePart::Shaft;
    double nearest = HUGE_VAL;
    const std::array<Point, 4> corners = cornersOf(handle);
    for (std::size_t i = 0; i < 4; ++i)
        nearest = std::min(nearest, distanceToSegment(ray, corners[i], corners[(i + 1) % 4]));
    return nearest <= reach ? std::optional(HandlePart::Frame) : std::nullopt;
}

Plane draggedPlane(const HandleGrip& grip, const Ray& ray) {
    const SectionHandle& handle = grip.handle;
    if (grip.part == HandlePart::Tip) {
        const bool behind = dot(handle.normal, grip.ray.direction) > 0.0;
        const Point normal = onBall(handle, ray, behind);
        return {normal, dot(normal, handle.centre)};
    }
    // What was taken stays under the ray.
    const Point taken = grip.part == HandlePart::Frame ? onPlane(handle, grip.ray) : handle.centre;
    const auto before = placeAlong(taken, handle.normal, grip.ray);
    const auto now = placeAlong(taken, handle.normal, ray);
    const double moved = before && now ? *now - *before : 0.0;
    return {handle.normal, dot(handle.normal, handle.centre) + moved};
}

std::optional<HandleGrip> gripSection(const ShownModel& shown, int x, int y) {
    if (!shown.section)
        return {};
    const SectionHandle handle = handleOf(shown);
    const Ray ray = rayThrough(x, y);
    const auto part = handlePartAt(handle, ray, kReach_px * pixelLength(handle.centre));
    return part ? std::optional(HandleGrip{*part, handle, ray}) : std::nullopt;
}

SectionPlane draggedSection(const ShownModel& shown, const HandleGrip& grip, int x, int y) {
    const Plane plane = draggedPlane(grip, rayThrough(x, y));
    const Point& centre = grip.handle.centre;
    return {shown.middle + shown.unit * (centre - plane.distance(centre) * plane.normal), plane.normal};
}

void drawHandle(const SectionHandle& handle, double scale) {
    drawFrame(handle, scale);
    drawArrow(handle);
}

} // namespace nruview
