// The faces of a model as the library's element mesh.
#pragma once

#include <functional>

#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Whether a face, by its corners and its cell, is to be in the mesh.
using TakeFace = std::function<bool(std::span<const std::uint32_t>, std::uint32_t)>;

/// The faces that take accepts, in the order of forEachFace, with what was asked for their elements. Nodes
/// are the shown model's points, elements its cells. Without such faces the mesh is one that was never
/// created. Needs no context.
ngl::NglElementMesh makeFaceMesh(const ShownModel& shown, const TakeFace& take);

} // namespace nruview
