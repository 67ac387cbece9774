// Programs that stages of the catalogue make in other ways, for the renderers of the library.
#pragma once

#include "NRenderUtl/shaders/nshaders.h"

/// The mesh program that takes the element number from the provoking vertex's float attribute
/// kElementAttribute in place of the primitive id, which is faster on drivers that have to count primitives.
/// Same uniforms, same pictures as RenderShaderMesh. Built on the first call, which needs a current context;
/// not valid where the driver refuses it or IsFastRendererEnabled is 0.
NShaderProgram& elementMeshProgram();

inline constexpr const char* kElementAttribute = "g_elem_attrib";
