// What an element mesh consists of.
#pragma once

#include "NRenderUtl/mesh/elementfacts.h"
#include "NRenderUtl/mesh/elementfixed.h"
#include "NRenderUtl/mesh/elementpick.h"
#include "NRenderUtl/mesh/elementprograms.h"
#include "NRenderUtl/mesh/elementsurface.h"
#include "NRenderUtl/mesh/elementvalues.h"

struct ngl::NglElementMesh::State {
    NglElementAttributes attributes;
    ElementValues values;
    ElementSurface surface;
    ElementFacts facts;
    std::uint64_t revision = 0; ///< of facts, values and scale
    ElementPrograms programs;   ///< the routes through GLSL, with their buffers
    ElementFixedRoute fixed;
    ElementPicker picker;
};
