// GLSL names of the enumerated attributes and uniforms, each at the index of its value.
#pragma once

#include "NRenderUtl/shaders/nshaders.h"

extern const char* const kAttributeNames[RenderAttribCount];
extern const char* const kUniformNames[RenderUniformCount];
