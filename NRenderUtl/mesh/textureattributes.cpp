// What the host tells about one contour texture, and the colour scale made of it.
#include "NRenderUtl/mesh/colorbands.h"
#include "NRenderUtl/mesh/nmesh.h"

#include "NRenderUtl/gl/texturehook.h"

namespace {

enum OutOfRangeMode { kNoOutOfRangeColors = 0, kOwnOutOfRangeColors = 2 };

std::vector<RenderColorScale::ColorBand> makeBands(int count, const float* values,
                                                   const unsigned int* colors) {
    std::vector<RenderColorScale::ColorBand> bands(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        bands[i] = {values[i], values[i + 1], colors[i]};
    return bands;
}

/// How the GL layer, which does not know the class, reads it.
[[maybe_unused]] const bool kReaderRegistered =
    registerContourTextureReader([](const RenderTextureAttributes& attributes) {
        return ContourTexture{attributes.texture, attributes.minValue, attributes.maxValue};
    });

} // namespace

RenderTextureAttributes::RenderTextureAttributes() {
    Init();
}
RenderTextureAttributes::RenderTextureAttributes(const RenderTextureAttributes&) = default;
RenderTextureAttributes::RenderTextureAttributes(RenderTextureAttributes&&) noexcept = default;
RenderTextureAttributes& RenderTextureAttributes::operator=(const RenderTextureAttributes&) = default;
RenderTextureAttributes& RenderTextureAttributes::operator=(RenderTextureAttributes&&) noexcept = default;
RenderTextureAttributes::~RenderTextureAttributes() = default;

void RenderTextureAttributes::Reset() {
    Init();
}

void RenderTextureAttributes::UpdateColorScale(int count, const float* values, const unsigned int* colors) {
    if (count < 1)
        return;
    if (static_cast<std::size_t>(count) <= kMaxColorBands)
        colorScale.SetColorBands(makeBands(count, values, colors));
    else
        reportTooManyColorBands();
    colorScale.SetSmearedMode(smeared != 0);
    // Deliberate: any other mode leaves the scale's colours, so that a host may set them on the scale itself.
    if (outOfRangeMode == kNoOutOfRangeColors) {
        colorScale.SetOutOfRangeMinColor(kUnsetColor);
        colorScale.SetOutOfRangeMaxColor(kUnsetColor);
    } else if (outOfRangeMode == kOwnOutOfRangeColors) {
        colorScale.SetOutOfRangeMinColor(outOfRangeMinColor);
        colorScale.SetOutOfRangeMaxColor(outOfRangeMaxColor);
    }
}

void RenderTextureAttributes::Init() {
    texture = 0;
    hostData = nullptr;
    hostWord1 = hostWord2 = hostWord3 = hostWord4 = hostWord5 = 0;
    minValue = maxValue = 0.0f;
    smeared = 0;
    outOfRangeMode = kNoOutOfRangeColors;
    outOfRangeMinColor = outOfRangeMaxColor = kUnsetColor;
    colorScale.Reset();
}
