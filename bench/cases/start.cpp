// Start-up: what comes before a host's first frame, each time in a process of its own.
#include <epoxy/gl.h>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

/// With the context that the host makes.
Work startWithContext(unsigned) {
    return {[](unsigned) {
                openLibrary();
                glFinish();
            },
            false};
}

Work startInContext(unsigned) {
    openWindow();
    return {[](unsigned) {
                startLibrary();
                glFinish();
            },
            false};
}

/// From nothing to a picture.
Work firstFrame(unsigned size) {
    return {[sheet = Sheet(size)](unsigned) {
                openSheetView();
                clearWindow();
                const RenderColorScale scale = makeScale();
                ngl::NglElementMesh mesh;
                check(mesh.Create(inputOf(sheet)) == 0, "no mesh");
                mesh.SetColorScale(&scale);
                mesh.SetNodeValues(sheet.nodeValues.data());
                mesh.Draw();
                glFinish();
            },
            false};
}

} // namespace

std::vector<Case> startCases() {
    return {{"start.with_context", {1}, startWithContext, "", true},
            {"start.in_context", {1}, startInContext, "", true},
            {"start.to_first_frame", {1000}, firstFrame, "", true}};
}

} // namespace nrubench
