// What a draw of an element mesh asks of the programs: their way, and the switches that are on. What nothing
// asks for stays off, so that fragments do the least.
#pragma once

#include <optional>

#include "NRenderUtl/mesh/elementscene.h"

/// Which programs draw.
enum class ElementWay {
    Attribute, ///< the element mesh's own, numbers by provoking vertices
    Mesh,      ///< the catalogue's, numbers by primitives
    Geometry,  ///< the catalogue's with geometry stages
};

enum class ElementLook {
    Smooth,
    Facets, ///< a normal for each triangle
    Faces,  ///< a normal for each face as given, where a quad's is not that of both its triangles
    Unlit,
};

/// Attributes by which elements are left out; 0 where they leave out nothing.
struct ElementLeavingOut {
    int clipFlag = 0, failureMode = 0, failureLevel = 0;
    bool operator==(const ElementLeavingOut&) const = default;
};

struct ElementPlan {
    ElementWay way;
    ElementLook look;
    bool contour, ofElements;       ///< whether values are shown, and whether those of elements
    bool smeared;                   ///< their colours, within a band
    bool celled;                    ///< found by the cells of their scale
    bool facing;                    ///< colours by facing
    bool hidden, selected, colored; ///< whether there is any such element
    int clipFlag, failureMode;      ///< 0 where they leave out nothing
    /// What indices leave out beside hidden elements, so that no fragment need know of it; nothing: all is
    /// drawn.
    std::optional<ElementLeavingOut> leavingOut;

    /// Whether fragments must know their element.
    bool needsElements() const {
        return hidden || selected || colored || clipFlag != 0 || failureMode != 0 || ofElements;
    }
    bool operator==(const ElementPlan&) const = default;
};

/// Nothing where no element can be seen.
std::optional<ElementPlan> planElements(const ElementScene& scene);
