// The view as the markers cache it.
#pragma once

/// Zero until the first UtlMarkerInit.
struct MarkerView {
    float modelView[16];
    float projection[16];
    float orthoScale; ///< model length of one pixel
};

const MarkerView& markerView();
