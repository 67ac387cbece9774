// The edge data of a mesh: its unique edges, the normals of the two faces at each, and which are feature
// edges.
//
// Every side of every element is filed under its lower vertex (a counting sort); within one vertex's few
// sides equal edges become neighbours by sorting, so that one walk in vertex order yields the edges.
#include "NRenderUtl/mesh/nmesh.h"

#include <limits>
#include <span>
#include <utility>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/mesh/hostarray.h"
#include "NRenderUtl/mesh/meshaccess.h"

namespace {

// Two faces whose normals differ by more than 30 degrees meet in a feature edge: finer facets are a rounded
// surface, coarser ones a corner that an engineer expects to see.
constexpr double kCosFeatureAngle = 0.86602540378443864676;
constexpr double kFeatureWeight = 0.0;
constexpr double kSilhouetteWeight = 1.0;
// An area below this part of the element's squared extent has no trustworthy normal.
constexpr double kDegenerateArea = 1e-12;
constexpr std::uint64_t kMaxFaces = std::uint64_t{1} << 31;

/// One side of one element in the list of its lower vertex: higher vertex, face number and direction in one
/// word, so that sorting the words brings equal edges together, in the order of their faces.
struct Side {
    std::uint64_t word;
    Side(std::uint32_t high, std::uint32_t face, bool descending)
        : word(std::uint64_t{high} << 32 | std::uint64_t{face} << 1 | (descending ? 1 : 0)) {}
    std::uint32_t high() const { return static_cast<std::uint32_t>(word >> 32); }
    std::uint32_t face() const { return static_cast<std::uint32_t>(word) >> 1; }
    bool descending() const { return (word & 1) != 0; }
    bool operator<(const Side& o) const { return word < o.word; }
};

/// Calls visit(face, indices, corners) for every element with usable indices; faces count all elements.
template <class Visit>
void forEachFace(const _NgMeshStr& mesh, const Visit& visit) {
    std::uint32_t face = 0;
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next) {
        const int corners = block->verticesPerElement;
        const std::uint32_t count = usableElements(*block);
        for (std::uint32_t e = 0; e < count; ++e, ++face) {
            const std::uint32_t* indices = elementIndices(*block, e);
            if (areVertices(mesh, indices, corners))
                visit(face, indices, corners);
        }
    }
}

/// Calls visit(face, from, to) for every side with two different ends.
template <class Visit>
void forEachSide(const _NgMeshStr& mesh, const Visit& visit) {
    forEachFace(mesh, [&](std::uint32_t face, const std::uint32_t* indices, int corners) {
        for (int i = 0; i < corners; ++i) {
            const std::uint32_t from = indices[i];
            const std::uint32_t to = indices[i + 1 == corners ? 0 : i + 1];
            if (from != to)
                visit(face, from, to);
        }
    });
}

std::uint64_t countFaces(const _NgMeshStr& mesh) {
    std::uint64_t faces = 0;
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next)
        faces += usableElements(*block);
    return faces;
}

/// Unit normal of a polygon by its vector area, the sum over a fan; zero for beams and degenerate polygons.
_NgPoint3Str faceNormal(const _NgMeshStr& mesh, const std::uint32_t* indices, int corners) {
    if (corners < 3)
        return {0, 0, 0};
    const _NgPoint3Str origin = vertexPoint(mesh, indices[0]);
    _NgPoint3Str previous = MathDifference(vertexPoint(mesh, indices[1]), origin);
    _NgPoint3Str area = {0, 0, 0};
    double extent = MathDot(previous, previous);
    for (int i = 2; i < corners; ++i) {
        const _NgPoint3Str current = MathDifference(vertexPoint(mesh, indices[i]), origin);
        area = MathAdd(area, MathCross(previous, current));
        extent += MathDot(current, current);
        previous = current;
    }
    // Written so that NaN counts as degenerate.
    const bool hasArea = MathLength(area) > kDegenerateArea * extent;
    return hasArea && MathNormalise(area) == 0 ? area : _NgPoint3Str{0, 0, 0};
}

/// The sides of all elements, filed by their lower vertex.
class SideTable {
public:
    explicit SideTable(const _NgMeshStr& mesh);
    bool ready() const { return m_sides != nullptr; }
    /// Brings the sides of equal edges together and returns the number of different edges.
    std::size_t sortAndCount();
    /// Calls visit(low, sides) for every edge, in the order of its lower, then its higher vertex.
    template <class Visit>
    void forEachEdge(const Visit& visit) const;

private:
    std::span<Side> sidesAt(std::uint32_t vertex) const {
        const std::uint32_t begin = vertex == 0 ? 0 : m_ends[vertex - 1];
        return {m_sides.get() + begin, m_sides.get() + m_ends[vertex]};
    }

    std::uint32_t m_vertexCount;
    HostArray<std::uint32_t> m_ends; ///< where each vertex's sides end
    HostArray<Side> m_sides;
};

SideTable::SideTable(const _NgMeshStr& mesh) : m_vertexCount(static_cast<std::uint32_t>(mesh.vertexCount)) {
    m_ends = hostArray<std::uint32_t>(m_vertexCount);
    if (!m_ends || countFaces(mesh) > kMaxFaces)
        return;
    std::fill_n(m_ends.get(), m_vertexCount, 0u);
    std::uint64_t total = 0;
    forEachSide(mesh, [&](std::uint32_t, std::uint32_t from, std::uint32_t to) {
        ++m_ends[std::min(from, to)];
        ++total;
    });
    if (total > std::numeric_limits<std::uint32_t>::max())
        return;
    m_sides = hostArray<Side>(total);
    if (!m_sides)
        return;
    // From counts to starts; filing the sides then moves every start to its end.
    std::uint32_t start = 0;
    for (std::uint32_t v = 0; v < m_vertexCount; ++v)
        start += std::exchange(m_ends[v], start);
    forEachSide(mesh, [&](std::uint32_t face, std::uint32_t from, std::uint32_t to) {
        m_sides[m_ends[std::min(from, to)]++] = Side(std::max(from, to), face, from > to);
    });
}

std::size_t SideTable::sortAndCount() {
    std::size_t edges = 0;
    for (std::uint32_t v = 0; v < m_vertexCount; ++v) {
        const std::span<Side> sides = sidesAt(v);
        std::sort(sides.begin(), sides.end());
        for (std::size_t i = 0; i < sides.size(); ++i)
            edges += i == 0 || sides[i].high() != sides[i - 1].high();
    }
    return edges;
}

template <class Visit>
void SideTable::forEachEdge(const Visit& visit) const {
    for (std::uint32_t v = 0; v < m_vertexCount; ++v) {
        const std::span<Side> sides = sidesAt(v);
        for (std::size_t first = 0, last = 0; first < sides.size(); first = last) {
            while (last < sides.size() && sides[last].high() == sides[first].high())
                ++last;
            visit(v, sides.subspan(first, last - first));
        }
    }
}

/// Writes the normals of the first two faces at an edge and returns its weight.
double classifyEdge(std::span<const Side> sides, const _NgPoint3Str* faceNormals, double normals[6]) {
    const _NgPoint3Str a = faceNormals[sides[0].face()];
    _NgPoint3Str b = sides.size() > 1 ? faceNormals[sides[1].face()] : _NgPoint3Str{0, 0, 0};
    // Neighbours of one orientation run along their edge in opposite directions; where they do not, one is
    // wound the other way round and its normal is turned, so that angle and silhouette mean the same on both.
    if (sides.size() > 1 && sides[0].descending() == sides[1].descending())
        b = MathScaled(b, -1);
    const double out[6] = {a.x, a.y, a.z, b.x, b.y, b.z};
    std::copy_n(out, 6, normals);
    // A face without a normal is smooth with none.
    const bool smooth = sides.size() == 2 && MathDot(a, b) >= kCosFeatureAngle;
    return smooth ? kSilhouetteWeight : kFeatureWeight;
}

HostArray<_NgPoint3Str> makeFaceNormals(const _NgMeshStr& mesh) {
    const std::size_t faces = countFaces(mesh);
    HostArray<_NgPoint3Str> normals = hostArray<_NgPoint3Str>(faces);
    if (normals)
        forEachFace(mesh, [&](std::uint32_t face, const std::uint32_t* indices, int corners) {
            normals[face] = faceNormal(mesh, indices, corners);
        });
    return normals;
}

void freeEdgeData(_NgMeshStr* mesh) {
    if (mesh->edgeCount != 0) // only then the edge array is the mesh's own
        NHostFree(mesh->edges);
    NHostFree(mesh->edgeFaceNormals);
    NHostFree(mesh->edgeWeights);
    mesh->edgeCount = 0;
    mesh->edges = nullptr;
    mesh->edgeFaceNormals = nullptr;
    mesh->edgeWeights = nullptr;
}

} // namespace

void ngl_process_mesh_edges(_NgMeshStr* mesh) {
    freeEdgeData(mesh);
    if (mesh->vertexCount <= 0 || !mesh->coords)
        return;
    SideTable table(*mesh);
    const std::size_t count = table.ready() ? table.sortAndCount() : 0;
    if (count == 0)
        return;
    const HostArray<_NgPoint3Str> faceNormals = makeFaceNormals(*mesh);
    HostArray<std::uint32_t> edges = hostArray<std::uint32_t>(count * 2);
    HostArray<double> normals = hostArray<double>(count * 6);
    HostArray<double> weights = hostArray<double>(count);
    if (!faceNormals || !edges || !normals || !weights)
        return;
    std::size_t edge = 0;
    table.forEachEdge([&](std::uint32_t low, std::span<const Side> sides) {
        edges[edge * 2] = low;
        edges[edge * 2 + 1] = sides[0].high();
        weights[edge] = classifyEdge(sides, faceNormals.get(), normals.get() + edge * 6);
        ++edge;
    });
    mesh->edgeCount = static_cast<std::uint32_t>(count);
    mesh->edges = edges.release();
    mesh->edgeFaceNormals = normals.release();
    mesh->edgeWeights = weights.release();
}
