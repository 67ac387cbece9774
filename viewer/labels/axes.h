// The names of the axes: a small triad in a corner that turns with the view.
#pragma once

#include "viewer/labels/screen.h"
#include "viewer/scene/camera.h"

namespace nruview {

/// Width and height of the square that it takes, for every view.
int triadSize_px(int em_px);
/// Arrows along x, y and z with their letters, in the square from (left, bottom) on. An axis along the view
/// has only its letter, beside the origin.
void drawTriad(const ViewAxes& axes, int left, int bottom, int em_px, const TextStyle& style);

} // namespace nruview
