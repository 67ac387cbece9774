// Many markers of one shape, as the ways to draw them share them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "NRenderUtl/markers/nmarkers.h"

/// One value a marker, or one for all.
template <class T>
struct PerMarker {
    const T* values;
    std::size_t step; ///< 1, or 0 for one value
    const T& operator[](std::size_t i) const { return values[i * step]; }
    static PerMarker of(const T* values, const T& forAll) {
        return values ? PerMarker{values, 1} : PerMarker{&forAll, 0};
    }
};

/// How one marker looks.
struct MarkerLook {
    std::array<float, 4> rgba;
    float value1, value2;
    float showsValues; ///< 1, or 0 for the colour
};

struct MarkerArray {
    std::size_t count;
    PerMarker<_NgFPoint3Str> starts, vectors; ///< of spheres the centres and the diameters
    PerMarker<float> lengthScales, widthRatios;
    PerMarker<NgColorLong> colors; ///< no values: the current colour
    bool contoured;
    PerMarker<float> texCoords1, texCoords2;
    PerMarker<std::uint8_t> selected, highlighted;
    bool exact;
    std::array<float, 4> currentColor; ///< of GL

    MarkerLook look(std::size_t i) const;
};

using Matrix4 = std::array<float, 16>; ///< column-major

/// a * b, and a * (p, 1), in the order in which GLSL compilers add.
Matrix4 multiply(const Matrix4& a, const Matrix4& b);
std::array<float, 4> transform(const Matrix4& a, float x, float y, float z);

/// The unit instance of a shape.
struct MarkerShape {
    _Render3DMarkerType type{};
    int sliceCount = 0;
    std::vector<float> x, y, z; ///< of the vertices
    struct Triangle {
        std::array<std::uint16_t, 3> corners;
        float outward; ///< 1 where the corners run counterclockwise as seen from outside, else -1
    };
    std::vector<Triangle> triangles;
    std::array<float, 3> centre, halfSize; ///< of the box about it

    bool isSphere() const { return type == RENDER_3D_MARKER_SPHERE; }
    /// The matrix that places the unit instance; false for a marker without a length.
    bool place(const MarkerArray& markers, std::size_t i, Matrix4& transform) const;
};
