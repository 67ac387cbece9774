// The interactive window.
#pragma once

#include "viewer/app/options.h"
#include "viewer/workspace/script.h"

namespace nruview {

/// Reads a model and shows it until the window is closed, and runs a script's commands between its pictures.
/// Throws ViewerError for what cannot be read, and when there is no display or no OpenGL.
void showWindow(const Options& options, Script* script = nullptr);

} // namespace nruview
