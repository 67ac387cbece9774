// The program that batches of points and lines are drawn with.
#pragma once

#include "NRenderUtl/shaders/nshaders.h"

/// Not valid before the first batch renderer was made, or where the driver refuses it.
NShaderProgram& batchProgram();
