// Discs of whole pixels: as rectangles of rows they have far fewer corners than as polygons in steps of a
// degree, whose pixels they show.
#pragma once

#include <cmath>

#include "NRenderUtl/host/hostgl.h"

/// Up to this radius the pixels of a disc are those of its polygon on any grid of 1/256 of a pixel: centres
/// of pixels keep 1 / (4 r) away from a rim of whole radius about a corner of pixels, and the polygon strays
/// by r / 26000 and that grid.
constexpr int kLargestDiscOfRows = 40;

/// Whether a polygon shows the pixels of which it covers the centres, and these alone. Feedback shows its
/// corners, and a display list knows nothing of the state at its call.
inline bool pixelsAreCentres() {
    GLint modes[2], mode, list, samples = 0;
    glGetIntegerv(GL_POLYGON_MODE, modes);
    glGetIntegerv(GL_RENDER_MODE, &mode);
    glGetIntegerv(GL_LIST_INDEX, &list);
    if (glVersion() >= 13)
        glGetIntegerv(GL_SAMPLES, &samples);
    return mode == GL_RENDER && list == 0 && modes[0] == GL_FILL && modes[1] == GL_FILL && samples == 0 &&
           !glIsEnabled(GL_POLYGON_SMOOTH) && !glIsEnabled(GL_POLYGON_STIPPLE);
}

/// Half the pixels of the disc in a row of pixels, counted from its centre.
inline int halfOfRow(int row, int radius) {
    const float y = static_cast<float>(row) + 0.5f, r = static_cast<float>(radius);
    return static_cast<int>(std::lround(std::sqrt(r * r - y * y)));
}

/// Sends the corners of the rectangles, counted from the centre: send(x, y), four of a quad after the other.
template <class Send>
void sendDiscByRows(int radius, const Send& send) {
    for (int row = -radius, next = row; row < radius; row = next) {
        const int half = halfOfRow(row, radius);
        while (next < radius && halfOfRow(next, radius) == half)
            ++next;
        send(-half, row);
        send(half, row);
        send(half, next);
        send(-half, next);
    }
}
