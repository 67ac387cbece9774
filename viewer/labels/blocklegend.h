// The blocks of a model with their colours.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "viewer/labels/screen.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Where everything of it stands, the first block at the top.
struct BlockLegend {
    struct Row {
        PixelRect box;
        NgColorLong color = 0;
        std::string name; ///< shortened where it is long
        int base = 0;
    };
    std::vector<Row> rows;
    std::string rest; ///< how many blocks have no row; empty: none
    int restBase = 0;
    PixelRect box; ///< about all of it
};

/// Lays out the blocks that are not hidden from the upper left corner of an area downward. Returns nothing
/// where blocks give no colours or the area is too small.
std::optional<BlockLegend> layOutBlocks(const ShownModel& shown, const PixelRect& area, int em_px,
                                        const TextStyle& style);
void drawBlocks(const BlockLegend& legend, const TextStyle& style);

} // namespace nruview
