// The interactive window.
#pragma once

#include "viewer/app/options.h"
#include "viewer/workspace/script.h"

namespace nruview {

/// Shows a model until the window is closed, and runs a script's commands between its pictures. Dragging
/// turns it, the wheel zooms about the cursor, F fits it, Esc closes. Throws ViewerError when there is no
/// display or no OpenGL.
void showWindow(Model model, const Options& options, Script* script = nullptr);

} // namespace nruview
