// Vectors of three doubles.
#include <algorithm>
#include <cmath>

#include "NRenderUtl/host/hostmath.h"

namespace {

constexpr double kRadToDeg = 180.0 / 3.14159265358979323846;
// Squares outside this range lose digits to under- or overflow.
constexpr double kSmallestSquare = 1e-280, kLargestSquare = 1e280;

double largestComponent(const _NgPoint3Str& a) {
    return std::max({std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)});
}

bool isFinite(const _NgPoint3Str& a) {
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

} // namespace

_NgPoint3Str MathAdd(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

_NgPoint3Str MathDifference(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

_NgPoint3Str MathScaled(const _NgPoint3Str& a, double s) {
    return {a.x * s, a.y * s, a.z * s};
}

double MathDot(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

_NgPoint3Str MathCross(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double MathLength(const _NgPoint3Str& a) {
    const double square = MathDot(a, a);
    if (square > kSmallestSquare && square < kLargestSquare)
        return std::sqrt(square);
    const double largest = largestComponent(a);
    if (largest == 0 || !isFinite(a))
        return std::sqrt(square);
    const _NgPoint3Str scaled = {a.x / largest, a.y / largest, a.z / largest};
    return largest * std::sqrt(MathDot(scaled, scaled));
}

double MathDistance(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    return MathLength(MathDifference(a, b));
}

float MathFltPoint3Distance(const _NgFPoint3Str& a, const _NgFPoint3Str& b) {
    const double x = a.x - b.x, y = a.y - b.y, z = a.z - b.z;
    return static_cast<float>(std::sqrt(x * x + y * y + z * z));
}

int MathNormalise(_NgPoint3Str& v) {
    const double largest = largestComponent(v);
    if (!(largest > 0) || !isFinite(v))
        return -1;
    const _NgPoint3Str scaled = {v.x / largest, v.y / largest, v.z / largest};
    v = MathScaled(scaled, 1 / std::sqrt(MathDot(scaled, scaled)));
    return 0;
}

double MathAngleDeg(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    _NgPoint3Str u = a, v = b;
    if (MathNormalise(u) != 0 || MathNormalise(v) != 0)
        return 0;
    // W. Kahan, "How Futile are Mindless Assessments of Roundoff", 2006, section 12: accurate near 0 and 180
    // degrees.
    return 2 * std::atan2(MathLength(MathDifference(u, v)), MathLength(MathAdd(u, v))) * kRadToDeg;
}
