// What an element mesh consists of.
#pragma once

#include "NRenderUtl/mesh/elementfacts.h"
#include "NRenderUtl/mesh/elementfixed.h"
#include "NRenderUtl/mesh/elementpick.h"
#include "NRenderUtl/mesh/elementprograms.h"
#include "NRenderUtl/mesh/elementsurface.h"
#include "NRenderUtl/mesh/elementvalues.h"

struct ngl::NglElementMesh::State {
    bool created = false;
    NglElementAttributes attributes;
    ElementValues values;
    ElementSurface surface;
    ElementFacts facts;
    std::uint64_t revision = 0;  ///< of facts, values and scale
    std::uint64_t compacted = 0; ///< the revision whose facts take no more memory than they need
    ElementPrograms programs;    ///< the routes through GLSL, with their buffers
    ElementFixedRoute fixed;
    ElementPicker picker;

    ElementScene scene() const { return {surface, facts, values, attributes, revision}; }
    void changed(ElementPrograms::Fact fact, const ElementSpan& span) {
        programs.changed(fact, span);
        ++revision;
    }
    void setValues(ElementValues::Kind kind, const float* given, std::uint32_t count);
    void draw();
    bool pick(const ElementRay& ray, NglElementPick& picked);
    bool pickPixel(int x, int y, NglElementPick& picked);
};
