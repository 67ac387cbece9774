// The view that the markers work with, refreshed whenever the view record changes.
#include <algorithm>

#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/markers/markerview.h"
#include "NRenderUtl/markers/nmarkers.h"

namespace {

MarkerView& cachedView() {
    static MarkerView view{};
    return view;
}

[[maybe_unused]] const bool kRegistered = registerMarkerRefresh(UtlMarkerInit);

} // namespace

const MarkerView& markerView() {
    return cachedView();
}

void UtlMarkerInit(const float* modelView, const float* projection, float pixelSize) {
    MarkerView& view = cachedView();
    std::copy_n(modelView, 16, view.modelView);
    std::copy_n(projection, 16, view.projection);
    view.orthoScale = pixelSize;
    double symbolMatrix[16];
    std::copy_n(modelView, 16, symbolMatrix);
    UtlSymInit(symbolMatrix, 0, &pixelSize);
}
