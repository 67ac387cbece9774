// nruview: reads a model, shows it in a window or draws it into a file. A host's way through the library is
// in scene/: frame.cpp (the view), scene.cpp (meshes and contours) and pick.cpp (picking); what a user can do
// with a picture is in workspace/.
#include <epoxy/gl.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <vector>

#include "viewer/app/listing.h"
#include "viewer/app/messages.h"
#include "viewer/app/offscreen.h"
#include "viewer/app/options.h"
#include "viewer/app/pngwriter.h"
#include "viewer/app/report.h"
#include "viewer/bodies/materials.h"
#include "viewer/error.h"
#include "viewer/model/samples.h"
#include "viewer/scene/frame.h"
#include "viewer/window/window.h"
#include "viewer/workspace/workspace.h"

namespace nruview {

namespace {

/// Draws without a display, into the file and for the pick that were asked for.
void drawOffscreen(Model model, const Options& options) {
    OffscreenContext context;
    if (const std::string reason = context.create(options.width, options.height); !reason.empty())
        throw ViewerError("off-screen drawing", reason);
    const LibrarySession session(options.fixed);
    Workspace workspace(std::move(model), options);
    if (options.pick)
        workspace.showReadOut((*options.pick)[0], (*options.pick)[1]);
    workspace.draw(options.width, options.height);
    if (options.pick)
        std::cout << workspace.describeAt((*options.pick)[0], (*options.pick)[1]) << "\n";
    if (options.output.empty())
        return;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(options.width) * options.height);
    glReadPixels(0, 0, options.width, options.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    writePng(options.output, options.width, options.height, pixels);
}

void run(const Options& options) {
    routeMessages(options.verbose);
    if (options.materials)
        return printMaterials(std::cout);
    if (options.report)
        return reportStartUp(std::cout, options.fixed);
    Model model = options.sample.empty() ? readModel(options.file) : makeSample(options.sample);
    const bool offscreen = !options.output.empty() || options.pick;
    if (options.list)
        listModel(std::cout, model, options.sample.empty() ? options.file : options.sample);
    if (options.list && !offscreen)
        return;
    if (offscreen)
        drawOffscreen(std::move(model), options);
    else
        showWindow(std::move(model), options);
}

} // namespace

} // namespace nruview

int main(int argc, char** argv) {
    try {
        if (const auto options = nruview::readOptions(argc, argv))
            nruview::run(*options);
        if (!std::cout.flush()) // a full disk shows only here
            throw nruview::ViewerError("standard output", "cannot be written");
        return 0;
    } catch (const nruview::ViewerError& error) {
        std::fprintf(stderr, "nruview: %s\n", error.what());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "nruview: the model does not fit into memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "nruview: %s\n", error.what());
    }
    return 2;
}
