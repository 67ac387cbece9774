// The library calls back for the host's clip planes; this host has one.
#include "viewer/section/clipplane.h"

#include <epoxy/gl.h>

namespace nruview {

namespace {

/// The skin ends so far before the plane: a face in the plane itself would shimmer, and the cap covers it.
constexpr double kBefore = 1e-5;

Plane activePlane;

int loadPlane() {
    const Point& normal = activePlane.normal;
    const std::array<double, 4> equation = {-normal[0], -normal[1], -normal[2], activePlane.offset - kBefore};
    glClipPlane(GL_CLIP_PLANE0, equation.data());
    glEnable(GL_CLIP_PLANE0);
    return 1;
}

int unloadPlane() {
    glDisable(GL_CLIP_PLANE0);
    return 1;
}

} // namespace

PlaneInForce::PlaneInForce(const std::optional<Plane>& plane) {
    if (!plane)
        return;
    activePlane = *plane;
    NglRegisterLoadClipPlaneFunc(loadPlane);
    NglRegisterUnloadClipPlaneFunc(unloadPlane);
    m_loaded.emplace();
}

} // namespace nruview
