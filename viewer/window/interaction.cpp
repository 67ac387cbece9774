// A drag begins when the mouse has moved a little with a button down; before that a release is a click.
#include "viewer/window/interaction.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "viewer/model/vectors.h"
#include "viewer/scene/sight.h"

namespace nruview {

namespace {

constexpr double kTurnRadPerPixel = 0.008;
constexpr double kZoomPerNotch = 1.15, kZoomPerPixel = 1.008;
constexpr double kClick_px = 3.0; ///< a longer way between press and release is a drag

/// Several keys for one thing stand one behind the other, the later ones without a text.
struct KeyAction {
    std::string_view key, text;
    WindowRequest (*act)(Interaction&);
};

template <const char* View>
WindowRequest lookFrom(Interaction& interaction) {
    interaction.workspace().look(parseView(View));
    return WindowRequest::None;
}

template <WindowRequest Request>
WindowRequest ask(Interaction&) {
    return Request;
}

template <void (Workspace::*Act)()>
WindowRequest act(Interaction& interaction) {
    (interaction.workspace().*Act)();
    return WindowRequest::None;
}

template <int By>
WindowRequest goToStep(Interaction& interaction) {
    Workspace& workspace = interaction.workspace();
    const int step = std::clamp(workspace.step() + By, 0, workspace.stepCount() - 1);
    if (step != workspace.step())
        workspace.setStep(step);
    return WindowRequest::None;
}

WindowRequest togglePerspective(Interaction& interaction) {
    interaction.workspace().change([](Options& options) { options.perspective = !options.perspective; });
    return WindowRequest::None;
}

WindowRequest toggleBoxMode(Interaction& interaction) {
    interaction.boxMode = !interaction.boxMode;
    return WindowRequest::None;
}

WindowRequest cancel(Interaction& interaction) {
    interaction.cancel();
    return WindowRequest::None;
}

/// Across the axis of the model that points most at the viewer.
WindowRequest toggleSection(Interaction& interaction) {
    Workspace& workspace = interaction.workspace();
    if (workspace.options().shown.section) {
        workspace.setSection({});
        return WindowRequest::None;
    }
    const Point& toward = workspace.camera().axes.toward;
    std::size_t axis = 0;
    for (const std::size_t k : {1, 2})
        if (std::abs(toward[k]) > std::abs(toward[axis]) + 1e-9)
            axis = k;
    SectionPlane plane{{}, {}};
    plane.normal[axis] = toward[axis] < 0.0 ? -1.0 : 1.0;
    workspace.setSection(plane);
    return WindowRequest::None;
}

/// How a click goes together with what is selected. A box adds where a click toggles.
Selecting selectingBy(Modifiers held, bool isBox) {
    if (held.shift && held.control)
        return Selecting::Remove;
    if (held.control && !isBox)
        return Selecting::Toggle;
    return held.control || held.shift ? Selecting::Add : Selecting::Replace;
}

constexpr char kIso[] = "iso", kFront[] = "0,0,1", kBack[] = "0,0,-1", kRight[] = "1,0,0", kLeft[] = "-1,0,0",
               kTop[] = "0,1,0", kBottom[] = "0,-1,0";

constexpr KeyAction kActions[] = {
    {"f", "fit the model", act<&Workspace::fit>},
    {"shift+f", "fit the selection", act<&Workspace::fitSelected>},
    {"1", "from the front (+z)", lookFrom<kFront>},
    {"2", "from behind (-z)", lookFrom<kBack>},
    {"3", "from the right (+x)", lookFrom<kRight>},
    {"4", "from the left (-x)", lookFrom<kLeft>},
    {"5", "from above (+y)", lookFrom<kTop>},
    {"6", "from below (-y)", lookFrom<kBottom>},
    {"0", "isometric", lookFrom<kIso>},
    {"p", "perspective on, off", togglePerspective},
    {"h", "hide the selection", act<&Workspace::hideSelected>},
    {"i", "isolate the selection", act<&Workspace::isolateSelected>},
    {"a", "show all", act<&Workspace::showAll>},
    {"b", "boxes by dragging on, off", toggleBoxMode},
    {"c", "cut by a plane across the view on, off", toggleSection},
    {"escape", "give up a box; select nothing", cancel},
    {"space", "play, stop", ask<WindowRequest::TogglePlaying>},
    {"right", "next step; also .", goToStep<1>},
    {".", "", goToStep<1>},
    {"left", "previous step; also ,", goToStep<-1>},
    {",", "", goToStep<-1>},
    {"s", "save the picture", ask<WindowRequest::Screenshot>},
    {"tab", "panel on, off", ask<WindowRequest::TogglePanel>},
    {"q", "close", ask<WindowRequest::Close>},
};

} // namespace

std::span<const KeyHelp> keyHelp() {
    static const std::vector<KeyHelp> help = [] {
        std::vector<KeyHelp> rows;
        for (const KeyAction& action : kActions)
            if (!action.text.empty())
                rows.push_back({action.key, action.text});
        return rows;
    }();
    return help;
}

WindowRequest Interaction::key(std::string_view name) {
    const auto* action = std::find_if(std::begin(kActions), std::end(kActions),
                                      [&](const KeyAction& each) { return each.key == name; });
    if (action == std::end(kActions))
        return WindowRequest::None;
    m_readOut.reset();
    return action->act(*this);
}

void Interaction::cancel() {
    if (m_drag)
        m_drag.reset();
    else
        m_workspace.select({}, Selecting::Replace);
}

// --- the mouse ---------------------------------------------------------------------------------------------

Interaction::Motion Interaction::motionOf(MouseButton button, Modifiers held) const {
    if (button == MouseButton::Right)
        return Motion::Zoom;
    if (button == MouseButton::Middle || (held.shift && !held.control && !boxMode))
        return Motion::Pan;
    return boxMode || held.control ? Motion::Box : Motion::Turn;
}

void Interaction::press(MouseButton button, Modifiers held) {
    if (m_drag)
        return; // one button at a time
    m_readOut.reset();
    m_drag = Drag{button, held, motionOf(button, held), m_x, m_y};
    if (button == MouseButton::Left && !held.shift && !held.control)
        takeHandle();
    if (m_drag->motion == Motion::Pan)
        m_drag->anchor = m_workspace.anchorAt(m_x, m_y);
    if (m_drag->motion == Motion::Turn)
        m_drag->anchor = seenAt(m_x, m_y);
}

/// Where there is a section's handle, it is dragged.
void Interaction::takeHandle() {
    if (!m_workspace.options().scene.sectionHandle)
        return;
    const auto grip = gripSection(m_workspace.shown(), static_cast<int>(m_x), static_cast<int>(m_y));
    if (!grip)
        return;
    m_drag->motion = Motion::Section;
    m_drag->grip = *grip;
}

/// What turns stay about: the model where it is seen, else the camera's target.
Point Interaction::seenAt(double x, double y) const {
    const int column = static_cast<int>(x), row = static_cast<int>(y);
    const double distance = m_workspace.pickAt(column, row).distance;
    if (!std::isfinite(distance))
        return m_workspace.camera().target;
    const Ray ray = rayThrough(column, row);
    return ray.origin + distance * ray.direction;
}

void Interaction::move(double x, double y) {
    if (x == m_x && y == m_y)
        return;
    m_readOut.reset();
    if (m_drag && !m_drag->hasMoved && std::hypot(x - m_drag->x, y - m_drag->y) > kClick_px * m_scale)
        m_drag->hasMoved = true;
    if (m_drag && m_drag->hasMoved)
        goOn(x, y);
    m_x = x;
    m_y = y;
}

void Interaction::goOn(double x, double y) {
    const Drag& drag = *m_drag;
    const double dx = (x - m_x) / m_scale, dy = (y - m_y) / m_scale;
    if (drag.motion == Motion::Turn)
        turnAbout(drag.anchor, kTurnRadPerPixel * dx, -kTurnRadPerPixel * dy);
    if (drag.motion == Motion::Pan)
        m_workspace.drag(drag.anchor, x, y);
    if (drag.motion == Motion::Section)
        m_workspace.setSection(
            draggedSection(m_workspace.shown(), drag.grip, static_cast<int>(x), static_cast<int>(y)));
    if (drag.motion == Motion::Zoom)
        m_workspace.zoom(std::pow(kZoomPerPixel, -dy), drag.x, drag.y);
}

void Interaction::turnAbout(const Point& anchor, double rightRad, double upRad) {
    Camera camera = m_workspace.camera();
    const ViewAxes before = camera.axes;
    const Point offset = camera.target - anchor;
    turnCamera(camera, rightRad, upRad);
    camera.target = anchor + dot(offset, before.right) * camera.axes.right +
                    dot(offset, before.up) * camera.axes.up + dot(offset, before.toward) * camera.axes.toward;
    m_workspace.setCamera(camera);
}

void Interaction::wheel(double notches) {
    m_readOut.reset();
    m_workspace.zoom(std::pow(kZoomPerNotch, notches), m_x, m_y);
}

std::optional<std::array<int, 4>> Interaction::band() const {
    if (!m_drag || m_drag->motion != Motion::Box || !m_drag->hasMoved)
        return {};
    return std::array{static_cast<int>(m_drag->x), static_cast<int>(m_drag->y), static_cast<int>(m_x),
                      static_cast<int>(m_y)};
}

std::optional<MouseButton> Interaction::pressed() const {
    return m_drag ? std::optional(m_drag->button) : std::nullopt;
}

void Interaction::release() {
    if (!m_drag)
        return;
    const auto box = band();
    const Drag drag = *m_drag;
    m_drag.reset();
    if (!drag.hasMoved && drag.button == MouseButton::Left)
        m_workspace.selectAt(static_cast<int>(m_x), static_cast<int>(m_y), selectingBy(drag.held, false));
    if (box) {
        const auto& [x0, y0, x1, y1] = *box;
        m_workspace.selectBox(x0, y0, x1, y1, selectingBy(drag.held, true), onlyVisible);
    }
}

void Interaction::rest() {
    if (m_drag || !readsOut)
        return;
    const std::array<int, 2> pixel = {static_cast<int>(m_x), static_cast<int>(m_y)};
    const std::string text = m_workspace.describeAt(pixel[0], pixel[1]);
    if (text != "nothing")
        m_readOut = ReadOut{text, pixel};
}

} // namespace nruview
