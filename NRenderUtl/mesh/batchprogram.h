// The programs that batches of points and lines are drawn with.
#pragma once

#include "NRenderUtl/shaders/nshaders.h"

/// That of textured batches, or of coloured ones. Not valid before the first batch renderer was made, or
/// where the driver refuses one of them.
NShaderProgram& batchProgram(bool textured);
