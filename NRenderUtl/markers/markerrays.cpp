// Outlines of spheres and cylinders in the window, and what the fragments in them need.
#include "NRenderUtl/markers/markerrays.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace {

constexpr std::size_t kMostVertices = 65536; // of one draw
constexpr float kTolerance = 0.5f;           // pixels
constexpr float kMargin = 1.0f / 16;         // pixels about an outline, for the rounding of its corners
constexpr float kSame = 1e-5f;               // lengths of one size, as a share

using Homogeneous = std::array<float, 3>; ///< window x and y from its middle in pixels, and w, times w

struct Range {
    float low, high;
};

Range unite(const Range& a, const Range& b) {
    return {std::min(a.low, b.low), std::max(a.high, b.high)};
}

float lengthOf(const Matrix4& m, std::size_t column) {
    return std::hypot(m[4 * column], m[4 * column + 1], m[4 * column + 2]);
}

Homogeneous project(const MarkerWindow& window, float x, float y, float z, float w) {
    const Matrix4& p = window.projection();
    const auto row = [&](std::size_t r) { return p[r] * x + p[4 + r] * y + p[8 + r] * z + p[12 + r] * w; };
    return {row(0) * window.scale()[0], row(1) * window.scale()[1], row(3)};
}

Homogeneous projectColumn(const MarkerWindow& window, const Matrix4& m, std::size_t column, float factor) {
    return project(window, m[4 * column] * factor, m[4 * column + 1] * factor, m[4 * column + 2] * factor,
                   column == 3 ? 1.0f : 0.0f);
}

/// Where middle + sum of s_k radii_k, with s of unit length, lies in a direction of the window. Its bounds t
/// are where a line across touches: (n - t w)^2 of the middle is the sum of those of the radii.
template <std::size_t Count>
Range extent(const Homogeneous& middle, const std::array<Homogeneous, Count>& radii, float dx, float dy) {
    const auto along = [&](const Homogeneous& h) { return h[0] * dx + h[1] * dy; };
    float a = middle[2] * middle[2], b = along(middle) * middle[2], c = along(middle) * along(middle);
    for (const Homogeneous& radius : radii) {
        a -= radius[2] * radius[2];
        b -= along(radius) * radius[2];
        c -= along(radius) * along(radius);
    }
    const float root = std::sqrt(std::max(0.0f, b * b - a * c));
    return {(b - root) / a - kMargin, (b + root) / a + kMargin};
}

/// A rectangle of the window about its middle: along (dx, dy) and square to it.
struct Outline {
    float dx, dy;
    Range along, across;
};

Outline outlineOfSphere(const MarkerWindow& window, const Matrix4& eye) {
    std::array<Homogeneous, 3> radii;
    for (std::size_t k = 0; k < 3; ++k)
        radii[k] = projectColumn(window, eye, k, 0.5f);
    const Homogeneous middle = projectColumn(window, eye, 3, 1);
    return {1, 0, extent(middle, radii, 1, 0), extent(middle, radii, 0, 1)};
}

Outline outlineOfCylinder(const MarkerWindow& window, const Matrix4& eye) {
    const std::array<Homogeneous, 2> radii = {projectColumn(window, eye, 0, 1),
                                              projectColumn(window, eye, 1, 1)};
    const Homogeneous start = projectColumn(window, eye, 3, 1), axis = projectColumn(window, eye, 2, 1);
    Homogeneous end;
    for (std::size_t k = 0; k < 3; ++k)
        end[k] = start[k] + axis[k];
    float dx = end[0] / end[2] - start[0] / start[2], dy = end[1] / end[2] - start[1] / start[2];
    const float size = std::hypot(dx, dy);
    if (size > 1e-3f) {
        dx /= size;
        dy /= size;
    } else {
        dx = 1;
        dy = 0;
    }
    return {dx, dy, unite(extent(start, radii, dx, dy), extent(end, radii, dx, dy)),
            unite(extent(start, radii, -dy, dx), extent(end, radii, -dy, dx))};
}

/// The outline's corners in eye space, at the depth of a point.
std::array<std::array<float, 3>, 4> corners(const MarkerWindow& window, const Outline& outline,
                                            const std::array<float, 3>& point) {
    const Matrix4 &p = window.projection(), &u = window.unprojection();
    const float z = p[2] * point[0] + p[6] * point[1] + p[10] * point[2] + p[14];
    const float w = p[3] * point[0] + p[7] * point[1] + p[11] * point[2] + p[15];
    std::array<std::array<float, 3>, 4> corners;
    for (std::size_t k = 0; k < 4; ++k) {
        const float s = k % 2 == 0 ? outline.along.low : outline.along.high;
        const float t = k / 2 == 0 ? outline.across.low : outline.across.high;
        const float x = (s * outline.dx - t * outline.dy) / window.scale()[0];
        const float y = (s * outline.dy + t * outline.dx) / window.scale()[1];
        const std::array<float, 4> eye = transform(u, x, y, z / w);
        corners[k] = {eye[0] / eye[3], eye[1] / eye[3], eye[2] / eye[3]};
    }
    return corners;
}

/// How far the outline of the triangles is within that of the round shape, at most, by its radius.
float deficitOf(const MarkerShape& shape) {
    const float chord = 1 - std::cos(std::numbers::pi_v<float> / static_cast<float>(shape.sliceCount));
    return shape.isSphere() ? 2 * chord : chord; // of slices and of stacks
}

} // namespace

std::span<const VertexPart> MarkerRays::parts() {
    static const VertexPart parts[] = {{"g_pos_attrib", 3, offsetof(Vertex, position)},
                                       {"g_place", 4, offsetof(Vertex, place)},
                                       {"g_axis", 4, offsetof(Vertex, axis)},
                                       {"g_col_attrib", 4, offsetof(Vertex, rgba)},
                                       {"g_values", 3, offsetof(Vertex, values)}};
    return parts;
}

MarkerRays::MarkerRays(const NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape)
    : m_window(window), m_shape(shape), m_deficit(deficitOf(shape)),
      m_stream(program, sizeof(Vertex), parts()) {}

MarkerRays::~MarkerRays() {
    flush();
}

void MarkerRays::flush() {
    m_stream.drawTriangles(m_vertices.data(), m_vertices.size(), m_indices);
    m_vertices.clear();
    m_indices.clear();
}

bool MarkerRays::fits(const Matrix4& eye) const {
    const float x = lengthOf(eye, 0), y = lengthOf(eye, 1), z = lengthOf(eye, 2);
    if (!(x > 0) || !(z > 0) || std::fabs(y - x) > kSame * x)
        return false;
    if (m_shape.isSphere() && std::fabs(z - x) > kSame * x)
        return false;
    const float radius = m_shape.isSphere() ? x / 2 : x;
    return m_window.pixels(m_shape, eye, radius) * m_deficit / 2 <= kTolerance;
}

void MarkerRays::add(const Matrix4& eye, const MarkerLook& look) {
    if (m_vertices.size() + 4 > kMostVertices)
        flush();
    const bool sphere = m_shape.isSphere();
    const float length = lengthOf(eye, 2);
    const float radius = lengthOf(eye, 0) * (sphere ? 0.5f : 1.0f) * (1 - m_deficit / 2);
    const float half = sphere ? 0.0f : 0.5f;
    const Outline outline = sphere ? outlineOfSphere(m_window, eye) : outlineOfCylinder(m_window, eye);
    const std::array<float, 3> middle = {eye[12] + half * eye[8], eye[13] + half * eye[9],
                                         eye[14] + half * eye[10]};
    Vertex vertex{{},
                  {eye[12], eye[13], eye[14], radius},
                  {eye[8] / length, eye[9] / length, eye[10] / length, length},
                  look.rgba,
                  {look.value1, look.value2, look.showsValues}};
    const auto first = static_cast<std::uint16_t>(m_vertices.size());
    for (const std::array<float, 3>& corner : corners(m_window, outline, middle)) {
        vertex.position = corner;
        m_vertices.push_back(vertex);
    }
    for (const int corner : {0, 1, 3, 0, 3, 2})
        m_indices.push_back(static_cast<std::uint16_t>(first + corner));
}
