// Sections of 3D markers as the host calls them.
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/markers/markersection.h"
#include "NRenderUtl/markers/nmarkers.h"

namespace {

constexpr const char* kNoSection =
    "3D marker draw is called without RenderBegin3DMarkerDraw being called! Please check and correct.";
constexpr const char* kMarkerInSpheres =
    "Failed to draw 3D sphere (RenderDraw3DMarker is not valid for 3D sphere), Please use "
    "RenderDraw3DSphere to draw 3D sphere markers!";
constexpr const char* kSphereInMarkers =
    "Failed to draw 3D markers (RenderDraw3DSphere is only valid for 3D sphere), Please use "
    "RenderDraw3DMarker to draw other 3D markers!";

struct SectionState {
    bool firstUse = true;
    std::int32_t optimized = 1;
    N3DMarkerRenderer* current = nullptr; ///< of the open section
};

SectionState& state() {
    static SectionState state;
    return state;
}

/// The one place that reads the setting.
bool isOptimized() {
    if (state().firstUse) {
        state().optimized = hostBoolSetting("OPTIMIZED_3D_MARKER_RENDERING", true);
        state().firstUse = false;
    }
    return state().optimized != 0;
}

bool isSphere(const N3DMarker& marker) {
    return marker.GetType() == RENDER_3D_MARKER_SPHERE;
}

} // namespace

N3DMarkerRenderer* openMarkerRenderer(bool spheres) {
    if (!isOptimized())
        return nullptr;
    N3DMarkerRenderer* renderer = state().current;
    const N3DMarker* marker = renderer ? renderer->GetMarker() : nullptr;
    if (renderer && (!marker || isSphere(*marker) == spheres))
        return renderer;
    hostDiagnostic(NHostDiagnosticMisuse, !renderer ? kNoSection
                                          : spheres ? kSphereInMarkers
                                                    : kMarkerInSpheres);
    return nullptr;
}

void RenderBegin3DMarkerDraw(_Render3DMarkerType type, _Render3DMarkerShape shape, bool forceFixedFunction) {
    if (!isOptimized())
        return;
    state().current = N3DMarkerRenderer::GetInstance();
    if (state().current)
        state().current->Begin(type, shape, forceFixedFunction);
}

int RenderDraw3DMarker(const _NgFPoint3Str* start, const _NgFPoint3Str* vector, float lengthScale,
                       float widthRatio, const NgColorLong* color, bool contoured, float texCoord1,
                       float texCoord2, int selected, int highlighted) {
    N3DMarkerRenderer* renderer = openMarkerRenderer(false);
    if (!renderer || !start || !vector)
        return 0;
    return renderer->Draw(start, vector, lengthScale, widthRatio, color, contoured, texCoord1, texCoord2,
                          selected, highlighted);
}

int RenderDraw3DSphere(const _NgFPoint3Str* centre, const _NgFPoint3Str* diameters, NgColorLong color,
                       bool contoured, float texCoord, int selected, int highlighted) {
    N3DMarkerRenderer* renderer = openMarkerRenderer(true);
    if (!renderer || !centre || !diameters)
        return 0;
    return renderer->Draw(centre, diameters, 0, 0, &color, contoured, texCoord, texCoord, selected,
                          highlighted);
}

void RenderClip3DMarkerDraw(bool clip) {
    if (state().current)
        state().current->SetClipFlag(clip);
}

void RenderEnd3DMarkerDraw() {
    if (!isOptimized() || !state().current)
        return;
    state().current->End();
    state().current = nullptr;
}
