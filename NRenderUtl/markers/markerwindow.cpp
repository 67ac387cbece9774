// Reads the view and the GL state that decide what of markers shows.
#include "NRenderUtl/markers/markerwindow.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <span>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/markers/markersection.h"

namespace {

constexpr float kRounding = 1e-4f; // of distances, relative

GLint integer(GLenum name) {
    GLint values[4] = {}; // some names have two
    glGetIntegerv(name, values);
    return values[0];
}

bool noneEnabled(std::initializer_list<GLenum> capabilities) {
    return std::none_of(capabilities.begin(), capabilities.end(),
                        [](GLenum capability) { return glIsEnabled(capability) == GL_TRUE; });
}

/// Triangles are drawn filled, each pixel by its centre, as they are.
bool fillsByCentre() {
    GLint modes[2] = {GL_FILL, GL_FILL};
    glGetIntegerv(GL_POLYGON_MODE, modes);
    return modes[0] == GL_FILL && modes[1] == GL_FILL && integer(GL_RENDER_MODE) == GL_RENDER &&
           noneEnabled({GL_POLYGON_SMOOTH}) &&
           (integer(GL_SAMPLE_BUFFERS) == 0 || glIsEnabled(GL_MULTISAMPLE) == GL_FALSE) &&
           (glVersion() < 32 || glIsEnabled(GL_DEPTH_CLAMP) == GL_FALSE);
}

/// What is drawn hides all that lies behind it.
bool nearestWins() {
    GLfloat range[2];
    GLboolean written;
    glGetFloatv(GL_DEPTH_RANGE, range);
    glGetBooleanv(GL_DEPTH_WRITEMASK, &written);
    const GLint test = integer(GL_DEPTH_FUNC);
    return glIsEnabled(GL_DEPTH_TEST) && written && (test == GL_LESS || test == GL_LEQUAL) &&
           range[0] < range[1] &&
           noneEnabled({GL_BLEND, GL_STENCIL_TEST, GL_COLOR_LOGIC_OP, GL_ALPHA_TEST, GL_CULL_FACE,
                        GL_POLYGON_OFFSET_FILL, GL_POLYGON_STIPPLE});
}

/// Whether the upper left of a matrix turns, moves and scales alike in all directions.
bool keepsShapes(const Matrix4& m) {
    const auto dot = [&](std::size_t a, std::size_t b) {
        return m[a] * m[b] + m[a + 1] * m[b + 1] + m[a + 2] * m[b + 2];
    };
    const float size = dot(0, 0), tolerance = kRounding * size;
    return size > 0 && std::fabs(dot(4, 4) - size) < tolerance && std::fabs(dot(8, 8) - size) < tolerance &&
           std::fabs(dot(0, 4)) < tolerance && std::fabs(dot(0, 8)) < tolerance &&
           std::fabs(dot(4, 8)) < tolerance && m[3] == 0 && m[7] == 0 && m[11] == 0 && m[15] == 1;
}

float determinant(const NgMatrix m) {
    double sum = 0;
    for (int c = 0; c < 4; ++c) {
        const int i = (c + 1) % 4, j = (c + 2) % 4, k = (c + 3) % 4;
        const double minor = m[i][1] * (m[j][2] * m[k][3] - m[k][2] * m[j][3]) -
                             m[j][1] * (m[i][2] * m[k][3] - m[k][2] * m[i][3]) +
                             m[k][1] * (m[i][2] * m[j][3] - m[j][2] * m[i][3]);
        sum += (c % 2 == 0 ? 1 : -1) * m[c][0] * minor;
    }
    return static_cast<float>(sum);
}

} // namespace

MarkerWindow::MarkerWindow() {
    const MarkerSection& section = markerSection();
    std::copy_n(section.modelView, 16, m_modelView.begin());
    std::copy_n(section.projection, 16, m_projection.begin());
    GLfloat viewport[4];
    glGetFloatv(GL_VIEWPORT, viewport);
    m_scale = {viewport[2] / 2, viewport[3] / 2};
    m_offset = {viewport[0] + m_scale[0], viewport[1] + m_scale[1]};
    readPlanes(section.clipped);
    readViewpoint();
    readState();
}

void MarkerWindow::readPlanes(bool clipped) {
    const auto row = [&](std::size_t r) {
        return Plane4{m_projection[r], m_projection[4 + r], m_projection[8 + r], m_projection[12 + r]};
    };
    const auto plane = [&](std::size_t r, float sign) {
        Plane4 sum = row(3);
        const Plane4 other = row(r);
        for (std::size_t k = 0; k < 4; ++k)
            sum[k] += sign * other[k];
        return sum;
    };
    m_cutting[0] = plane(2, 1);
    m_cutting[1] = plane(2, -1);
    m_cuttingCount = 2;
    m_sides = {plane(0, 1), plane(0, -1), plane(1, 1), plane(1, -1)};
    const GLint count = clipped ? integer(GL_MAX_CLIP_PLANES) : 0;
    for (GLint i = 0; i < count && m_cuttingCount < m_cutting.size(); ++i) {
        const GLenum name = GL_CLIP_PLANE0 + static_cast<GLenum>(i);
        GLdouble p[4];
        if (glIsEnabled(name) == GL_FALSE)
            continue;
        glGetClipPlane(name, p);
        m_cutting[m_cuttingCount++] = {static_cast<float>(p[0]), static_cast<float>(p[1]),
                                       static_cast<float>(p[2]), static_cast<float>(p[3])};
    }
    for (std::size_t i = 0; i < m_cuttingCount; ++i)
        m_cuttingSteps[i] = std::hypot(m_cutting[i][0], m_cutting[i][1], m_cutting[i][2]);
}

void MarkerWindow::readViewpoint() {
    NgMatrix projection, inverse;
    for (std::size_t k = 0; k < 16; ++k)
        projection[k / 4][k % 4] = m_projection[k];
    m_handedness = determinant(projection) < 0 ? 1.0f : -1.0f;
    m_rays = NglInverse(projection, inverse) == 0 && m_handedness > 0 && keepsShapes(m_modelView);
    for (std::size_t k = 0; k < 16; ++k)
        m_unprojection[k] = static_cast<float>(inverse[k / 4][k % 4]);
    // All rays meet where the projection has no w, which may be infinitely far away.
    const double* v = inverse[2];
    const double size = std::max({std::fabs(v[0]), std::fabs(v[1]), std::fabs(v[2])});
    const double w = std::fabs(v[3]) > 1e-9 * size ? v[3] : -size;
    for (std::size_t k = 0; k < 3; ++k)
        m_viewpoint[k] = static_cast<float>(v[k] / w);
    m_viewpoint[3] = w == v[3] ? 1.0f : 0.0f;
    const auto isZero = [&](std::size_t k) { return m_projection[k] == 0; };
    m_byDepth = isZero(1) && isZero(2) && isZero(3) && isZero(4) && isZero(6) && isZero(7) &&
                m_viewpoint[0] == 0 && m_viewpoint[1] == 0 && (m_viewpoint[3] == 0 || m_viewpoint[2] == 0);
}

void MarkerWindow::readState() {
    m_onlyCentres = fillsByCentre();
    m_onlyFronts = m_onlyCentres && nearestWins();
    m_rays = m_rays && m_onlyFronts;
}

bool MarkerWindow::scalesAlike() const {
    return m_byDepth && m_viewpoint[3] == 0 && m_projection[11] == 0 && m_projection[15] > 0;
}

bool MarkerWindow::holdsBall(const std::array<float, 3>& middle, float radius) const {
    const auto distance = [&](const Plane4& p) {
        return p[0] * middle[0] + p[1] * middle[1] + p[2] * middle[2] + p[3];
    };
    for (const Plane4& side : m_sides)
        if (!(distance(side) > 0))
            return false;
    for (std::size_t i = 0; i < m_cuttingCount; ++i) {
        const float d = distance(m_cutting[i]);
        if (!(d - radius * m_cuttingSteps[i] > kRounding * d))
            return false;
    }
    return true;
}

MarkerExtent MarkerWindow::extent(const MarkerShape& shape, const Matrix4& eye) const {
    const std::array<float, 4> middle = transform(eye, shape.centre[0], shape.centre[1], shape.centre[2]);
    float distance = 0, reach = 0;
    const auto measure = [&](const Plane4& p) {
        distance = p[0] * middle[0] + p[1] * middle[1] + p[2] * middle[2] + p[3];
        reach = 0;
        for (std::size_t k = 0; k < 3; ++k)
            reach += shape.halfSize[k] *
                     std::fabs(p[0] * eye[4 * k] + p[1] * eye[4 * k + 1] + p[2] * eye[4 * k + 2]);
        reach += kRounding * (reach + std::fabs(distance));
    };
    for (const Plane4& side : m_sides) {
        measure(side);
        if (distance + reach < 0)
            return MarkerExtent::Outside;
    }
    MarkerExtent extent = MarkerExtent::Inside;
    for (const Plane4& plane : std::span(m_cutting).first(m_cuttingCount)) {
        measure(plane);
        if (distance + reach < 0)
            return MarkerExtent::Outside;
        if (!(distance - reach > 0))
            extent = MarkerExtent::Cut;
    }
    return extent;
}

float MarkerWindow::pixels(const MarkerShape& shape, const Matrix4& eye, float length) const {
    const Matrix4& p = m_projection;
    const std::array<float, 4> middle = transform(eye, shape.centre[0], shape.centre[1], shape.centre[2]);
    float w = p[3] * middle[0] + p[7] * middle[1] + p[11] * middle[2] + p[15];
    for (std::size_t k = 0; k < 3; ++k)
        w -=
            shape.halfSize[k] * std::fabs(p[3] * eye[4 * k] + p[7] * eye[4 * k + 1] + p[11] * eye[4 * k + 2]);
    if (!(w > 0))
        return std::numeric_limits<float>::infinity();
    const float deep = std::hypot(p[3], p[7], p[11]); // what is nearer is larger
    const float across = std::hypot(std::hypot(p[0], p[4], p[8]), deep) * m_scale[0];
    const float upward = std::hypot(std::hypot(p[1], p[5], p[9]), deep) * m_scale[1];
    return length * std::max(across, upward) / w;
}
