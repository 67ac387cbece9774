// Records of many markers: looks and places of each, and the shape that all have.
#include "NRenderUtl/markers/markerarray.h"

#include <algorithm>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/markers/markercolors.h"
#include "NRenderUtl/markers/markersection.h"

namespace {

std::array<float, 4> opaque(NgColorLong color) {
    std::array<float, 4> rgba = {0, 0, 0, 1};
    ngl_get_floats_from_color_long(color, rgba[0], rgba[1], rgba[2]);
    return rgba;
}

} // namespace

MarkerLook MarkerArray::look(std::size_t i) const {
    const auto copied = [](const float(&rgba)[4]) { return std::to_array(rgba); };
    if (contoured && highlighted[i] != 0)
        return {copied(markerColors().highlight), 0, 0, 0};
    if (contoured && selected[i] != 0)
        return {copied(markerColors().selection), 0, 0, 0};
    if (contoured)
        return {{1, 1, 1, 1}, texCoords1[i], texCoords2[i], 1};
    return {colors.values ? opaque(colors[i]) : currentColor, 0, 0, 0};
}

Matrix4 multiply(const Matrix4& a, const Matrix4& b) {
    Matrix4 product;
    for (std::size_t c = 0; c < 16; c += 4)
        for (std::size_t r = 0; r < 4; ++r)
            product[c + r] =
                ((a[r] * b[c] + a[4 + r] * b[c + 1]) + a[8 + r] * b[c + 2]) + a[12 + r] * b[c + 3];
    return product;
}

std::array<float, 4> transform(const Matrix4& a, float x, float y, float z) {
    std::array<float, 4> out;
    for (std::size_t r = 0; r < 4; ++r)
        out[r] = ((a[r] * x + a[4 + r] * y) + a[8 + r] * z) + a[12 + r];
    return out;
}

bool MarkerShape::place(const MarkerArray& markers, std::size_t i, Matrix4& matrix) const {
    const _NgFPoint3Str &a = markers.starts[i], &b = markers.vectors[i];
    if (isSphere()) {
        matrix = {b.x, 0, 0, 0, 0, b.y, 0, 0, 0, 0, b.z, 0, a.x, a.y, a.z, 1};
        return true;
    }
    double placed[4][4];
    if (!axialTransform(a, b, markers.lengthScales[i], markers.widthRatios[i], placed))
        return false;
    std::transform(&placed[0][0], &placed[0][0] + 16, matrix.begin(),
                   [](double x) { return static_cast<float>(x); });
    return true;
}
