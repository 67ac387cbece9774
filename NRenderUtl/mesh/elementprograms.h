// An element mesh through the GLSL programs: buffers for the geometry, texture buffers for the facts.
#pragma once

#include <array>
#include <vector>

#include "NRenderUtl/mesh/elementbuffers.h"
#include "NRenderUtl/mesh/elementplan.h"
#include "NRenderUtl/mesh/elementtextures.h"
#include "NRenderUtl/mesh/elementuniforms.h"

class ElementPrograms {
public:
    enum Fact { Visible, Selection, Color, ClipCode, LowerLevel, UpperLevel, Value, FactCount };

    ElementPrograms();
    /// A fact of some elements has changed, or the values of nodes.
    void changed(Fact fact, const ElementSpan& span) {
        m_facts[fact].changed(span);
        m_buffers.shownChanged(span);
    }
    void nodeValuesChanged() { m_buffers.valuesChanged(); }
    /// modelView: column-major, from the vertices' space to eye space. False, with nothing drawn, where
    /// programs or buffers are not to be had. Throws std::bad_alloc.
    bool draw(const ElementScene& scene, const double modelView[16]);

private:
    class Bindings;
    /// What one program draws.
    struct Piece {
        NShaderProgram& program;
        ElementProgram* own; ///< null for one of the catalogue
        ElementNumbering numbering;
        unsigned int mode;
        RenderGLBuffer& indices;
        std::size_t count;
        ElementTexture* derived; ///< elements of its primitives, where these count something else
    };
    struct Frame {
        const ElementScene& scene;
        const ElementPlan& plan;
        const std::vector<Piece>& pieces;
    };

    Piece ownPiece(const ElementSurface& surface, const ElementPlan& plan);
    /// Takes another way where the driver refuses the plan's.
    void findPieces(const ElementSurface& surface, ElementPlan& plan);
    bool updateBuffers(const Frame& frame);
    bool updateFacts(const ElementScene& scene, const ElementPlan& plan, Bindings& bindings);
    bool updateBlock(const ElementScene& scene, Bindings& bindings);
    bool updateColors(const ElementScene& scene, Bindings& bindings);
    bool updatePrimitives(const Frame& frame, Bindings& bindings);
    template <class T>
    bool updateFact(Fact fact, const std::vector<T>& values, Bindings& bindings);
    void bindVertices(const Piece& piece, const ElementPlan& plan);
    void setUniforms(const Frame& frame, const double modelView[16]);
    void drawPieces(const Frame& frame);

    ElementBuffers m_buffers;
    std::array<ElementTexture, FactCount> m_facts;
    ElementTexture m_derived, m_derivedQuads, m_normals;
    ElementTexture m_block;
    std::vector<BlockTexel> m_blockTexels; ///< as uploaded
    std::vector<Piece> m_pieces;           ///< of the draw, in memory that is kept from frame to frame
};
