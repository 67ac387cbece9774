// Marks at the smallest and the largest value of what is seen.
#pragma once

#include <optional>
#include <vector>

#include "viewer/screen.h"
#include "viewer/shownmodel.h"

namespace nruview {

/// A value and the nodes, or elements, that have it.
struct Extreme {
    double value = 0.0;
    std::vector<std::uint32_t> numbers; ///< ascending, each once
};

/// The smallest and the largest finite value among the nodes, or elements, that are drawn. Nothing where all
/// are equal.
std::optional<std::array<Extreme, 2>> findExtremes(const ShownModel& shown);

/// Where a node, or of an element its middle, is drawn.
Point markPosition(const ShownModel& shown, std::uint32_t number);

/// Marks both in the view of the last beginFrame, each at that of its places which is nearest to the viewer,
/// if it lies within an area of a picture of some height. The labels hide little of the model and nothing of
/// each other.
void drawMarks(const ShownModel& shown, const std::array<Extreme, 2>& extremes, const Point& towardViewer,
               const PixelRect& area, int height, int em_px, const TextStyle& style, NgColorLong background);

} // namespace nruview
