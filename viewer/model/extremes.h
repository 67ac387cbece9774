// Where the values that are shown are smallest and largest.
#pragma once

#include <optional>
#include <vector>

#include "viewer/scene/shownmodel.h"

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
Point positionOf(const ShownModel& shown, std::uint32_t number);

/// Of its nodes or elements the one nearest to the viewer.
std::uint32_t nearestOf(const ShownModel& shown, const Extreme& extreme, const Point& towardViewer);

} // namespace nruview
