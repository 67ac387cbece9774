// The library's element mesh finds the face under the pixel, its mesh picking the node or edge about that
// spot.
#include "viewer/scene/pick.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "viewer/model/vectors.h"
#include "viewer/scene/facemesh.h"
#include "viewer/scene/meshbuilder.h"
#include "viewer/scene/sight.h"

namespace nruview {

namespace {

using Kind = Picked::Kind;
using Index = std::uint32_t;

constexpr double kNodeReach_px = 4.0;
constexpr double kEdgeReach_px = 3.0;
constexpr double kOnBorder = 1e-9; ///< weights so far below zero still count
constexpr double kNever = std::numeric_limits<double>::infinity();

/// A spot of the drawn model: weighted points of an element.
struct Spot {
    double distance = kNever; ///< from the ray's origin
    std::size_t face = 0;     ///< in the order of forEachFace
    Index cell = 0;
    std::array<Index, 3> points{};
    std::array<double, 3> weights{};
};

/// Moeller & Trumbore (1997): weights of the corners where the ray meets the plane of a triangle; nothing for
/// a ray within the plane.
std::optional<std::array<double, 3>> weightsIn(const Ray& ray, const std::array<Point, 3>& corners) {
    const Point& a = corners[0];
    const Point ab = corners[1] - a, ac = corners[2] - a;
    const Point p = cross(ray.direction, ac);
    const double determinant = dot(ab, p);
    if (determinant == 0.0)
        return {};
    const Point offset = ray.origin - a;
    const double u = dot(offset, p) / determinant;
    const double v = dot(ray.direction, cross(offset, ab)) / determinant;
    return std::array{1.0 - u - v, u, v};
}

double smallest(const std::array<double, 3>& weights) {
    return std::min({weights[0], weights[1], weights[2]});
}

/// The face that the ray meets first, in double precision; at distance kNever without one.
Spot firstWholeFace(const ShownModel& shown, ngl::NglElementMesh& faces, const Ray& ray) {
    const Point end = ray.origin + ray.direction;
    const _NgPoint3Str from = {ray.origin[0], ray.origin[1], ray.origin[2]}, to = {end[0], end[1], end[2]};
    ngl::NglElementPick picked;
    if (!faces.Pick(&from, &to, &picked))
        return {};
    const std::span<const Index> corners = faceAt(shown.surface, picked.face);
    Spot spot{picked.distance, picked.face, picked.element, {corners[0]}, {1.0}};
    double best = -kNever;
    for (std::size_t i = 2; i < corners.size(); ++i) {
        const std::array<Index, 3> half = {corners[0], corners[i - 1], corners[i]};
        const auto weights =
            weightsIn(ray, {shown.points[half[0]], shown.points[half[1]], shown.points[half[2]]});
        if (!weights || smallest(*weights) <= best)
            continue;
        best = smallest(*weights);
        spot.points = half;
        spot.weights = *weights;
    }
    return spot;
}

/// The same of what the section leaves, which is before or behind one place of the ray.
Spot firstFace(const ShownModel& shown, ngl::NglElementMesh& faces, const Ray& ray) {
    if (!shown.section)
        return firstWholeFace(shown, faces, ray);
    const Plane& plane = shown.section->plane;
    const double start = plane.distance(ray.origin), slope = dot(plane.normal, ray.direction);
    const double toPlane = slope != 0.0 ? -start / slope : kNever;
    const bool beginsBeyond = start >= 0.0;
    if (beginsBeyond && !(toPlane >= 0.0 && toPlane < kNever))
        return {};
    const double skipped = beginsBeyond ? toPlane + kInPlane : 0.0; // what lies in the plane is away too
    Spot spot = firstWholeFace(shown, faces, {ray.origin + skipped * ray.direction, ray.direction});
    spot.distance += skipped;
    return beginsBeyond || toPlane < 0.0 || spot.distance < toPlane ? spot : Spot{};
}

/// Near the model's outline the ray may just miss: the face seen nearest to the pixel, within reach of a
/// node.
Spot faceAround(const ShownModel& shown, ngl::NglElementMesh& faces, int x, int y) {
    for (int reach = 1; reach <= static_cast<int>(kNodeReach_px); ++reach)
        for (int dx = -reach; dx <= reach; dx += reach)
            for (int dy = -reach; dy <= reach; dy += reach)
                if (const Spot spot = firstFace(shown, faces, rayThrough(x + dx, y + dy));
                    spot.distance < kNever)
                    return spot;
    return {};
}

/// Distance in the window between a point and the middle of a pixel.
double screenDistance(const Point& point, int x, int y) {
    const auto [sx, sy] = windowPosition(point);
    return std::hypot(sx - x, sy - y);
}

Point drawnPosition(const ShownModel& shown, const Spot& spot) {
    Point sum{};
    for (int i = 0; i < 3; ++i)
        sum = sum + spot.weights[i] * shown.points[spot.points[i]];
    return sum;
}

/// Collects nodes and edges as elements of two vertices for the library to pick from. Each edge stands
/// between its two ends, entered as edges of no length: NglPickMesh names the far end of an edge by its
/// neighbour in this list.
class Outline {
public:
    explicit Outline(const ShownModel& shown) : m_shown(shown) {}
    void addNode(Index node) {
        if (!isCutAway(m_shown, m_shown.points[node]))
            addPoint(node, m_shown.points[node]);
    }
    /// Of an edge that the section cuts, what it leaves; the end that is not there keeps its number.
    void addEdge(Index from, Index to) {
        Point start = m_shown.points[from], end = m_shown.points[to];
        if (!keepRest(start, end))
            return;
        addPoint(from, start);
        addVertex(from, start);
        addVertex(to, end);
        addPoint(to, end);
    }

    /// The nodes of what is nearest to the ray within a reach in model length: two for an edge, its nearer
    /// end first, one for a node, none for nothing.
    std::vector<Index> nearest(const Ray& ray, double reach) {
        if (m_nodes.empty())
            return {};
        MeshPtr mesh(
            ngl_create_mesh(static_cast<unsigned>(m_nodes.size()), m_positions.data(), nullptr, 0, 0, 1));
        ngl_add_connect(mesh.get(), static_cast<unsigned>(m_nodes.size() / 2), 2, m_vertices.data(), 1);
        double identity[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
        const Point end = ray.origin + ray.direction;
        _NgPoint3Str p = {ray.origin[0], ray.origin[1], ray.origin[2]}, q = {end[0], end[1], end[2]};
        _NgPoint3Str* positions = nullptr;
        int* vertices = nullptr;
        const _NgPickStatus status =
            NglPickMesh(mesh.get(), &p, &q, &identity, &positions, &vertices, &reach);
        std::vector<Index> found;
        for (int i = 0; i < (status == NgPickEdge ? 2 : status == NgPickVertex ? 1 : 0); ++i)
            found.push_back(m_nodes[vertices[i]]);
        NHostFree(vertices);
        NHostFree(positions);
        return found;
    }

private:
    void addPoint(Index node, const Point& position) {
        addVertex(node, position);
        addVertex(node, position);
    }
    void addVertex(Index node, const Point& position) {
        m_vertices.push_back(static_cast<Index>(m_nodes.size()));
        m_nodes.push_back(node);
        m_positions.push_back(position);
    }
    /// Shortens a segment to what the section leaves of it; false for nothing.
    bool keepRest(Point& start, Point& end) const {
        const bool losesStart = isCutAway(m_shown, start), losesEnd = isCutAway(m_shown, end);
        if (losesStart != losesEnd) {
            const Plane& plane = m_shown.section->plane;
            const double part = plane.distance(start) / (plane.distance(start) - plane.distance(end));
            (losesStart ? start : end) = start + part * (end - start);
        }
        return !(losesStart && losesEnd);
    }

    const ShownModel& m_shown;
    std::vector<Index> m_nodes; ///< of each vertex
    std::vector<Point> m_positions;
    std::vector<Index> m_vertices; ///< two for each element
};

bool isEdge(const Surface& surface, Index a, Index b) {
    return std::binary_search(surface.edges.begin(), surface.edges.end(),
                              std::array{std::min(a, b), std::max(a, b)});
}

/// Nodes and edges of one face; what splitting it has added is left out.
Outline outlineOf(const ShownModel& shown, std::size_t face) {
    Outline outline(shown);
    const std::span<const Index> corners = faceAt(shown.surface, face);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Index from = corners[i], to = corners[(i + 1) % corners.size()];
        if (isEdge(shown.surface, from, to))
            outline.addEdge(from, to);
        else if (from < shown.model.nodes.size())
            outline.addNode(from);
    }
    return outline;
}

Picked pickedAt(const ShownModel& shown, Kind kind, const Spot& spot, std::array<Index, 2> nodes) {
    Picked picked{kind, spot.cell, nodes, {}, 0.0};
    for (int i = 0; i < 3; ++i)
        if (spot.weights[i] != 0.0) {
            picked.position = picked.position + spot.weights[i] * modelPosition(shown, spot.points[i]);
            picked.value += spot.weights[i] * valueAt(shown, spot.points[i], spot.cell);
        }
    return picked;
}

Picked pickFace(const ShownModel& shown, const Ray& ray, const Spot& face, bool direct, int x, int y) {
    const double pixel = pixelLength(drawnPosition(shown, face));
    Outline outline = outlineOf(shown, face.face);
    const std::vector<Index> near = outline.nearest(ray, kNodeReach_px * pixel);
    if (!near.empty() && near[0] < shown.model.nodes.size() && !isCutAway(shown, shown.points[near[0]]) &&
        screenDistance(shown.points[near[0]], x, y) <= kNodeReach_px)
        return pickedAt(shown, Kind::Node, {0.0, 0, face.cell, {near[0]}, {1.0}}, {near[0], near[0]});
    if (near.size() == 2 && outline.nearest(ray, kEdgeReach_px * pixel).size() == 2) {
        const double part = nearestPart(ray, shown.points[near[0]], shown.points[near[1]]);
        const Spot spot = {0.0, 0, face.cell, {near[0], near[1]}, {1.0 - part, part}};
        return pickedAt(shown, Kind::Edge, spot, {std::min(near[0], near[1]), std::max(near[0], near[1])});
    }
    return direct ? pickedAt(shown, Kind::Element, face, {}) : Picked{};
}

/// The place of the cut that a ray meets; at distance kNever without one.
struct CutSpot {
    double distance = kNever;
    const Cut::Polygon* polygon = nullptr;
    std::array<Index, 2> corners{};  ///< of the section
    std::array<double, 3> weights{}; ///< of them and of the polygon's middle
};

/// The spot in one of the triangles about the polygon's middle, as they are drawn.
CutSpot spotIn(const Section& section, const Cut::Polygon& polygon, const Ray& ray) {
    const Point middle = middleOf(section, polygon);
    for (Index i = 0; i < polygon.count; ++i) {
        const Index from = polygon.first + i, to = polygon.first + (i + 1) % polygon.count;
        const auto weights = weightsIn(ray, {section.corners[from], section.corners[to], middle});
        if (weights && smallest(*weights) >= -kOnBorder)
            return {0.0, &polygon, {from, to}, *weights};
    }
    return {};
}

CutSpot cutSpot(const ShownModel& shown, const Ray& ray) {
    if (!shown.section)
        return {};
    const Plane& plane = shown.section->plane;
    const double slope = dot(plane.normal, ray.direction);
    const double distance = -plane.distance(ray.origin) / slope;
    if (!(std::isfinite(distance) && distance >= 0.0))
        return {};
    for (const Cut::Polygon& polygon : shown.section->cut.polygons)
        if (CutSpot spot = spotIn(*shown.section, polygon, ray); spot.polygon) {
            spot.distance = distance;
            return spot;
        }
    return {};
}

/// Position and value are blended as they are drawn: the polygon's middle has the mean of its corners.
Picked pickCut(const ShownModel& shown, const CutSpot& spot) {
    const Cut::Polygon& polygon = *spot.polygon;
    Picked picked{Kind::Element, polygon.cell, {}, {}, 0.0, spot.distance};
    const auto add = [&](Index corner, double weight) {
        const Cut::Vertex& vertex = shown.section->cut.vertices[corner];
        picked.position = picked.position + weight * modelPosition(shown, vertex);
        picked.value += weight * valueAtVertex(shown, vertex, polygon.cell);
    };
    add(spot.corners[0], spot.weights[0]);
    add(spot.corners[1], spot.weights[1]);
    for (Index i = 0; i < polygon.count; ++i)
        add(polygon.first + i, spot.weights[2] / polygon.count);
    return picked;
}

/// Calls visit(nodes, cell) for every shown single point and piece of a beam, in this order.
template <typename Visit>
void forEachLoose(const ShownModel& shown, Visit visit) {
    const Surface& surface = shown.surface;
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        if (shown.elements.isShown(surface.pointCells[i]))
            visit(std::array{surface.points[i], surface.points[i]}, surface.pointCells[i]);
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        if (shown.elements.isShown(surface.lineCells[i]))
            visit(surface.lines[i], surface.lineCells[i]);
}

/// The first single point or beam that has these nodes.
Index looseCell(const ShownModel& shown, const std::vector<Index>& nodes) {
    std::optional<Index> found;
    const auto isEnd = [](const std::array<Index, 2>& ends, Index node) {
        return ends[0] == node || ends[1] == node;
    };
    forEachLoose(shown, [&](const std::array<Index, 2>& ends, Index cell) {
        if (!found && isEnd(ends, nodes[0]) && isEnd(ends, nodes.back()))
            found = cell;
    });
    return found.value_or(0);
}

/// The beam or single point nearest to the pixel, and how far from the ray's origin it is.
Picked pickLoose(const ShownModel& shown, const Ray& ray, int x, int y, double& distance) {
    Outline outline(shown);
    forEachLoose(shown, [&](const std::array<Index, 2>& ends, Index) {
        if (ends[0] == ends[1])
            outline.addNode(ends[0]);
        else
            outline.addEdge(ends[0], ends[1]);
    });
    const Point middle = 0.5 * (shown.bounds.low + shown.bounds.high);
    const std::vector<Index> near = outline.nearest(ray, kNodeReach_px * pixelLength(middle));
    if (near.empty() || (near.size() == 1 && isCutAway(shown, shown.points[near[0]])))
        return {};
    const Index cell = looseCell(shown, near);
    const double part =
        near.size() == 2 ? nearestPart(ray, shown.points[near[0]], shown.points[near[1]]) : 0.0;
    const Spot spot = {0.0, 0, cell, {near[0], near.back()}, {1.0 - part, part}};
    distance = dot(drawnPosition(shown, spot) - ray.origin, ray.direction);
    if (!isCutAway(shown, shown.points[near[0]]) &&
        screenDistance(shown.points[near[0]], x, y) <= kNodeReach_px)
        return pickedAt(shown, Kind::Node, {0.0, 0, cell, {near[0]}, {1.0}}, {near[0], near[0]});
    return pickedAt(shown, Kind::Element, spot, {});
}

} // namespace

Picker::Picker(const ShownModel& shown)
    : m_shown(shown), m_faces(makeFaceMesh(shown, [](auto, auto) { return true; })) {}

Picked Picker::pick(int x, int y) {
    const ShownModel& shown = m_shown;
    const Ray ray = rayThrough(x, y);
    const Spot direct = firstFace(shown, m_faces, ray);
    const CutSpot cut = cutSpot(shown, ray);
    double looseDistance = kNever;
    const Picked loose = pickLoose(shown, ray, x, y, looseDistance);
    if (loose.kind != Kind::Nothing && looseDistance <= std::min(direct.distance, cut.distance))
        return loose;
    if (cut.distance < direct.distance)
        return pickCut(shown, cut);
    const bool hit = direct.distance < kNever;
    const Spot face = hit ? direct : faceAround(shown, m_faces, x, y);
    Picked picked = face.distance < kNever ? pickFace(shown, ray, face, hit, x, y) : Picked{};
    picked.distance = direct.distance;
    return picked;
}

Picked pick(const ShownModel& shown, int x, int y) {
    return Picker(shown).pick(x, y);
}

std::string describe(const ShownModel& shown, const Picked& picked) {
    if (picked.kind == Kind::Nothing)
        return "nothing";
    std::string name;
    if (picked.kind == Kind::Node)
        name = "node " + std::to_string(nodeNumber(shown.model, picked.nodes[0]));
    else if (picked.kind == Kind::Edge)
        name = "edge " + std::to_string(nodeNumber(shown.model, picked.nodes[0])) + " " +
               std::to_string(nodeNumber(shown.model, picked.nodes[1]));
    else
        name = "element " + std::to_string(cellNumber(shown.model, picked.cell)) + " (" +
               std::string(cellTypeName(shown.model.types[picked.cell])) + ")";
    char text[160];
    std::snprintf(text, sizeof text, " at %.6g %.6g %.6g", picked.position[0], picked.position[1],
                  picked.position[2]);
    name += text;
    if (shown.scalars) {
        std::snprintf(text, sizeof text, " = %.6g", picked.value);
        name += ": " + shown.scalars->label + (std::isnan(picked.value) ? " has no value" : text);
    }
    return name;
}

} // namespace nruview
