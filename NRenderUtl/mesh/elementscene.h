// What the routes of an element mesh are given to draw.
#pragma once

#include <cstdint>

#include "NRenderUtl/mesh/elementfacts.h"
#include "NRenderUtl/mesh/elementsurface.h"
#include "NRenderUtl/mesh/elementvalues.h"

/// What is to be drawn, and how often each part of it has changed since the mesh was made.
struct ElementScene {
    const ElementSurface& surface;
    const ElementFacts& facts;
    const ElementValues& values;
    const ngl::NglElementAttributes& attributes;
    std::uint64_t revision; ///< a new number after any change of facts, values or scale
};
