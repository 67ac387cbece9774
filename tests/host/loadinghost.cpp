// A host that loads the library named by its argument, closes its handle, turns the unload warning on and
// ends.
#include <dlfcn.h>

#include <cstdio>

int main(int, char** argv) {
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return 1;
    const auto anchor = reinterpret_cast<void (*)()>(dlsym(library, "__localFnToKeepNRenderUtlDllLoaded"));
    // The C++ name of NHostEnableUnloadWarning(bool).
    const auto enable = reinterpret_cast<void (*)(bool)>(dlsym(library, "_Z24NHostEnableUnloadWarningb"));
    if (dlclose(library) != 0)
        return 2;
    anchor();
    enable(true);
    std::puts("end of main");
    return 3;
}
