// What a draw with the programs that read a block sets: lights, materials and the colour scale as texels.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/scaleentries.h"

using BlockTexel = std::array<float, 4>;

/// Lights, at most eight, and materials of both sides.
struct BlockLighting {
    std::span<const NglLightParams> lights;
    const NglMatParams& front;
    const NglMatParams& back;
};

/// Whether any highlight can be seen.
bool hasHighlights(const BlockLighting& lighting);
/// The texels as blocklayout.h lays them out, always as many. entries: null without a scale. Throws
/// std::bad_alloc.
std::vector<BlockTexel> makeParameterBlock(const BlockLighting& lighting, const ScaleEntries* entries);
