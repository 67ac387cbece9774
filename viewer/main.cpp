// nruview: reads a model, shows it in a window or draws it into a file. A host's way through the library is
// in scene/: frame.cpp (the view), scene.cpp (meshes and contours) and pick.cpp (picking).
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
#include "viewer/bodies/materials.h"
#include "viewer/error.h"
#include "viewer/labels/labels.h"
#include "viewer/markers/markerpick.h"
#include "viewer/model/samples.h"
#include "viewer/scene/frame.h"
#include "viewer/scene/scene.h"
#include "viewer/scene/shownmodel.h"
#include "viewer/window/window.h"

namespace nruview {

namespace {

/// Draws without a display, into the file and for the pick that were asked for.
void drawOffscreen(const ShownModel& shown, const Markers& markers, const Options& options) {
    OffscreenContext context;
    if (const std::string reason = context.create(options.width, options.height); !reason.empty())
        throw ViewerError("off-screen drawing", reason);
    const LibrarySession session(options.fixed);
    Scene scene(shown, options.scene, options.body, &markers);
    PictureLabels labels(shown, scene.legends(shown), options.labels, titleOf(shown, options));
    const PictureArea area = labels.area(options.width, options.height);
    const Camera camera = fitCamera(options.view, shown.bounds, area, options.perspective);
    beginFrame(camera, shown.bounds, options.width, options.height, options.background);
    scene.draw();
    labels.draw(camera, options.width, options.height, options.background);
    if (options.pick) {
        const auto& [x, y] = *options.pick;
        const std::string text = describePixel(shown, markers, options.scene.opacity >= 1.0, x, y);
        std::cout << text << "\n";
        labels.drawReadOut(text, {x, y}, options.width, options.height, options.background);
    }
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
    Model model = options.sample.empty() ? readModel(options.file) : makeSample(options.sample);
    const bool offscreen = !options.output.empty() || options.pick;
    if (options.list)
        listModel(std::cout, model, options.sample.empty() ? options.file : options.sample);
    if (options.list && !offscreen)
        return;
    ShownModel shown = showModel(std::move(model), options.shown);
    const Markers markers = makeMarkers(shown, options.markers, options.shown.step);
    shown.bounds = boundsWith(shown.bounds, markers);
    if (offscreen)
        drawOffscreen(shown, markers, options);
    else
        showWindow(shown, markers, options);
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
