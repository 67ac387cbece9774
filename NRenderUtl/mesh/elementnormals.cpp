// Area vectors of the faces summed about each node; nodes at a crease are then split.
#include "NRenderUtl/mesh/elementnormals.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

using Vector = ElementSurface::Vector;

constexpr float kCosineSlack = 1e-6f; // rounding of the cosine of two unit vectors

float dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

float length(const Vector& a) {
    return std::sqrt(dot(a, a));
}

/// Zero where there is no direction.
Vector unit(const Vector& a) {
    const float l = length(a);
    return l > 0.0f ? Vector{a[0] / l, a[1] / l, a[2] / l} : Vector{};
}

void addTo(Vector& sum, const Vector& a, float factor = 1.0f) {
    for (int k = 0; k < 3; ++k)
        sum[k] += factor * a[k];
}

// --- faces -------------------------------------------------------------------------------------------------

/// Normal of a face as long as twice its area times scale squared, in double precision up to the result.
Vector areaVector(const double* nodes, std::span<const std::uint32_t> face, double scale) {
    const bool quad = face.size() == 4;
    const double* p[4] = {nodes + 3 * std::size_t{face[0]}, nodes + 3 * std::size_t{face[quad ? 2 : 1]},
                          nodes + 3 * std::size_t{face[quad ? 1 : 0]},
                          nodes + 3 * std::size_t{face[quad ? 3 : 2]}};
    double a[3], b[3];
    for (int k = 0; k < 3; ++k) {
        a[k] = scale * (p[1][k] - p[0][k]);
        b[k] = scale * (p[3][k] - p[2][k]);
    }
    return {static_cast<float>(a[1] * b[2] - a[2] * b[1]), static_cast<float>(a[2] * b[0] - a[0] * b[2]),
            static_cast<float>(a[0] * b[1] - a[1] * b[0])};
}

/// Brings every length of the surface to about 1 at most, so that areas are single-precision numbers.
double unitScale(const ElementSurface& surface) {
    float largest = 0.0f;
    for (const Vector& p : surface.positions)
        for (float x : p)
            largest = std::max(largest, std::abs(x));
    return largest > 0.0f ? 1.0 / largest : 1.0;
}

std::vector<Vector> areaVectors(const double* nodes, const ElementSurface& surface) {
    const double scale = unitScale(surface);
    std::vector<Vector> areas(surface.faceCount());
    for (std::uint32_t i = 0; i < surface.faceCount(); ++i)
        areas[i] = areaVector(nodes, surface.face(i), scale);
    return areas;
}

/// The means of the nodes; zero where no face has an area.
void makeMeans(const std::vector<Vector>& areas, ElementSurface& surface) {
    surface.normals.assign(surface.nodeCount, Vector{});
    for (std::uint32_t i = 0; i < surface.faceCount(); ++i)
        for (std::uint32_t node : surface.face(i))
            addTo(surface.normals[node], areas[i]);
    for (Vector& normal : surface.normals)
        normal = unit(normal);
}

// --- creases -----------------------------------------------------------------------------------------------

constexpr std::uint32_t kNoCrease = 0xFFFFFFFF;

/// Where more faces meet at a crease, as at a cone's tip, each keeps its own normal: comparing each with each
/// would take their square in time.
constexpr std::size_t kMostCompared = 1000;

/// The nodes about which the faces may not all share a normal, numbered; kNoCrease for all others. Where each
/// face is within half the crease angle of the mean, any two are within the whole one.
struct Creases {
    std::vector<std::uint32_t> numberOf; ///< of each node
    std::vector<std::uint32_t> nodes;    ///< of each number
};

Creases findCreases(const std::vector<Vector>& areas, const ElementSurface& surface, double creaseRad) {
    const float agree = static_cast<float>(std::cos(creaseRad / 2)) - kCosineSlack;
    Creases creases;
    creases.numberOf.assign(surface.nodeCount, kNoCrease);
    for (std::uint32_t i = 0; i < surface.faceCount(); ++i) {
        const float least = agree * length(areas[i]);
        for (std::uint32_t node : surface.face(i))
            if (!(dot(areas[i], surface.normals[node]) >= least) && creases.numberOf[node] == kNoCrease) {
                creases.numberOf[node] = static_cast<std::uint32_t>(creases.nodes.size());
                creases.nodes.push_back(node);
            }
    }
    return creases;
}

/// A corner of a face with an area.
struct Corner {
    std::uint32_t place; ///< in the surface's corners
    std::uint32_t face;
};

/// The corners at crease i are all[first[i]] to all[first[i + 1] - 1].
struct CreaseCorners {
    std::vector<std::uint32_t> first;
    std::vector<Corner> all;
};

CreaseCorners gatherCorners(const std::vector<Vector>& areas, const ElementSurface& surface,
                            const Creases& creases) {
    const auto forEachCorner = [&](const auto& act) {
        for (std::uint32_t i = 0; i < surface.faceCount(); ++i)
            for (const std::uint32_t& node : surface.face(i))
                if (creases.numberOf[node] != kNoCrease && length(areas[i]) > 0.0f)
                    act(creases.numberOf[node],
                        Corner{static_cast<std::uint32_t>(&node - surface.corners.data()), i});
    };
    CreaseCorners corners;
    corners.first.assign(creases.nodes.size() + 1, 0);
    forEachCorner([&](std::uint32_t crease, const Corner&) { ++corners.first[crease + 1]; });
    std::partial_sum(corners.first.begin(), corners.first.end(), corners.first.begin());
    corners.all.resize(corners.first.back());
    std::vector<std::uint32_t> next(corners.first.begin(), corners.first.end() - 1);
    forEachCorner([&](std::uint32_t crease, const Corner& c) { corners.all[next[crease]++] = c; });
    return corners;
}

/// Mean of the faces that meet `own` at the crease angle or less. One that does so turned over, as where
/// neighbours are wound against each other, counts turned; from 90 degrees on that would be every one.
Vector meanAbout(std::span<const Corner> corners, const std::vector<Vector>& areas, const Vector& own,
                 float smooth) {
    Vector sum{};
    for (const Corner& other : corners) {
        const float cosine = dot(unit(areas[other.face]), own);
        if (cosine >= smooth)
            addTo(sum, areas[other.face]);
        else if (smooth > 0.0f && -cosine >= smooth)
            addTo(sum, areas[other.face], -1.0f);
    }
    return length(sum) > 0.0f ? unit(sum) : own;
}

/// Gives the corners about a node their normals: the first the node's own vertex, others a copy for each
/// normal.
void split(std::span<const Corner> corners, const std::vector<Vector>& areas, float smooth,
           ElementSurface& surface) {
    if (corners.empty())
        return;
    const std::uint32_t node = surface.corners[corners[0].place];
    const std::size_t copies = surface.normals.size();
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Vector own = unit(areas[corners[i].face]);
        const Vector normal = corners.size() > kMostCompared ? own : meanAbout(corners, areas, own, smooth);
        if (i == 0)
            surface.normals[node] = normal;
        // Corners that see the same faces get the same sum, bit by bit.
        std::size_t vertex = node;
        if (normal != surface.normals[node])
            vertex = std::find(surface.normals.end() - static_cast<std::ptrdiff_t>(std::min(
                                                           surface.normals.size() - copies, kMostCompared)),
                               surface.normals.end(), normal) -
                     surface.normals.begin();
        if (vertex == surface.normals.size()) {
            surface.normals.push_back(normal);
            surface.positions.push_back(surface.positions[node]);
            surface.copiedNodes.push_back(node);
        }
        surface.corners[corners[i].place] = static_cast<std::uint32_t>(vertex);
    }
}

void splitAll(const Creases& creases, const std::vector<Vector>& areas, float smooth,
              ElementSurface& surface) {
    const CreaseCorners corners = gatherCorners(areas, surface, creases);
    for (std::size_t i = 0; i < creases.nodes.size(); ++i)
        split(std::span(corners.all).subspan(corners.first[i], corners.first[i + 1] - corners.first[i]),
              areas, smooth, surface);
}

} // namespace

void makeElementNormals(const double* nodes, double creaseDeg, ElementSurface& surface) {
    const double creaseRad = std::clamp(creaseDeg, 0.0, 180.0) * std::numbers::pi / 180.0;
    const float smooth = static_cast<float>(std::cos(creaseRad)) - kCosineSlack;
    const std::vector<Vector> areas = areaVectors(nodes, surface);
    makeMeans(areas, surface);
    const Creases creases = findCreases(areas, surface, creaseRad);
    if (!creases.nodes.empty())
        splitAll(creases, areas, smooth, surface);
    std::replace(surface.normals.begin(), surface.normals.end(), Vector{}, Vector{0.0f, 0.0f, 1.0f});
}
