// The interactive window.
#pragma once

#include "viewer/camera.h"
#include "viewer/markers.h"
#include "viewer/options.h"
#include "viewer/shownmodel.h"

namespace nruview {

/// Shows a model until the window is closed. Dragging turns it, the wheel zooms, F fits it, Esc closes.
/// Throws ViewerError when there is no display or no OpenGL.
void showWindow(const ShownModel& shown, const Markers& markers, const Options& options);

} // namespace nruview
