// A host linked with the library that turns the unload warning on and ends.
#include <cstdio>

#include "NRenderUtl/host/nhost.h"

int main() {
    NHostEnableUnloadWarning(true);
    std::puts("end of main");
    return 3;
}
