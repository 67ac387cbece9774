// Picking on an element mesh. A ray meets what its triangles cover without a gap (Woop, Benthin, Wald:
// Watertight ray/triangle intersection, 2013), in double precision from single-precision positions.
#include "NRenderUtl/mesh/elementpick.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/mesh/facetreewalk.h"

namespace {

using Triple = std::array<double, 3>;

bool isFinite(const Triple& t) {
    return std::isfinite(t[0]) && std::isfinite(t[1]) && std::isfinite(t[2]);
}

/// A point of a triangle, and how far along the ray it is.
struct Hit {
    double parameter = std::numeric_limits<double>::infinity();
    std::uint32_t face = 0;
    std::array<std::uint32_t, 3> vertices{};
    Triple weights{};
};

/// Places as a ray sees them. Its direction's largest coordinate is 1 or -1, in which it advances by its
/// parameter.
class RayView {
public:
    RayView(const Triple& origin, const Triple& direction);
    /// Coordinates across the ray, where it is at zero, and the parameter.
    Triple place(const ElementSurface::Vector& position) const {
        const double along = m_sign * (position[m_z] - m_origin[m_z]);
        return {position[m_x] - m_origin[m_x] - m_slopeX * along,
                position[m_y] - m_origin[m_y] - m_slopeY * along, along};
    }

private:
    Triple m_origin;
    int m_x, m_y, m_z; ///< axes, the direction's largest last
    double m_slopeX, m_slopeY, m_sign;
};

RayView::RayView(const Triple& origin, const Triple& direction) : m_origin(origin) {
    m_z = 0;
    for (int i = 1; i < 3; ++i)
        if (std::abs(direction[i]) > std::abs(direction[m_z]))
            m_z = i;
    m_x = (m_z + 1) % 3;
    m_y = (m_z + 2) % 3;
    m_slopeX = direction[m_x];
    m_slopeY = direction[m_y];
    m_sign = direction[m_z];
}

/// Twice the signed area that an edge spans with the ray. The two triangles at an edge see exactly opposite
/// values: each product is rounded on its own, in a statement that ISO C++ does not fuse with the next.
double edgeArea(const Triple& a, const Triple& b) {
    const double first = a[0] * b[1];
    const double second = a[1] * b[0];
    return first - second;
}

/// A triangle's border belongs to it. NaN, from numbers that overflow, meets nothing.
bool meetTriangle(const std::array<Triple, 3>& places, Hit& hit) {
    const auto& [a, b, c] = places;
    const double u = edgeArea(c, b), v = edgeArea(a, c), w = edgeArea(b, a);
    if (std::min({u, v, w}) < 0.0 && std::max({u, v, w}) > 0.0)
        return false;
    const double sum = u + v + w;
    if (sum == 0.0)
        return false;
    hit.weights = {u / sum, v / sum, w / sum};
    hit.parameter = hit.weights[0] * a[2] + hit.weights[1] * b[2] + hit.weights[2] * c[2];
    return hit.parameter >= 0.0;
}

void meetFace(const ElementSurface& surface, const RayView& view, std::uint32_t face, Hit& best) {
    const std::span<const std::uint32_t> corners = surface.face(face);
    std::array<Triple, 4> places;
    for (std::size_t i = 0; i < corners.size(); ++i)
        places[i] = view.place(surface.positions[corners[i]]);
    for (std::size_t i = 2; i < corners.size(); ++i) {
        Hit hit{0.0, face, {corners[0], corners[i - 1], corners[i]}, {}};
        if (!meetTriangle({places[0], places[i - 1], places[i]}, hit))
            continue;
        if (hit.parameter < best.parameter || (hit.parameter == best.parameter && face < best.face))
            best = hit;
    }
}

_NgPoint3Str positionOf(const ElementSurface& surface, std::uint32_t vertex) {
    const ElementSurface::Vector& position = surface.positions[vertex];
    return {position[0], position[1], position[2]};
}

/// Sets the edge and the node of the face that are nearest to a point; the first of several. A quad that is a
/// triangle has an edge without length, which is none.
void setNearest(const ElementSurface& surface, const _NgPoint3Str& point, ngl::NglElementPick& picked) {
    picked.edgeDistance = picked.nodeDistance = std::numeric_limits<double>::infinity();
    const std::span<const std::uint32_t> corners = surface.face(picked.face);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const std::uint32_t vertex = corners[i], next = corners[(i + 1) % corners.size()];
        const std::uint32_t node = surface.nodeOf(vertex), nextNode = surface.nodeOf(next);
        const _NgPoint3Str from = positionOf(surface, vertex), to = positionOf(surface, next);
        if (const double distance = MathDistance(point, from); distance < picked.nodeDistance) {
            picked.node = node;
            picked.nodeDistance = distance;
        }
        _NgPoint3Str near;
        MathNearestPointOnSegment(from, to, point, near, nullptr);
        if (const double distance = MathDistance(point, near);
            distance < picked.edgeDistance && node != nextNode) {
            picked.edge[0] = node;
            picked.edge[1] = nextNode;
            picked.edgeDistance = distance;
        }
    }
}

void describe(const ElementSurface& surface, const Hit& hit, ngl::NglElementPick& picked) {
    _NgPoint3Str point{};
    for (int i = 0; i < 3; ++i)
        point = MathAdd(point, MathScaled(positionOf(surface, hit.vertices[i]), hit.weights[i]));
    picked.element = surface.elementOf(hit.face);
    picked.face = hit.face;
    picked.point = MathAdd(point, {surface.origin[0], surface.origin[1], surface.origin[2]});
    setNearest(surface, point, picked);
}

} // namespace

ElementRay elementRay(const ElementSurface& surface, const _NgPoint3Str& start, const _NgPoint3Str& end) {
    const auto& [x, y, z] = surface.origin;
    return {MathDifference(start, {x, y, z}), MathDifference(end, start)};
}

bool ElementPicker::pick(const ElementSurface& surface, const ElementRay& ray,
                         const std::function<bool(std::uint32_t)>& shown, ngl::NglElementPick& picked) {
    const Triple origin = {ray.start.x, ray.start.y, ray.start.z};
    Triple direction = {ray.direction.x, ray.direction.y, ray.direction.z};
    const double size = std::max({std::abs(direction[0]), std::abs(direction[1]), std::abs(direction[2])});
    if (!(size > 0.0) || !isFinite(origin) || !isFinite(direction))
        return false;
    for (double& coordinate : direction)
        coordinate /= size;

    if (m_tree.isEmpty())
        m_tree.build(surface);
    const RayView view(origin, direction);
    FaceTreeWalk walk(m_tree, origin, direction);
    Hit best;
    for (auto faces = walk.next(best.parameter); !faces.empty(); faces = walk.next(best.parameter))
        for (std::uint32_t face : faces)
            if (shown(surface.elementOf(face)))
                meetFace(surface, view, face, best);
    if (std::isinf(best.parameter))
        return false;
    describe(surface, best, picked);
    picked.distance = best.parameter * std::hypot(direction[0], direction[1], direction[2]);
    return true;
}
