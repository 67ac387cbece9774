// Marching through the faces of each element: every triangle of its skin that the plane crosses gives a piece
// of the polygon's border. Elements that share a face split it alike, so that nothing gapes between them.
#include "viewer/section/cut.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "viewer/section/subcells.h"

namespace nruview {

namespace {

using Index = std::uint32_t;

/// A point of the element at hand.
struct Corner {
    Index point = 0; ///< as in Cut
    double distance = 0.0;
    bool isKept() const { return distance < 0.0; }
};

/// Where the border crosses an edge: its kept end and the other.
struct Crossing {
    Corner kept, away;
    bool operator==(const Crossing& other) const {
        return kept.point == other.kept.point && away.point == other.away.point;
    }
};

struct BorderPiece {
    Crossing from, to;
    bool isOutline = false;
};

double snapped(double distance, double tolerance) {
    return std::abs(distance) <= tolerance ? 0.0 : distance;
}

class Cutter {
public:
    Cutter(const Model& model, std::span<const Point> places, const Plane& plane, double tolerance)
        : m_model(model), m_places(places), m_plane(plane), m_tolerance(tolerance) {
        m_distances.reserve(model.nodes.size());
        for (std::size_t node = 0; node < model.nodes.size(); ++node)
            m_distances.push_back(snapped(plane.distance(places[node]), tolerance));
    }
    void cutCell(Index cell);
    Cut finish() { return std::move(m_cut); }

private:
    bool meets(Index cell) const;
    void takeCorners(Index cell, const SubCells& subCells);
    Corner makeCentre(std::span<const Index> nodes, const SubCentre& shape);
    void cutSubCell(std::span<const SubFace> faces, Index cell);
    void cutFace(const SubFace& face);
    void cutTriangle(const std::array<Corner, 3>& corners, bool isOutline);
    void takeLoop(Index cell);
    void addPolygon(std::span<const BorderPiece> loop, Index cell);
    Point positionOf(const Cut::Vertex& vertex) const;

    const Model& m_model;
    std::span<const Point> m_places;
    const Plane& m_plane;
    const double m_tolerance;
    std::vector<double> m_distances; ///< of the nodes
    Cut m_cut;
    std::vector<Corner> m_corners;     ///< points of the element at hand
    std::vector<BorderPiece> m_border; ///< of the sub-element at hand
};

/// The shape functions' centres lie within the nodes' distances widened by twice their width.
bool Cutter::meets(Index cell) const {
    double low = HUGE_VAL, high = -HUGE_VAL;
    for (const Index node : m_model.cellNodes(cell)) {
        low = std::min(low, m_distances[node]);
        high = std::max(high, m_distances[node]);
    }
    const double reach = subCellsOf(m_model.types[cell]).centres.empty() ? 0.0 : 2.0 * (high - low);
    return low - reach < 0.0 && high + reach >= 0.0;
}

void Cutter::cutCell(Index cell) {
    if (!meets(cell))
        return;
    const SubCells& subCells = subCellsOf(m_model.types[cell]);
    takeCorners(cell, subCells);
    for (const std::vector<SubFace>& faces : subCells.cells)
        cutSubCell(faces, cell);
}

void Cutter::takeCorners(Index cell, const SubCells& subCells) {
    const std::span<const Index> nodes = m_model.cellNodes(cell);
    m_corners.clear();
    for (const Index node : nodes)
        m_corners.push_back({node, m_distances[node]});
    for (const SubCentre& centre : subCells.centres)
        m_corners.push_back(makeCentre(nodes, centre));
}

/// Nodes are added up in ascending order: neighbours find the same centre of their face to the last bit.
Corner Cutter::makeCentre(std::span<const Index> nodes, const SubCentre& shape) {
    std::array<std::pair<Index, double>, 20> terms{};
    for (std::size_t i = 0; i < shape.count; ++i)
        terms[i] = {nodes[shape.nodes[i]], shape.weights[i]};
    std::sort(terms.begin(), terms.begin() + shape.count);
    Cut::Centre centre;
    centre.count = shape.count;
    Point place{};
    for (std::size_t i = 0; i < shape.count; ++i) {
        centre.nodes[i] = terms[i].first;
        centre.weights[i] = terms[i].second;
        place = place + terms[i].second * m_places[terms[i].first];
    }
    m_cut.centres.push_back(centre);
    return {static_cast<Index>(m_model.nodes.size() + m_cut.centres.size() - 1),
            snapped(m_plane.distance(place), m_tolerance)};
}

void Cutter::cutSubCell(std::span<const SubFace> faces, Index cell) {
    m_border.clear();
    for (const SubFace& face : faces)
        cutFace(face);
    while (!m_border.empty())
        takeLoop(cell);
}

/// Quads are split from the corner with the lowest number, as the surface's are.
void Cutter::cutFace(const SubFace& face) {
    std::array<Corner, 4> corners{};
    for (std::size_t i = 0; i < face.count; ++i)
        corners[i] = m_corners[face.corners[i]];
    const auto isBelow = [](const Corner& a, const Corner& b) { return a.point < b.point; };
    const auto end = corners.begin() + face.count;
    std::rotate(corners.begin(), std::min_element(corners.begin(), end, isBelow), end);
    for (std::size_t i = 2; i < face.count; ++i)
        cutTriangle({corners[0], corners[i - 1], corners[i]}, face.isOuter);
}

void Cutter::cutTriangle(const std::array<Corner, 3>& corners, bool isOutline) {
    BorderPiece piece{{}, {}, isOutline};
    int crossings = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Corner &a = corners[i], &b = corners[(i + 1) % 3];
        if (a.point == b.point)
            return; // of a collapsed element
        if (a.isKept() == b.isKept())
            continue;
        (a.isKept() ? piece.from : piece.to) = a.isKept() ? Crossing{a, b} : Crossing{b, a};
        ++crossings;
    }
    if (crossings == 2)
        m_border.push_back(piece);
}

/// Takes one closed run of pieces from the border.
void Cutter::takeLoop(Index cell) {
    std::size_t used = 1; // the pieces before it are the run
    for (; !(m_border[used - 1].to == m_border[0].from); ++used) {
        const auto next =
            std::find_if(m_border.begin() + static_cast<std::ptrdiff_t>(used), m_border.end(),
                         [&](const BorderPiece& piece) { return piece.from == m_border[used - 1].to; });
        if (next == m_border.end())
            break;
        std::swap(m_border[used], *next);
    }
    addPolygon({m_border.data(), used}, cell);
    m_border.erase(m_border.begin(), m_border.begin() + static_cast<std::ptrdiff_t>(used));
}

/// Both users of an edge compute alike.
Cut::Vertex vertexAt(const Crossing& crossing, bool outlineFollows) {
    const auto& [kept, away] = crossing;
    if (away.distance == 0.0)
        return {away.point, away.point, 0.0, outlineFollows};
    return {kept.point, away.point, kept.distance / (kept.distance - away.distance), outlineFollows};
}

bool areSame(const Cut::Vertex& a, const Cut::Vertex& b) {
    return a.from == b.from && a.to == b.to;
}

Point Cutter::positionOf(const Cut::Vertex& vertex) const {
    return atCutVertex(m_cut, m_model.nodes.size(), vertex, Point{},
                       [&](Index node) { return m_places[node]; });
}

/// Crossings that meet at a node in the plane are one vertex. An inside-out element is turned round.
void Cutter::addPolygon(std::span<const BorderPiece> loop, Index cell) {
    std::vector<Cut::Vertex> corners;
    for (const BorderPiece& piece : loop) {
        const Cut::Vertex vertex = vertexAt(piece.from, piece.isOutline);
        if (!corners.empty() && areSame(corners.back(), vertex))
            corners.pop_back();
        corners.push_back(vertex);
    }
    if (corners.size() > 1 && areSame(corners.front(), corners.back()))
        corners.pop_back();
    if (corners.size() < 3)
        return;
    Point area{};
    const Point origin = positionOf(corners[0]);
    for (std::size_t i = 2; i < corners.size(); ++i)
        area = area + cross(positionOf(corners[i - 1]) - origin, positionOf(corners[i]) - origin);
    if (dot(area, m_plane.normal) < 0.0) {
        std::reverse(corners.begin(), corners.end());
        // What followed a vertex now leads to it.
        for (std::size_t i = 0; i + 1 < corners.size(); ++i)
            std::swap(corners[i].outlineFollows, corners[i + 1].outlineFollows);
    }
    m_cut.polygons.push_back(
        {cell, static_cast<Index>(m_cut.vertices.size()), static_cast<Index>(corners.size())});
    m_cut.vertices.insert(m_cut.vertices.end(), corners.begin(), corners.end());
}

} // namespace

Cut cutSolids(const Model& model, std::span<const Point> places, const Plane& plane, double tolerance,
              const std::vector<bool>& shown) {
    Cutter cutter(model, places, plane, tolerance);
    for (Index cell = 0; cell < model.cellCount(); ++cell)
        if (cellShape(model.types[cell]).dimension == 3 && (shown.empty() || shown[cell]))
            cutter.cutCell(cell);
    return cutter.finish();
}

} // namespace nruview
