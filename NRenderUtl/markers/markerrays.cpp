// Outlines of spheres and cylinders in the window, and what the fragments in them need.
#include "NRenderUtl/markers/markerrays.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "NRenderUtl/host/hostgl.h"

namespace {

constexpr std::size_t kMostVertices = 65536; // of one draw
constexpr float kLargestCylinder = 8;        // as a point: longer ones leave most of its square empty
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
    return {(b - root) / a - kOutlineMargin, (b + root) / a + kOutlineMargin};
}

/// A rectangle of the window about its middle: along (dx, dy) and square to it.
struct Outline {
    float dx, dy;
    Range along, across;
};

/// Direction of a cylinder's axis in the window; any where it has none.
std::array<float, 2> axisDirection(const MarkerWindow& window, const Matrix4& eye) {
    const Homogeneous start = projectColumn(window, eye, 3, 1), axis = projectColumn(window, eye, 2, 1);
    const float w = start[2] + axis[2];
    const float dx = (start[0] + axis[0]) / w - start[0] / start[2];
    const float dy = (start[1] + axis[1]) / w - start[1] / start[2];
    const float size = std::hypot(dx, dy);
    return size > 1e-3f ? std::array{dx / size, dy / size} : std::array{1.0f, 0.0f};
}

Outline outlineOf(const MarkerWindow& window, const MarkerShape& shape, const Matrix4& eye, float dx,
                  float dy) {
    const float size = shape.isSphere() ? 0.5f : 1.0f;
    const Homogeneous x = projectColumn(window, eye, 0, size), y = projectColumn(window, eye, 1, size),
                      z = projectColumn(window, eye, 2, size), start = projectColumn(window, eye, 3, 1);
    if (shape.isSphere()) {
        const std::array radii = {x, y, z};
        return {dx, dy, extent(start, radii, dx, dy), extent(start, radii, -dy, dx)};
    }
    const std::array radii = {x, y};
    const Homogeneous end = {start[0] + z[0], start[1] + z[1], start[2] + z[2]};
    return {dx, dy, unite(extent(start, radii, dx, dy), extent(end, radii, dx, dy)),
            unite(extent(start, radii, -dy, dx), extent(end, radii, -dy, dx))};
}

std::array<float, 3> middleOf(const MarkerShape& shape, const Matrix4& eye) {
    const float half = shape.isSphere() ? 0.0f : 0.5f;
    return {eye[12] + half * eye[8], eye[13] + half * eye[9], eye[14] + half * eye[10]};
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

} // namespace

float deficitOf(const MarkerShape& shape) {
    const float chord = 1 - std::cos(std::numbers::pi_v<float> / static_cast<float>(shape.sliceCount));
    return shape.isSphere() ? 2 * chord : chord; // of slices and of stacks
}

PointGuard::PointGuard()
    : m_sized(glIsEnabled(GL_PROGRAM_POINT_SIZE)), m_sprites(glIsEnabled(GL_POINT_SPRITE)),
      m_smooth(glIsEnabled(GL_POINT_SMOOTH)) {
    glEnable(GL_PROGRAM_POINT_SIZE);
    glEnable(GL_POINT_SPRITE);
    glDisable(GL_POINT_SMOOTH);
}

PointGuard::~PointGuard() {
    const auto set = [](GLenum capability, bool on) { on ? glEnable(capability) : glDisable(capability); };
    set(GL_PROGRAM_POINT_SIZE, m_sized);
    set(GL_POINT_SPRITE, m_sprites);
    set(GL_POINT_SMOOTH, m_smooth);
}

std::span<const VertexPart> MarkerRays::parts() {
    static const VertexPart parts[] = {{"g_pos_attrib", 3, offsetof(Vertex, position)},
                                       {"g_place", 4, offsetof(Vertex, place)},
                                       {"g_axis", 4, offsetof(Vertex, axis)},
                                       {"g_col_attrib", 4, offsetof(Vertex, rgba)},
                                       {"g_values", 3, offsetof(Vertex, values)},
                                       {"g_point", 4, offsetof(Vertex, point)},
                                       {"g_size", 1, offsetof(Vertex, size)}};
    return parts;
}

MarkerRays::MarkerRays(const NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape,
                       bool points)
    : m_window(window), m_shape(shape), m_points(points), m_deficit(deficitOf(shape)),
      m_stream(program, sizeof(Vertex), parts()), m_vertices(lists().vertices), m_indices(lists().indices) {
    m_vertices.clear(); // also of what a lack of memory broke off
    m_indices.clear();
}

MarkerRays::Lists& MarkerRays::lists() {
    static Lists lists;
    return lists;
}

MarkerRays::~MarkerRays() {
    flush();
}

void MarkerRays::flush() {
    if (m_points)
        m_stream.drawPoints(m_vertices.data(), m_vertices.size());
    else
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
    const bool sphere = m_shape.isSphere();
    const float pixels = m_window.pixels(m_shape, eye, 1), radius = pixels * (sphere ? x / 2 : x);
    if (radius * m_deficit / 2 > kOutlineTolerance)
        return false;
    if (!m_points)
        return true;
    // GL leaves out points of which the middle is beyond the window.
    const std::array<float, 3> middle = middleOf(m_shape, eye);
    const Homogeneous at = project(m_window, middle[0], middle[1], middle[2], 1);
    return std::fabs(at[0]) < at[2] * m_window.scale()[0] && std::fabs(at[1]) < at[2] * m_window.scale()[1] &&
           (sphere ? 2 * radius <= kLargestPointSphere : pixels * z + 2 * radius <= kLargestCylinder);
}

void MarkerRays::add(const Matrix4& eye, const MarkerLook& look) {
    if (m_vertices.size() + 4 > kMostVertices)
        flush();
    const bool sphere = m_shape.isSphere();
    const float length = lengthOf(eye, 2);
    const float radius = lengthOf(eye, 0) * (sphere ? 0.5f : 1.0f) * (1 - m_deficit / 2);
    Vertex vertex{middleOf(m_shape, eye),
                  {eye[12], eye[13], eye[14], radius},
                  {eye[8] / length, eye[9] / length, eye[10] / length, length},
                  look.rgba,
                  {look.value1, look.value2, look.showsValues},
                  {},
                  0};
    const auto [x, y, z] = vertex.position;
    const Homogeneous middle = project(m_window, x, y, z, 1);
    const float across = middle[0] / middle[2], up = middle[1] / middle[2];
    const Matrix4& p = m_window.projection();
    vertex.point = {across + m_window.offset()[0], up + m_window.offset()[1],
                    middle[2] / (p[0] * m_window.scale()[0]), middle[2] / (p[5] * m_window.scale()[1])};
    if (!m_points)
        return addTriangles(vertex, eye);
    const Outline square = outlineOf(m_window, m_shape, eye, 1, 0);
    vertex.size = 2 * std::max({across - square.along.low, square.along.high - across, up - square.across.low,
                                square.across.high - up});
    m_vertices.push_back(vertex);
}

void MarkerRays::addTriangles(Vertex vertex, const Matrix4& eye) {
    const auto [dx, dy] = m_shape.isSphere() ? std::array{1.0f, 0.0f} : axisDirection(m_window, eye);
    const Outline outline = outlineOf(m_window, m_shape, eye, dx, dy);
    const auto first = static_cast<std::uint16_t>(m_vertices.size());
    for (const std::array<float, 3>& corner : corners(m_window, outline, vertex.position)) {
        vertex.position = corner;
        m_vertices.push_back(vertex);
    }
    for (const int corner : {0, 1, 3, 0, 3, 2})
        m_indices.push_back(static_cast<std::uint16_t>(first + corner));
}
