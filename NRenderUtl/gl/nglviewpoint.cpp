// The view point: depth offsets towards the viewer, so that what is drawn next lies on top of geometry.
#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

/// Moves the model-view; matrices-current is cleared with it.
void translateBy(const _NgPoint3Str& offset, double sign) {
    ngl_translate_3d(sign * offset.x, sign * offset.y, sign * offset.z);
}

} // namespace

void NglGetPushDelta(_NgPoint3Str* delta) {
    *delta = nglRecord().live.pushDelta;
}

void UtlPushViewPoint() {
    ++nglRecord().live.viewPushCount;
    translateBy(nglRecord().live.pushDelta, 1.0);
}

void UtlPopViewPoint() {
    --nglRecord().live.viewPushCount;
    translateBy(nglRecord().live.pushDelta, -1.0);
}

void UtlPushViewPointDelta(_NgPoint3Str* delta) {
    translateBy(*delta, 1.0);
}

void UtlPopViewPointDelta(_NgPoint3Str* delta) {
    translateBy(*delta, -1.0);
}

void NglResetViewPush() {
    while (nglRecord().live.viewPushCount > 0)
        UtlPopViewPoint();
}

void UtlComputeViewDelta(_NgPoint3Str* delta, int n) {
    const NglProjection live = nglLiveProjection();
    const _NgPoint3Str view = nglUnprojectDirection(live, {1, 0, 0}, {1, 0, 1});
    *delta = MathScaled(view, nglDepthOffset(-2.0 / live.projection[10], n));
}
