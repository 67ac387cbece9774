#include "NRenderUtl/mesh/parameterblock.h"

#include <algorithm>

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

LightKinds kindsOfLights(const BlockLighting& lighting) {
    LightKinds kinds{0, false};
    for (const NglLightParams& light : lighting.lights) {
        kinds.count += isOn(light);
        kinds.attenuated |= isOn(light) && (light.constantAttenuation != 1 || light.linearAttenuation != 0 ||
                                            light.quadraticAttenuation != 0);
    }
    kinds.count = std::max(kinds.count, 1);
    return kinds;
}

void putLighting(const BlockLighting& lighting, std::span<BlockTexel, BlockEntries> block) {
    std::ranges::fill(block, BlockTexel{});
    for (int k = 0; k < 3; ++k)
        block[BlockEmission][k] = lighting.front.emission[k] + lighting.back.emission[k];
    block[BlockFront] = texel(lighting.front.specular, lighting.front.shininess);
    block[BlockBack] = texel(lighting.back.specular, lighting.back.shininess);
    putLights(lighting.lights, &block[BlockLights]);
}

void putParameterBlock(const BlockLighting& lighting, const ScaleEntries* entries,
                       std::span<BlockTexel, kParameterBlockSize> block) {
    putLighting(lighting, block.first<BlockEntries>());
    auto next = block.begin() + BlockEntries;
    if (entries)
        next =
            std::transform(entries->entries.begin(), entries->entries.end(), next, [](const ScaleEntry& e) {
                return BlockTexel{e.start, e.end, e.color, e.smearedTo};
            });
    std::fill(next, block.end(), BlockTexel{});
}
