// Area vectors of the faces, summed about each point.
#include "viewer/facenormals.h"

#include <numbers>
#include <numeric>

#include "viewer/vectors.h"

namespace nruview {

namespace {

/// Normal of a face, as long as twice its area.
Point areaVector(std::span<const std::uint32_t> face, std::span<const Point> points) {
    if (face.size() == 3)
        return cross(points[face[1]] - points[face[0]], points[face[2]] - points[face[0]]);
    return cross(points[face[2]] - points[face[0]], points[face[3]] - points[face[1]]);
}

struct Corner {
    std::uint32_t point;
    Point area;
    Point normal; ///< of the face
};

std::vector<Corner> listCorners(const Surface& surface, std::span<const Point> points) {
    std::vector<Corner> corners;
    corners.reserve(surface.triangles.size() * 3 + surface.quads.size() * 4);
    forEachFace(surface, [&](std::span<const std::uint32_t> face, std::uint32_t) {
        const Point area = areaVector(face, points);
        for (std::uint32_t point : face)
            corners.push_back({point, area, unit(area)});
    });
    return corners;
}

} // namespace

PointCorners pointCorners(const Surface& surface, std::size_t pointCount) {
    PointCorners meeting;
    meeting.first.assign(pointCount + 1, 0);
    forEachFace(surface, [&](std::span<const std::uint32_t> face, std::uint32_t) {
        for (std::uint32_t point : face)
            ++meeting.first[point + 1];
    });
    std::partial_sum(meeting.first.begin(), meeting.first.end(), meeting.first.begin());
    meeting.corners.resize(meeting.first.back());
    std::vector<std::uint32_t> next(meeting.first.begin(), meeting.first.end() - 1);
    std::uint32_t corner = 0;
    forEachFace(surface, [&](std::span<const std::uint32_t> face, std::uint32_t) {
        for (std::uint32_t point : face)
            meeting.corners[next[point]++] = corner++;
    });
    return meeting;
}

std::vector<Point> cornerNormals(const Surface& surface, std::span<const Point> points,
                                 const PointCorners& meeting, double creaseDeg) {
    const double smooth = std::cos(creaseDeg * std::numbers::pi / 180.0);
    const std::vector<Corner> corners = listCorners(surface, points);
    std::vector<Point> normals;
    normals.reserve(corners.size());
    for (const Corner& corner : corners) {
        Point sum{};
        for (std::uint32_t other : meeting.of(corner.point)) {
            const double cosine = dot(corners[other].normal, corner.normal);
            if (std::abs(cosine) >= smooth)
                sum = sum + std::copysign(1.0, cosine) * corners[other].area;
        }
        normals.push_back(length(sum) > 0.0 ? unit(sum) : corner.normal);
    }
    return normals;
}

} // namespace nruview
