// The numbers by which users call nodes and cells: those of the file, or counted from 0.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

/// Numbers first to last.
struct ElementRange {
    std::uint32_t first = 0, last = 0;
    bool operator==(const ElementRange&) const = default;
};
using ElementList = std::vector<ElementRange>;

std::int64_t nodeNumber(const Model& model, std::uint32_t node);
std::int64_t cellNumber(const Model& model, std::uint32_t cell);

/// Indices of what has these numbers; of a range those that are there. In the list's order, each range
/// ascending by number. Throws ViewerError(option, ...) where a range has none and, where things are counted
/// from 0, for one that goes beyond the last.
ElementList nodeIndices(const Model& model, const ElementList& numbers, const char* option);
ElementList cellIndices(const Model& model, const ElementList& numbers, const char* option);

/// Lists of numbers that stand for these cells, in ascending order.
ElementList numbersOfCells(const Model& model, std::vector<std::uint32_t> cells);

} // namespace nruview
