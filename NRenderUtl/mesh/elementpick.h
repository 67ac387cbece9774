// Picking on an element mesh: a ray through a tree over its faces.
#pragma once

#include <cstdint>
#include <functional>

#include "NRenderUtl/mesh/elementsurface.h"
#include "NRenderUtl/mesh/facetree.h"

/// Finds the faces that a ray meets. It depends on the geometry alone: what is hidden is left out on the way.
class ElementPicker {
public:
    /// The first face, from start on, of an element that `shown` (a callable of an element number) accepts;
    /// of several at one distance the one with the lowest number. A face without area, or seen exactly
    /// edge-on, is not met. False, with picked untouched, for none and for a ray that has no direction or is
    /// not finite. Builds the tree on the first call after clear; throws std::bad_alloc.
    bool pick(const ElementSurface& surface, const _NgPoint3Str& start, const _NgPoint3Str& end,
              const std::function<bool(std::uint32_t)>& shown, ngl::NglElementPick& picked);
    void clear() { m_tree.clear(); }

private:
    FaceTree m_tree;
};
