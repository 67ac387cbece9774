// The panel's rows about results: field, step, deformation, animation, colours.
#include "viewer/window/panel.h"

#include <imgui.h>

#include <algorithm>
#include <numbers>

#include "viewer/error.h"
#include "viewer/model/fields.h"
#include "viewer/window/widgets.h"

namespace nruview {

using widgets::button;
using widgets::choose;
using widgets::section;
using widgets::slide;
using widgets::toggle;

namespace {

std::vector<std::string> resultNames(const Choices& choices) {
    std::vector<std::string> names = {"none"};
    for (const ResultChoice& result : choices.results)
        names.push_back(result.selector);
    return names;
}

double degrees(double rad) {
    return rad * 180.0 / std::numbers::pi;
}

} // namespace

void Panel::layOutResult() {
    if (m_choices.results.empty() || !section("Result", true))
        return;
    ResultChosen chosen = chosenResult(m_choices, options().shown.field);
    int row = chosen.result + 1;
    const auto select = [this](const ResultChosen& now) {
        change([=, this](Options& options) {
            options.shown.field = selectorOf(m_choices, now);
            options.scene.range.reset(); // of another quantity
        });
    };
    if (choose("Field", resultNames(m_choices), row))
        select({row - 1, 0});
    const auto& parts = chosen.result < 0 ? std::vector<std::string>{}
                                          : m_choices.results[static_cast<std::size_t>(chosen.result)].parts;
    if (!parts.empty() && choose("Component", parts, chosen.part))
        select(chosen);
    layOutSteps();
    layOutDeformation();
    layOutAnimation();
}

void Panel::layOutSteps() {
    if (m_choices.steps.size() < 2)
        return;
    int step = m_workspace.step();
    if (choose("Step", m_choices.steps, step))
        later([=, this] { m_workspace.setStep(step); });
    const int last = m_workspace.stepCount() - 1;
    const std::array<std::pair<const char*, int>, 4> ways = {
        {{"|<", 0}, {"<", std::max(step - 1, 0)}, {">", std::min(step + 1, last)}, {">|", last}}};
    for (int i = 0; i < 4; ++i)
        if (const auto& way = ways[static_cast<std::size_t>(i)]; button(way.first, i, 4))
            later([this, to = way.second] { m_workspace.setStep(to); });
}

void Panel::layOutDeformation() {
    if (m_choices.vectors.empty())
        return;
    const ShownSettings& shown = options().shown;
    bool isDeformed = shown.deformed;
    if (toggle("Deformed", isDeformed))
        change([=, this](Options& options) {
            options.shown.deformed = isDeformed;
            if (options.shown.deformBy.empty() && findDisplacement(m_workspace.shown().model, {}) == nullptr)
                options.shown.deformBy = m_choices.vectors.front();
        });
    if (!isDeformed)
        return;
    if (m_choices.vectors.size() > 1)
        chooseField("Moved by", m_choices.vectors, shown.deformBy, "automatic",
                    [](Options& options, const std::string& field) { options.shown.deformBy = field; });
    bool isAutomatic = !shown.deformFactor;
    double factor = m_workspace.shown().deformFactor;
    if (toggle("Auto factor", isAutomatic))
        change([=](Options& options) {
            options.shown.deformFactor = isAutomatic ? std::nullopt : std::optional(factor);
        });
    if (widgets::number("Factor", factor))
        change([=](Options& options) { options.shown.deformFactor = factor; });
}

void Panel::layOutAnimation() {
    const bool hasSteps = m_choices.steps.size() > 1, canSwing = options().shown.deformed;
    if (!hasSteps && !canSwing)
        return;
    int motion = m_player.motion() == Player::Motion::Steps ? 0 : 1;
    if (hasSteps && canSwing && choose("Animate", {"steps", "deformation"}, motion))
        m_player.setMotion(motion == 0 ? Player::Motion::Steps : Player::Motion::Swing);
    if (motion == 0)
        slide("Steps per s", m_player.stepsPerSecond, 0.5, 30.0, "%.1f");
    else {
        slide("Swings per s", m_player.swingsPerSecond, 0.05, 3.0, "%.2f");
        double phase = degrees(m_workspace.phase().value_or(0.0));
        if (slide("Phase", phase, 0.0, 360.0, "%.0f°"))
            later([=, this] { m_workspace.setPhase(phase * std::numbers::pi / 180.0); });
    }
    if (button(m_player.isPlaying() ? "Stop" : "Play", 0, motion == 0 ? 1 : 2, "Space"))
        later([this] { m_player.toggle(m_workspace); });
    if (motion != 0 && button("Full shape", 1, 2, "at rest"))
        later([this] {
            m_player.stop();
            m_workspace.setPhase({});
        });
}

void Panel::layOutColors() {
    if (!m_workspace.shown().scalars || !section("Colours", true))
        return;
    const SceneSettings& scene = options().scene;
    int bands = scene.bands;
    if (slide("Bands", bands, 1, 64))
        change([=](Options& options) { options.scene.bands = bands; });
    bool isSmeared = scene.smeared;
    if (toggle("Blended", isSmeared))
        change([=](Options& options) { options.scene.smeared = isSmeared; });
    const auto found = finiteRange(m_workspace.shown().scalars->values);
    if (!found)
        return;
    bool isOwn = scene.range.has_value();
    std::array<double, 2> range = scene.range.value_or(*found);
    if (toggle("Own range", isOwn))
        change([=](Options& options) { options.scene.range = isOwn ? std::optional(range) : std::nullopt; });
    const bool isHighSet = widgets::number("Highest", range[1]);
    if (widgets::number("Lowest", range[0]) || isHighSet)
        later([=, this] { setRange(range); });
}

void Panel::setRange(const std::array<double, 2>& range) {
    if (!(range[0] <= range[1]))
        throw ViewerError("range", "the lowest value is above the highest");
    m_workspace.change([=](Options& options) { options.scene.range = range; });
}

} // namespace nruview
