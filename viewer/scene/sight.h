// Sight through pixels and at points, in the view of the last beginFrame.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

struct Ray {
    Point origin, direction; ///< the latter of length 1
};

/// Through the middle of a window pixel, y counted from the top.
Ray rayThrough(int x, int y);
/// The direction in which a point is seen.
Point sightAt(const Point& point);
/// Model length of one pixel at a point.
double pixelLength(const Point& point);
/// Window position of a point, y counted from the top.
std::array<double, 2> windowPosition(const Point& point);
/// Where the segment between two points comes nearest to a ray, as a part of its length.
double nearestPart(const Ray& ray, const Point& from, const Point& to);

} // namespace nruview
