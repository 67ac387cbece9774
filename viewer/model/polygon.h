// Triangles of a plane polygon, concave ones too.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

/// Triangles (places in corners) that fill a simple polygon, in its own turning direction: n - 2 of them.
/// Corners that are not quite in one plane are seen along the polygon's mean normal. A polygon that crosses
/// itself gets as many triangles, which fill it only roughly.
std::vector<std::array<std::uint32_t, 3>> triangulatePolygon(std::span<const Point> corners);

} // namespace nruview
