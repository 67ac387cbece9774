// A frame's first step: the view, the lights and the colours, handed over to OpenGL and to the library.
#pragma once

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/scene/camera.h"

namespace nruview {

/// The library in the context that is current: from its start-up until what it has made there is deleted.
class LibrarySession {
public:
    /// fixed: no programs, even where they run.
    explicit LibrarySession(bool fixed = false);
    ~LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
};

/// Clears a window of width x height pixels and sets the view. The library reads matrices, viewport, lights
/// and materials back from OpenGL; what it cannot know from there is written into its record.
void beginFrame(const Camera& camera, const Bounds& bounds, int width, int height, NgColorLong background);

} // namespace nruview
