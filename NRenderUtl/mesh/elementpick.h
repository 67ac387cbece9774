// Picking on an element mesh: a ray through a tree over its faces.
#pragma once

#include <cstdint>
#include <functional>

#include "NRenderUtl/mesh/elementsurface.h"
#include "NRenderUtl/mesh/facetree.h"

/// A ray by its start, relative to the surface's origin, and a direction of any length.
struct ElementRay {
    _NgPoint3Str start, direction;
};
/// From a position in model space through another one.
ElementRay elementRay(const ElementSurface& surface, const _NgPoint3Str& start, const _NgPoint3Str& end);

/// Finds the faces that a ray meets. It depends on the geometry alone: what is hidden is left out on the way.
class ElementPicker {
public:
    /// The first face, from start on, of an element that `shown` (a callable of an element number) accepts;
    /// of several at one distance the one with the lowest number. A face without area, or seen exactly
    /// edge-on, is not met. False, with picked untouched, for none and for a ray that has no direction or is
    /// not finite. The first call builds the tree, and the surface is the same in every call; throws
    /// std::bad_alloc.
    bool pick(const ElementSurface& surface, const ElementRay& ray,
              const std::function<bool(std::uint32_t)>& shown, ngl::NglElementPick& picked);

private:
    FaceTree m_tree;
};
