// A table of commands; each takes its words, of which there are as many as its form says.
#include "viewer/workspace/commands.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <numbers>
#include <sstream>

#include "viewer/app/optionvalues.h"
#include "viewer/app/pngwriter.h"
#include "viewer/error.h"
#include "viewer/model/vectors.h"
#include "viewer/workspace/animation.h"

namespace nruview {

namespace {

struct Command {
    std::string_view name;
    std::size_t least, most; ///< words behind it
    const char* form;
    std::string (*run)(CommandPlace&, const Words&);
};

constexpr std::size_t kAny = 1000;
constexpr std::string_view kInputs[] = {"move", "press", "release", "wheel", "key", "rest"};
constexpr double kDeg = std::numbers::pi / 180.0;

[[noreturn]] void refuse(const std::string& word, const char* expected) {
    throw ViewerError(word, std::string("is not ") + expected);
}

double numberOf(const std::string& word) {
    double number = 0.0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number) || std::abs(number) > 1e9)
        refuse(word, "a number");
    return number;
}

int wholeOf(const std::string& word) {
    const double number = numberOf(word);
    if (number != std::floor(number))
        refuse(word, "a whole number");
    return static_cast<int>(number);
}

bool switchOf(const Words& words) {
    return parseSwitch(words[0].c_str(), words[1]);
}

Selecting selectingOf(const std::string& word) {
    if (word == "add")
        return Selecting::Add;
    if (word == "toggle")
        return Selecting::Toggle;
    if (word == "remove")
        return Selecting::Remove;
    refuse(word, "add, toggle or remove");
}

/// The cells of a list of numbers or, after the word block, of the parts of a name.
Cells cellsFrom(const Words& words, const Model& model) {
    if (words.size() == 3 && words[1] == "block")
        return cellsOfBlock(model, words[2]);
    if (words.size() != 2)
        throw ViewerError(words[0], "takes a list of elements such as 0-99,120 or block NAME");
    const ElementList list = parseElements(words[0].c_str(), words[1]);
    return cellsOf(cellIndices(model, list, words[0].c_str()));
}

std::string listText(const ElementList& list) {
    std::ostringstream text;
    const char* separator = "";
    for (const auto& [first, last] : list) {
        text << separator << first;
        if (first != last)
            text << "-" << last;
        separator = ",";
    }
    return list.empty() ? "nothing" : text.str();
}

std::string pointText(const Point& point) {
    char text[96];
    std::snprintf(text, sizeof text, "%.6g,%.6g,%.6g", point[0], point[1], point[2]);
    return text;
}

std::string cameraText(const Workspace& workspace) {
    const Camera& camera = workspace.camera();
    const ShownModel& shown = workspace.shown();
    char height[32];
    std::snprintf(height, sizeof height, "%.6g", 2.0 * camera.halfHeight * shown.unit);
    return "camera from " + pointText(camera.axes.toward) + " up " + pointText(camera.axes.up) + " to " +
           pointText(shown.middle + shown.unit * camera.target) + " height " + height +
           (camera.perspective ? " perspective" : "");
}

std::string stepText(const Workspace& workspace) {
    const std::vector<ResultStep>& steps = workspace.shown().model.steps;
    const std::string text =
        "step " + std::to_string(workspace.step()) + " of " + std::to_string(workspace.stepCount());
    return steps.empty() ? text : text + ": " + steps[static_cast<std::size_t>(workspace.step())].label;
}

// --- the camera

std::string view(CommandPlace& place, const Words& words) {
    place.workspace().look(parseView(words[1]));
    return {};
}

std::string persp(CommandPlace& place, const Words& words) {
    const bool perspective = switchOf(words);
    place.workspace().change([=](Options& options) { options.perspective = perspective; });
    return {};
}

std::string turn(CommandPlace& place, const Words& words) {
    place.workspace().turn(numberOf(words[1]) * kDeg, numberOf(words[2]) * kDeg);
    return {};
}

std::string pan(CommandPlace& place, const Words& words) {
    place.workspace().pan(numberOf(words[1]), numberOf(words[2]));
    return {};
}

std::string zoom(CommandPlace& place, const Words& words) {
    Workspace& workspace = place.workspace();
    const double factor = numberOf(words[1]);
    if (!(factor > 0.0))
        refuse(words[1], "a factor above 0");
    if (words.size() == 3)
        throw ViewerError("zoom", "takes both X and Y, or none");
    const bool isAt = words.size() == 4;
    workspace.zoom(factor, isAt ? numberOf(words[2]) : 0.5 * workspace.width(),
                   isAt ? numberOf(words[3]) : 0.5 * workspace.height());
    return {};
}

std::string fit(CommandPlace& place, const Words& words) {
    if (words.size() == 1)
        place.workspace().fit();
    else if (words[1] == "selected")
        place.workspace().fitSelected();
    else
        refuse(words[1], "selected");
    return {};
}

std::string size(CommandPlace& place, const Words& words) {
    const auto [width, height] = parseSize("size", words[1] + "x" + words[2]);
    place.resize(width, height);
    return {};
}

// --- what is shown

std::string set(CommandPlace& place, const Words& words) {
    place.workspace().change([&](Options& options) {
        setOption(options, words[1], {words.begin() + 2, words.end()});
    });
    return {};
}

std::string markers(CommandPlace& place, const Words& words) {
    const bool shown = switchOf(words);
    place.workspace().change([=](Options& options) { options.markers.solids = shown; });
    return {};
}

std::string symbols(CommandPlace& place, const Words& words) {
    const bool shown = switchOf(words);
    place.workspace().change([=](Options& options) { options.markers.symbols = shown; });
    return {};
}

std::string color(CommandPlace& place, const Words& words) {
    const ColorBy by = parseColorBy("color", words[1]);
    place.workspace().change([=](Options& options) { options.shown.colorBy = by; });
    return {};
}

std::string section(CommandPlace& place, const Words& words) {
    if (words.size() == 3 && words[1] == "handle") {
        const bool shown = parseSwitch("section handle", words[2]);
        place.workspace().change([=](Options& options) { options.scene.sectionHandle = shown; });
    } else if (words.size() == 3) {
        throw ViewerError("section", "is used as: section PLANE|off or section handle on|off");
    } else {
        place.workspace().setSection(words[1] == "off" ? std::nullopt
                                                       : std::optional(parseSection("section", words[1])));
    }
    return {};
}

// --- picking and selection

std::string pick(CommandPlace& place, const Words& words) {
    place.picture(); // the view of the last frame counts
    return place.workspace().describeAt(wholeOf(words[1]), wholeOf(words[2]));
}

std::string click(CommandPlace& place, const Words& words) {
    const Selecting how = words.size() == 4 ? selectingOf(words[3]) : Selecting::Replace;
    const int x = wholeOf(words[1]), y = wholeOf(words[2]);
    place.picture();
    place.workspace().selectAt(x, y, how);
    return {};
}

std::string box(CommandPlace& place, const Words& words) {
    Words rest(words.begin() + 5, words.end());
    const auto visible = std::find(rest.begin(), rest.end(), "visible");
    const bool onlyVisible = visible != rest.end();
    if (onlyVisible)
        rest.erase(visible);
    if (rest.size() > 1)
        refuse(rest[1], "visible");
    const Selecting how = rest.empty() ? Selecting::Replace : selectingOf(rest[0]);
    place.workspace().selectBox(wholeOf(words[1]), wholeOf(words[2]), wholeOf(words[3]), wholeOf(words[4]),
                                how, onlyVisible);
    return {};
}

std::string select(CommandPlace& place, const Words& words) {
    Workspace& workspace = place.workspace();
    const bool none = words == Words{"select", "none"};
    workspace.select(none ? Cells{} : cellsFrom(words, workspace.shown().model), Selecting::Replace);
    return {};
}

std::string hide(CommandPlace& place, const Words& words) {
    Workspace& workspace = place.workspace();
    if (words == Words{"hide", "selected"})
        workspace.hideSelected();
    else
        workspace.hide(cellsFrom(words, workspace.shown().model));
    return {};
}

std::string isolate(CommandPlace& place, const Words& words) {
    Workspace& workspace = place.workspace();
    if (words == Words{"isolate", "selected"})
        workspace.isolateSelected();
    else
        workspace.isolate(cellsFrom(words, workspace.shown().model));
    return {};
}

std::string show(CommandPlace& place, const Words& words) {
    if (words[1] != "all")
        refuse(words[1], "all");
    place.workspace().showAll();
    return {};
}

// --- results in motion

std::string step(CommandPlace& place, const Words& words) {
    Workspace& workspace = place.workspace();
    const std::string& word = words[1];
    const int last = workspace.stepCount() - 1;
    workspace.setStep(word == "next"       ? std::min(workspace.step() + 1, last)
                      : word == "previous" ? std::max(workspace.step() - 1, 0)
                      : word == "first"    ? 0
                      : word == "last"     ? last
                                           : wholeOf(word));
    return {};
}

std::string phase(CommandPlace& place, const Words& words) {
    place.workspace().setPhase(words[1] == "off" ? std::nullopt : std::optional(numberOf(words[1]) * kDeg));
    return {};
}

std::string animate(CommandPlace& place, const Words& words) {
    AnimationSettings animation{wholeOf(words[1])};
    if (words.size() == 4)
        animation.motion = parseMotion("animate", words[3]);
    writeAnimation(place, animation, words[2]);
    return {};
}

// --- files and texts

std::string shot(CommandPlace& place, const Words& words) {
    const Pixels picture = place.picture();
    writePng(words[1], picture.width, picture.height, picture.colors);
    return {};
}

std::string print(CommandPlace& place, const Words& words) {
    const Workspace& workspace = place.workspace();
    if (words[1] == "camera")
        return cameraText(workspace);
    if (words[1] == "selection")
        return listText(numbersOfCells(workspace.shown().model, workspace.selected()));
    if (words[1] == "step")
        return stepText(workspace);
    refuse(words[1], "camera, selection or step");
}

constexpr Command kCommands[] = {
    {"view", 1, 1, "view VIEW", view},
    {"persp", 1, 1, "persp on|off", persp},
    {"turn", 2, 2, "turn RIGHT_DEG UP_DEG", turn},
    {"pan", 2, 2, "pan DX DY", pan},
    {"zoom", 1, 3, "zoom FACTOR [X Y]", zoom},
    {"fit", 0, 1, "fit [selected]", fit},
    {"size", 2, 2, "size W H", size},
    {"set", 1, kAny, "set OPTION [VALUE...]", set},
    {"markers", 1, 1, "markers on|off", markers},
    {"symbols", 1, 1, "symbols on|off", symbols},
    {"color", 1, 1, "color field|block|plain", color},
    {"section", 1, 2, "section PLANE|off|handle on|handle off", section},
    {"pick", 2, 2, "pick X Y", pick},
    {"click", 2, 3, "click X Y [add|toggle|remove]", click},
    {"box", 4, 6, "box X0 Y0 X1 Y1 [add|toggle|remove] [visible]", box},
    {"select", 1, 2, "select LIST|none|block NAME", select},
    {"hide", 1, 2, "hide selected|LIST|block NAME", hide},
    {"isolate", 1, 2, "isolate selected|LIST|block NAME", isolate},
    {"show", 1, 1, "show all", show},
    {"step", 1, 1, "step N|next|previous|first|last", step},
    {"phase", 1, 1, "phase DEG|off", phase},
    {"animate", 2, 3, "animate FRAMES FILE-%03d.png [steps|phase]", animate},
    {"shot", 1, 1, "shot FILE.png", shot},
    {"print", 1, 1, "print camera|selection|step", print},
};

const Command& commandOf(const Words& words) {
    const auto found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                    [&](const Command& command) { return command.name == words[0]; });
    if (found == std::end(kCommands))
        throw ViewerError(words[0], "is no command");
    if (words.size() - 1 < found->least || words.size() - 1 > found->most)
        throw ViewerError(words[0], std::string("is used as: ") + found->form);
    return *found;
}

} // namespace

Pixels readPixels(int width, int height) {
    Pixels pixels{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height)};
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.colors.data());
    return pixels;
}

Words wordsOf(std::string_view line) {
    Words words;
    bool isInWord = false;
    char quote = 0;
    for (const char letter : line) {
        const bool isBlank = letter == ' ' || letter == '\t' || letter == '\r';
        if (quote == 0 && letter == '#' && !isInWord)
            break;
        if (quote == 0 && isBlank) {
            isInWord = false;
            continue;
        }
        if (!isInWord)
            words.emplace_back();
        isInWord = true;
        if (letter == quote)
            quote = 0;
        else if (quote == 0 && (letter == '\'' || letter == '"'))
            quote = letter;
        else
            words.back() += letter;
    }
    if (quote != 0)
        throw ViewerError("the line", std::string("has a ") + quote + " without its end");
    return words;
}

bool isInput(const Words& words) {
    return !words.empty() && std::find(std::begin(kInputs), std::end(kInputs), words[0]) != std::end(kInputs);
}

bool writesPictures(const Words& words) {
    return !words.empty() && (words[0] == "shot" || words[0] == "animate");
}

std::string runCommand(CommandPlace& place, const Words& words) {
    if (words.empty())
        return {};
    if (!isInput(words))
        return commandOf(words).run(place, words);
    if (!place.takeInput(words))
        throw ViewerError(words[0], "needs a window");
    return {};
}

} // namespace nruview
