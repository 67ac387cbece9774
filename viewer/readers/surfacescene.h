// What assimp has read, as a model.
#pragma once

#include "viewer/readers/readers.h"

struct aiScene;

namespace nruview::readers {

/// Faces in the file's order, each once for every place where the scene has it, with equal positions made one
/// node; a part for each piece with its material's colour. STL's normals, one for a facet, are not taken, nor
/// colours where the materials are not the file's own.
struct SceneUse {
    bool normals = true;
    bool colors = true;
};
Model modelOf(const aiScene& scene, SceneUse use);

} // namespace nruview::readers
