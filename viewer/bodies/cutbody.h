// Bodies cut by a plane: the library's mesh renderer takes no clip planes.
#pragma once

#include "viewer/bodies/bodymesh.h"

namespace nruview {

/// What of a mesh lies before a plane.
BodyMesh cutBody(const BodyMesh& whole, const Plane& plane);

/// Adds the cut through the solids of a part, by its place; its normals are the plane's.
void addCap(BodyMesh& mesh, const ShownModel& shown, std::size_t part);

} // namespace nruview
