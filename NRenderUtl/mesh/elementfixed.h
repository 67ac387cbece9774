// An element mesh through fixed function: the same picture where the programs cannot run. OpenGL 1.4 will do.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "NRenderUtl/mesh/elementarrays.h"
#include "NRenderUtl/mesh/elementscene.h"

/// Keeps the arrays that it has made of a scene until the scene changes. Faces are lit at their vertices.
class ElementFixedRoute {
public:
    /// modelView: column-major, from the vertices' space to eye space. Throws std::bad_alloc.
    void draw(const ElementScene& scene, const double modelView[16]);
    /// To be called when the surface changes.
    void clear();

private:
    /// What the arrays depend on.
    struct ArraysKey {
        std::uint64_t revision;
        ngl::NglElementShading shading;
        bool contour;
        int clipFlag, failureMode, failureLevel, textureSize;
        NgColorLong selected, highlighted;
        bool operator==(const ArraysKey&) const = default;
    };
    /// What the colours of their vertices depend on.
    struct ColorsKey {
        std::array<double, 16> modelView;        ///< of lit ones
        std::optional<ElementLighting> lighting; ///< nothing: unlit
        NgColorLong front, back;
        std::uint8_t alpha;
        bool operator==(const ColorsKey&) const = default;
    };
    /// Of the vertices of both parts.
    struct Colors {
        std::vector<ElementColor> shared, own;
    };

    void updateArrays(const ElementScene& scene);
    void updateColors(const ElementScene& scene, const double modelView[16]);
    void drawPasses(const ElementScene& scene) const;
    void drawFaces(const ElementSurface& surface, const Colors& colors) const;

    std::optional<ArraysKey> m_arraysKey;
    std::optional<ColorsKey> m_colorsKey;
    std::optional<ContourTexture> m_texture;
    ElementArrays m_arrays;
    Colors m_front;
    std::optional<Colors> m_back; ///< where back faces have other colours
};
