// The lights of physically based shading: a fixed arrangement about the viewer.
#pragma once

#include "NRenderUtl/gl/ngl.h"

/// Fills status and position of five lights from the view vectors of a record, in model space; the other
/// three are off. Only directions count, so that the camera's place does not enter.
void makePbrLights(const _NglInfoStr& view, NglLightParams (&lights)[8]);
