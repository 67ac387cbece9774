// The library's band lies along the axes of the model: those of a model measured in pixels are the picture's.
#include "viewer/window/rubberband.h"

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

void drawRubberBand(const std::array<int, 4>& corners, int width, int height) {
    const std::array<double, 16> pixels = {2.0 / width, 0, 0,  0, 0,  2.0 / height, 0, 0,
                                           0,           0, -1, 0, -1, -1,           0, 1};
    const std::array<double, 16> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const NglSetCustomMatrices view(pixels.data(), identity.data());
    const auto& [x0, y0, x1, y1] = corners;
    ngl_draw_rubber(1, x0, y0, x1, y1);
}

} // namespace nruview
