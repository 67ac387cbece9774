#include "NRenderUtl/mesh/parameterblock.h"

#include <algorithm>

namespace {

// The model's own weights; the programs carry the same two.
constexpr float kAmbientWeight = 1.74f, kDiffuseWeight = 0.5f;

BlockTexel texel(const float rgb[4], float last) {
    return {rgb[0], rgb[1], rgb[2], last};
}

bool isOn(const NglLightParams& light) {
    return light.enabled == 1;
}

bool isBlack(const float rgb[4]) {
    return rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0;
}

bool isGrey(const float rgb[4]) {
    return rgb[0] == rgb[1] && rgb[0] == rgb[2];
}

bool shineAlike(const NglMatParams& front, const NglMatParams& back) {
    return isGrey(front.specular) && std::equal(front.specular, front.specular + 3, back.specular) &&
           front.shininess == back.shininess && front.shininess > 0;
}

bool isPlain(const BlockLighting& lighting) {
    const auto& [lights, front, back] = lighting;
    return isBlack(front.emission) && isBlack(back.emission) &&
           (!hasHighlights(lighting) || shineAlike(front, back)) &&
           std::all_of(lights.begin(), lights.end(), [](const NglLightParams& light) {
               return !isOn(light) ||
                      (isGrey(light.ambient) && isGrey(light.diffuse) && isGrey(light.specular));
           });
}

/// Where none is on, a light that gives nothing, off every surface.
void putLights(std::span<const NglLightParams> lights, BlockTexel* at) {
    at[0] = {0, 0, 1e9f, 1};
    BlockTexel* last = nullptr;
    for (const NglLightParams& light : lights) {
        if (!isOn(light))
            continue;
        if (last)
            (*last)[3] = 1;
        at[0] = texel(light.position, light.constantAttenuation);
        at[1] = texel(light.ambient, light.linearAttenuation);
        at[2] = texel(light.diffuse, light.quadraticAttenuation);
        at[3] = texel(light.specular, 0);
        last = at + 3;
        at += 4;
    }
}

/// One number for a light's specular, of which the first two have their place beside the ambient.
float& plainSpecular(std::span<BlockTexel> block, std::size_t light) {
    return light < 2 ? block[BlockPlain][2 + light]
                     : block[BlockPlainSpecular + (light - 2) / 4][(light - 2) % 4];
}

void putPlainLighting(const BlockLighting& lighting, std::span<BlockTexel> block) {
    BlockTexel& first = block[BlockPlain];
    first[1] = lighting.front.shininess / 2;
    block[BlockPlainLights] = {0, 0, 1e9f, 0}; // where none is on
    std::size_t count = 0;
    for (const NglLightParams& light : lighting.lights) {
        if (!isOn(light))
            continue;
        first[0] += light.ambient[0] * kAmbientWeight;
        block[BlockPlainLights + count] = texel(light.position, light.diffuse[0] * kDiffuseWeight);
        plainSpecular(block, count) = light.specular[0] * lighting.front.specular[0];
        ++count;
    }
    if (count == 1)
        first[3] = block[BlockPlainLights][3];
}

/// withPlain: the map beside what fragments read of the lights too.
void putCells(const ScaleCells& scale, bool withPlain, std::span<BlockTexel> block) {
    for (const int map : {+BlockCellMap, withPlain ? +BlockPlain : +BlockCellMap}) {
        block[map][1] = scale.factor;
        block[map][2] = scale.offset;
    }
    const auto texelOf = [](const ScaleCell& cell) { return BlockTexel{cell.limit, cell.below, cell.above}; };
    const auto next = std::ranges::transform(scale.cells, block.begin() + BlockCells, texelOf).out;
    std::fill(next, block.begin() + BlockEntries, texelOf(scale.cells.back()));
}

} // namespace

bool hasHighlights(const BlockLighting& lighting) {
    const auto shines = [](const NglLightParams& light) { return isOn(light) && !isBlack(light.specular); };
    return std::any_of(lighting.lights.begin(), lighting.lights.end(), shines) &&
           !(isBlack(lighting.front.specular) && isBlack(lighting.back.specular));
}

LightKinds kindsOfLights(const BlockLighting& lighting) {
    LightKinds kinds{0, false};
    for (const NglLightParams& light : lighting.lights) {
        kinds.count += isOn(light);
        kinds.attenuated |= isOn(light) && (light.constantAttenuation != 1 || light.linearAttenuation != 0 ||
                                            light.quadraticAttenuation != 0);
    }
    kinds.count = std::max(kinds.count, 1);
    kinds.plain = !kinds.attenuated && isPlain(lighting);
    return kinds;
}

void putLighting(const BlockLighting& lighting, const LightKinds& kinds,
                 std::span<BlockTexel, BlockCellMap> block) {
    std::ranges::fill(block, BlockTexel{});
    if (kinds.plain)
        return putPlainLighting(lighting, block);
    for (int k = 0; k < 3; ++k)
        block[BlockEmission][k] = lighting.front.emission[k] + lighting.back.emission[k];
    block[BlockFront] = texel(lighting.front.specular, lighting.front.shininess);
    block[BlockBack] = texel(lighting.back.specular, lighting.back.shininess);
    putLights(lighting.lights, &block[BlockLights]);
}

void putParameterBlock(const BlockLighting& lighting, const LightKinds& kinds, const BlockScale& scale,
                       std::span<BlockTexel, kParameterBlockSize> block) {
    putLighting(lighting, kinds, block.first<BlockCellMap>());
    std::fill(block.begin() + BlockCellMap, block.end(), BlockTexel{});
    if (scale.entries)
        std::ranges::transform(scale.entries->entries, block.begin() + BlockEntries, [](const ScaleEntry& e) {
            return BlockTexel{e.start, e.end, e.color, e.smearedTo};
        });
    if (scale.cells)
        putCells(*scale.cells, kinds.plain && !hasHighlights(lighting), block);
}
