// The frame that is dragged about what is to be selected.
#pragma once

#include <array>

namespace nruview {

/// Between two corners of a picture, in pixels with y from the top, into the framebuffer object that is
/// bound; drawn again it is gone.
void drawRubberBand(const std::array<int, 4>& corners, int width, int height);

} // namespace nruview
