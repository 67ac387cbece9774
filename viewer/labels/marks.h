// Marks at the smallest and the largest value of what is seen.
#pragma once

#include "viewer/labels/screen.h"
#include "viewer/model/extremes.h"

namespace nruview {

/// Marks both in the view of the last beginFrame, each at that of its places which is nearest to the viewer,
/// if it lies within an area of a picture of some height. The labels hide little of the model and nothing of
/// each other.
void drawMarks(const ShownModel& shown, const std::array<Extreme, 2>& extremes, const Point& towardViewer,
               const PixelRect& area, int height, int em_px, const TextStyle& style, NgColorLong background);

} // namespace nruview
