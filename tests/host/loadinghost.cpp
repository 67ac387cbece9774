// A host that loads the library named by its argument, turns the unload warning on and ends.
#include <dlfcn.h>

#include <cstdio>

int main(int, char** argv) {
    void* library = dlopen(argv[1], RTLD_NOW);
    if (library == nullptr)
        return 1;
    // The C++ name of NHostEnableUnloadWarning(bool).
    reinterpret_cast<void (*)(bool)>(dlsym(library, "_Z24NHostEnableUnloadWarningb"))(true);
    std::puts("end of main");
    return 3;
}
