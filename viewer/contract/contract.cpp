#include "viewer/contract/contract.h"

#include <epoxy/gl.h>

#include <stdexcept>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/glstate.h"
#include "viewer/contract/taken.h"

namespace nruview {

namespace {

constexpr HostState kNoState{"", StateGroup::Plumbing, nullptr};

std::string& firstError() {
    static std::string error;
    return error;
}

void onMessage(GLenum, GLenum type, GLuint, GLenum, GLsizei, const GLchar* message, const void*) {
    if (type == GL_DEBUG_TYPE_ERROR && firstError().empty())
        firstError() = message;
}

void listenToErrors() {
    if (epoxy_gl_version() < 43 && !epoxy_has_gl_extension("GL_KHR_debug"))
        return;
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageCallback(onMessage, nullptr);
}

/// The error since the last call, or nothing.
std::string takeError() {
    while (const GLenum code = glGetError())
        if (firstError().empty())
            firstError() = "error " + std::to_string(code);
    return std::exchange(firstError(), {});
}

BodySettings madeUpEnvironment() {
    BodySettings settings;
    settings.environment = BodySettings::kStudio;
    return settings;
}

void add(std::string& faults, const std::string& fault) {
    faults += (faults.empty() ? "" : "; ") + fault;
}

std::string changes(const Family& family, const GlState& before, const GlState& after) {
    std::string texts;
    for (const GlStateChange& change : before.changesTo(after))
        if (!reasonToLeave(family, change.key))
            add(texts, change.text());
    return texts;
}

} // namespace

Contract::Contract() : m_environment(madeUpEnvironment()) {
    EnableEnvironmentReflection(false); // but in the families that show it
    listenToErrors();
    checkStates();
}

/// What is left of a state would be taken for the work of the families behind it.
void Contract::checkStates() {
    for (const HostState& state : hostStates()) {
        if (epoxy_gl_version() < state.version)
            continue;
        m_frames.begin(state.target);
        const GlState before = GlState::take();
        state.set(m_objects);
        if (state.end)
            state.end();
        m_frames.begin(state.target);
        const std::vector<GlStateChange> left = before.changesTo(GlState::take());
        const std::string error = takeError();
        if (!left.empty() || !error.empty())
            throw std::logic_error("the state \"" + std::string(state.name) +
                                   "\" is not taken back: " + (left.empty() ? error : left.front().text()));
        m_empty[static_cast<std::size_t>(state.target)] = m_frames.end(state.target);
    }
}

Contract::Drawn Contract::draw(const Family& family, const HostState& state, Target target,
                               const Draw& draw) {
    Drawn drawn;
    m_frames.begin(target);
    takeError();
    if (state.set)
        state.set(m_objects);
    const GlState before = GlState::take();
    draw();
    if (const std::string error = takeError(); !error.empty())
        add(drawn.fault, error);
    if (const std::string left = changes(family, before, GlState::take()); !left.empty())
        add(drawn.fault, "leaves " + left);
    if (state.end)
        state.end();
    drawn.picture = m_frames.end(target);
    return drawn;
}

Cell Contract::checkPair(const Family& family, const HostState& state, const Draw& kept) {
    const Target target = state.target;
    const Picture& clean = *m_clean[static_cast<std::size_t>(target)];
    Cell cell{Outcome::Same, {}};
    const auto look = [&](const char* which, const Drawn& drawn, bool mayDiffer) {
        if (!drawn.fault.empty())
            add(cell.fault, which + drawn.fault);
        if (drawn.picture == clean)
            return;
        if (mayDiffer)
            cell.outcome = Outcome::Taken;
        else
            add(cell.fault, which + difference(clean, drawn.picture));
    };
    const bool taken = reasonToTake(family, state) != nullptr;
    look("", draw(family, state, target, kept), taken);
    if (family.make)
        look("made anew ", draw(family, state, target, [&] { family.make()(); }), taken);
    look("afterwards ", draw(family, kNoState, target, kept), false);
    if (clean == m_empty[static_cast<std::size_t>(target)])
        add(cell.fault, "draws nothing");
    if (!cell.fault.empty())
        cell.outcome = Outcome::Fault;
    return cell;
}

std::vector<Cell> Contract::check(const Family& family) {
    std::vector<Cell> cells(hostStates().size());
    if (family.byPrograms && IsFastRendererEnabled() == 0)
        return cells;
    const Draw kept = family.make ? family.make() : family.draw;
    m_clean = {};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const HostState& state = hostStates()[i];
        if (epoxy_gl_version() < state.version)
            continue;
        auto& clean = m_clean[static_cast<std::size_t>(state.target)];
        if (!clean)
            clean = draw(family, kNoState, state.target, kept).picture;
        cells[i] = checkPair(family, state, kept);
    }
    return cells;
}

} // namespace nruview
