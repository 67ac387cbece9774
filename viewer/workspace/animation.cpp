// What a step decides by itself, the range of colours and the factor of the deformation, is fixed beforehand.
#include "viewer/workspace/animation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "viewer/app/pngwriter.h"
#include "viewer/error.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

constexpr int kMostFrames = 100'000;

/// What the workspace shows after the motion is what it showed before it.
class Kept {
public:
    explicit Kept(Workspace& workspace)
        : m_workspace(workspace), m_options(workspace.options()), m_wasFitted(workspace.isFitted()) {}
    void restore() {
        m_workspace.change([this](Options& options) { options = m_options; });
        if (m_wasFitted)
            m_workspace.fit();
    }

private:
    Workspace& m_workspace;
    Options m_options;
    bool m_wasFitted;
};

bool isMode(const Workspace& workspace) {
    const std::vector<ResultStep>& steps = workspace.shown().model.steps;
    return !steps.empty() && steps[static_cast<std::size_t>(workspace.step())].isMode;
}

Motion motionFor(const Workspace& workspace) {
    return workspace.stepCount() == 1 || isMode(workspace) ? Motion::Phase : Motion::Steps;
}

/// The values of all steps; nothing where none is finite.
std::optional<std::array<double, 2>> rangeOfSteps(const Workspace& workspace) {
    std::optional<std::array<double, 2>> all;
    for (int step = 0; step < workspace.stepCount(); ++step) {
        const Scalars scalars = selectScalars(workspace.shown().model, workspace.options().shown.field, step);
        if (const auto range = finiteRange(scalars.values))
            all =
                all ? std::array{std::min((*all)[0], (*range)[0]), std::max((*all)[1], (*range)[1])} : *range;
    }
    return all;
}

/// The smallest of the automatic factors: that of the step that moves farthest.
double factorOfSteps(const Workspace& workspace) {
    ShownSettings settings = workspace.options().shown;
    double smallest = 0.0;
    for (settings.step = 0; *settings.step < workspace.stepCount(); ++*settings.step) {
        const double factor = automaticFactor(workspace.shown(), settings);
        smallest = smallest == 0.0 || (factor != 0.0 && factor < smallest) ? factor : smallest;
    }
    return smallest;
}

/// The box of the model, as it stands in the file, about all steps.
Bounds boundsOfSteps(Workspace& workspace) {
    Bounds bounds;
    for (int step = 0; step < workspace.stepCount(); ++step) {
        workspace.setStep(step);
        const ShownModel& shown = workspace.shown();
        bounds.add(shown.middle + shown.unit * shown.bounds.low);
        bounds.add(shown.middle + shown.unit * shown.bounds.high);
    }
    return bounds;
}

void prepareSteps(Workspace& workspace) {
    const ShownSettings& settings = workspace.options().shown;
    const bool fixesRange = !settings.field.empty() && !workspace.options().scene.range;
    const auto range = fixesRange ? rangeOfSteps(workspace) : workspace.options().scene.range;
    const bool fixesFactor = settings.deformed && !settings.deformFactor && !isMode(workspace);
    const auto factor = fixesFactor ? std::optional(factorOfSteps(workspace)) : settings.deformFactor;
    workspace.change([&](Options& options) {
        options.scene.range = range;
        options.shown.deformFactor = factor;
        options.shown.phase_rad.reset();
    });
    if (workspace.isFitted() && settings.deformed)
        workspace.fitTo(boundsOfSteps(workspace));
}

void preparePhase(Workspace& workspace) {
    workspace.change([](Options& options) {
        options.shown.deformed = true;
        options.shown.phase_rad = 0.0;
    });
    if (workspace.isFitted())
        workspace.fit();
}

void writeFrames(CommandPlace& place, int frames, Motion motion, const std::string& pattern) {
    Workspace& workspace = place.workspace();
    for (int i = 0; i < frames; ++i) {
        if (motion == Motion::Phase)
            workspace.setPhase(2.0 * std::numbers::pi * i / frames);
        else if (frames > 1)
            workspace.setStep(
                static_cast<int>(std::lround(double{workspace.stepCount() - 1.0} * i / (frames - 1))));
        const Pixels picture = place.picture();
        writePng(frameFile(pattern, i), picture.width, picture.height, picture.colors);
    }
}

} // namespace

std::string frameFile(const std::string& pattern, int frame) {
    const std::size_t start = pattern.find('%');
    const std::size_t end = pattern.find_first_not_of("0123456789", std::min(start, pattern.size() - 1) + 1);
    const std::string width =
        start < end && end < pattern.size() ? pattern.substr(start + 1, end - start - 1) : "";
    const bool isPlain = start != std::string::npos && end < pattern.size() && pattern[end] == 'd' &&
                         pattern.find('%', end) == std::string::npos;
    if (!isPlain || (!width.empty() && (width.size() != 2 || width[0] != '0')))
        throw ViewerError(pattern, "is no name for numbered pictures, such as frame-%03d.png");
    std::string number = std::to_string(frame);
    const std::size_t digits = width.empty() ? 0 : static_cast<std::size_t>(width[1] - '0');
    number.insert(0, std::max(digits, number.size()) - number.size(), '0');
    return pattern.substr(0, start) + number + pattern.substr(end + 1);
}

void writeAnimation(CommandPlace& place, const AnimationSettings& animation, const std::string& pattern) {
    frameFile(pattern, 0);
    if (animation.frames < 1 || animation.frames > kMostFrames)
        throw ViewerError("animation", "has 1 to " + std::to_string(kMostFrames) + " frames, not " +
                                           std::to_string(animation.frames));
    Workspace& workspace = place.workspace();
    const Motion motion = animation.motion.value_or(motionFor(workspace));
    Kept kept(workspace);
    try {
        if (motion == Motion::Phase)
            preparePhase(workspace);
        else
            prepareSteps(workspace);
        writeFrames(place, animation.frames, motion, pattern);
    } catch (const ViewerError&) {
        kept.restore();
        throw;
    }
    kept.restore();
}

} // namespace nruview
