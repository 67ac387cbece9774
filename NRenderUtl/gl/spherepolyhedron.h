// The polyhedron that small spheres are drawn as.
#pragma once

#include <array>

#include "NRenderUtl/ntypes.h"

/// A regular icosahedron with a pyramid on each face, all corners on the unit sphere. The triangles run
/// clockwise as seen from outside.
struct SpherePolyhedron {
    std::array<_NgFPoint3Str, 32> vertices; ///< 12 of the icosahedron, 20 tips; normals too
    std::array<std::uint32_t, 180> indices; ///< 3 for each triangle
};

const SpherePolyhedron& nglSpherePolyhedron();
