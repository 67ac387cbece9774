// What the layer reads of a contour texture's attributes. Their class lies above the layer, which therefore
// registers a reader here, so that the layer does not include it.
#pragma once

#include <cstdint>

class RenderTextureAttributes;

/// GL name of the texture (0 = none) and the value range that its coordinate s = 0..1 stands for.
struct ContourTexture {
    std::uint32_t texture;
    float minValue, maxValue;
};

using ContourTextureReader = ContourTexture (*)(const RenderTextureAttributes& attributes);

/// Stores the reader; returns true so that a static initialiser can call it.
bool registerContourTextureReader(ContourTextureReader reader);

/// The attributes' texture and range through the registered reader; no texture without one.
ContourTexture readContourTexture(const RenderTextureAttributes& attributes);
