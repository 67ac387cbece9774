// The programs of markers for the lights in use.
#pragma once

#include "NRenderUtl/shaders/nshaders.h"

enum class MarkerProgramKind {
    Single,      ///< contoured or not, and blended or not, by uniforms
    SingleColor, ///< in opaque colours alone, with a plain light: none for others
    Instances,
    Triangles,
    CylinderRays,
    SphereRays,
    CylinderRaysByDepth,
    SphereRaysByDepth,
    SphereDiscs
};

/// The program of a kind, in use and with what the section has sent; null where the driver refuses it. Built
/// when it is first asked for.
NShaderProgram* useMarkerProgram(MarkerProgramKind kind, bool contoured);
