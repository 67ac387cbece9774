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

struct FaceNormal {
    Point area;
    Point normal;
};

std::vector<FaceNormal> faceNormals(const Surface& surface, std::span<const Point> points) {
    std::vector<FaceNormal> faces;
    faces.reserve(surface.triangles.size() + surface.quads.size());
    forEachFace(surface, [&](std::span<const std::uint32_t> face, std::uint32_t) {
        const Point area = areaVector(face, points);
        faces.push_back({area, unit(area)});
    });
    return faces;
}

/// The face of a corner, both in the order of forEachFace.
std::size_t faceOf(const Surface& surface, std::size_t corner) {
    const std::size_t triangles = surface.triangles.size();
    return corner < 3 * triangles ? corner / 3 : triangles + (corner - 3 * triangles) / 4;
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
    const std::vector<FaceNormal> faces = faceNormals(surface, points);
    std::vector<Point> normals;
    normals.reserve(meeting.corners.size());
    forEachFace(surface, [&](std::span<const std::uint32_t> face, std::uint32_t) {
        const Point own = faces[faceOf(surface, normals.size())].normal;
        for (std::uint32_t point : face) {
            Point sum{};
            for (std::uint32_t other : meeting.of(point)) {
                const auto& [area, normal] = faces[faceOf(surface, other)];
                const double cosine = dot(normal, own);
                if (std::abs(cosine) >= smooth)
                    sum = sum + std::copysign(1.0, cosine) * area;
            }
            normals.push_back(length(sum) > 0.0 ? unit(sum) : own);
        }
    });
    return normals;
}

} // namespace nruview
