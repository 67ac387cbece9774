// A host that draws a tube with the functions of its own link, if it has them, and with those in the handle
// of the library that its argument names, and tells the join style and the pixels of each.
#include <cstdio>

#include "NRenderUtl/gl/ngl.h"
#include "tests/gl/testtubes.h"

int main(int, char** argv) {
    nruview::OffscreenContext context;
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (context.create(64, 64) != "" || library == nullptr)
        return 1;
    for (void* handle : {RTLD_DEFAULT, library}) {
        const nrutest::Tubes tubes = nrutest::tubesOf(handle);
        if (tubes.draw == nullptr)
            continue;
        tubes.setStyle(TUBE_JN_ROUND | TUBE_NORM_EDGE);
        const nrutest::Picture picture = nrutest::drawTube(tubes, 6, true);
        std::printf("style %d, %d pixels\n", tubes.getStyle(), picture.countOtherThan(0));
    }
    return 0;
}
