// An element mesh through fixed function: the same picture where the programs cannot run.
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

/// Keeps the arrays that it has made of a scene until the scene changes.
class ElementFixedRoute {
public:
    /// modelView: column-major, from the vertices' space to eye space. Throws std::bad_alloc.
    void draw(const ElementScene& scene, const double modelView[16]);
    void clear();
};
