// The section's plane as the host's clip plane, which the library loads into OpenGL.
#pragma once

#include <optional>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/section/cut.h"

namespace nruview {

/// What is drawn in a block is cut by a plane, if there is one; with the view that is current now.
class PlaneInForce {
public:
    explicit PlaneInForce(const std::optional<Plane>& plane);

private:
    std::optional<NglLoadClipPlanes> m_loaded;
};

} // namespace nruview
