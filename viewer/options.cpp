// The command line through CLI11; values with a form of their own are taken apart here.
#include "viewer/options.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <iostream>

#include "viewer/error.h"
#include "viewer/samples.h"

namespace nruview {

namespace {

constexpr int kMaxSize = 16384;

[[noreturn]] void refuse(const char* option, const std::string& text, const char* expected) {
    throw ViewerError(option, "'" + text + "' is not " + expected);
}

/// Two finite numbers with a separator between them and nothing else.
template <typename Number>
std::optional<std::array<Number, 2>> parsePair(const std::string& text, char separator) {
    std::array<Number, 2> pair{};
    const char* end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, pair[0]);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != separator)
        return {};
    const auto second = std::from_chars(first.ptr + 1, end, pair[1]);
    if (second.ec != std::errc() || second.ptr != end || !std::isfinite(pair[0]) || !std::isfinite(pair[1]))
        return {};
    return pair;
}

std::array<double, 2> parseRange(const std::string& text) {
    const auto range = parsePair<double>(text, ',');
    if (!range || !((*range)[0] < (*range)[1]))
        refuse("--range", text, "MIN,MAX with MIN below MAX");
    return *range;
}

std::array<int, 2> parseSize(const std::string& text) {
    const auto size = parsePair<int>(text, 'x');
    if (!size || (*size)[0] < 1 || (*size)[1] < 1 || (*size)[0] > kMaxSize || (*size)[1] > kMaxSize)
        refuse("--size", text, "WxH with 1 to 16384 pixels each");
    return *size;
}

int parseBands(const std::string& text) {
    int bands = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, bands);
    if (error != std::errc() || stop != end || bands < 1 || bands > 64)
        refuse("--bands", text, "a number from 1 to 64");
    return bands;
}

std::array<int, 2> parsePixel(const std::string& text) {
    const auto pixel = parsePair<int>(text, ',');
    if (!pixel)
        refuse("--pick", text, "X,Y, a pixel");
    return *pixel;
}

std::uint32_t parseColor(const std::string& text) {
    if (text == "black")
        return 0xFF000000;
    if (text == "white")
        return 0xFFFFFFFF;
    std::uint32_t rgb = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, rgb, 16);
    if (text.size() != 6 || error != std::errc() || stop != end)
        refuse("--background", text, "RRGGBB, black or white");
    return 0xFF000000 | (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

std::optional<double> parseDeform(const std::string& text) {
    if (text == "auto")
        return {};
    double factor = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, factor);
    if (error != std::errc() || stop != end || !std::isfinite(factor))
        refuse("--deform", text, "auto or a factor");
    return factor;
}

EdgeMode parseEdges(const std::string& text) {
    if (text == "all")
        return EdgeMode::All;
    if (text == "feature")
        return EdgeMode::Feature;
    if (text == "none")
        return EdgeMode::None;
    refuse("--edges", text, "all, feature or none");
}

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

/// An option whose text a function turns into a value.
template <typename Value, typename Parse>
CLI::Option* addParsed(CLI::App& app, const char* name, Value& value, Parse parse, const char* form,
                       const char* help) {
    const auto take = [&value, parse](const std::string& text) { value = parse(text); };
    return app.add_option_function<std::string>(name, take, help)->option_text(form);
}

void addContentOptions(CLI::App& app, Options& options) {
    CLI::Option* file = app.add_option("file", options.file, "finite-element file to draw (.vtu or .vtk)");
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
    app.add_option("--step", options.shown.step, "result step, from 0 (default: the last)")->option_text("N");
    addParsed(app, "--bands", options.scene.bands, parseBands, "N",
              "number of colours (default 12, at most 64)")
        ->needs(field);
    addParsed(app, "--range", options.scene.range, parseRange, "MIN,MAX",
              "values of the first and the last colour; what lies outside takes these two")
        ->needs(field);
    app.add_flag("--smear", options.scene.smeared, "blend the colours into each other")->needs(field);
    CLI::Option* deform = app.add_option_function<std::string>(
        "--deform",
        [&options](const std::string& text) {
            options.shown.deformed = true;
            options.shown.deformFactor = parseDeform(text);
        },
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

void addPictureOptions(CLI::App& app, Options& options, std::optional<std::array<int, 2>>& size) {
    app.add_option("-o,--output", options.output,
                   "draw into a PNG file, without a display (default: a window)")
        ->option_text("FILE.png")
        ->check(refuseEmpty);
    addParsed(app, "--edges", options.scene.edges, parseEdges, "all|feature|none",
              "element edges (default: all)");
    addParsed(app, "--view", options.view, parseView, "VIEW",
              "iso (default); xy yx xz zx yz zy, the axes to the right and upward; or X,Y,Z, the side to "
              "look from");
    app.add_flag("--persp", options.perspective, "perspective instead of a parallel projection");
    addParsed(app, "--size", size, parseSize, "WxH", "size of the picture in pixels (default 1024x768)");
    addParsed(app, "--background", options.background, parseColor, "RRGGBB",
              "hexadecimal, or black or white (default)");
    app.add_flag("--list", options.list, "print what is in the file, and draw only if -o is given");
    addParsed(
        app, "--pick", options.pick, parsePixel, "X,Y",
        "print the node, edge or element under a pixel, counted from the upper left corner, with its value");
}

/// Errors of CLI11 may run over several lines; ours is one.
std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

} // namespace

std::optional<Options> readOptions(int argc, const char* const* argv) {
    CLI::App app("Draws finite-element models and their results.", "nruview");
    app.set_version_flag("--version", "nruview " NRUVIEW_VERSION);
    Options options;
    std::optional<std::array<int, 2>> size;
    addContentOptions(app, options);
    addPictureOptions(app, options, size);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& shown) {
        app.exit(shown, std::cout, std::cout);
        return {};
    } catch (const CLI::ParseError& error) {
        throw ViewerError("command line", firstLine(error.what()));
    }
    if (options.file.empty() && options.sample.empty())
        throw ViewerError("command line", "a FILE or --sample NAME is needed; --help lists the options");
    if (size) {
        options.width = (*size)[0];
        options.height = (*size)[1];
    }
    return options;
}

} // namespace nruview
