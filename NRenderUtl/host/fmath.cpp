// The single-precision vector and matrix classes.
#include <cmath>

#include "NRenderUtl/host/hostmath.h"

NgFVector3 NgFVector3::cross(const NgFVector3& o) const {
    return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
}

float NgFVector3::length() const {
    return static_cast<float>(MathLength({x, y, z}));
}

int NgFVector3::normalise() {
    _NgPoint3Str unit = {x, y, z};
    if (MathNormalise(unit) != 0)
        return -1;
    *this = {static_cast<float>(unit.x), static_cast<float>(unit.y), static_cast<float>(unit.z)};
    return 0;
}

NgFMatrix4 NgFMatrix4::operator*(const NgFMatrix4& right) const {
    NgFMatrix4 product;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r) {
            float sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += m[4 * k + r] * right.m[4 * c + k];
            product.m[4 * c + r] = sum;
        }
    return product;
}

NgFMatrix4 NgFMatrix4::transposed() const {
    NgFMatrix4 result;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            result.m[4 * c + r] = m[4 * r + c];
    return result;
}

int NgFMatrix4::inverse(NgFMatrix4& out) const {
    NgMatrix wide;
    for (int k = 0; k < 16; ++k)
        wide[k / 4][k % 4] = m[k];
    const int result = NglInverse(wide, wide);
    for (int k = 0; k < 16; ++k)
        out.m[k] = static_cast<float>(wide[k / 4][k % 4]);
    return result;
}

NgFPoint3 NgFMatrix4::transformPoint(const NgFPoint3& p) const {
    return transformVector(p) + NgFVector3{m[12], m[13], m[14]};
}

NgFVector3 NgFMatrix4::transformVector(const NgFVector3& v) const {
    return {m[0] * v.x + m[4] * v.y + m[8] * v.z, m[1] * v.x + m[5] * v.y + m[9] * v.z,
            m[2] * v.x + m[6] * v.y + m[10] * v.z};
}
