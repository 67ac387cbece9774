// Each polygon is an element of a mesh: triangles from its middle, which takes the mean of its corners.
#include "viewer/section/capscene.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace nruview {

namespace {

using Index = std::uint32_t;

/// Polygons on their way into a mesh.
class CapBuilder {
public:
    CapBuilder(const ShownModel& shown, const CapLook& look) : m_shown(shown), m_look(look) {}

    /// Coordinates of the contour at the corners; none: a colour.
    void add(const Cut::Polygon& polygon, std::span<const float> coordinates);
    ngl::NglElementMesh finish() const;

private:
    void addTriangle(Index a, Index b, Index c);

    const ShownModel& m_shown;
    const CapLook& m_look;
    std::vector<Point> m_points;
    std::vector<float> m_coordinates;  ///< of the points
    std::vector<NgColorLong> m_colors; ///< of the polygons
    std::vector<Index> m_triangles, m_elements;
};

void CapBuilder::addTriangle(Index a, Index b, Index c) {
    m_triangles.insert(m_triangles.end(), {a, b, c});
    m_elements.push_back(static_cast<Index>(m_colors.size()));
}

void CapBuilder::add(const Cut::Polygon& polygon, std::span<const float> coordinates) {
    const Section& section = *m_shown.section;
    const auto first = static_cast<Index>(m_points.size());
    const auto* corners = section.corners.data() + polygon.first;
    m_points.insert(m_points.end(), corners, corners + polygon.count);
    m_coordinates.insert(m_coordinates.end(), coordinates.begin(), coordinates.end());
    if (polygon.count == 3) {
        addTriangle(first, first + 1, first + 2);
    } else {
        m_points.push_back(middleOf(section, polygon));
        float sum = 0.0f;
        for (const float coordinate : coordinates)
            sum += coordinate / static_cast<float>(polygon.count);
        if (!coordinates.empty())
            m_coordinates.push_back(sum);
        for (Index i = 0; i < polygon.count; ++i)
            addTriangle(first + i, first + (i + 1) % polygon.count, first + polygon.count);
    }
    m_colors.push_back(coordinates.empty() ? m_look.color(polygon)
                                           : m_look.bands->scale().GetColor(coordinates[0]));
}

/// A contour whose elements have one value each, in blended colours, is made of colours: the library blends
/// within an element alone.
ngl::NglElementMesh CapBuilder::finish() const {
    ngl::NglElementMesh mesh;
    if (m_colors.empty())
        return mesh;
    ngl::NglElementMeshInput input;
    input.nodeCount = static_cast<Index>(m_points.size());
    input.nodes = m_points.data()->data();
    input.triangleCount = static_cast<Index>(m_elements.size());
    input.triangles = m_triangles.data();
    input.triangleElements = m_elements.data();
    input.elementCount = static_cast<Index>(m_colors.size());
    if (mesh.Create(input) != 0)
        throw std::bad_alloc();
    const bool isContour = !m_coordinates.empty();
    const bool hasColors =
        !isContour || (m_look.bands->smeared() && m_shown.scalars->location == FieldLocation::Cell);
    if (isContour)
        mesh.SetColorScale(&m_look.bands->scale());
    const int result = hasColors
                           ? mesh.SetColors(ngl::NglElements::Range(0, input.elementCount), m_colors.data())
                           : mesh.SetNodeValues(m_coordinates.data());
    if (result != 0)
        throw std::bad_alloc();
    ngl::NglElementAttributes attributes = mesh.Attributes();
    attributes.lit = m_look.lit;
    attributes.opacity = static_cast<float>(m_look.opacity);
    mesh.SetAttributes(attributes);
    return mesh;
}

/// The contour's coordinates at a polygon's corners; empty where one has no value or a colour is wanted.
std::vector<float> coordinatesOf(const ShownModel& shown, const CapLook& look, const Cut::Polygon& polygon) {
    std::vector<float> coordinates;
    if (!look.bands || look.hasOwnColor(polygon))
        return coordinates;
    for (Index i = 0; i < polygon.count; ++i) {
        const double value =
            valueAtVertex(shown, shown.section->cut.vertices[polygon.first + i], polygon.cell);
        if (std::isnan(value))
            return {};
        coordinates.push_back(look.bands->coordinate(value));
    }
    return coordinates;
}

using Piece = std::array<Index, 2>; ///< of a border, by its corners

/// Calls visit(from, to, isOutline) for the borders of all polygons.
template <typename Visit>
void forEachPiece(const Section& section, Visit visit) {
    for (const Cut::Polygon& polygon : section.cut.polygons)
        for (Index i = 0; i < polygon.count; ++i) {
            const Index from = polygon.first + i, to = polygon.first + (i + 1) % polygon.count;
            visit(from, to, section.cut.vertices[from].outlineFollows);
        }
}

/// The borders that no two polygons share: neighbours have the same positions along theirs.
std::vector<Piece> rimOf(const Section& section) {
    using Place = std::pair<Point, Point>;
    std::vector<std::pair<Place, Piece>> pieces;
    forEachPiece(section, [&](Index from, Index to, bool) {
        const Point &a = section.corners[from], &b = section.corners[to];
        pieces.push_back({a < b ? Place{a, b} : Place{b, a}, {from, to}});
    });
    std::sort(pieces.begin(), pieces.end());
    std::vector<Piece> rim;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const bool isShared = (i > 0 && pieces[i - 1].first == pieces[i].first) ||
                              (i + 1 < pieces.size() && pieces[i + 1].first == pieces[i].first);
        if (!isShared)
            rim.push_back(pieces[i].second);
    }
    return rim;
}

MeshPtr edgeMesh(const Section& section, EdgeMode mode) {
    if (mode == EdgeMode::None || section.cut.polygons.empty())
        return nullptr;
    MeshBuilder builder;
    for (const Point& corner : section.corners)
        builder.addVertex(corner);
    if (mode == EdgeMode::Feature) {
        for (const auto& [from, to] : rimOf(section))
            builder.addEdge(from, to);
    } else {
        forEachPiece(section, [&](Index from, Index to, bool isOutline) {
            if (isOutline)
                builder.addEdge(from, to);
        });
    }
    return builder.finish().mesh;
}

} // namespace

CapScene::CapScene(const ShownModel& shown, const CapLook& look)
    : m_edges(edgeMesh(*shown.section, look.edges)) {
    CapBuilder colored(shown, look), plain(shown, look);
    for (const Cut::Polygon& polygon : shown.section->cut.polygons) {
        const std::vector<float> coordinates = coordinatesOf(shown, look, polygon);
        (coordinates.empty() ? plain : colored).add(polygon, coordinates);
    }
    m_colored = colored.finish();
    m_plain = plain.finish();
}

void CapScene::drawFaces() {
    m_colored.Draw();
    m_plain.Draw();
}

void CapScene::drawEdges() const {
    if (m_edges)
        ngl_mesh(m_edges.get(), NglMeshEdges);
}

} // namespace nruview
