// 4x4 matrices in double precision, column-major, with OpenGL's order of products.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "NRenderUtl/host/hostmath.h"

namespace {

constexpr double kDegToRad = 3.14159265358979323846 / 180.0;
// Pivots of an equilibrated matrix below this are rounding noise.
constexpr double kSingularPivot = 1e-14;

// Rows of [A | I] during elimination.
using Augmented = std::array<std::array<double, 8>, 4>;

// Power of two near 1 / x, or 0 when x is zero or not finite: scaling by it is exact.
double inverseScale(double x) {
    if (!(x > 0) || !std::isfinite(x))
        return 0;
    return std::ldexp(1.0, std::clamp(-std::ilogb(x), -1022, 1022));
}

// Scales rows, then columns, so that the largest element of each is near 1. False for an empty row or column.
bool equilibrate(Augmented& a, std::array<double, 4>& rowScale, std::array<double, 4>& columnScale) {
    for (int r = 0; r < 4; ++r) {
        double largest = 0;
        for (int c = 0; c < 4; ++c)
            largest = std::isnan(a[r][c]) ? HUGE_VAL : std::max(largest, std::fabs(a[r][c]));
        rowScale[r] = inverseScale(largest);
        for (int c = 0; c < 4; ++c)
            a[r][c] *= rowScale[r];
    }
    for (int c = 0; c < 4; ++c) {
        double largest = 0;
        for (int r = 0; r < 4; ++r)
            largest = std::max(largest, std::fabs(a[r][c]));
        columnScale[c] = inverseScale(largest);
        for (int r = 0; r < 4; ++r)
            a[r][c] *= columnScale[c];
    }
    const auto isZero = [](double s) { return s == 0; };
    return std::none_of(rowScale.begin(), rowScale.end(), isZero) &&
           std::none_of(columnScale.begin(), columnScale.end(), isZero);
}

// Gauss-Jordan elimination with row pivoting. False for a singular matrix.
bool eliminate(Augmented& a) {
    for (int c = 0; c < 4; ++c) {
        int pivot = c;
        for (int r = c + 1; r < 4; ++r)
            if (std::fabs(a[r][c]) > std::fabs(a[pivot][c]))
                pivot = r;
        if (!(std::fabs(a[pivot][c]) > kSingularPivot))
            return false;
        std::swap(a[c], a[pivot]);
        const double factor = 1 / a[c][c];
        for (double& x : a[c])
            x *= factor;
        for (int r = 0; r < 4; ++r) {
            if (r == c)
                continue;
            const double multiple = a[r][c];
            for (int k = 0; k < 8; ++k)
                a[r][k] -= multiple * a[c][k];
        }
    }
    return true;
}

} // namespace

void NglSetIdentity(NgMatrix m) {
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            m[c][r] = c == r ? 1 : 0;
}

void NglMultiply(const NgMatrix a, const NgMatrix b, NgMatrix out) {
    NgMatrix product;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            product[c][r] = a[0][r] * b[c][0] + a[1][r] * b[c][1] + a[2][r] * b[c][2] + a[3][r] * b[c][3];
    std::memcpy(out, product, sizeof product);
}

void NglConcatenate(NgMatrix m, const NgMatrix b) {
    NglMultiply(m, b, m);
}

void NglTranspose(const NgMatrix m, NgMatrix out) {
    NgMatrix transposed;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            transposed[c][r] = m[r][c];
    std::memcpy(out, transposed, sizeof transposed);
}

int NglInverse(const NgMatrix m, NgMatrix out) {
    Augmented a{};
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            a[r][c] = m[c][r];
        a[r][4 + r] = 1;
    }
    NglSetIdentity(out);
    std::array<double, 4> rowScale, columnScale;
    if (!equilibrate(a, rowScale, columnScale) || !eliminate(a))
        return -1;
    // With B = R A C: inverse(A) = C inverse(B) R.
    NgMatrix inverse;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            inverse[c][r] = columnScale[r] * a[r][4 + c] * rowScale[c];
            if (!std::isfinite(inverse[c][r]))
                return -1;
        }
    std::memcpy(out, inverse, sizeof inverse);
    return 0;
}

void NglSetTranslation(NgMatrix m, const _NgPoint3Str& offset) {
    NglSetIdentity(m);
    m[3][0] = offset.x;
    m[3][1] = offset.y;
    m[3][2] = offset.z;
}

void NglSetScale(NgMatrix m, double sx, double sy, double sz) {
    NglSetIdentity(m);
    m[0][0] = sx;
    m[1][1] = sy;
    m[2][2] = sz;
}

int NglSetRotation(NgMatrix m, double angleDeg, const _NgPoint3Str& axis) {
    NglSetIdentity(m);
    _NgPoint3Str u = axis;
    if (MathNormalise(u) != 0)
        return -1;
    const double s = std::sin(angleDeg * kDegToRad);
    const double c = std::cos(angleDeg * kDegToRad);
    const double t = 1 - c;
    m[0][0] = t * u.x * u.x + c;
    m[0][1] = t * u.x * u.y + s * u.z;
    m[0][2] = t * u.x * u.z - s * u.y;
    m[1][0] = t * u.x * u.y - s * u.z;
    m[1][1] = t * u.y * u.y + c;
    m[1][2] = t * u.y * u.z + s * u.x;
    m[2][0] = t * u.x * u.z + s * u.y;
    m[2][1] = t * u.y * u.z - s * u.x;
    m[2][2] = t * u.z * u.z + c;
    return 0;
}

void NglTranslate(NgMatrix m, double x, double y, double z) {
    NgMatrix translation;
    NglSetTranslation(translation, {x, y, z});
    NglConcatenate(m, translation);
}

void NglScale(NgMatrix m, double sx, double sy, double sz) {
    NgMatrix scale;
    NglSetScale(scale, sx, sy, sz);
    NglConcatenate(m, scale);
}

int NglRotate(NgMatrix m, double angleDeg, const _NgPoint3Str& axis) {
    NgMatrix rotation;
    const int result = NglSetRotation(rotation, angleDeg, axis);
    NglConcatenate(m, rotation);
    return result;
}

int NglAlignZAxisToLine(const _NgPoint3Str& start, const _NgPoint3Str& end, double rollDeg, NgMatrix m) {
    NglSetTranslation(m, start);
    _NgPoint3Str n = MathDifference(end, start);
    if (MathNormalise(n) != 0)
        return -1;
    // Duff et al. 2017. Adding 0 turns -0 into +0: the sign of a zero must not turn the frame.
    const double sign = std::copysign(1.0, n.z + 0.0);
    const double a = -1.0 / (sign + n.z);
    const double b = n.x * n.y * a;
    const _NgPoint3Str x = {1 + sign * n.x * n.x * a, sign * b, -sign * n.x};
    const _NgPoint3Str y = {b, sign + n.y * n.y * a, -n.y};

    const double s = std::sin(rollDeg * kDegToRad);
    const double c = std::cos(rollDeg * kDegToRad);
    const _NgPoint3Str columns[3] = {MathAdd(MathScaled(x, c), MathScaled(y, s)),
                                     MathAdd(MathScaled(x, -s), MathScaled(y, c)), n};
    for (int k = 0; k < 3; ++k) {
        m[k][0] = columns[k].x;
        m[k][1] = columns[k].y;
        m[k][2] = columns[k].z;
    }
    return 0;
}

void NglTransform33p(const _NgPoint3Str& p, const NgMatrix m, _NgPoint3Str& out) {
    out = {m[0][0] * p.x + m[1][0] * p.y + m[2][0] * p.z + m[3][0],
           m[0][1] * p.x + m[1][1] * p.y + m[2][1] * p.z + m[3][1],
           m[0][2] * p.x + m[1][2] * p.y + m[2][2] * p.z + m[3][2]};
}

void NglToFloat(const NgMatrix m, float out[4][4]) {
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            out[c][r] = static_cast<float>(m[c][r]);
}

void NglToDouble(const float m[4][4], NgMatrix out) {
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            out[c][r] = m[c][r];
}
