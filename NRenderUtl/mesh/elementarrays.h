// The client arrays of an element mesh for fixed function: which triangles are drawn, from which vertices, in
// which paint.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "NRenderUtl/mesh/elementcontour.h"
#include "NRenderUtl/mesh/elementlighting.h"
#include "NRenderUtl/mesh/elementscene.h"

struct ElementArrays {
    using Vector = ElementSurface::Vector;

    /// How a face is painted; without a paint in the colours of the attributes, by facing where they say so.
    struct Look {
        std::optional<ElementPaint> paint;
        bool banded = false; ///< multiplied with the contour texture
        bool operator==(const Look&) const = default;
    };
    /// Consecutive vertices of one paint.
    struct Run {
        std::uint32_t end; ///< first vertex behind it
        std::optional<ElementPaint> paint;
    };
    struct Part {
        std::vector<Vector> positions, normals;
        std::vector<Run> runs;
        std::vector<float> coordinates;           ///< in the contour texture; empty without one
        std::vector<std::uint32_t> plain, banded; ///< vertices of triangles, without and with the texture
        std::uint32_t vertexCount() const { return runs.empty() ? 0 : runs.back().end; }
    };

    Part shared;         ///< vertices of the surface, which holds their positions and normals
    Part own;            ///< corners of faces whose neighbours have another normal or paint
    bool facing = false; ///< whether a colour of the attributes is seen
};

/// The rule and the texture are of the scene's scale, or null where no contour is to be seen; the texture
/// only serves values of nodes. Throws std::bad_alloc.
ElementArrays makeElementArrays(const ElementScene& scene, const ContourRule* rule,
                                const ContourTexture* texture);
