// Places spheres as points, and tells the fragments what of the view they need.
#include "NRenderUtl/markers/markerdiscs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "NRenderUtl/host/hostgl.h"

namespace {

constexpr std::size_t kMostVertices = 65536; // of one draw, which stay in the processor's cache
constexpr float kSame = 1e-5f;               // lengths of one size, as a share

float lengthOf(const Matrix4& m, std::size_t column) {
    return std::hypot(m[4 * column], m[4 * column + 1], m[4 * column + 2]);
}

} // namespace

bool MarkerDiscs::areFor(const MarkerShape& shape, const MarkerWindow& window, const MarkerArray& spheres) {
    const Matrix4& view = window.modelView();
    const float size = lengthOf(view, 0);
    return shape.isSphere() && !spheres.contoured && window.scalesAlike() &&
           std::fabs(lengthOf(view, 1) - size) <= kSame * size &&
           std::fabs(lengthOf(view, 2) - size) <= kSame * size;
}

std::span<const VertexPart> MarkerDiscs::parts() {
    static const VertexPart parts[] = {{"g_pos_attrib", 3, offsetof(Vertex, centre)},
                                       {"g_disc", 2, offsetof(Vertex, radius)},
                                       {"g_col_attrib", 4, offsetof(Vertex, rgba)}};
    return parts;
}

std::vector<MarkerDiscs::Vertex>& MarkerDiscs::list() {
    static std::vector<Vertex> vertices; // memory that is kept from call to call
    return vertices;
}

MarkerDiscs::MarkerDiscs(NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape,
                         const MarkerArray& spheres)
    : m_window(window), m_spheres(spheres),
      m_radius(0.5f * lengthOf(window.modelView(), 0) * (1 - deficitOf(shape) / 2)),
      m_pixels(window.pixels(shape, window.modelView(), 1)),
      m_largest(std::min(kLargestPointSphere / 2, 2 * kOutlineTolerance / deficitOf(shape)) *
                (1 - deficitOf(shape) / 2)),
      m_stream(program, sizeof(Vertex), parts()), m_vertices(list()) {
    m_vertices.clear(); // also of what a lack of memory broke off
    sendView(program);
}

MarkerDiscs::~MarkerDiscs() {
    flush();
}

void MarkerDiscs::sendView(NShaderProgram& program) const {
    const Matrix4& p = m_window.projection();
    const auto [sx, sy] = m_window.scale();
    const auto [ox, oy] = m_window.offset();
    float range[2], at[4] = {sx, sy, ox, oy};
    glGetFloatv(GL_DEPTH_RANGE, range);
    const float side = m_window.viewpoint()[2];
    float bulge[4] = {p[15] / (p[0] * sx), p[15] / (p[5] * sy), side,
                      0.5f * (range[1] - range[0]) * side * p[10] / p[15]};
    program.SetVec4UniformValue("g_window", at);
    program.SetVec4UniformValue("g_bulge", bulge);
}

void MarkerDiscs::flush() {
    m_stream.drawPoints(m_vertices.data(), m_vertices.size());
    m_vertices.clear();
}

bool MarkerDiscs::add(std::size_t i) {
    const _NgFPoint3Str &c = m_spheres.starts[i], &d = m_spheres.vectors[i];
    const float radius = d.x * m_radius, pixels = radius * m_pixels;
    if (d.x != d.y || d.x != d.z || !(d.x > 0) || !(pixels <= m_largest))
        return false;
    const Matrix4& m = m_window.modelView();
    std::array<float, 3> centre;
    for (std::size_t r = 0; r < 3; ++r)
        centre[r] = ((m[r] * c.x + m[4 + r] * c.y) + m[8 + r] * c.z) + m[12 + r];
    if (!m_window.holdsBall(centre, radius))
        return false;
    if (m_vertices.size() == kMostVertices)
        flush();
    m_vertices.push_back({centre, radius, 2 * (pixels + kOutlineMargin), m_spheres.look(i).rgba});
    return true;
}
