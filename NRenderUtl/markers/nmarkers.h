// Markers and annotations: so far the state that is refreshed whenever the view record changes.
#pragma once

#include "NRenderUtl/ntypes.h"

/// Refreshes the markers' cached matrices (16 floats each, column-major) and ortho scale (model length of a
/// pixel).
NRENDERUTL_API void UtlMarkerInit(const float* modelView, const float* projection, float pixelSize);

/// Height of managed annotation text; 0 means the default height.
NRENDERUTL_API void UtlDrawSetManagedTextDrawHeight(double height);
NRENDERUTL_API double UtlDrawGetManagedTextDrawHeight();
/// Sets the managed text height back to 0.
NRENDERUTL_API void UtlDrawInitializeManagedTextDraw();
