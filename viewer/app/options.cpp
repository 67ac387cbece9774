// The command line through CLI11.
#include "viewer/app/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <iterator>
#include <set>

#include "viewer/app/optionvalues.h"
#include "viewer/error.h"
#include "viewer/model/samples.h"

namespace nruview {

namespace {

constexpr double kOpacityOverTensors = 0.2;
constexpr const char* kNone = "none"; ///< a list of nothing
/// What a model that is shown has already.
constexpr std::string_view kFixedOptions[] = {"--help",    "--version", "--file",  "--sample",  "--output",
                                              "--script",  "--animate", "--list",  "--pick",    "--materials",
                                              "--report",  "--size",    "--fixed", "--verbose", "--no-panel",
                                              "--samples", "--scale"};

std::string sampleHelp() {
    std::string text = "a built-in model instead of a file, N elements along its longest side:";
    for (const auto& [name, description] : sampleList())
        text += "\n" + name + ", " + description;
    return text;
}

/// An empty word, as of a script's unset variable, is no name.
std::string refuseEmpty(const std::string& text) {
    return text.empty() ? "the name is empty" : "";
}

/// For values that are optional: auto takes away what was there.
template <typename Parse>
auto orAuto(Parse parse) {
    return [parse](const char* option, const std::string& text) {
        return text == "auto" ? std::nullopt : std::optional(parse(option, text));
    };
}

template <typename Parse>
auto orOff(Parse parse) {
    return [parse](const char* option, const std::string& text) {
        return text == "off" ? std::nullopt : std::optional(parse(option, text));
    };
}

/// An option whose text a function turns into a value.
template <typename Value, typename Parse>
CLI::Option* addParsed(CLI::App& app, const char* name, Value& value, Parse parse, const char* form,
                       const char* help) {
    const auto take = [&value, parse, name](const std::string& text) { value = parse(name, text); };
    return app.add_option_function<std::string>(name, take, help)->option_text(form);
}

/// The same for an option that may stand more than once; its values come one behind the other.
template <typename Value, typename Parse>
CLI::Option* addRepeated(CLI::App& app, const char* name, std::vector<Value>& values, Parse parse,
                         const char* form, const char* help) {
    const auto take = [&values, parse, name](const std::vector<std::string>& texts) {
        values.clear();
        for (const std::string& text : texts)
            if (text != kNone)
                values.push_back(parse(name, text));
    };
    return app.add_option_function<std::vector<std::string>>(name, take, help)
        ->allow_extra_args(false) // the next word is an option or the file
        ->option_text(form);
}

/// An option of lists; several add up.
template <typename List, typename Parse>
CLI::Option* addLists(CLI::App& app, const char* name, List& list, Parse parse, const char* form,
                      const char* help) {
    const auto take = [&list, parse, name](const std::vector<std::string>& texts) {
        list.clear();
        for (const std::string& text : texts)
            for (const auto& item : text != kNone ? parse(name, text) : List())
                list.push_back(item);
    };
    return app.add_option_function<std::vector<std::string>>(name, take, help)
        ->allow_extra_args(false)
        ->option_text(form);
}

void addElements(CLI::App& app, const char* name, ElementList& list, const char* help) {
    addLists(app, name, list, parseElements, "LIST", help);
}

void addContentOptions(CLI::App& app, Options& options) {
    CLI::Option* file =
        app.add_option("file", options.file,
                       "file to draw: finite elements (.vtu, .pvd, .vtk, .frd, .inp, .msh, .e, "
                       ".exo) or a surface (.stl, .obj, .ply, .glb, .gltf)");
    file->option_text("FILE")->check(refuseEmpty);
    app.add_option("--sample", options.sample, sampleHelp())
        ->option_text("NAME[:N]")
        ->check(refuseEmpty)
        ->excludes(file);
    CLI::Option* field =
        app.add_option("--field", options.shown.field,
                       "field to colour by; @node or @cell where both have the name; components are "
                       "numbers from 0, x y z, xx yy zz xy yz xz, mag, mises");
    field->option_text("NAME[@node|@cell][:COMPONENT]")->check(refuseEmpty);
    addParsed(app, "--color-by", options.shown.colorBy, parseColorBy, "field|block|plain",
              "what gives elements their colour: --field (default), their block, or nothing");
    app.add_option("--step", options.shown.step, "result step, from 0 (default: the last)")->option_text("N");
    addParsed(app, "--bands", options.scene.bands, parseBands, "N",
              "number of colours (default 12, at most 64)")
        ->needs(field);
    addParsed(app, "--range", options.scene.range, orAuto(parseRange), "MIN,MAX",
              "values of the first and the last colour; what lies outside takes these two")
        ->needs(field);
    app.add_flag("--smear", options.scene.smeared, "blend the colours into each other")->needs(field);
    const auto takeFactor = [&options](const std::string& text) {
        options.shown.deformed = text != "off";
        options.shown.deformFactor =
            options.shown.deformed ? parseDeform("--deform", text) : std::optional<double>();
    };
    CLI::Option* deform =
        app.add_option_function<std::string>("--deform", takeFactor,
                                             "move the nodes by their displacement times a factor; "
                                             "auto shows the largest as a tenth of the model's size");
    deform->option_text("FACTOR|auto");
    app.add_option(
           "--deform-by", options.shown.deformBy,
           "displacement field (default: the one named like a displacement, else the vector that is drawn)")
        ->option_text("NAME")
        ->check(refuseEmpty)
        ->needs(deform);
}

void addElementOptions(CLI::App& app, Options& options) {
    ElementSettings& elements = options.shown.elements;
    addElements(app, "--hide", elements.hidden,
                "elements to leave out, such as 0-99,120 (numbers from 0); unless --select or --highlight "
                "names them too");
    addElements(app, "--select", elements.selected, "elements to show in the selection colour");
    addElements(app, "--highlight", elements.highlighted, "elements to show in the highlight colour");
    addRepeated(app, "--color", elements.colored, parseColored, "LIST=RRGGBB",
                "elements to show in a colour of their own, without contour; may be repeated");
    addRepeated(
        app, "--hide-block", elements.hiddenBlocks, [](const char*, const std::string& name) { return name; },
        "NAME", "block to leave out; may be repeated");
    addRepeated(app, "--clip", elements.clips, parseClip, "AXIS:MIN,MAX",
                "keep the elements whose middle lies between two coordinates, one of which may be missing "
                "(x:,50); may be repeated");
    CLI::Option* level = addParsed(app, "--fail-level", elements.failLevel, orAuto(parseLevel), "N",
                                   "the level, from 0, that elements fail at or exist from");
    CLI::Option* fail = app.add_option("--fail", elements.failField,
                                       "element field: leave an element out from this level on");
    CLI::Option* before = app.add_option("--fail-before", elements.failBeforeField,
                                         "element field: leave an element out before this level");
    for (CLI::Option* field : {fail, before})
        field->option_text("FIELD")->check(refuseEmpty)->needs(level);
}

void addPictureOptions(CLI::App& app, Options& options, std::optional<std::array<int, 2>>& size) {
    app.add_option("-o,--output", options.output,
                   "draw into a PNG file, without a display (default: a window)")
        ->option_text("FILE.png")
        ->check(refuseEmpty);
    addParsed(app, "--section", options.shown.section, orOff(parseSection), "AXIS[:PLACE]|X,Y,Z:NX,NY,NZ",
              "cut the model by a plane, through its middle or a place on an axis, or through a point with a "
              "normal; what the axis or normal points at is cut away");
    app.add_flag("--section-handle", options.scene.sectionHandle, "show that plane and its normal");
    addParsed(app, "--edges", options.scene.edges, orAuto(parseEdges), "all|feature|none",
              "element edges (default: all; none of surface models and bodies)");
    addParsed(app, "--shade", options.scene.shading, parseShading, "smooth|flat|element",
              "smooth (default) with sharp edges kept, by triangle, or by element face");
    addParsed(app, "--crease", options.shown.creaseDeg, orAuto(parseCrease), "DEG",
              "largest angle between faces that are shaded as one, in place of the file's normals "
              "(default: the file's normals, else 30)");
    addParsed(app, "--opacity", options.scene.opacity, parseOpacity, "X",
              "of the faces or bodies: 0 invisible to 1 opaque (default)");
    addParsed(
        app, "--view", options.view, [](const char*, const std::string& text) { return parseView(text); },
        "VIEW",
        "iso (default); xy yx xz zx yz zy, the axes to the right and upward; or X,Y,Z, the side to "
        "look from");
    app.add_flag("--persp", options.perspective, "perspective instead of a parallel projection");
    addParsed(app, "--size", size, parseSize, "WxH", "size of the picture in pixels (default 1024x768)");
    addParsed(app, "--background", options.background, parseColor, "RRGGBB",
              "hexadecimal, or black or white (default)");
    app.add_flag("--fixed", options.fixed, "draw without GLSL programs");
}

/// Bodies: models without a field, lit by lamps or by an environment.
void addBodyOptions(CLI::App& app, Options& options) {
    BodySettings& body = options.body;
    CLI::Option* field = app.get_option("--field");
    CLI::Option* pbr = app.add_flag("--pbr", body.physical, "physically based shading")->excludes(field);
    CLI::Option* hdr = app.add_option("--hdr", body.environment,
                                      "environment that lights the model, a Radiance picture of all "
                                      "directions; @studio is a made-up one");
    hdr->option_text("FILE.hdr")->check(refuseEmpty)->needs(pbr);
    addParsed(app, "--hdr-up", body.environmentUp, parseImageUp, "AXIS",
              "x, -x, y, -y, z or -z: what is upward in it (default: what is upward in the view)")
        ->needs(hdr);
    app.add_flag("--hdr-background", body.environmentBackground, "show it behind the model")->needs(hdr);
    app.add_option("--material", body.material, "how the surface reflects (default: Steel)")
        ->option_text("NAME")
        ->check(refuseEmpty)
        ->needs(pbr);
    CLI::Option* legacy = app.add_flag("--legacy", options.scene.legacy,
                                       "a shade for each face by the legacy programs for meshes");
    for (const char* other : {"--field", "--pbr", "--fixed", "--opacity", "--shade"})
        legacy->excludes(app.get_option(other));
    app.add_flag("--materials", options.materials, "print the table of materials and end");
    CLI::Option* color = addParsed(app, "--body-color", body.color, orAuto(parseColor), "RRGGBB",
                                   "colour of all bodies (default: the file's, else the material's)");
    color->excludes(field);
    addParsed(app, "--front-color", body.frontColor, orAuto(parseColor), "RRGGBB",
              "colour of faces seen from their front; with --back-color shows which way they turn")
        ->excludes(field)
        ->excludes(color);
    addParsed(app, "--back-color", body.backColor, orAuto(parseColor), "RRGGBB",
              "colour of faces seen from behind")
        ->excludes(field)
        ->excludes(color);
}

CLI::Option* addField(CLI::App& app, const char* name, std::string& field, const char* help) {
    return app.add_option(name, field, help)->option_text("FIELD")->check(refuseEmpty);
}

/// Loads, supports, connectors and tensors.
void addMarkerOptions(CLI::App& app, Options& options) {
    MarkerSettings& markers = options.markers;
    CLI::Option* arrows =
        addField(app, "--arrows", markers.arrows, "vector field of the nodes to show as arrows from them");
    addParsed(app, "--arrow-scale", markers.arrowScale, orAuto(parseScale), "X",
              "model length of a vector of size 1 (default: the longest is a tenth of the model's size)")
        ->needs(arrows);
    CLI::Option* spheres =
        addField(app, "--spheres", markers.spheres, "node field to show as coloured spheres at the nodes");
    addParsed(app, "--sphere-size", markers.sphereSize, orAuto(parseScale), "D",
              "diameter in model length (default: 0.015 of the model's size)")
        ->needs(spheres);
    addParsed(
        app, "--marker-nodes", markers.nodes, parseNodes, "NODES",
        "nodes of arrows and spheres: a list such as 0-99,120 (numbers from 0) or the name of a node set "
        "(default: those of the faces shown)");
    CLI::Option* connectors =
        addLists(app, "--connectors", markers.connectors, parseConnectors, "A-B,C-D",
                 "pairs of nodes to connect, in the colours of --field at both; may be repeated");
    addParsed(app, "--connector-shape", markers.connectorShape, parseConnectorShape, "rivet|cylinder",
              "rivet is the default")
        ->needs(connectors);
    addRepeated(app, "--supports", markers.supports, parseSupports, "NODES[:KIND]",
                "nodes to show a symbol at: clamp (default), pin, roller, diamond, cross, ring, star, frame; "
                "axis-x, spring-y, torsion-z, damper-x and so on along an axis; may be repeated");
    addField(app, "--tensors", markers.tensors,
             "tensor field to show as ellipsoids in the elements, with faces of --opacity 0.2 if that is not "
             "given");
}

void addLabelOptions(CLI::App& app, Options& options) {
    LabelSettings& labels = options.labels;
    const auto takePlain = [&labels](std::int64_t) { labels = {false, false, false, "", false}; };
    CLI::Option* plain =
        app.add_flag_function("--plain", takePlain, "nothing but the model: no legend, marks, axes or title");
    addParsed(app, "--legend", labels.legend, parseSwitch, "on|off", "colour bar of a field (default: on)")
        ->excludes(plain);
    addParsed(app, "--marks", labels.marks, parseSwitch, "on|off",
              "where a field is smallest and largest (default: on)")
        ->excludes(plain);
    addParsed(app, "--axes", labels.axes, parseSwitch, "on|off", "directions of x, y and z (default: on)")
        ->excludes(plain);
    app.add_option("--title", labels.title,
                   "text above the picture, '' for none (default: the model, the field and its step)")
        ->option_text("TEXT")
        ->excludes(plain);
    app.add_option("--logo", labels.logo, "picture for the lower right corner (.png, .jpg)")
        ->option_text("FILE")
        ->check(refuseEmpty)
        ->excludes(plain);
    app.add_option(
           "--icons", labels.icons,
           "picture to show as a disc at the --marker-nodes, or where the field is smallest and largest")
        ->option_text("FILE")
        ->check(refuseEmpty)
        ->excludes(plain);
}

void addReportOptions(CLI::App& app, Options& options) {
    app.add_flag("--list", options.list, "print what is in the file, and draw only if -o is given");
    CLI::Option* output = app.get_option("--output");
    addParsed(
        app, "--animate", options.animate, parseAnimation, "FRAMES[:steps|phase]",
        "draw a motion into numbered files, -o NAME-%03d.png: the steps of the result, or the swing of the "
        "deformed shape, which is that of modes and of results without steps")
        ->needs(output);
    app.add_option("--script", options.script, "run the commands of a file")
        ->option_text("FILE")
        ->check(refuseEmpty);
    addParsed(
        app, "--pick", options.pick, parsePixel, "X,Y",
        "print the node, edge or element under a pixel, counted from the upper left corner, with its value");
    app.add_flag("--report", options.report,
                 "print what start-up finds of the driver and how it will draw, for a bug report, and end");
    app.add_option("--families", options.families,
                   "draw a small picture of each family of drawing into a folder, and end")
        ->option_text("FOLDER")
        ->check(refuseEmpty);
    app.add_flag("--contract", options.contract,
                 "check what the library and a host's OpenGL state do to each other, print it and end");
    app.add_flag("--verbose", options.verbose, "tell on standard error what the library has decided");
}

void addWindowOptions(CLI::App& app, Options& options) {
    app.add_flag("!--no-panel", options.panel, "a window without the panel; Tab brings it");
    app.add_option("--samples", options.samples,
                   "of each pixel in a window: 1 (edges stay as they are in files), 2, 4 (default) or 8")
        ->option_text("N")
        ->check(CLI::IsMember({1, 2, 4, 8}));
    addParsed(app, "--scale", options.displayScale, parseDisplayScale, "X",
              "size of letters, lines and the panel in a window (default: the display's)");
}

/// The model's axis nearest to the upward direction of a view.
ImageUp upwardAxis(const ViewAxes& view) {
    int axis = 0;
    for (int k : {1, 2})
        if (std::abs(view.up[k]) > std::abs(view.up[axis]))
            axis = k;
    return static_cast<ImageUp>(2 * axis + (view.up[axis] < 0.0 ? 1 : 0));
}

/// What bodies cannot show, and what is up in their environment.
void checkBody(Options& options) {
    BodySettings& body = options.body;
    const ElementSettings& elements = options.shown.elements;
    if (body.isAskedFor() &&
        !(elements.selected.empty() && elements.highlighted.empty() && elements.colored.empty()))
        throw ViewerError("command line", "bodies do not show --select, --highlight and --color");
    if (body.isAskedFor() && options.scene.shading != Shading::Smooth)
        throw ViewerError("--shade", "bodies are smooth up to the angle of --crease");
    if (!body.environmentUp)
        body.environmentUp = upwardAxis(options.view);
}

/// Errors of CLI11 may run over several lines; ours is one.
std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

/// What an option says of others.
void settle(Options& options) {
    options.labels.iconNodes = options.markers.nodes;
    if (!options.labels.icons.empty() && !options.markers.nodes && options.shown.field.empty())
        throw ViewerError("--icons", "--marker-nodes or --field is needed with it");
    const ElementSettings& elements = options.shown.elements;
    if (elements.failLevel && elements.failField.empty() && elements.failBeforeField.empty())
        throw ViewerError("--fail-level", "--fail or --fail-before is needed with it");
}

/// A single option goes with those that are there already, whatever stands on the same command line; an empty
/// name takes away the one that was there.
void standAlone(CLI::Option& option) {
    for (CLI::Option* other : std::set<CLI::Option*>(option.get_needs()))
        option.remove_needs(other);
    for (CLI::Option* other : std::set<CLI::Option*>(option.get_excludes()))
        option.remove_excludes(other);
    try {
        option.get_validator(0)->active(false);
    } catch (const CLI::OptionNotFound&) { // it is not a name
    }
}

/// The words of one option, last one first as CLI11 takes them.
std::vector<std::string> wordsFor(const CLI::Option& option, const std::string& name,
                                  const std::vector<std::string>& values) {
    const bool isFlag = option.get_items_expected_max() == 0;
    std::vector<std::string> words;
    for (auto value = values.rbegin(); value != values.rend(); ++value)
        if (isFlag)
            words.push_back(name + "=" + *value);
        else
            words.insert(words.end(), {*value, name});
    if (values.empty())
        words.push_back(name);
    return words;
}

/// The options of one command line; size is the picture's, if it is there.
struct CommandLine {
    explicit CommandLine(Options& options)
        : app("Draws finite-element models with their results, and surface models.", "nruview") {
        app.set_version_flag("--version", "nruview " NRUVIEW_VERSION);
        addContentOptions(app, options);
        addElementOptions(app, options);
        addPictureOptions(app, options, size);
        addBodyOptions(app, options);
        addMarkerOptions(app, options);
        addLabelOptions(app, options);
        addReportOptions(app, options);
        addWindowOptions(app, options);
    }
    CLI::App app;
    std::optional<std::array<int, 2>> size;
};

} // namespace

std::optional<Options> readOptions(int argc, const char* const* argv) {
    Options options;
    CommandLine line(options);
    CLI::App& app = line.app;
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& shown) {
        app.exit(shown, std::cout, std::cout);
        return {};
    } catch (const CLI::ParseError& error) {
        throw ViewerError("command line", firstLine(error.what()));
    }
    if (options.materials || options.report || options.contract || !options.families.empty())
        return options;
    if (options.file.empty() && options.sample.empty())
        throw ViewerError("command line", "a FILE or --sample NAME is needed; --help lists the options");
    checkBody(options);
    settle(options);
    if (!options.markers.tensors.empty() && app.count("--opacity") == 0)
        options.scene.opacity = kOpacityOverTensors;
    if (line.size) {
        options.width = (*line.size)[0];
        options.height = (*line.size)[1];
    }
    return options;
}

void setOption(Options& options, const std::string& name, const std::vector<std::string>& values) {
    const std::string option = "--" + name.substr(std::min(name.find_first_not_of('-'), name.size()));
    Options edited = options;
    CommandLine line(edited);
    CLI::Option* known = line.app.get_option_no_throw(option);
    if (known == nullptr)
        throw ViewerError(option, "is no option");
    if (std::find(std::begin(kFixedOptions), std::end(kFixedOptions), option) != std::end(kFixedOptions))
        throw ViewerError(option, "cannot change while a model is shown");
    standAlone(*known);
    std::vector<std::string> words = wordsFor(*known, option, values);
    try {
        line.app.parse(words);
    } catch (const CLI::ParseError& error) {
        throw ViewerError(option, firstLine(error.what()));
    }
    settle(edited);
    if (option == "--tensors" && !values.empty() && edited.scene.opacity >= 1.0)
        edited.scene.opacity = kOpacityOverTensors;
    options = std::move(edited);
}

} // namespace nruview
