// Mesh picking: which vertex, edge or element of a mesh a ray meets.
//
// The rule is that of testing every edge of every element in order. Most edges are proved to be out of reach
// before that: both ends lie beyond the tolerance on one side of the ray, along one of two axes perpendicular
// to it. Such a proof is a bit of the vertices' outcodes (Cohen and Sutherland, 1967), made once per vertex.
#include "NRenderUtl/mesh/nmesh.h"

#include <array>
#include <cmath>
#include <cstring>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/mesh/hostarray.h"
#include "NRenderUtl/mesh/meshaccess.h"

namespace {

using Outcode = std::uint8_t;

constexpr int kMaxPickVertices = 10; // deliberate: larger elements are tested on their first ten vertices
constexpr double kNoDistance = 1e30;
// Allowance for rounding in the projection and in the exact test, some thousand units in the last place, and
// for what underflows in them.
constexpr double kRelativeSlack = 1e-12;
constexpr double kAbsoluteSlack = 1e-150;
// Squared ray lengths between which the exact test neither underflows nor overflows.
constexpr double kMinSquaredRay = 1e-200;
constexpr double kMaxSquaredRay = 1e200;

/// Places vertices relative to the ray, seen along it.
class RayView {
public:
    RayView(const _NgPoint3Str& start, const _NgPoint3Str& end, const NgMatrix matrix);
    /// False when no edge can be ruled out, the ray or the matrix being out of bounds: all outcodes are 0.
    bool usable() const { return m_usable; }
    /// Coordinates of a vertex across the ray, and how large they must be to lie beyond reach for certain.
    struct Place {
        double u, v, limit;
    };
    Place placeOf(const double* p, double reach) const {
        const double size = m_size[0] * std::fabs(p[0]) + m_size[1] * std::fabs(p[1]) +
                            m_size[2] * std::fabs(p[2]) + m_size[3];
        return {m_u[0] * p[0] + m_u[1] * p[1] + m_u[2] * p[2] + m_u[3],
                m_v[0] * p[0] + m_v[1] * p[1] + m_v[2] * p[2] + m_v[3],
                reach + (kRelativeSlack * size + kAbsoluteSlack)};
    }
    /// One bit per side of the ray on which the vertex lies farther than reach; none for what is not finite.
    static Outcode outcode(double u, double v, double limit) {
        return static_cast<Outcode>((u > limit) | (u < -limit) << 1 | (v > limit) << 2 | (v < -limit) << 3);
    }
    /// Whether an edge lies beyond reach for certain, as a circle about its middle.
    static bool isBeyond(const Place& a, const Place& b) {
        const double u = a.u + b.u, v = a.v + b.v;
        const double twice = a.limit + b.limit + std::fabs(a.u - b.u) + std::fabs(a.v - b.v);
        return u * u + v * v > twice * twice;
    }
    /// Fills in the outcodes of an array of vertices, zero at first; for a smaller reach than before, again.
    void outcodes(const double* coords, std::size_t count, double reach, Outcode* out) const;

private:
    using Row = std::array<double, 4>;
    static Row project(const _NgPoint3Str& axis, const _NgPoint3Str& start, const NgMatrix matrix);

    Row m_u{}, m_v{}; ///< coordinates across the ray of a vertex before its transformation
    Row m_size{};     ///< bound of all numbers that enter a transformed vertex's place
    bool m_usable = false;
};

RayView::Row RayView::project(const _NgPoint3Str& axis, const _NgPoint3Str& start, const NgMatrix matrix) {
    Row row;
    for (int i = 0; i < 4; ++i)
        row[i] = axis.x * matrix[i][0] + axis.y * matrix[i][1] + axis.z * matrix[i][2];
    row[3] -= MathDot(axis, start);
    return row;
}

RayView::RayView(const _NgPoint3Str& start, const _NgPoint3Str& end, const NgMatrix matrix) {
    _NgPoint3Str along = MathDifference(end, start);
    const double squared = MathDot(along, along);
    if (!(squared > kMinSquaredRay && squared < kMaxSquaredRay) || MathNormalise(along) != 0)
        return;
    const bool steep = std::fabs(along.z) > 0.7;
    _NgPoint3Str u = MathCross(along, steep ? _NgPoint3Str{1, 0, 0} : _NgPoint3Str{0, 0, 1});
    MathNormalise(u);
    m_u = project(u, start, matrix);
    m_v = project(MathCross(along, u), start, matrix);
    for (int i = 0; i < 4; ++i)
        m_size[i] = std::fabs(matrix[i][0]) + std::fabs(matrix[i][1]) + std::fabs(matrix[i][2]);
    m_size[3] += std::fabs(start.x) + std::fabs(start.y) + std::fabs(start.z);
    m_usable = std::isfinite(m_size[0] + m_size[1] + m_size[2] + m_size[3]);
    if (!m_usable)
        m_size[3] = HUGE_VAL;
}

/// In two steps per chunk, of which the arithmetic one so becomes vector code: 3 ms instead of 5 a million.
void RayView::outcodes(const double* coords, std::size_t count, double reach, Outcode* out) const {
    constexpr std::size_t kChunk = 256;
    double u[kChunk], v[kChunk], limit[kChunk];
    const RayView view = *this;
    for (std::size_t first = 0; first < count; first += kChunk) {
        const std::size_t n = std::min(count - first, kChunk);
        // A smaller reach tells little about vertices that are all outside already.
        if (!std::memchr(out + first, 0, n))
            continue;
        const double* p = coords + first * 3;
        for (std::size_t i = 0; i < n; ++i) {
            const Place place = view.placeOf(p + i * 3, reach);
            u[i] = place.u;
            v[i] = place.v;
            limit[i] = place.limit;
        }
        for (std::size_t i = 0; i < n; ++i)
            out[first + i] = outcode(u[i], v[i], limit[i]);
    }
}

/// The best hit so far.
struct Hit {
    double distance = kNoDistance;
    _NgPickStatus status = NgPickNothing;
    const _NgConnectStr* block = nullptr;
    std::uint32_t element = 0;
    int side = 0;   ///< of the element
    int corner = 0; ///< picked vertex, as a position in the element
};

class Picker {
public:
    Picker(const _NgMeshStr& mesh, const _NgPoint3Str& start, const _NgPoint3Str& end, const NgMatrix matrix,
           double tolerance)
        : m_mesh(mesh), m_start(start), m_end(end), m_matrix(matrix), m_tolerance(tolerance),
          m_view(start, end, matrix) {}

    /// Goes through all blocks, to the first element that is hit on all its edges.
    const Hit& run();

private:
    /// Farther away than this no edge is hit.
    double reach() const { return std::min(m_tolerance, m_best.distance); }
    void makeOutcodes();
    void tightenOutcodes();
    bool runBlock(const _NgConnectStr& block);
    template <int Corners>
    bool runElements(const _NgConnectStr& block);
    bool testElement(const _NgConnectStr& block, std::uint32_t element, int corners);
    bool testSide(std::uint32_t from, std::uint32_t to, Hit candidate, int corners);

    const _NgMeshStr& m_mesh;
    const _NgPoint3Str m_start, m_end;
    const double (*m_matrix)[4];
    const double m_tolerance;
    const RayView m_view;
    HostArray<Outcode> m_outcodes; ///< one per vertex; null when no edge can be ruled out
    double m_outcodeReach = 0;     ///< what they were made for
    std::uint32_t m_passed = 0;    ///< elements that they have let pass
    Hit m_best;
};

const Hit& Picker::run() {
    // Written so that a tolerance that is not a number picks nothing, as a negative one.
    if (!(m_tolerance >= 0))
        return m_best;
    const auto count = static_cast<std::size_t>(m_mesh.vertexCount);
    if (m_view.usable() && (m_outcodes = hostArray<Outcode>(count))) {
        std::fill_n(m_outcodes.get(), count, Outcode{0});
        makeOutcodes();
    }
    for (const _NgConnectStr* block = m_mesh.blocks; block; block = block->next)
        if (runBlock(*block))
            break;
    return m_best;
}

void Picker::makeOutcodes() {
    m_outcodeReach = reach();
    m_passed = 0;
    m_view.outcodes(m_mesh.coords, static_cast<std::size_t>(m_mesh.vertexCount), m_outcodeReach,
                    m_outcodes.get());
}

/// Makes the outcodes anew for the best hit's distance, once so many elements have passed that it pays.
void Picker::tightenOutcodes() {
    if (++m_passed > static_cast<std::uint32_t>(m_mesh.vertexCount) / 3 && reach() < m_outcodeReach / 2)
        makeOutcodes();
}

bool Picker::runBlock(const _NgConnectStr& block) {
    if (m_outcodes && block.verticesPerElement == 3)
        return runElements<3>(block);
    if (m_outcodes && block.verticesPerElement == 4)
        return runElements<4>(block);
    const int corners = std::min<int>(block.verticesPerElement, kMaxPickVertices);
    const std::uint32_t count = usableElements(block);
    for (std::uint32_t e = 0; e < count; ++e)
        if (testElement(block, e, corners))
            return true;
    return false;
}

/// The common sizes: passes over elements whose vertices all lie beyond reach on one side.
template <int Corners>
bool Picker::runElements(const _NgConnectStr& block) {
    const Outcode* outcodes = m_outcodes.get();
    const auto limit = static_cast<std::uint32_t>(m_mesh.vertexCount);
    const std::uint32_t count = usableElements(block);
    const std::uint32_t* indices = block.indices;
    for (std::uint32_t e = 0; e < count; ++e, indices += Corners) {
        if (*std::max_element(indices, indices + Corners) >= limit)
            continue;
        int common = outcodes[indices[0]];
        for (int i = 1; i < Corners; ++i)
            common &= outcodes[indices[i]];
        if (common != 0)
            continue;
        if (testElement(block, e, Corners))
            return true;
        tightenOutcodes();
    }
    return false;
}

/// Tests an element's edges in order; true when every one of them became the best hit inside its ends.
bool Picker::testElement(const _NgConnectStr& block, std::uint32_t element, int corners) {
    const std::uint32_t* indices = elementIndices(block, element);
    if (!areVertices(m_mesh, indices, corners))
        return false;
    std::array<RayView::Place, kMaxPickVertices> places;
    std::array<Outcode, kMaxPickVertices> outcodes;
    int common = 0xFF;
    for (int i = 0; i < corners; ++i) {
        places[i] = m_view.placeOf(vertexCoords(m_mesh, indices[i]), reach());
        outcodes[i] = RayView::outcode(places[i].u, places[i].v, places[i].limit);
        common &= outcodes[i];
    }
    if (common != 0)
        return false;
    int insideHits = 0;
    for (int i = 0; i < corners; ++i) {
        const int next = i + 1 == corners ? 0 : i + 1;
        if ((outcodes[i] & outcodes[next]) == 0 && !RayView::isBeyond(places[i], places[next]))
            insideHits +=
                testSide(indices[i], indices[next], {0, NgPickNothing, &block, element, i, i}, corners);
    }
    if (insideHits < corners)
        return false;
    m_best.status = NgPickElement;
    return true;
}

/// Makes an edge the best hit when it is near enough; true when it was hit inside.
bool Picker::testSide(std::uint32_t from, std::uint32_t to, Hit candidate, int corners) {
    _NgPoint3Str a, b;
    NglTransform33p(vertexPoint(m_mesh, from), m_matrix, a);
    NglTransform33p(vertexPoint(m_mesh, to), m_matrix, b);
    const NgSegmentNearest nearest = MathNearestPointOnSegmentFromLine(a, b, m_start, m_end);
    if (!(nearest.distance <= m_tolerance && nearest.distance < m_best.distance))
        return false;
    const bool inside = nearest.spot == NgSegmentSpot::Inside;
    const bool atStart = inside ? nearest.t < 0.5 : nearest.spot == NgSegmentSpot::Start;
    if (!atStart)
        candidate.corner = candidate.side + 1 == corners ? 0 : candidate.side + 1;
    candidate.distance = nearest.distance;
    candidate.status = inside ? NgPickEdge : NgPickVertex;
    m_best = candidate;
    return inside;
}

/// The second vertex of an edge hit. Deliberate: hosts rely on the entry behind the edge's start where the
/// start was picked, also on an element's last edge, and on the entry before it, not the start, where the end
/// was picked. Where there is no such entry, or it names no vertex, it is the edge's other end.
std::uint32_t secondEdgeVertex(const _NgMeshStr& mesh, const Hit& hit) {
    const _NgConnectStr& block = *hit.block;
    const std::uint32_t* indices = elementIndices(block, hit.element);
    const int corners = std::min<int>(block.verticesPerElement, kMaxPickVertices);
    const std::uint32_t start = indices[hit.side];
    const std::uint32_t end = indices[hit.side + 1 == corners ? 0 : hit.side + 1];
    const bool startPicked = indices[hit.corner] == start;
    const std::size_t k =
        static_cast<std::size_t>(indices - block.indices) + static_cast<std::size_t>(hit.side);
    const std::size_t size =
        std::size_t{block.elementCount} * static_cast<std::size_t>(block.verticesPerElement);
    const std::size_t neighbour = startPicked ? k + 1 : k - 1;
    if (neighbour < size && areVertices(mesh, block.indices + neighbour, 1))
        return block.indices[neighbour];
    return startPicked ? end : start;
}

/// The vertices that a hit reports, the picked one first. Returns their number.
int hitVertices(const _NgMeshStr& mesh, const Hit& hit,
                std::array<std::uint32_t, kMaxPickVertices>& vertices) {
    const std::uint32_t* indices = elementIndices(*hit.block, hit.element);
    vertices[0] = indices[hit.corner];
    if (hit.status == NgPickVertex)
        return 1;
    if (hit.status == NgPickEdge) {
        vertices[1] = secondEdgeVertex(mesh, hit);
        return 2;
    }
    const int corners = std::min<int>(hit.block->verticesPerElement, kMaxPickVertices);
    for (int i = 1; i < corners; ++i)
        vertices[i] = indices[(hit.corner + i) % corners];
    return corners;
}

} // namespace

_NgPickStatus NglPickMesh(_NgMeshStr* mesh, _NgPoint3Str* rayStart, _NgPoint3Str* rayEnd,
                          double (*matrix)[4][4], _NgPoint3Str** points, int** indices, double* tolerance) {
    if (!mesh->blocks || mesh->vertexCount <= 0 || !mesh->coords)
        return NgPickNothing;
    Picker picker(*mesh, *rayStart, *rayEnd, *matrix, *tolerance);
    const Hit& hit = picker.run();
    if (hit.status == NgPickNothing)
        return NgPickNothing;
    std::array<std::uint32_t, kMaxPickVertices> vertices;
    const int count = hitVertices(*mesh, hit, vertices);
    HostArray<int> outIndices = hostArray<int>(count);
    HostArray<_NgPoint3Str> outPoints = hostArray<_NgPoint3Str>(count);
    if (!outIndices || !outPoints)
        return NgPickNothing;
    for (int i = 0; i < count; ++i) {
        outIndices[i] = static_cast<int>(vertices[i]);
        outPoints[i] = vertexPoint(*mesh, vertices[i]);
    }
    *indices = outIndices.release();
    *points = outPoints.release();
    return hit.status;
}
