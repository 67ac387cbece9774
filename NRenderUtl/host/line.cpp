// Planes, lines and segments in double precision.
#include <algorithm>
#include <cmath>

#include "NRenderUtl/host/hostmath.h"

namespace {

// Sines of angles below these count as parallel: the result would be rounding noise.
constexpr double kParallelSine = 1e-12;
constexpr double kParallelSegmentSine = 1e-10;

bool isFinite(const _NgPoint3Str& a) {
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

_NgPoint3Str along(const _NgPoint3Str& start, const _NgPoint3Str& direction, double t) {
    return MathAdd(start, MathScaled(direction, t));
}

// The part of v at right angles to a unit direction.
_NgPoint3Str perpendicular(const _NgPoint3Str& v, const _NgPoint3Str& unit) {
    return MathDifference(v, MathScaled(unit, MathDot(v, unit)));
}

// Parameter of the point of the line a + t u nearest to p; 0 for a line without length.
double nearestParameter(const _NgPoint3Str& a, const _NgPoint3Str& u, const _NgPoint3Str& p) {
    const double length = MathLength(u);
    _NgPoint3Str unit = u;
    return MathNormalise(unit) == 0 ? MathDot(MathDifference(p, a), unit) / length : 0;
}

NgSegmentSpot spotOf(double t) {
    if (t <= 0)
        return NgSegmentSpot::Start;
    return t >= 1 ? NgSegmentSpot::End : NgSegmentSpot::Inside;
}

} // namespace

int MathPlaneFromPoints(const _NgPoint3Str& p0, const _NgPoint3Str& p1, const _NgPoint3Str& p2,
                        NgPlane& plane) {
    _NgPoint3Str u = MathDifference(p1, p0), v = MathDifference(p2, p0);
    if (MathNormalise(u) != 0 || MathNormalise(v) != 0)
        return -1;
    _NgPoint3Str n = MathCross(u, v);
    if (!(MathLength(n) > kParallelSine) || MathNormalise(n) != 0)
        return -1;
    plane = {n.x, n.y, n.z, -MathDot(n, p0)};
    return 0;
}

int MathIntersectLinePlane(const _NgPoint3Str& p, const _NgPoint3Str& q, const NgPlane& plane,
                           _NgPoint3Str& out) {
    const _NgPoint3Str n = {plane.a, plane.b, plane.c};
    const _NgPoint3Str u = MathDifference(q, p);
    _NgPoint3Str normal = n, direction = u;
    if (MathNormalise(normal) != 0 || MathNormalise(direction) != 0)
        return -1;
    const double cosine = MathDot(normal, direction);
    if (!(std::fabs(cosine) > kParallelSine))
        return -1;
    const double distance = MathDot(normal, p) + plane.d / MathLength(n);
    const _NgPoint3Str point = along(p, direction, -distance / cosine);
    if (!isFinite(point))
        return -1;
    out = point;
    return 0;
}

int MathNearestPointOnLine(const _NgPoint3Str& a, const _NgPoint3Str& b, const _NgPoint3Str& p,
                           _NgPoint3Str& out, double* t) {
    const _NgPoint3Str u = MathDifference(b, a);
    const double parameter = nearestParameter(a, u, p);
    out = along(a, u, parameter);
    if (t != nullptr)
        *t = parameter;
    return MathLength(u) > 0 ? 0 : -1;
}

int MathNearestPointOnSegment(const _NgPoint3Str& a, const _NgPoint3Str& b, const _NgPoint3Str& p,
                              _NgPoint3Str& out, double* t) {
    const _NgPoint3Str u = MathDifference(b, a);
    const double parameter = std::clamp(nearestParameter(a, u, p), 0.0, 1.0);
    out = parameter == 1 ? b : along(a, u, parameter);
    if (t != nullptr)
        *t = parameter;
    return MathLength(u) > 0 ? 0 : -1;
}

NgSegmentNearest MathNearestPointOnSegmentFromLine(const _NgPoint3Str& a, const _NgPoint3Str& b,
                                                   const _NgPoint3Str& p, const _NgPoint3Str& q) {
    const _NgPoint3Str u = MathDifference(b, a);
    // Seen along the line, the line is the point p and the segment stays a segment.
    _NgPoint3Str direction = MathDifference(q, p);
    const bool isPoint = MathNormalise(direction) != 0;
    const auto seen = [&](const _NgPoint3Str& v) { return isPoint ? v : perpendicular(v, direction); };
    const _NgPoint3Str uSeen = seen(u), toLine = seen(MathDifference(p, a));

    NgSegmentNearest nearest{a, 0, 0, NgSegmentSpot::Start};
    if (MathLength(uSeen) > kParallelSegmentSine * MathLength(u))
        nearest.t = nearestParameter({0, 0, 0}, uSeen, toLine);
    nearest.spot = spotOf(nearest.t);
    if (nearest.spot == NgSegmentSpot::Inside)
        nearest.point = along(a, u, nearest.t);
    else if (nearest.spot == NgSegmentSpot::End)
        nearest.point = b;
    nearest.distance = MathLength(seen(MathDifference(p, nearest.point)));
    return nearest;
}
