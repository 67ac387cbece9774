// Where the values that are shown are smallest and largest.
#pragma once

#include <optional>
#include <vector>

#include "viewer/scene/shownmodel.h"

namespace nruview {

/// A value and the nodes, or elements, that have it; vertices of a cut are numbered behind the nodes.
struct Extreme {
    double value = 0.0;
    std::vector<std::uint32_t> numbers; ///< ascending, each once
};

/// The smallest and the largest finite value among the nodes, or elements, that are drawn. Nothing where all
/// are equal.
std::optional<std::array<Extreme, 2>> findExtremes(const ShownModel& shown);

/// The number of a cut's first vertex.
std::uint32_t firstOfCut(const ShownModel& shown);

/// Where a node or vertex, or of an element its middle or that of its cut, is drawn.
Point positionOf(const ShownModel& shown, std::uint32_t number);

/// Of those that have it the one nearest to the viewer.
std::uint32_t nearestOf(const ShownModel& shown, const Extreme& extreme, const Point& towardViewer);

} // namespace nruview
