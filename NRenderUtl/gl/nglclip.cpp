// User clip planes: the host owns them and loads them through the callbacks that it registers.
#include "NRenderUtl/gl/nglclip.h"

#include <cstdint>

#include "NRenderUtl/gl/ngl.h"

namespace {

struct ClipState {
    NglClipPlaneFunc load = nullptr;
    NglClipPlaneFunc unload = nullptr;
    std::uint8_t loaded = 0;
};

ClipState& clip() {
    static ClipState state;
    return state;
}

} // namespace

bool nglClipPlanesLoaded() {
    return clip().loaded != 0;
}

void NglRegisterLoadClipPlaneFunc(NglClipPlaneFunc func) {
    if (func)
        clip().load = func;
}

void NglRegisterUnloadClipPlaneFunc(NglClipPlaneFunc func) {
    if (func)
        clip().unload = func;
}

int ngl_load_clip_planes() {
    if (!clip().load)
        return 0;
    clip().loaded = 1;
    return clip().load();
}

int ngl_unload_clip_planes() {
    if (!clip().unload)
        return 0;
    clip().loaded = 0;
    return clip().unload();
}

// Each callback is tested when it is due, so a scope that could not load may still unload, and the reverse.

NglLoadClipPlanes::NglLoadClipPlanes() {
    ngl_load_clip_planes();
}

NglLoadClipPlanes::~NglLoadClipPlanes() {
    ngl_unload_clip_planes();
}

NglUnloadClipPlanes::NglUnloadClipPlanes() {
    ngl_unload_clip_planes();
}

NglUnloadClipPlanes::~NglUnloadClipPlanes() {
    ngl_load_clip_planes();
}
