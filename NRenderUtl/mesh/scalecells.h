// A colour scale as cells of one width that hold a limit each, so that the colour of a value is found at
// once.
#pragma once

#include <optional>
#include <vector>

#include "NRenderUtl/mesh/scaleentries.h"
#include "NRenderUtl/shaders/blocklayout.h"

/// Of a cell's values those from the limit on have the colour above, others and NaN the one below. Colours
/// are red, green and blue, exact in a float.
struct ScaleCell {
    float limit, below, above;
};

/// value * factor + offset is the cell of a value: below 1 and for NaN the first, from the last on the last.
struct ScaleCells {
    std::vector<ScaleCell> cells;
    float factor, offset;
};

/// The cells of a scale's entries without their smear. Nothing where a cell would hold more than one limit,
/// or one so near its end that rounding could take a value into the next cell. Throws std::bad_alloc.
std::optional<ScaleCells> makeScaleCells(const ScaleEntries& scale);
