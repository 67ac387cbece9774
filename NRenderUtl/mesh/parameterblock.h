// What a draw with the programs that read a block sets: lights, materials and the colour scale as texels.
#pragma once

#include <array>
#include <span>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/scalecells.h"
#include "NRenderUtl/shaders/blocklayout.h"
#include "NRenderUtl/shaders/meshprograms.h"

using BlockTexel = std::array<float, 4>;

/// Lights, at most eight, and materials of both sides.
struct BlockLighting {
    std::span<const NglLightParams> lights;
    const NglMatParams& front;
    const NglMatParams& back;
};

/// A colour scale in both forms, each null where it has none.
struct BlockScale {
    const ScaleEntries* entries = nullptr;
    const ScaleCells* cells = nullptr;
};

/// Whether any highlight can be seen.
bool hasHighlights(const BlockLighting& lighting);
/// Where none is on, the block has one light, which gives nothing.
LightKinds kindsOfLights(const BlockLighting& lighting);

constexpr std::size_t kParameterBlockSize = BlockEntries + kMostScaleEntries;
/// Writes the texels as blocklayout.h lays them out for programs of these kinds: BlockCellMap of the
/// lighting, the rest of the scale, or zeros.
void putLighting(const BlockLighting& lighting, const LightKinds& kinds,
                 std::span<BlockTexel, BlockCellMap> block);
void putParameterBlock(const BlockLighting& lighting, const LightKinds& kinds, const BlockScale& scale,
                       std::span<BlockTexel, kParameterBlockSize> block);
