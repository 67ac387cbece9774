// Places the vertices of markers as the marker program does, and leaves out triangles that cannot show.
#include "NRenderUtl/markers/markertriangles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr std::size_t kMostVertices = 65536; // of one draw
constexpr float kSubpixel = 1.0f / 64;       // more than drivers move a vertex by
constexpr float kFarOutside = 32768;         // pixels; beyond any window

using Vector3 = std::array<float, 3>;

float dot(const Vector3& a, const Vector3& b) {
    return (a[2] * b[2] + a[1] * b[1]) + a[0] * b[0];
}

Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - b[1] * a[2], a[2] * b[0] - b[2] * a[0], a[0] * b[1] - b[0] * a[1]};
}

/// What the vertex stage multiplies a vertex by for its normal: the cofactors, brought near 1.
std::array<Vector3, 3> normalMatrix(const Matrix4& eye) {
    std::array<Vector3, 3> m;
    for (std::size_t k = 0; k < 3; ++k)
        m[k] = {eye[4 * k], eye[4 * k + 1], eye[4 * k + 2]};
    const float size = 1 / std::sqrt((dot(m[0], m[0]) + dot(m[1], m[1])) + dot(m[2], m[2]));
    for (Vector3& column : m)
        for (float& x : column)
            x *= size;
    std::array<Vector3, 3> cofactors = {cross(m[1], m[2]), cross(m[2], m[0]), cross(m[0], m[1])};
    if (dot(m[0], cofactors[0]) < 0)
        for (Vector3& column : cofactors)
            for (float& x : column)
                x = -x;
    return cofactors;
}

} // namespace

std::span<const VertexPart> MarkerTriangles::parts() {
    static const VertexPart parts[] = {{"g_pos_attrib", 3, offsetof(Vertex, position)},
                                       {"g_norm_attrib", 3, offsetof(Vertex, normal)},
                                       {"g_col_attrib", 4, offsetof(Vertex, rgba)},
                                       {"g_values", 2, offsetof(Vertex, value)}};
    return parts;
}

MarkerTriangles::MarkerTriangles(const NShaderProgram& program, const MarkerWindow& window,
                                 const MarkerShape& shape)
    : m_window(window), m_shape(shape), m_stream(program, sizeof(Vertex), parts()) {
    m_vertices.clear(); // also of what a lack of memory broke off
    m_indices.clear();
    const std::size_t count = shape.x.size();
    for (std::vector<float>* values : {&m_x, &m_y, &m_z, &m_across, &m_up})
        values->resize(count);
    for (std::vector<std::int32_t>* values : {&m_column, &m_row, &m_used})
        values->resize(count);
}

MarkerTriangles::Lists& MarkerTriangles::lists() {
    static Lists lists;
    return lists;
}

MarkerTriangles::~MarkerTriangles() {
    flush();
}

void MarkerTriangles::flush() {
    m_stream.drawTriangles(m_vertices.data(), m_vertices.size(), m_indices);
    m_vertices.clear();
    m_indices.clear();
}

void MarkerTriangles::add(const Matrix4& eye, MarkerExtent extent, const MarkerLook& look) {
    if (m_vertices.size() + m_shape.x.size() > kMostVertices)
        flush();
    const bool all = extent == MarkerExtent::Cut || !m_window.onlyCentresCount();
    placeVertices(eye);
    if (!all)
        placeInWindow();
    m_normals = normalMatrix(eye);
    const Vector3 x = {eye[0], eye[1], eye[2]}, y = {eye[4], eye[5], eye[6]}, z = {eye[8], eye[9], eye[10]};
    const float handedness =
        std::copysign(m_window.handedness(), dot(x, cross(y, z)) * m_window.handedness());
    std::fill(m_used.begin(), m_used.end(), -1);
    for (const MarkerShape::Triangle& triangle : m_shape.triangles) {
        if (!all && showsNothing(triangle, handedness))
            continue;
        for (const std::uint16_t corner : triangle.corners)
            m_indices.push_back(useVertex(corner, look));
    }
}

void MarkerTriangles::placeVertices(const Matrix4& m) {
    const std::size_t count = m_x.size();
    const float *x = m_shape.x.data(), *y = m_shape.y.data(), *z = m_shape.z.data();
    for (std::size_t i = 0; i < count; ++i) {
        m_x[i] = ((m[0] * x[i] + m[4] * y[i]) + m[8] * z[i]) + m[12];
        m_y[i] = ((m[1] * x[i] + m[5] * y[i]) + m[9] * z[i]) + m[13];
        m_z[i] = ((m[2] * x[i] + m[6] * y[i]) + m[10] * z[i]) + m[14];
    }
}

void MarkerTriangles::placeInWindow() {
    const Matrix4& p = m_window.projection();
    const auto [scaleX, scaleY] = m_window.scale();
    const auto [offsetX, offsetY] = m_window.offset();
    // Of a vertex within the reach of a centre, no other shares its number.
    const auto pixel = [](float position, std::size_t i) {
        const float positive = std::clamp(position, 1 - kFarOutside, kFarOutside) + kFarOutside;
        const auto low = static_cast<std::int32_t>(positive - kSubpixel);
        const auto high = static_cast<std::int32_t>(positive + kSubpixel);
        return low == high ? low : -1 - static_cast<std::int32_t>(i);
    };
    for (std::size_t i = 0; i < m_x.size(); ++i) {
        const float x = m_x[i], y = m_y[i], z = m_z[i];
        const float inverse = 1 / (p[3] * x + p[7] * y + p[11] * z + p[15]);
        const float across = (p[0] * x + p[4] * y + p[8] * z + p[12]) * inverse * scaleX + (offsetX - 0.5f);
        const float up = (p[1] * x + p[5] * y + p[9] * z + p[13]) * inverse * scaleY + (offsetY - 0.5f);
        m_across[i] = across;
        m_up[i] = up;
        m_column[i] = pixel(across, i);
        m_row[i] = pixel(up, i);
    }
}

/// Whether a triangle in front of the viewer lies between the centres of pixels, or faces away from the
/// viewer behind others of a closed shape.
bool MarkerTriangles::showsNothing(const MarkerShape::Triangle& triangle, float handedness) const {
    const auto [a, b, c] = triangle.corners;
    if (m_column[a] == m_column[b] && m_column[a] == m_column[c])
        return true;
    if (m_row[a] == m_row[b] && m_row[a] == m_row[c])
        return true;
    if (!m_window.onlyFrontsShow())
        return false;
    const float x1 = m_across[b] - m_across[a], y1 = m_up[b] - m_up[a];
    const float x2 = m_across[c] - m_across[a], y2 = m_up[c] - m_up[a];
    const float reach = std::fabs(x1) + std::fabs(y1) + std::fabs(x2) + std::fabs(y2);
    return (x1 * y2 - x2 * y1) * triangle.outward * handedness < -kSubpixel * (reach + kSubpixel);
}

std::uint16_t MarkerTriangles::useVertex(std::size_t vertex, const MarkerLook& look) {
    std::int32_t& used = m_used[vertex];
    if (used < 0) {
        used = static_cast<std::int32_t>(m_vertices.size());
        m_vertices.push_back(makeVertex(vertex, look));
    }
    return static_cast<std::uint16_t>(used);
}

MarkerTriangles::Vertex MarkerTriangles::makeVertex(std::size_t i, const MarkerLook& look) const {
    const float x = m_shape.x[i], y = m_shape.y[i];
    const float z = x == 0 && y == 0 && m_shape.z[i] == 0 ? -1 : m_shape.z[i]; // the start looks back
    Vector3 normal;
    for (std::size_t k = 0; k < 3; ++k)
        normal[k] = (x * m_normals[0][k] + y * m_normals[1][k]) + z * m_normals[2][k];
    const float size = 1 / std::sqrt(dot(normal, normal));
    for (float& component : normal)
        component *= size;
    const float value = i < m_shape.x.size() / 2 ? look.value1 : look.value2;
    return {{m_x[i], m_y[i], m_z[i]}, normal, look.rgba, {value, look.showsValues}};
}
