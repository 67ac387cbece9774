// Loading and detaching: the library stays mapped for the life of the process and complains when it is
// detached earlier.
#include <cstdlib>

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/libraryload.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

constexpr const char* kLibraryName = "NRenderUtl";

struct LoadState {
    bool unloadWarning = false;
    bool watchesProcessEnd = false;
    bool processIsEnding = false;
};

LoadState& state() {
    static LoadState state;
    return state;
}

} // namespace

void __localFnToKeepNRenderUtlDllLoaded() {}

void NHostEnableUnloadWarning(bool enable) {
    hostWatchProcessEnd();
    state().unloadWarning = enable;
}

void hostLibraryDetach(bool processIsEnding) {
    if (processIsEnding || !state().unloadWarning)
        return;
    const std::string text =
        hostFormat("'%s' dll is getting unloaded with application still running!", kLibraryName);
    hostMessage(NHostMessageNote, text.c_str());
}

#ifdef _WIN32

void hostWatchProcessEnd() {}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processIsEnding) {
    if (reason == DLL_PROCESS_ATTACH) {
        HMODULE self = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<LPCWSTR>(&__localFnToKeepNRenderUtlDllLoaded), &self);
    } else if (reason == DLL_PROCESS_DETACH) {
        hostLibraryDetach(processIsEnding != nullptr);
    }
    return TRUE;
}

#else

namespace {

__attribute__((destructor)) void detached() {
    hostLibraryDetach(state().processIsEnding);
}

} // namespace

// on_exit, not atexit: a handler of atexit belongs to the shared object and would run on its unloading too.
// Handlers run last in, first out: one registered while the library is loaded at start-up would come before
// the dynamic linker's own, and so run after the destructors. Therefore it is registered from main(), by the
// entry points.
void hostWatchProcessEnd() {
    if (state().watchesProcessEnd)
        return;
    state().watchesProcessEnd = true;
    on_exit([](int, void*) { state().processIsEnding = true; }, nullptr);
}

#endif
