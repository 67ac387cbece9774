// The values that an element mesh shows, and the scale that colours them.
#pragma once

#include <cstdint>
#include <vector>

#include "NRenderUtl/mesh/scalecells.h"

struct ElementValues {
    enum Kind { None, OfNodes, OfElements };
    Kind kind = None;
    std::vector<float> values;
    RenderColorScale scale;                ///< without bands: no contour
    bool smeared = false;                  ///< of the scale
    std::optional<ScaleEntries> entries{}; ///< of the scale; nothing without bands, or with some out of order
    std::optional<ScaleCells> cells{};     ///< of the entries; nothing where the scale has none
    std::uint64_t scaleNumber = 0;         ///< another one for each scale that was set, on any mesh

    bool colored() const { return kind != None && !scale.GetColorBands().empty(); }
};

/// Whether colours are mixed within a band, which a scale does not tell: a copy shows it by two bands.
bool isSmearedScale(RenderColorScale scale);
