// Picking on an element mesh: a tree of boxes over its faces.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "NRenderUtl/mesh/elementsurface.h"

/// Finds the faces that a ray meets. It depends on the geometry alone: what is hidden is left out on the way.
class ElementPicker {
public:
    /// The first face, from start on, of an element that `shown` (a callable of an element number) accepts.
    /// Builds the tree on the first call after clear; throws std::bad_alloc.
    bool pick(const ElementSurface& surface, const _NgPoint3Str& start, const _NgPoint3Str& end,
              const std::function<bool(std::uint32_t)>& shown, ngl::NglElementPick& picked);
    void clear();
};
