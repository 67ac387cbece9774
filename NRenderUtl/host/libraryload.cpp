// Loading and detaching: the library stays mapped for the life of the process and complains when it is
// detached earlier.
#include <cstdlib>

#include "NRenderUtl/host/hostutl.h"

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

thread_local bool threadIsEnding = false;

/// The objects of a thread are destroyed before every static object and every exit handler, the driver's own
/// included, in whatever order those came to be.
struct ThreadEndWatch {
    ~ThreadEndWatch() { threadIsEnding = true; }
};

#ifdef _WIN32

void watchProcessEnd() {} // the loader tells

#else

__attribute__((destructor)) void detached() {
    hostLibraryDetach(state().processIsEnding);
}

// on_exit, not atexit: a handler of atexit belongs to the shared object and would run on its unloading too.
// Handlers run last in, first out: one registered while the library is loaded at start-up would come before
// the dynamic linker's own, and so run after the destructors. Therefore the switch, used from main() on,
// registers it.
void watchProcessEnd() {
    if (!state().watchesProcessEnd)
        on_exit([](int, void*) { state().processIsEnding = true; }, nullptr);
    state().watchesProcessEnd = true;
}

#endif

} // namespace

void __localFnToKeepNRenderUtlDllLoaded() {}

void NHostEnableUnloadWarning(bool enable) noexcept {
    watchProcessEnd();
    state().unloadWarning = enable;
}

bool hostThreadIsEnding() {
    static thread_local ThreadEndWatch watch;
    return threadIsEnding;
}

void hostLibraryDetach(bool processIsEnding) {
    if (processIsEnding || !state().unloadWarning)
        return;
    const std::string text =
        hostFormat("'%s' dll is getting unloaded with application still running!", kLibraryName);
    hostMessage(NHostMessageNote, text.c_str());
}

#ifdef _WIN32

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processIsEnding) {
    if (reason == DLL_PROCESS_ATTACH) {
        HMODULE self = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<LPCWSTR>(&__localFnToKeepNRenderUtlDllLoaded), &self);
    } else if (reason == DLL_PROCESS_DETACH) {
        hostLibraryDetach(processIsEnding != nullptr);
    }
    return TRUE;
}

#endif
