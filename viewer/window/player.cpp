// Time that a slow picture takes does not count twice: steps are left out, and a swing goes on where it is.
#include "viewer/window/player.h"

#include <cmath>
#include <numbers>

#include "viewer/model/model.h"

namespace nruview {

namespace {

bool showsMode(const Workspace& workspace) {
    const std::vector<ResultStep>& steps = workspace.shown().model.steps;
    const auto step = static_cast<std::size_t>(workspace.step());
    return step < steps.size() && steps[step].isMode;
}

} // namespace

Player::Player(const Workspace& workspace)
    : m_motion(workspace.stepCount() < 2 || showsMode(workspace) ? Motion::Swing : Motion::Steps) {}

void Player::setMotion(Motion motion) {
    m_motion = motion;
    m_due = 0.0;
}

void Player::toggle(Workspace& workspace) {
    if (!m_isPlaying && m_motion == Motion::Swing && !workspace.options().shown.deformed)
        workspace.change([](Options& options) { options.shown.deformed = true; });
    m_isPlaying = !m_isPlaying;
}

void Player::advance(Workspace& workspace, double seconds) {
    if (!m_isPlaying)
        return;
    m_isPlaying = false; // should the workspace refuse
    if (m_motion == Motion::Swing) {
        constexpr double kTurn = 2.0 * std::numbers::pi;
        workspace.setPhase(
            std::fmod(workspace.phase().value_or(0.0) + kTurn * swingsPerSecond * seconds, kTurn));
    } else {
        m_due += stepsPerSecond * seconds;
        const double whole = std::floor(m_due);
        m_due -= whole;
        if (whole > 0.0)
            workspace.setStep((workspace.step() + static_cast<int>(whole)) % workspace.stepCount());
    }
    m_isPlaying = true;
}

} // namespace nruview
