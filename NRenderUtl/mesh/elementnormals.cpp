// Area vectors of the faces summed about each node; nodes at a crease are then split.
#include "NRenderUtl/mesh/elementnormals.h"

#include <algorithm>
#include <cmath>
#include <memory>
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

/// Calls act(number, corners) for each face, with corners of three or of four: loops over them are unrolled.
template <class Act>
void forEachFace(const ElementSurface& surface, const Act& act) {
    const std::uint32_t* corner = surface.corners.data();
    std::uint32_t face = 0;
    for (; face < surface.triangleCount; ++face, corner += 3)
        act(face, std::span<const std::uint32_t, 3>(corner, 3));
    for (; face < surface.faceCount(); ++face, corner += 4)
        act(face, std::span<const std::uint32_t, 4>(corner, 4));
}

/// Normal of a face as long as twice its area times scale squared, in double precision up to the result.
template <std::size_t Count>
Vector areaVector(const double* nodes, std::span<const std::uint32_t, Count> face, double scale) {
    constexpr bool quad = Count == 4;
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
    Vector largest{};
    for (const Vector& p : surface.positions)
        for (int k = 0; k < 3; ++k)
            largest[k] = std::max(largest[k], std::abs(p[k]));
    const float most = std::max({largest[0], largest[1], largest[2]});
    return most > 0.0f ? 1.0 / most : 1.0;
}

/// One for each face.
using Areas = std::unique_ptr<Vector[]>;

/// Sums up the area vectors about the nodes.
Areas sumAreas(const double* nodes, ElementSurface& surface) {
    const double scale = unitScale(surface);
    surface.normals.assign(surface.nodeCount, Vector{}); // first, so that what is freed does not lie between
    Areas areas = std::make_unique_for_overwrite<Vector[]>(surface.faceCount());
    forEachFace(surface, [&](std::uint32_t i, const auto& face) {
        areas[i] = areaVector(nodes, face, scale);
        for (const std::uint32_t node : face)
            addTo(surface.normals[node], areas[i]);
    });
    return areas;
}

/// Makes means of the sums; zero where no face has an area. Whether there is such a node.
bool makeMeans(ElementSurface& surface) {
    bool lacking = false;
    for (Vector& normal : surface.normals) {
        normal = unit(normal);
        lacking |= normal == Vector{};
    }
    return lacking;
}

// --- creases -----------------------------------------------------------------------------------------------

constexpr std::uint32_t kNoCrease = 0xFFFFFFFF;

/// Where more faces meet at a crease, as at a cone's tip, each keeps its own normal: comparing each with each
/// would take their square in time.
constexpr std::size_t kMostCompared = 1000;

/// The nodes about which the faces may not all share a normal, numbered; kNoCrease for all others. Where each
/// face is within half the crease angle of the mean, any two are within the whole one.
struct Creases {
    std::vector<std::uint32_t> numberOf; ///< of each node; empty without any
    std::vector<std::uint32_t> nodes;    ///< of each number
};

Creases findCreases(const Areas& areas, const ElementSurface& surface, double creaseRad) {
    const float agree = static_cast<float>(std::cos(creaseRad / 2)) - kCosineSlack;
    Creases creases;
    const auto add = [&](std::uint32_t node) {
        if (creases.nodes.empty())
            creases.numberOf.assign(surface.nodeCount, kNoCrease);
        if (creases.numberOf[node] != kNoCrease)
            return;
        creases.numberOf[node] = static_cast<std::uint32_t>(creases.nodes.size());
        creases.nodes.push_back(node);
    };
    forEachFace(surface, [&](std::uint32_t i, const auto& face) {
        const float least = agree * length(areas[i]);
        for (const std::uint32_t node : face)
            if (!(dot(areas[i], surface.normals[node]) >= least))
                add(node);
    });
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

CreaseCorners gatherCorners(const Areas& areas, const ElementSurface& surface, const Creases& creases) {
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
Vector meanAbout(std::span<const Corner> corners, const Areas& areas, const Vector& own, float smooth) {
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
void split(std::span<const Corner> corners, const Areas& areas, float smooth, ElementSurface& surface) {
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

void splitAll(const Creases& creases, const Areas& areas, float smooth, ElementSurface& surface) {
    const CreaseCorners corners = gatherCorners(areas, surface, creases);
    for (std::size_t i = 0; i < creases.nodes.size(); ++i)
        split(std::span(corners.all).subspan(corners.first[i], corners.first[i + 1] - corners.first[i]),
              areas, smooth, surface);
}

} // namespace

void makeElementNormals(const double* nodes, double creaseDeg, ElementSurface& surface) {
    const double creaseRad = std::clamp(creaseDeg, 0.0, 180.0) * std::numbers::pi / 180.0;
    const float smooth = static_cast<float>(std::cos(creaseRad)) - kCosineSlack;
    const Areas areas = sumAreas(nodes, surface);
    const bool lacking = makeMeans(surface);
    const Creases creases = findCreases(areas, surface, creaseRad);
    if (!creases.nodes.empty())
        splitAll(creases, areas, smooth, surface);
    if (lacking)
        std::replace(surface.normals.begin(), surface.normals.end(), Vector{}, Vector{0.0f, 0.0f, 1.0f});
}
