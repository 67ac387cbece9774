// The faces of a model's parts as plain arrays, ready for a mesh renderer.
#pragma once

#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Three floats a vertex, three indices a triangle, four a quad. Positions are those of ShownModel::points.
struct BodyMesh {
    std::vector<float> positions, normals;
    std::vector<std::uint32_t> triangles, quads;
};

/// The shown faces of each of the model's parts, in their order; one mesh for a model without parts. Normals
/// are those of shadeVertices: smooth from part to part too.
std::vector<BodyMesh> makeBodyMeshes(const ShownModel& shown);

} // namespace nruview
