// nruview: reads a model, shows it in a window or draws it into a file. A host's way through the library is
// in scene/: frame.cpp (the view), scene.cpp (meshes and contours) and pick.cpp (picking); what a user can do
// with a picture is in workspace/.
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <optional>

#include "viewer/app/listing.h"
#include "viewer/app/messages.h"
#include "viewer/app/options.h"
#include "viewer/app/pngwriter.h"
#include "viewer/app/report.h"
#include "viewer/bodies/materials.h"
#include "viewer/contract/contractreport.h"
#include "viewer/contract/routes.h"
#include "viewer/error.h"
#include "viewer/model/samples.h"
#include "viewer/window/window.h"
#include "viewer/workspace/animation.h"
#include "viewer/workspace/offscreenplace.h"
#include "viewer/workspace/script.h"

namespace nruview {

namespace {

/// Draws without a display what was asked for: a script's pictures, a pick, a file or several.
void drawOffscreen(Model model, const Options& options, Script* script) {
    OffscreenPlace place(std::move(model), options);
    while (script != nullptr && !script->isAtEnd())
        script->runNext(place);
    if (options.pick)
        place.workspace().showReadOut((*options.pick)[0], (*options.pick)[1]);
    if (options.animate)
        writeAnimation(place, *options.animate, options.output);
    const bool hasOutput = !options.output.empty() && !options.animate;
    if (!options.pick && !hasOutput)
        return;
    const Pixels picture = place.picture();
    if (options.pick)
        std::cout << place.workspace().describeAt((*options.pick)[0], (*options.pick)[1]) << "\n";
    if (hasOutput)
        writePng(options.output, picture.width, picture.height, picture.colors);
}

/// A script without mouse and keys that makes pictures needs no display.
bool isOffscreen(const Options& options, const std::optional<Script>& script) {
    return !options.output.empty() || options.pick ||
           (script && script->makesFiles() && !script->usesInput());
}

void run(const Options& options) {
    routeMessages(options.verbose);
    if (options.materials)
        return printMaterials(std::cout);
    if (options.report)
        return reportStartUp(std::cout, options.fixed);
    if (!options.families.empty())
        return writeFamilyPictures(options.families, options.fixed);
    if (options.contract)
        return checkContract(std::cout);
    std::optional<Script> script;
    if (!options.script.empty())
        script.emplace(options.script);
    const bool offscreen = isOffscreen(options, script);
    if (!offscreen && !options.list)
        return showWindow(options, script ? &*script : nullptr);
    Model model = options.sample.empty() ? readModel(options.file) : makeSample(options.sample);
    if (options.list)
        listModel(std::cout, model, options.sample.empty() ? options.file : options.sample);
    if (offscreen)
        drawOffscreen(std::move(model), options, script ? &*script : nullptr);
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
