// The height of managed annotation text, which every change of the view record sets back.
#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/markers/nmarkers.h"

namespace {

double& managedTextHeight() {
    static double height = 0.0;
    return height;
}

[[maybe_unused]] const bool kRegistered = registerTextRefresh(UtlDrawInitializeManagedTextDraw);

} // namespace

void UtlDrawSetManagedTextDrawHeight(double height) {
    managedTextHeight() = height;
}

double UtlDrawGetManagedTextDrawHeight() {
    return managedTextHeight();
}

void UtlDrawInitializeManagedTextDraw() {
    managedTextHeight() = 0.0;
}
