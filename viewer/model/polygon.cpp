// Ear clipping (Meisters, 1975) in the plane of Newell's normal.
#include "viewer/model/polygon.h"

#include <algorithm>
#include <cmath>

namespace nruview {

namespace {

using Point2 = std::array<double, 2>;

// Ear tests allowed for one polygon, so that a damaged file cannot keep the viewer busy; what is left then is
// fanned.
constexpr std::size_t kTestsPerCornerPair = 4;
constexpr std::size_t kMostTests = 10'000'000;

/// Newell (in Sutherland et al., 1974): robust for concave and slightly warped polygons.
Point newellNormal(std::span<const Point> corners) {
    Point normal{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Point& a = corners[i];
        const Point& b = corners[(i + 1) % corners.size()];
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t u = (k + 1) % 3;
            const std::size_t v = (k + 2) % 3;
            normal[k] += (a[u] - b[u]) * (a[v] + b[v] - 2 * corners[0][v]);
        }
    }
    return normal;
}

/// The corners seen along the normal's largest axis, turning counter-clockwise.
std::vector<Point2> flatten(std::span<const Point> corners) {
    const Point normal = newellNormal(corners);
    std::size_t axis = 0;
    for (std::size_t k = 1; k < 3; ++k)
        if (std::abs(normal[k]) > std::abs(normal[axis]))
            axis = k;
    std::size_t u = (axis + 1) % 3;
    std::size_t v = (axis + 2) % 3;
    if (normal[axis] < 0)
        std::swap(u, v);
    std::vector<Point2> flat;
    for (const Point& corner : corners)
        flat.push_back({corner[u], corner[v]});
    return flat;
}

double turn(const Point2& a, const Point2& b, const Point2& c) {
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

bool covers(const Point2& a, const Point2& b, const Point2& c, const Point2& p) {
    if (p == a || p == b || p == c)
        return false;
    return turn(a, b, p) >= 0 && turn(b, c, p) >= 0 && turn(c, a, p) >= 0;
}

/// The part of a polygon that is still to be cut, as a ring of corners.
class Ring {
public:
    explicit Ring(std::vector<Point2> points) : m_points(std::move(points)), m_size(m_points.size()) {
        for (std::uint32_t i = 0; i < m_size; ++i) {
            m_next.push_back(static_cast<std::uint32_t>((i + 1) % m_size));
            m_previous.push_back(static_cast<std::uint32_t>((i + m_size - 1) % m_size));
        }
        m_tests = std::min(kTestsPerCornerPair * m_size * m_size, kMostTests);
    }

    std::size_t size() const { return m_size; }
    std::uint32_t next(std::uint32_t corner) const { return m_next[corner]; }

    /// The first ear from a corner on; the corner itself when there is none or the search has taken too long.
    std::uint32_t findEar(std::uint32_t start) {
        std::uint32_t corner = start;
        for (std::size_t i = 0; i < m_size && m_tests > 0; ++i, corner = m_next[corner])
            if (isEar(corner))
                return corner;
        return start;
    }

    std::array<std::uint32_t, 3> cut(std::uint32_t corner) {
        const std::uint32_t before = m_previous[corner];
        const std::uint32_t after = m_next[corner];
        m_next[before] = after;
        m_previous[after] = before;
        --m_size;
        return {before, corner, after};
    }

private:
    bool isEar(std::uint32_t corner) {
        const Point2& a = m_points[m_previous[corner]];
        const Point2& b = m_points[corner];
        const Point2& c = m_points[m_next[corner]];
        --m_tests;
        if (turn(a, b, c) <= 0)
            return false;
        for (std::uint32_t i = m_next[m_next[corner]]; i != m_previous[corner] && m_tests > 0;
             i = m_next[i]) {
            --m_tests;
            if (covers(a, b, c, m_points[i]))
                return false;
        }
        return true;
    }

    std::vector<Point2> m_points;
    std::vector<std::uint32_t> m_next;
    std::vector<std::uint32_t> m_previous;
    std::size_t m_size;
    std::size_t m_tests = 0;
};

} // namespace

std::vector<std::array<std::uint32_t, 3>> triangulatePolygon(std::span<const Point> corners) {
    std::vector<std::array<std::uint32_t, 3>> triangles;
    if (corners.size() < 3)
        return triangles;
    Ring ring(flatten(corners));
    std::uint32_t corner = 0;
    while (ring.size() > 2) {
        const std::uint32_t ear = ring.findEar(corner);
        triangles.push_back(ring.cut(ear));
        // Going on past the neighbour spreads the cuts and avoids slivers.
        corner = ring.next(ring.next(ear));
    }
    return triangles;
}

} // namespace nruview
