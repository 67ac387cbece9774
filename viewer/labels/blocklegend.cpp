// A row for each block; the last row counts those that find no room.
#include "viewer/labels/blocklegend.h"

#include <algorithm>
#include <cmath>

#include "viewer/scene/blockcolors.h"

namespace nruview {

namespace {

constexpr double kRow_em = 1.5, kBox_em = 1.0, kWidestName_em = 14.0;

int scaled(double part, int em_px) {
    return static_cast<int>(std::lround(part * em_px));
}

/// Indices of the blocks that have something to show.
std::vector<std::size_t> shownBlocks(const ShownModel& shown) {
    std::vector<std::size_t> blocks;
    for (std::size_t i = 0; i < shown.model.parts.size(); ++i) {
        const ModelPart& part = shown.model.parts[i];
        bool isShown = false;
        for (std::uint32_t k = 0; k < part.cellCount && !isShown; ++k)
            isShown = shown.elements.isShown(part.firstCell + k);
        if (isShown)
            blocks.push_back(i);
    }
    return blocks;
}

std::string nameOf(const ModelPart& part) {
    return part.name.empty() ? "(no name)" : part.name;
}

} // namespace

std::optional<BlockLegend> layOutBlocks(const ShownModel& shown, const PixelRect& area, int em_px,
                                        const TextStyle& style) {
    if (shown.colorBy != ColorBy::Block)
        return {};
    const std::vector<std::size_t> blocks = shownBlocks(shown);
    const int row = scaled(kRow_em, em_px), side = scaled(kBox_em, em_px), gap = em_px / 2;
    const int room = area.height() / row,
              nameWidth = std::min(area.width() - side - gap, scaled(kWidestName_em, em_px));
    if (blocks.empty() || room < 2 || nameWidth < 3 * em_px)
        return {};
    BlockLegend legend;
    const std::size_t rows =
        blocks.size() <= static_cast<std::size_t>(room) ? blocks.size() : static_cast<std::size_t>(room - 1);
    const int ascent = textSize("X", style).ascent;
    int right = area.left, top = area.top;
    for (std::size_t i = 0; i < rows; ++i, top -= row) {
        const std::string name = elided(nameOf(shown.model.parts[blocks[i]]), nameWidth, style);
        const PixelRect box = {area.left, top - side, area.left + side, top};
        legend.rows.push_back({box, blockColor(blocks[i]), name, (box.bottom + box.top - ascent) / 2});
        right = std::max(right, box.right + gap + textSize(name, style).width);
    }
    if (rows < blocks.size()) {
        legend.rest = "and " + std::to_string(blocks.size() - rows) + " more";
        legend.restBase = top - (side + ascent) / 2;
        right = std::max(right, area.left + textSize(legend.rest, style).width);
        top -= row;
    }
    legend.box = {area.left, top + row - side, right, area.top};
    return legend;
}

void drawBlocks(const BlockLegend& legend, const TextStyle& style) {
    for (const BlockLegend::Row& row : legend.rows) {
        fillRect(row.box, row.color);
        outlineRect(row.box, style.color);
        drawText(row.box.right + (row.box.width() + 1) / 2, row.base, row.name, style);
    }
    if (!legend.rest.empty())
        drawText(legend.box.left, legend.restBase, legend.rest, style);
}

} // namespace nruview
