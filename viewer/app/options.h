// The command line of nruview.
#pragma once

#include <cstdint>

#include "viewer/scene/camera.h"
#include "viewer/scene/scenesettings.h"

namespace nruview {

struct Options {
    std::string file;   ///< empty when a sample is shown
    std::string sample; ///< NAME or NAME:N
    std::string output; ///< PNG file; empty: a window
    ShownSettings shown;
    SceneSettings scene;
    BodySettings body;
    MarkerSettings markers;
    LabelSettings labels;
    ViewAxes view = parseView("iso");
    bool perspective = false;
    int width = 1024, height = 768;
    std::uint32_t background = 0xFFFFFFFF; ///< packed 0xAABBGGRR
    bool fixed = false;                    ///< fixed function where programs run too
    bool list = false;
    bool materials = false; ///< print the material table and end
    bool report = false;    ///< print what start-up finds and end
    std::string families;   ///< folder for a picture of each family of drawing; empty: none are drawn
    bool contract = false;  ///< check the contract with the host's OpenGL and end
    bool verbose = false;
    bool panel = true;                        ///< beside the picture in a window
    int samples = 4;                          ///< for each pixel in a window; 1: edges are not smoothed
    std::optional<double> displayScale;       ///< of letters and lines in a window; nothing: the display's
    std::string script;                       ///< file of commands; empty: none
    std::optional<AnimationSettings> animate; ///< then output is the name of numbered files
    std::optional<std::array<int, 2>> pick;   ///< window pixel, y from the top
};

/// Reads the command line. Returns nothing after --help or --version, which it prints; throws ViewerError
/// naming the argument that is wrong.
std::optional<Options> readOptions(int argc, const char* const* argv);

/// Gives one option of a model that is shown, named as on the command line with or without its dashes,
/// another value; a flag without one is on. Earlier values of lists go. Throws ViewerError.
void setOption(Options& options, const std::string& name, const std::vector<std::string>& values);

} // namespace nruview
