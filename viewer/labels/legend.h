// The colour bar: the scale's own bands in its own colours, with the values of their limits.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "viewer/labels/screen.h"
#include "viewer/scene/colorbands.h"

namespace nruview {

/// Where everything of a colour bar stands. The lowest band is at the bottom.
struct Legend {
    struct Box {
        int bottom = 0, top = 0;
        NgColorLong color = 0;
    };
    struct Label {
        int limit = 0; ///< of the bands, as ColorBands counts them
        std::string text;
        int y = 0; ///< its height in the bar, where the tick is
    };
    PixelRect bar, noValue; ///< the latter is empty where every value is there
    std::vector<Box> boxes; ///< bands; of smeared ones a row of pixels each
    std::vector<Label> labels;
    int labelsRight = 0; ///< numbers end here, so that their digits stand in columns
    std::string heading, factor;
    int headingLeft = 0, headingBase = 0, factorBase = 0;
    int right = 0; ///< end of all of it
    PixelRect box; ///< about all of it
};

/// What a colour bar is for.
struct LegendContent {
    const ColorBands& bands;
    std::string heading;
    bool lacksValues = false; ///< somewhere: their colour has a box of its own below the bar
};

/// Lays it out from the upper left corner of an area downward. Labels that would touch each other are left
/// out, the ends stay. Returns nothing where the area is too small.
std::optional<Legend> layOutLegend(const LegendContent& content, const PixelRect& area, int em_px,
                                   const TextStyle& style);
void drawLegend(const Legend& legend, const TextStyle& style);

/// The limits that are labelled when labels stand at least so many bands apart: evenly where that works out,
/// and both ends.
std::vector<int> labelledLimits(int bands, int apart);

} // namespace nruview
