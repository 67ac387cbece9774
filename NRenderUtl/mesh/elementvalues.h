// The values that an element mesh shows, and the scale that colours them.
#pragma once

#include <vector>

#include "NRenderUtl/mesh/nmesh.h"

struct ElementValues {
    enum Kind { None, OfNodes, OfElements };
    Kind kind = None;
    std::vector<float> values;
    RenderColorScale scale; ///< without bands: no contour

    bool colored() const { return kind != None && !scale.GetColorBands().empty(); }
};
