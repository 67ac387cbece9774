// The hooks through which the folders above this one are reached.
#include "NRenderUtl/gl/batchprogram.h"
#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/gl/texturehook.h"

namespace {

struct Hooks {
    MarkerRefreshHook markers = nullptr;
    TextRefreshHook text = nullptr;
    ContourTextureReader contourTexture = nullptr;
    BatchProgramHook batchProgram{};
};

Hooks& hooks() {
    static Hooks instance;
    return instance;
}

} // namespace

bool registerMarkerRefresh(MarkerRefreshHook hook) {
    hooks().markers = hook;
    return true;
}

bool registerTextRefresh(TextRefreshHook hook) {
    hooks().text = hook;
    return true;
}

void refreshMarkersAndText(const float* modelView, const float* projection, float pixelSize) {
    if (hooks().markers)
        hooks().markers(modelView, projection, pixelSize);
    if (hooks().text)
        hooks().text();
}

bool registerContourTextureReader(ContourTextureReader reader) {
    hooks().contourTexture = reader;
    return true;
}

ContourTexture readContourTexture(const RenderTextureAttributes& attributes) {
    return hooks().contourTexture ? hooks().contourTexture(attributes) : ContourTexture{};
}

bool registerBatchProgram(const BatchProgramHook& hook) {
    hooks().batchProgram = hook;
    return true;
}

const BatchProgramHook& batchProgramHook() {
    return hooks().batchProgram;
}
