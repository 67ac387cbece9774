// Skin extraction: outer faces are found by their sorted corners, in buckets of their smallest corner.
#include "viewer/model/surface.h"

#include <algorithm>
#include <limits>

#include "viewer/model/celltypes.h"
#include "viewer/model/polygon.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

constexpr std::uint32_t kNoNode = std::numeric_limits<std::uint32_t>::max();

/// A bit for each face of a cell that is to be drawn; no cell type has more than six.
using FaceMask = std::uint8_t;

/// Which cells are shown; empty flags say all.
struct CellFlags {
    const std::vector<bool>& flags;
    bool operator[](std::size_t cell) const { return flags.empty() || flags[cell]; }
};

/// A face's corners but the smallest, sorted. Repeated corners of collapsed cells count once: a collapsed
/// quad meets the triangle beside it.
struct FaceRecord {
    std::array<std::uint32_t, 3> rest;
    std::uint32_t cell;
    std::uint8_t face;
    bool shell;
};

/// Sorted distinct corners, filled up with kNoNode; nothing is drawn of a face with less than three.
std::array<std::uint32_t, 4> faceKey(std::span<const std::uint32_t> nodes, const FaceShape& face) {
    std::array<std::uint32_t, 4> key{kNoNode, kNoNode, kNoNode, kNoNode};
    for (std::size_t i = 0; i < face.corners; ++i)
        key[i] = nodes[face.nodes[i]];
    std::sort(key.begin(), key.end());
    std::fill(std::unique(key.begin(), key.end()), key.end(), kNoNode);
    return key;
}

template <class Visit>
void forEachCellFace(const Model& model, Visit visit) {
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell) {
        const CellShape& shape = cellShape(model.types[cell]);
        for (std::size_t f = 0; f < shape.faces.size(); ++f) {
            const auto key = faceKey(model.cellNodes(cell), shape.faces[f]);
            if (key[2] != kNoNode)
                visit(key, static_cast<std::uint32_t>(cell), static_cast<std::uint8_t>(f),
                      shape.dimension == 2);
        }
    }
}

/// All faces ordered by their smallest corner; those of corner n are records starts[n] to starts[n + 1] - 1.
std::vector<FaceRecord> bucketFaces(const Model& model, std::vector<std::size_t>& starts) {
    starts.assign(model.nodes.size() + 2, 0);
    forEachCellFace(model, [&](const auto& key, auto, auto, auto) { ++starts[key[0] + 2]; });
    for (std::size_t n = 2; n < starts.size(); ++n)
        starts[n] += starts[n - 1];
    std::vector<FaceRecord> records(starts.back());
    forEachCellFace(model, [&](const auto& key, std::uint32_t cell, std::uint8_t face, bool shell) {
        records[starts[key[0] + 1]++] = {{key[1], key[2], key[3]}, cell, face, shell};
    });
    return records;
}

/// Of the uses of one face: every shell is drawn; a solid only when it is the one use, of all or of those
/// shown. A shell that lies on a solid is drawn in the solid's place, since it is what a modeller sees from
/// outside.
void markDrawn(std::span<const FaceRecord> uses, const CellFlags& shown, std::vector<FaceMask>& drawn) {
    const auto isShown = [&](const FaceRecord& use) { return shown[use.cell]; };
    const bool oneShown = std::count_if(uses.begin(), uses.end(), isShown) == 1;
    for (const FaceRecord& use : uses)
        if (use.shell || uses.size() == 1 || (oneShown && isShown(use)))
            drawn[use.cell] |= static_cast<FaceMask>(1u << use.face);
}

std::vector<FaceMask> drawnFaces(const Model& model, const CellFlags& shown) {
    std::vector<std::size_t> starts;
    std::vector<FaceRecord> records = bucketFaces(model, starts);
    std::vector<FaceMask> drawn(model.cellCount(), 0);
    for (std::size_t n = 0; n + 1 < starts.size(); ++n) {
        const auto begin = records.begin() + static_cast<std::ptrdiff_t>(starts[n]);
        const auto end = records.begin() + static_cast<std::ptrdiff_t>(starts[n + 1]);
        std::sort(begin, end, [](const FaceRecord& a, const FaceRecord& b) { return a.rest < b.rest; });
        for (auto first = begin; first != end;) {
            const auto last =
                std::find_if(first, end, [&](const FaceRecord& r) { return r.rest != first->rest; });
            markDrawn({first, last}, shown, drawn);
            first = last;
        }
    }
    return drawn;
}

/// Whether a solid's faces point inward as its type lists them. Its sign, not its node order, decides:
/// writers do not agree on the order of wedges, and mirrored meshes turn every cell round.
bool isInsideOut(const Model& model, std::size_t cell) {
    const std::span<const std::uint32_t> nodes = model.cellNodes(cell);
    const Point& origin = model.nodes[nodes[0]];
    const auto corner = [&](const FaceShape& face, std::size_t i) {
        return model.nodes[nodes[face.nodes[i]]] - origin;
    };
    double volume = 0;
    for (const FaceShape& face : cellShape(model.types[cell]).faces)
        for (std::size_t i = 2; i < face.corners; ++i)
            volume += dot(corner(face, 0), cross(corner(face, i - 1), corner(face, i)));
    return volume < 0;
}

/// Nodes of a face: corners in order, mid-sides after each corner, centre.
struct Face {
    std::array<std::uint32_t, 9> nodes{};
    std::size_t corners = 0;
    std::size_t count = 0;

    std::span<std::uint32_t> cornerNodes() { return {nodes.data(), corners}; }
    std::span<std::uint32_t> midSides() {
        return {nodes.data() + corners, count >= 2 * corners ? corners : 0};
    }
};

Face makeFace(std::span<const std::uint32_t> cellNodes, const FaceShape& shape) {
    Face face;
    face.corners = shape.corners;
    face.count = shape.count;
    for (std::size_t i = 0; i < face.count; ++i)
        face.nodes[i] = cellNodes[shape.nodes[i]];
    return face;
}

void turnRound(Face& face) {
    std::reverse(face.nodes.begin() + 1, face.nodes.begin() + static_cast<std::ptrdiff_t>(face.corners));
    std::reverse(face.midSides().begin(), face.midSides().end());
}

class SurfaceBuilder {
public:
    SurfaceBuilder(const Model& model, CellFlags shown) : m_model(model), m_shown(shown) {}

    void addFace(Face face, std::uint32_t cell);
    void addPolygon(std::span<const std::uint32_t> nodes, std::uint32_t cell);
    void addStrip(std::span<const std::uint32_t> nodes, std::uint32_t cell);
    void addLine(std::uint32_t a, std::uint32_t b, std::uint32_t cell);
    void addPoint(std::uint32_t node, std::uint32_t cell);
    Surface finish();

private:
    void addTriangle(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t cell);
    void addQuad(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t cell);
    void addEdge(std::uint32_t a, std::uint32_t b, std::uint32_t cell);
    void addOutline(Face& face, std::uint32_t cell);
    void splitTriangle(const Face& face, std::uint32_t cell);
    void splitQuad(const Face& face, std::uint32_t cell);
    std::uint32_t addCentre(const Face& face);

    const Model& m_model;
    CellFlags m_shown;
    Surface m_surface;
    std::vector<std::uint64_t> m_edges; ///< smaller node in the upper half
};

void SurfaceBuilder::addTriangle(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t cell) {
    if (a == b || b == c || c == a)
        return;
    m_surface.triangles.push_back({a, b, c});
    m_surface.triangleCells.push_back(cell);
}

/// A quad of a collapsed cell can have two neighbouring corners in one: what is left is a triangle. A warped
/// quad is drawn as two triangles from its first corner, and cells on both sides of it must mean the same.
void SurfaceBuilder::addQuad(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                             std::uint32_t cell) {
    if (a == c || b == d)
        return;
    if (a == b)
        return addTriangle(a, c, d, cell);
    if (b == c)
        return addTriangle(a, b, d, cell);
    if (c == d || d == a)
        return addTriangle(a, b, c, cell);
    std::array<std::uint32_t, 4> quad = {a, b, c, d};
    std::rotate(quad.begin(), std::min_element(quad.begin(), quad.end()), quad.end());
    m_surface.quads.push_back(quad);
    m_surface.quadCells.push_back(cell);
}

void SurfaceBuilder::addEdge(std::uint32_t a, std::uint32_t b, std::uint32_t cell) {
    if (a != b && m_shown[cell])
        m_edges.push_back(static_cast<std::uint64_t>(std::min(a, b)) << 32 | std::max(a, b));
}

void SurfaceBuilder::addOutline(Face& face, std::uint32_t cell) {
    const auto corners = face.cornerNodes();
    const auto midSides = face.midSides();
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const std::uint32_t next = corners[(i + 1) % corners.size()];
        const std::uint32_t middle = midSides.empty() ? next : midSides[i];
        addEdge(corners[i], middle, cell);
        addEdge(middle, next, cell);
    }
}

void SurfaceBuilder::splitTriangle(const Face& face, std::uint32_t cell) {
    const auto& n = face.nodes;
    if (face.count == 3) {
        addTriangle(n[0], n[1], n[2], cell);
    } else if (face.count == 6) {
        addTriangle(n[0], n[3], n[5], cell);
        addTriangle(n[3], n[1], n[4], cell);
        addTriangle(n[5], n[4], n[2], cell);
        addTriangle(n[3], n[4], n[5], cell);
    } else {
        addQuad(n[0], n[3], n[6], n[5], cell);
        addQuad(n[1], n[4], n[6], n[3], cell);
        addQuad(n[2], n[5], n[6], n[4], cell);
    }
}

void SurfaceBuilder::splitQuad(const Face& face, std::uint32_t cell) {
    const auto& n = face.nodes;
    if (face.count == 4) {
        addQuad(n[0], n[1], n[2], n[3], cell);
        return;
    }
    const std::uint32_t centre = face.count == 9 ? n[8] : addCentre(face);
    addQuad(n[0], n[4], centre, n[7], cell);
    addQuad(n[4], n[1], n[5], centre, cell);
    addQuad(centre, n[5], n[2], n[6], cell);
    addQuad(n[7], centre, n[6], n[3], cell);
}

/// The middle of an eight-node face by its serendipity shape functions at (0, 0): -1/4 for corners, 1/2 for
/// mid-sides.
std::uint32_t SurfaceBuilder::addCentre(const Face& face) {
    Surface::Centre centre;
    for (std::size_t i = 0; i < 8; ++i) {
        centre.nodes[i] = face.nodes[i];
        centre.weights[i] = i < 4 ? -0.25 : 0.5;
    }
    m_surface.centres.push_back(centre);
    return static_cast<std::uint32_t>(m_model.nodes.size() + m_surface.centres.size() - 1);
}

void SurfaceBuilder::addFace(Face face, std::uint32_t cell) {
    ++m_surface.faceCount;
    ++(face.corners == 3 ? m_surface.triangleFaces : m_surface.quadFaces);
    addOutline(face, cell);
    if (face.corners == 3)
        splitTriangle(face, cell);
    else
        splitQuad(face, cell);
}

void SurfaceBuilder::addPolygon(std::span<const std::uint32_t> nodes, std::uint32_t cell) {
    ++m_surface.faceCount;
    std::vector<Point> corners;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        corners.push_back(m_model.nodes[nodes[i]]);
        addEdge(nodes[i], nodes[(i + 1) % nodes.size()], cell);
    }
    for (const auto& [a, b, c] : triangulatePolygon(corners))
        addTriangle(nodes[a], nodes[b], nodes[c], cell);
}

/// Every triangle of a strip is a face; every other one is listed the other way round.
void SurfaceBuilder::addStrip(std::span<const std::uint32_t> nodes, std::uint32_t cell) {
    for (std::size_t i = 2; i < nodes.size(); ++i) {
        const std::size_t odd = i % 2;
        addFace({{nodes[i - 2 + odd], nodes[i - 1 - odd], nodes[i]}, 3, 3}, cell);
    }
}

void SurfaceBuilder::addLine(std::uint32_t a, std::uint32_t b, std::uint32_t cell) {
    m_surface.lines.push_back({a, b});
    m_surface.lineCells.push_back(cell);
}

void SurfaceBuilder::addPoint(std::uint32_t node, std::uint32_t cell) {
    m_surface.points.push_back(node);
    m_surface.pointCells.push_back(cell);
}

Surface SurfaceBuilder::finish() {
    std::sort(m_edges.begin(), m_edges.end());
    m_edges.erase(std::unique(m_edges.begin(), m_edges.end()), m_edges.end());
    for (const std::uint64_t edge : m_edges)
        m_surface.edges.push_back({static_cast<std::uint32_t>(edge >> 32), static_cast<std::uint32_t>(edge)});
    return std::move(m_surface);
}

void addLines(SurfaceBuilder& builder, CellType type, std::span<const std::uint32_t> nodes,
              std::uint32_t cell) {
    if (type == CellType::Line3) {
        builder.addLine(nodes[0], nodes[2], cell);
        builder.addLine(nodes[2], nodes[1], cell);
        return;
    }
    for (std::size_t i = 1; i < nodes.size(); ++i)
        builder.addLine(nodes[i - 1], nodes[i], cell);
}

void addFaces(SurfaceBuilder& builder, const Model& model, std::uint32_t cell, FaceMask drawn) {
    const CellShape& shape = cellShape(model.types[cell]);
    const bool turn = drawn != 0 && shape.dimension == 3 && isInsideOut(model, cell);
    for (std::size_t f = 0; f < shape.faces.size(); ++f) {
        if ((drawn >> f & 1) == 0)
            continue;
        Face face = makeFace(model.cellNodes(cell), shape.faces[f]);
        if (turn)
            turnRound(face);
        builder.addFace(face, cell);
    }
}

void addCell(SurfaceBuilder& builder, const Model& model, std::uint32_t cell, FaceMask drawn) {
    const CellType type = model.types[cell];
    const std::span<const std::uint32_t> nodes = model.cellNodes(cell);
    if (type == CellType::Polygon)
        builder.addPolygon(nodes, cell);
    else if (type == CellType::TriangleStrip)
        builder.addStrip(nodes, cell);
    else if (cellShape(type).dimension == 1)
        addLines(builder, type, nodes, cell);
    else if (cellShape(type).dimension == 0)
        for (const std::uint32_t node : nodes)
            builder.addPoint(node, cell);
    else
        addFaces(builder, model, cell, drawn);
}

} // namespace

Surface extractSurface(const Model& model, const std::vector<bool>& shown) {
    const std::vector<FaceMask> drawn = drawnFaces(model, {shown});
    SurfaceBuilder builder(model, {shown});
    for (std::uint32_t cell = 0; cell < model.cellCount(); ++cell)
        addCell(builder, model, cell, drawn[cell]);
    return builder.finish();
}

double surfaceArea(const Model& model, const Surface& surface) {
    std::vector<Point> points = model.nodes;
    for (const Surface::Centre& centre : surface.centres) {
        Point& middle = points.emplace_back(Point{});
        for (std::size_t i = 0; i < centre.nodes.size(); ++i)
            middle = middle + centre.weights[i] * model.nodes[centre.nodes[i]];
    }
    double twice = 0;
    forEachFace(surface, [&](std::span<const std::uint32_t> corners, std::uint32_t) {
        const Point& origin = points[corners[0]];
        for (std::size_t i = 2; i < corners.size(); ++i)
            twice += length(cross(points[corners[i - 1]] - origin, points[corners[i]] - origin));
    });
    return twice / 2;
}

} // namespace nruview
