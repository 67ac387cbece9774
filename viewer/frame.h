// A frame's first step: the view, the lights and the colours, handed over to OpenGL and to the library.
#pragma once

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/camera.h"

namespace nruview {

/// Once for a context, after it was made current.
void startLibrary();

/// Clears a window of width x height pixels and sets the view. The library reads matrices, viewport, lights
/// and materials back from OpenGL; what it cannot know from there is written into its record.
void beginFrame(const Camera& camera, const Bounds& bounds, int width, int height, NgColorLong background);

} // namespace nruview
