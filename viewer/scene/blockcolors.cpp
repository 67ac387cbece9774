// Twelve colours that are at least 23 apart (CIE 1976) to normal eyes and to those without red, green or blue
// cones, and 14 from white, grey and the edges' colour: the widest choice found by search.
#include "viewer/scene/blockcolors.h"

#include <array>
#include <new>

namespace nruview {

namespace {

using Rgb = std::array<unsigned char, 3>;

constexpr std::array<Rgb, 12> kColors = {{{75, 105, 240},
                                          {180, 30, 0},
                                          {255, 225, 60},
                                          {120, 75, 120},
                                          {120, 240, 255},
                                          {195, 240, 150},
                                          {255, 120, 60},
                                          {75, 105, 75},
                                          {165, 150, 255},
                                          {120, 195, 150},
                                          {180, 135, 180},
                                          {150, 30, 165}}};
constexpr double kPaler = 0.45; ///< part of white in each round after the first, of what is left

bool showsBlocks(const ShownModel& shown) {
    return shown.colorBy == ColorBy::Block;
}

} // namespace

NgColorLong blockColor(std::size_t block) {
    const Rgb& color = kColors[block % kColors.size()];
    double kept = 1.0;
    for (std::size_t round = block / kColors.size() % 3; round > 0; --round)
        kept *= 1.0 - kPaler;
    const auto mixed = [kept](unsigned char channel) {
        return static_cast<unsigned char>(255.0 - kept * (255.0 - channel));
    };
    return ngl_get_color_long_from_rgb(mixed(color[0]), mixed(color[1]), mixed(color[2]));
}

std::vector<NgColorLong> ownColors(const ShownModel& shown) {
    std::vector<NgColorLong> colors = standOutColors(shown.elements, shown.model.cellCount());
    if (!showsBlocks(shown))
        return colors;
    colors.resize(shown.model.cellCount(), 0);
    for (std::size_t block = 0; block < shown.model.parts.size(); ++block) {
        const ModelPart& part = shown.model.parts[block];
        for (std::uint32_t cell = part.firstCell; cell < part.firstCell + part.cellCount; ++cell)
            colors[cell] = colors[cell] != 0 ? colors[cell] : blockColor(block);
    }
    return colors;
}

void setBlockColors(const ShownModel& shown, ngl::NglElementMesh& mesh) {
    if (!showsBlocks(shown) || mesh.ElementCount() == 0)
        return;
    for (std::size_t block = 0; block < shown.model.parts.size(); ++block) {
        const ModelPart& part = shown.model.parts[block];
        if (mesh.SetColor(ngl::NglElements::Range(part.firstCell, part.cellCount), blockColor(block)) != 0)
            throw std::bad_alloc();
    }
    applyFacts(shown.elements, mesh); // elements with a colour of their own keep it
}

} // namespace nruview
