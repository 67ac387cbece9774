// The interactive window.
#pragma once

#include "viewer/app/options.h"
#include "viewer/markers/markers.h"
#include "viewer/scene/camera.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Shows a model until the window is closed. Dragging turns it, the wheel zooms, F fits it, Esc closes.
/// Throws ViewerError when there is no display or no OpenGL.
void showWindow(const ShownModel& shown, const Markers& markers, const Options& options);

} // namespace nruview
