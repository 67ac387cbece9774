// Corners are gathered about their points; at each point they get their normals and share vertices.
#include "viewer/bodies/creasenormals.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "viewer/model/vectors.h"

namespace nruview {

namespace {

using Normal = std::array<float, 3>;

constexpr double kCosineSlack = 1e-6; ///< single-precision coordinates of a file and rounding

/// Where more corners meet, as at a cone's tip, they keep their faces' normals: comparing each with each
/// would take their square in time. So would looking up the corners of larger polygons.
constexpr std::size_t kMostCompared = 1000;

/// A corner of a shown face.
struct Corner {
    std::uint32_t place; ///< in ShadedVertices::corners
    std::uint32_t face, cell;
    float angleRad;
};

/// The corners at point i are all[first[i]] to all[first[i + 1] - 1].
struct PointCorners {
    std::vector<std::size_t> first;
    std::vector<Corner> all;
    std::span<const Corner> at(std::size_t point) const {
        return {all.data() + first[point], first[point + 1] - first[point]};
    }
};

Point faceNormal(const ShownModel& shown, std::span<const std::uint32_t> face) {
    const auto side = [&](std::size_t from, std::size_t to) {
        return shown.points[face[to]] - shown.points[face[from]];
    };
    return unit(face.size() == 4 ? cross(side(0, 2), side(1, 3)) : cross(side(0, 1), side(0, 2)));
}

float angleAt(const ShownModel& shown, std::span<const std::uint32_t> face, std::size_t corner) {
    const std::size_t n = face.size();
    const Point& own = shown.points[face[corner]];
    const Point to = shown.points[face[(corner + 1) % n]] - own;
    const Point from = shown.points[face[(corner + n - 1) % n]] - own;
    return static_cast<float>(std::atan2(length(cross(to, from)), dot(to, from)));
}

std::vector<Point> faceNormals(const ShownModel& shown) {
    std::vector<Point> normals;
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, auto) {
        normals.push_back(faceNormal(shown, face));
    });
    return normals;
}

PointCorners gatherCorners(const ShownModel& shown) {
    PointCorners corners;
    corners.first.assign(shown.points.size() + 1, 0);
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
        for (std::size_t i = 0; i < face.size() && shown.elements.isShown(cell); ++i)
            ++corners.first[face[i] + 1];
    });
    std::partial_sum(corners.first.begin(), corners.first.end(), corners.first.begin());
    corners.all.resize(corners.first.back());
    std::vector<std::size_t> next(corners.first.begin(), corners.first.end() - 1);
    std::uint32_t place = 0, number = 0;
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
        for (std::size_t i = 0; i < face.size() && shown.elements.isShown(cell); ++i)
            corners.all[next[face[i]]++] = {place + static_cast<std::uint32_t>(i), number, cell,
                                            angleAt(shown, face, i)};
        place += static_cast<std::uint32_t>(face.size());
        ++number;
    });
    return corners;
}

/// The file's normal of a point in a cell; zero without one.
Normal fileNormal(const ShownModel& shown, std::uint32_t cell, std::uint32_t point) {
    if (!shown.hasFileNormals)
        return {};
    const Model& model = shown.model;
    const auto nodes = model.cellNodes(cell);
    const auto end = nodes.begin() + static_cast<std::ptrdiff_t>(std::min(nodes.size(), kMostCompared));
    const auto found = std::find(nodes.begin(), end, point);
    if (found == end)
        return {};
    return model.cornerNormals[model.offsets[cell] + static_cast<std::size_t>(found - nodes.begin())];
}

/// The mean by angles (Thuermer & Wuethrich 1998), which does not depend on how a face is cut into
/// triangles. A neighbour wound the other way round counts turned over; from 90 degrees on each would be one.
Point meanAbout(std::span<const Corner> corners, const std::vector<Point>& normals, const Point& own,
                double smooth) {
    Point sum{};
    for (const Corner& other : corners) {
        const double cosine = dot(normals[other.face], own);
        if (cosine >= smooth)
            sum = sum + other.angleRad * normals[other.face];
        else if (smooth > 0.0 && -cosine >= smooth)
            sum = sum - other.angleRad * normals[other.face];
    }
    return length(sum) > 0.0 ? unit(sum) : own;
}

Normal toSingle(const Point& normal) {
    if (length(normal) == 0.0)
        return {0.0f, 0.0f, 1.0f}; // of a face without an area, which no light meets
    return {static_cast<float>(normal[0]), static_cast<float>(normal[1]), static_cast<float>(normal[2])};
}

Normal normalOf(const ShownModel& shown, const Corner& corner, std::uint32_t point,
                std::span<const Corner> around, const std::vector<Point>& normals, double smooth) {
    const Normal given = fileNormal(shown, corner.cell, point);
    if (given != Normal{})
        return given;
    const Point& own = normals[corner.face];
    return toSingle(around.size() > kMostCompared ? own : meanAbout(around, normals, own, smooth));
}

/// Corners of one point that have the same normal, bit by bit, share a vertex; so do those that see the same
/// faces.
void addVertices(std::vector<std::pair<Normal, std::uint32_t>>& corners, std::uint32_t point,
                 ShadedVertices& vertices) {
    std::sort(corners.begin(), corners.end());
    for (std::size_t i = 0; i < corners.size(); ++i) {
        if (i == 0 || corners[i].first != corners[i - 1].first) {
            vertices.points.push_back(point);
            vertices.normals.push_back(corners[i].first);
        }
        vertices.corners[corners[i].second] = static_cast<std::uint32_t>(vertices.points.size() - 1);
    }
}

} // namespace

ShadedVertices shadeVertices(const ShownModel& shown) {
    const double smooth = std::cos(shown.creaseDeg * std::numbers::pi / 180.0) - kCosineSlack;
    const std::vector<Point> normals = faceNormals(shown);
    const PointCorners corners = gatherCorners(shown);
    ShadedVertices vertices;
    vertices.corners.assign(3 * shown.surface.triangles.size() + 4 * shown.surface.quads.size(),
                            ShadedVertices::kNone);
    std::vector<std::pair<Normal, std::uint32_t>> found;
    for (std::uint32_t point = 0; point < shown.points.size(); ++point) {
        const std::span<const Corner> around = corners.at(point);
        found.clear();
        for (const Corner& corner : around)
            found.emplace_back(normalOf(shown, corner, point, around, normals, smooth), corner.place);
        addVertices(found, point, vertices);
    }
    return vertices;
}

} // namespace nruview
