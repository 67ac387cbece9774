// GLE's tubes for hosts that have only this library's handle, or link nothing else: functions of the same
// names that forward to GLE's own.
#include <dlfcn.h>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

struct Gle {
    decltype(&glePolyCylinder) polyCylinder = nullptr;
    decltype(&gleSetJoinStyle) setJoinStyle = nullptr;
    decltype(&gleGetJoinStyle) getJoinStyle = nullptr;
};

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

/// Only a handle of GLE's never leads back here: RTLD_NEXT, or linking GLE, depends on the order in which the
/// host links the two libraries.
Gle loadGle() {
    Gle gle;
    void* library = dlopen("libgle.so.3", RTLD_LAZY | RTLD_LOCAL);
    if (library && find(library, "glePolyCylinder", gle.polyCylinder) &&
        find(library, "gleSetJoinStyle", gle.setJoinStyle) &&
        find(library, "gleGetJoinStyle", gle.getJoinStyle))
        return gle;
    hostMessage(NHostMessageNote, "libgle.so.3 (GLE) cannot be loaded: tubes are not drawn");
    return {};
}

const Gle& gle() {
    static const Gle loaded = loadGle();
    return loaded;
}

} // namespace

void glePolyCylinder(int count, double points[][3], float colors[][3], double radius) {
    if (gle().polyCylinder)
        gle().polyCylinder(count, points, colors, radius);
}

void gleSetJoinStyle(int style) {
    if (gle().setJoinStyle)
        gle().setJoinStyle(style);
}

int gleGetJoinStyle() {
    return gle().getJoinStyle ? gle().getJoinStyle() : 0;
}
