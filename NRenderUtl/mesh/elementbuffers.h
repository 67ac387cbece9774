// The geometry of an element mesh, and its values of nodes, in buffers of the current context.
#pragma once

#include <optional>

#include "NRenderUtl/mesh/elementindexing.h"
#include "NRenderUtl/mesh/elementplan.h"
#include "NRenderUtl/mesh/elementtextures.h"
#include "NRenderUtl/shaders/nshaders.h"

/// Each buffer is made when a draw first needs it, and stays.
class ElementBuffers {
public:
    struct Need {
        bool normals = false, values = false;
        bool triangles = false; ///< plain indices
        /// What the plain indices leave out beside hidden elements; nothing: not even these.
        std::optional<ElementLeavingOut> leavingOut{};
        bool quads = false;                          ///< four indices for each quad
        std::optional<ElementNumbering> numbering{}; ///< indices and vertices that carry such numbers
    };

    ElementBuffers() = default;
    ElementBuffers(const ElementBuffers&) = delete;
    ElementBuffers& operator=(const ElementBuffers&) = delete;

    /// Makes what is needed and missing, and brings the values up to date. Binds no buffer, but to the
    /// targets. False where the driver has no room. Throws std::bad_alloc.
    bool update(const ElementScene& scene, const Need& need);
    void valuesChanged() { m_valuesStale = true; }
    /// Some elements may be shown or left out from now on.
    void shownChanged(const ElementSpan& elements) { m_shownChanged.add(elements); }

    RenderGLBuffer positions, normals, values, numbers; ///< of the vertices
    RenderGLBuffer triangles, quads, numbered;          ///< indices

private:
    bool updateTriangles(const ElementScene& scene, const std::optional<ElementLeavingOut>& leavingOut);
    bool makeNumbering(const ElementSurface& surface, ElementNumbering numbering);
    bool updateValues(const ElementSurface& surface, const ElementValues& scene);

    std::optional<ElementNumbering> m_numbering;
    std::vector<std::uint32_t> m_copies; ///< vertices of the numbering behind those of the surface
    bool m_valuesStale = true;
    std::optional<ElementLeavingOut> m_leavingOut; ///< of the plain indices
    ElementSpan m_shownChanged;
};
