// Texture units of the samplers. Each has its own: samplers of different types on one unit stop every draw of
// a program, even when the one is never read.
#pragma once

#include <algorithm>
#include <iterator>

#include "NRenderUtl/shaders/nshaders.h"

/// The sampler of each unit.
inline constexpr RenderingShaderUniform kSamplerOfUnit[] = {
    RenderUniformContourTexture,      RenderUniformIrradianceMap,     RenderUniformPrefilterMap,
    RenderUniformBrdfTable,           RenderUniformElementValues,     RenderUniformElementColorBuffer,
    RenderUniformDerivedBuffer,       RenderUniformVisibilityBuffer,  RenderUniformFailureLevelBuffer,
    RenderUniformFailureBelowBuffer,  RenderUniformFailingPrimitives, RenderUniformSelectionBuffer,
    RenderUniformElementNormalBuffer, RenderUniformClipCodeBuffer,    RenderUniformOriginalPrimitives,
};

/// Unit of g_block, the sampler that only some programs have.
inline constexpr int kBlockUnit = std::size(kSamplerOfUnit);

/// Unit of a sampler: bind its texture there.
constexpr int samplerUnit(RenderingShaderUniform sampler) {
    return static_cast<int>(std::find(std::begin(kSamplerOfUnit), std::end(kSamplerOfUnit), sampler) -
                            std::begin(kSamplerOfUnit));
}

/// Gives every sampler of a program that has just been linked its unit. Leaves the program in use as it was.
void assignSamplerUnits(NShaderProgram& program);
