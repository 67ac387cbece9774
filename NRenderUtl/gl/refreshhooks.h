// The two refresh hooks that the view record calls after it changed. What lies above the GL layer registers
// itself here, so that the layer does not include it.
#pragma once

/// Refreshes marker state: 16 floats each of model-view and projection, and the pixel size.
using MarkerRefreshHook = void (*)(const float* modelView, const float* projection, float pixelSize);
/// Refreshes annotation text state.
using TextRefreshHook = void (*)();

/// Stores a hook; returns true so that a static initialiser can call it.
bool registerMarkerRefresh(MarkerRefreshHook hook);
bool registerTextRefresh(TextRefreshHook hook);

/// Calls the hooks that are registered, markers first.
void refreshMarkersAndText(const float* modelView, const float* projection, float pixelSize);
