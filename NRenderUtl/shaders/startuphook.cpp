#include "NRenderUtl/shaders/startuphook.h"

namespace {

StartUpHook& startUpHook() {
    static StartUpHook hook = nullptr;
    return hook;
}

} // namespace

bool registerStartUp(StartUpHook hook) {
    startUpHook() = hook;
    return true;
}

void runStartUpHook() {
    if (startUpHook())
        startUpHook()();
}
