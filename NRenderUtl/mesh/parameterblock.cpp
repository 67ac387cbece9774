#include "NRenderUtl/mesh/parameterblock.h"

#include <algorithm>

#include "NRenderUtl/shaders/blocklayout.h"

namespace {

BlockTexel texel(const float rgb[4], float last) {
    return {rgb[0], rgb[1], rgb[2], last};
}

bool isOn(const NglLightParams& light) {
    return light.enabled == 1;
}

bool isBlack(const float rgb[4]) {
    return rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0;
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

} // namespace

bool hasHighlights(const BlockLighting& lighting) {
    const auto shines = [](const NglLightParams& light) { return isOn(light) && !isBlack(light.specular); };
    return std::any_of(lighting.lights.begin(), lighting.lights.end(), shines) &&
           !(isBlack(lighting.front.specular) && isBlack(lighting.back.specular));
}

std::vector<BlockTexel> makeParameterBlock(const BlockLighting& lighting, const ScaleEntries* entries) {
    std::vector<BlockTexel> block(BlockEntries + kMostScaleEntries, BlockTexel{});
    for (int k = 0; k < 3; ++k)
        block[BlockEmission][k] = lighting.front.emission[k] + lighting.back.emission[k];
    block[BlockFront] = texel(lighting.front.specular, lighting.front.shininess);
    block[BlockBack] = texel(lighting.back.specular, lighting.back.shininess);
    putLights(lighting.lights, &block[BlockLights]);
    if (entries)
        std::transform(entries->entries.begin(), entries->entries.end(), block.begin() + BlockEntries,
                       [](const ScaleEntry& e) {
                           return BlockTexel{e.start, e.end, e.color, e.smearedTo};
                       });
    return block;
}
