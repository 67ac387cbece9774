// The classic lighting model of the programs, evaluated at vertices on the CPU. The lights of OpenGL cannot
// stand for it: a face is lit from both of its sides at once, and lights without w are points too.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "NRenderUtl/ntypes.h"

/// Lights and materials as the model takes them.
struct ElementLighting {
    using Vector = std::array<float, 3>;
    struct Light {
        Vector position{}, ambient{}, diffuse{}, specular{};
        std::array<float, 3> attenuation{}; ///< constant, linear, quadratic
        bool operator==(const Light&) const = default;
    };
    struct Side {
        Vector specular{};
        float shininess = 0;
        bool operator==(const Side&) const = default;
    };
    std::array<Light, 8> lights{}; ///< those that are on come first
    int count = 0;
    Side front, back;
    Vector emission{};
    bool operator==(const ElementLighting&) const = default;
};

/// Of the lights and materials of the view record.
ElementLighting recordLighting();

/// From the vertices' space to eye space.
struct ElementEye {
    explicit ElementEye(const double modelView[16]);
    std::array<float, 12> position; ///< the upper three rows, row by row
    std::array<float, 9> normal;    ///< the inverse transpose but for a positive factor
};

/// Red, green, blue and alpha of one vertex.
using ElementColor = std::array<std::uint8_t, 4>;

/// A colour that is lit, and one that the lit colour is multiplied with.
struct ElementPaint {
    NgColorLong base = 0xFFFFFFFF, filter = 0xFFFFFFFF;
    bool operator==(const ElementPaint&) const = default;
};

/// Colours of vertices that share a paint; the sizes of the three spans are equal.
void lightVertices(const ElementLighting& lighting, const ElementEye& eye, const ElementPaint& paint,
                   std::uint8_t alpha, std::span<const ElementLighting::Vector> positions,
                   std::span<const ElementLighting::Vector> normals, std::span<ElementColor> colors);
/// The same without light.
ElementColor unlitColor(const ElementPaint& paint, std::uint8_t alpha);
