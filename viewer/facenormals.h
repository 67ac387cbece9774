// Normals for smooth shading that keeps sharp edges sharp.
#pragma once

#include "viewer/surface.h"

namespace nruview {

/// The corners of faces that meet in each point: those of point p are corners[first[p]] to corners[first[p +
/// 1] - 1]. Corners are numbered through the faces in the order of forEachFace.
struct PointCorners {
    std::vector<std::uint32_t> first;
    std::vector<std::uint32_t> corners;
    std::span<const std::uint32_t> of(std::uint32_t point) const {
        return {corners.data() + first[point], first[point + 1] - first[point]};
    }
};
PointCorners pointCorners(const Surface& surface, std::size_t pointCount);

/// A unit normal for each corner: the mean, by area, of the faces about its point that meet its own face at
/// less than the crease angle. Neighbours of opposite orientation count as if turned over.
std::vector<Point> cornerNormals(const Surface& surface, std::span<const Point> points,
                                 const PointCorners& meeting, double creaseDeg);

} // namespace nruview
