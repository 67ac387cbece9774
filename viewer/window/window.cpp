// What costs time is drawn only when it has changed: the model when the workspace says so, else what lies on
// top of its picture.
#include "viewer/window/window.h"

#include <epoxy/gl.h>
#include <imgui.h>
// after imgui.h
#include <backends/imgui_impl_glfw.h>
// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>

#include "viewer/app/pngwriter.h"
#include "viewer/bodies/environment.h"
#include "viewer/error.h"
#include "viewer/model/samples.h"
#include "viewer/scene/frame.h"
#include "viewer/window/glwindow.h"
#include "viewer/window/gui.h"
#include "viewer/window/inputcommands.h"
#include "viewer/window/keptpicture.h"
#include "viewer/window/keys.h"
#include "viewer/window/panel.h"
#include "viewer/window/rubberband.h"
#include "viewer/workspace/script.h"

namespace nruview {

namespace {

constexpr double kRest_s = 0.15; ///< the mouse stands still from here on
constexpr double kFrame_s = 1.0 / 60.0, kCursorBlink_s = 0.4, kLongestStep_s = 0.25;
constexpr double kWaitFrame_s = 0.1; ///< while something takes long, which is not to be slowed down
constexpr double kSlow_s = 0.1;      ///< pictures that take longer are no motion
constexpr double kWidestPanel = 0.5; ///< of the window
constexpr int kFramesToSettle = 4;   ///< Dear ImGui measures a list that opens before it shows it

/// A section in a window can be moved.
Options withHandle(Options options) {
    options.scene.sectionHandle = true;
    return options;
}

std::string windowTitle(const Options& options) {
    return (options.sample.empty() ? options.file : options.sample) + " – nruview";
}

/// All that is there once the model is.
struct Stage {
    Stage(Model model, const Options& options)
        : session(options.fixed), workspace(std::move(model), withHandle(options)), interaction(workspace),
          player(workspace), panel(workspace, interaction, player) {}

    LibrarySession session;
    Workspace workspace;
    Interaction interaction;
    Player player;
    Panel panel;
};

class ViewerWindow final : public CommandPlace {
public:
    ViewerWindow(const Options& options, Script* script);
    void run();

    Workspace& workspace() override { return m_stage->workspace; }
    void resize(int width, int height) override;
    Pixels picture() override;
    bool takeInput(const Words& words) override;

    ~ViewerWindow() override { Environment::setBuilder(nullptr); }
    ViewerWindow(const ViewerWindow&) = delete;
    ViewerWindow& operator=(const ViewerWindow&) = delete;

private:
    void connect();
    void open();
    void waitFrame();
    void updateSizes();
    int panelWidth_px() const;
    void goOn();
    void frame();
    void makeEnvironment();
    void drawPicture(bool quickly = false);
    bool isMoving() const { return m_stage->interaction.pressed() || m_stage->player.isPlaying(); }
    void drawBand();
    void show();
    void waitForEvents();
    void act(WindowRequest request);
    void saveScreenshot(const std::string& file);

    /// An event: what it does must not throw through the window system.
    template <typename Do>
    static void handle(GLFWwindow* window, Do work);
    bool isPanels() const;
    void onEnter(bool hasEntered);
    void onMove(double x, double y);
    void onButton(int button, bool isPress, int modifiers);
    void onWheel(double notches);
    void onKey(int key, int scancode, int action, int modifiers);

    const Options m_options;
    Script* const m_script; ///< null: none
    GlWindow m_window;
    Gui m_gui, m_waitGui; ///< the panel, and what is told while something takes long
    KeptPicture m_picture;
    Progress m_progress;
    std::unique_ptr<Stage> m_stage; ///< null while the model is read
    bool m_hasPanel;
    bool m_isBusy = true; ///< the library is another thread's, or not there yet
    double m_scale = 1.0;
    double m_mouseX = 0.0;
    double m_busySince = 0.0, m_restAt = INFINITY, m_playedAt = 0.0;
    bool m_isQuick = false, m_isSlow = false; ///< the picture that is shown; whole pictures
    int m_framesDue = 1;
    std::optional<std::array<int, 4>> m_band; ///< that is in the finished picture
    std::exception_ptr m_failure;
};

ViewerWindow::ViewerWindow(const Options& options, Script* script)
    : m_options(options), m_script(script), m_window(options.width, options.height, windowTitle(options)),
      m_gui(m_window.handle(), true), m_waitGui(m_window.handle(), false), m_picture(options.samples),
      m_hasPanel(options.panel) {
    connect();
    Environment::setBuilder([this] { makeEnvironment(); });
    updateSizes();
    m_window.resize(m_options.width + panelWidth_px(), m_options.height);
}

// --- sizes -------------------------------------------------------------------------------------------------

int ViewerWindow::panelWidth_px() const {
    return m_hasPanel
               ? static_cast<int>(std::lround(Panel::width_em() * m_gui.em() * m_window.pixelsPerUnit()))
               : 0;
}

/// A minimized window keeps its picture.
void ViewerWindow::updateSizes() {
    m_scale = m_options.displayScale.value_or(m_window.displayScale());
    for (Gui* gui : {&m_gui, &m_waitGui})
        gui->setScale(m_scale, m_window.pixelsPerUnit());
    const int width = m_window.width(), height = m_window.height();
    if (width == 0 || height == 0)
        return;
    const int panel = std::min(panelWidth_px(), static_cast<int>(kWidestPanel * width));
    if (m_picture.resize(width - panel, height))
        m_framesDue = kFramesToSettle;
    if (m_stage)
        m_stage->interaction.setScale(m_scale);
}

void ViewerWindow::resize(int width, int height) {
    constexpr double kPatience_s = 2.0;
    m_window.resize(width + panelWidth_px(), height);
    for (const double end = glfwGetTime() + kPatience_s; glfwGetTime() < end;) {
        updateSizes();
        if (m_picture.width() == width && m_picture.height() == height)
            return;
        glfwWaitEventsTimeout(kFrame_s);
    }
    throw ViewerError("size", "the window system gives the picture " + std::to_string(m_picture.width()) +
                                  "x" + std::to_string(m_picture.height()) + " pixels");
}

// --- the picture and what lies on it -----------------------------------------------------------------------

/// The maps of an environment take seconds: they are made while the window lives.
void ViewerWindow::makeEnvironment() {
    const bool wasBusy = std::exchange(m_isBusy, true);
    m_busySince = glfwGetTime();
    buildEnvironment(m_window.handle(), m_progress, [this] { waitFrame(); });
    m_isBusy = wasBusy;
}

/// Where a picture takes long, those of a motion have plain edges, and the last one is drawn once more.
void ViewerWindow::drawPicture(bool quickly) {
    m_isQuick = quickly;
    m_picture.beginDrawing(quickly);
    workspace().draw(m_picture.width(), m_picture.height(), m_scale);
    m_picture.endDrawing();
    m_band.reset();
}

/// The band in work takes the place of the one before.
void ViewerWindow::drawBand() {
    const auto band = m_stage->interaction.band();
    if (band == m_band)
        return;
    m_picture.bindFinished();
    for (const auto& each : {m_band, band})
        if (each)
            drawRubberBand(*each, m_picture.width(), m_picture.height());
    m_band = band;
}

/// The finished picture with what lies on it, and the panel beside it.
void ViewerWindow::show() {
    drawBand();
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glClearColor(0.945f, 0.949f, 0.957f, 1.0f); // the panel's, until it is drawn
    glClear(GL_COLOR_BUFFER_BIT);
    m_picture.show(m_window.height());
    if (const auto& readOut = m_stage->interaction.readOut())
        workspace().drawReadOut(readOut->text, readOut->pixel);
    m_gui.draw();
    m_window.swap();
    m_picture.beginDrawing(); // whoever draws or asks for the number of samples means the picture
}

/// Everything as the window shows it but for the panel.
Pixels ViewerWindow::picture() {
    updateSizes();
    drawPicture();
    drawBand();
    m_picture.bindFinished();
    const auto& readOut = m_stage->interaction.readOut();
    if (readOut)
        workspace().drawReadOut(readOut->text, readOut->pixel);
    Pixels pixels = readPixels(m_picture.width(), m_picture.height());
    if (readOut)
        drawPicture(); // without it
    return pixels;
}

void ViewerWindow::saveScreenshot(const std::string& file) {
    m_stage->panel.attempt([&] {
        const Pixels pixels = picture();
        writePng(file, pixels.width, pixels.height, pixels.colors);
        m_stage->panel.say("Saved " + file);
        m_stage->panel.nameScreenshot();
    });
    m_framesDue = kFramesToSettle;
}

// --- events ------------------------------------------------------------------------------------------------

template <typename Do>
void ViewerWindow::handle(GLFWwindow* window, Do work) {
    auto& self = *static_cast<ViewerWindow*>(glfwGetWindowUserPointer(window));
    if (self.m_isBusy || self.m_failure)
        return;
    try {
        self.m_stage->panel.attempt([&] { work(self); });
    } catch (...) {
        self.m_failure = std::current_exception();
    }
}

void ViewerWindow::connect() {
    GLFWwindow* window = m_window.handle();
    glfwSetWindowUserPointer(window, this);
    glfwSetWindowFocusCallback(window, ImGui_ImplGlfw_WindowFocusCallback);
    glfwSetCharCallback(window, ImGui_ImplGlfw_CharCallback);
    glfwSetCursorEnterCallback(window, [](GLFWwindow* at, int entered) {
        ImGui_ImplGlfw_CursorEnterCallback(at, entered);
        handle(at, [=](ViewerWindow& self) { self.onEnter(entered != 0); });
    });
    glfwSetCursorPosCallback(window, [](GLFWwindow* at, double x, double y) {
        handle(at, [=](ViewerWindow& self) { self.onMove(x, y); });
    });
    glfwSetMouseButtonCallback(window, [](GLFWwindow* at, int button, int action, int modifiers) {
        ImGui_ImplGlfw_MouseButtonCallback(at, button, action, modifiers);
        handle(at, [=](ViewerWindow& self) { self.onButton(button, action == GLFW_PRESS, modifiers); });
    });
    glfwSetScrollCallback(window, [](GLFWwindow* at, double x, double y) {
        ImGui_ImplGlfw_ScrollCallback(at, x, y);
        handle(at, [=](ViewerWindow& self) { self.onWheel(y); });
    });
    glfwSetKeyCallback(window, [](GLFWwindow* at, int key, int scancode, int action, int modifiers) {
        ImGui_ImplGlfw_KeyCallback(at, key, scancode, action, modifiers);
        handle(at, [=](ViewerWindow& self) { self.onKey(key, scancode, action, modifiers); });
    });
    glfwSetWindowRefreshCallback(
        window, [](GLFWwindow* at) { handle(at, [](ViewerWindow& self) { self.m_framesDue = 1; }); });
}

/// Whether the mouse is the panel's and not the picture's.
bool ViewerWindow::isPanels() const {
    return !m_stage->interaction.pressed() && (m_mouseX >= m_picture.width() || m_gui.holdsMouse());
}

void ViewerWindow::onEnter(bool hasEntered) {
    m_framesDue = kFramesToSettle;
    if (!hasEntered)
        m_stage->interaction.leave();
    m_restAt = INFINITY;
}

void ViewerWindow::onMove(double x, double y) {
    const bool wasPanels = isPanels();
    const double perUnit = m_window.pixelsPerUnit();
    Interaction& interaction = m_stage->interaction;
    m_mouseX = perUnit * x;
    if (wasPanels || isPanels())
        m_framesDue = kFramesToSettle;
    if (interaction.readOut() || interaction.band())
        m_framesDue = std::max(m_framesDue, 1);
    interaction.move(m_mouseX, perUnit * y);
    m_restAt = isPanels() ? INFINITY : glfwGetTime() + kRest_s;
}

void ViewerWindow::onButton(int button, bool isPress, int modifiers) {
    m_framesDue = kFramesToSettle;
    m_restAt = INFINITY;
    if (isPress)
        m_stage->panel.forgetRefusal();
    if (isPanels() || button > GLFW_MOUSE_BUTTON_MIDDLE)
        return;
    constexpr std::array kButtons = {MouseButton::Left, MouseButton::Right, MouseButton::Middle};
    const MouseButton which = kButtons[static_cast<std::size_t>(button)];
    Interaction& interaction = m_stage->interaction;
    if (isPress)
        interaction.press(which, {(modifiers & GLFW_MOD_SHIFT) != 0, (modifiers & GLFW_MOD_CONTROL) != 0});
    else if (interaction.pressed() == which)
        interaction.release();
}

void ViewerWindow::onWheel(double notches) {
    m_framesDue = kFramesToSettle;
    if (!isPanels())
        m_stage->interaction.wheel(notches);
}

void ViewerWindow::onKey(int key, int scancode, int action, int modifiers) {
    m_framesDue = kFramesToSettle;
    if (action == GLFW_PRESS)
        m_stage->panel.forgetRefusal();
    if (action != GLFW_RELEASE && !m_gui.takesText())
        act(m_stage->interaction.key(keyName(key, scancode, modifiers)));
}

void ViewerWindow::act(WindowRequest request) {
    if (request == WindowRequest::Close)
        m_window.close();
    if (request == WindowRequest::TogglePanel)
        m_hasPanel = !m_hasPanel;
    if (request == WindowRequest::TogglePlaying)
        m_stage->player.toggle(workspace());
    if (request == WindowRequest::Screenshot)
        m_stage->panel.askForScreenshot();
    m_framesDue = kFramesToSettle;
}

bool ViewerWindow::takeInput(const Words& words) {
    act(runInput(m_stage->interaction, words));
    return true;
}

// --- the loop ----------------------------------------------------------------------------------------------

/// While something takes long: the last picture, and a card that says what.
void ViewerWindow::waitFrame() {
    if (m_window.shouldClose())
        std::_Exit(0); // nobody waits for the work; all that the process has goes with it
    glfwWaitEventsTimeout(kWaitFrame_s);
    if (!m_stage)
        updateSizes();
    const double perUnit = m_window.pixelsPerUnit();
    m_waitGui.beginFrame(m_window.width() / perUnit, m_window.height() / perUnit);
    layOutProgress(m_progress.state(), glfwGetTime() - m_busySince);
    m_waitGui.endFrame();
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glClearColor(0.945f, 0.949f, 0.957f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    if (m_stage)
        m_picture.show(m_window.height());
    m_gui.draw();
    m_waitGui.draw();
    m_window.swap();
    m_picture.beginDrawing();
}

/// Reads and shows the model, the window alive meanwhile.
void ViewerWindow::open() {
    std::optional<Model> model;
    m_progress.begin(readingText(m_options));
    m_busySince = glfwGetTime();
    workAside(
        [&] { model = m_options.sample.empty() ? readModel(m_options.file) : makeSample(m_options.sample); },
        [this] { waitFrame(); });
    m_progress.begin("Preparing " + countText(model->cellCount()) + " elements");
    waitFrame();
    m_stage = std::make_unique<Stage>(std::move(*model), m_options);
    m_isBusy = false;
}

void ViewerWindow::run() {
    open();
    while (!m_window.shouldClose()) {
        waitForEvents();
        if (m_failure)
            std::rethrow_exception(m_failure);
        if (m_script && !m_script->isAtEnd()) {
            m_script->runNext(*this);
            m_framesDue = std::max(m_framesDue, 1);
        }
        if (m_script && m_script->hasQuit())
            return;
        goOn();
        if (m_framesDue > 0 || workspace().needsDrawing() || (m_isQuick && !isMoving()))
            frame();
    }
}

/// What time brings: an animation's next picture, and a read-out when the mouse has come to rest.
void ViewerWindow::goOn() {
    updateSizes();
    const double time = glfwGetTime();
    m_stage->panel.attempt([&] {
        m_stage->player.advance(workspace(), std::min(time - m_playedAt, kLongestStep_s));
        if (time >= m_restAt) {
            m_restAt = INFINITY;
            m_stage->interaction.rest();
            m_framesDue = std::max(m_framesDue, 1);
        }
    });
    m_playedAt = time;
}

void ViewerWindow::frame() {
    m_framesDue = std::max(m_framesDue - 1, 0);
    const double perUnit = m_window.pixelsPerUnit(), left = m_picture.width() / perUnit;
    const double width = m_window.width() / perUnit, height = m_window.height() / perUnit;
    m_gui.beginFrame(width, height);
    if (m_hasPanel)
        m_stage->panel.layOut(left, width - left, height);
    m_gui.endFrame();
    if (m_stage->panel.act())
        m_framesDue = kFramesToSettle;
    if (const std::string file = m_stage->panel.takeScreenshot(); !file.empty())
        saveScreenshot(file);
    const bool draws = workspace().needsDrawing() || (m_isQuick && !isMoving());
    const double start = glfwGetTime();
    if (draws)
        drawPicture(m_isSlow && isMoving());
    show();
    if (draws && !m_isQuick)
        m_isSlow = glfwGetTime() - start > kSlow_s;
}

void ViewerWindow::waitForEvents() {
    const double time = glfwGetTime();
    double until = m_restAt;
    if (m_gui.takesText())
        until = std::min(until, time + kCursorBlink_s);
    if (m_stage->player.isPlaying())
        until = std::min(until, m_playedAt + kFrame_s);
    if (m_framesDue > 0 || workspace().needsDrawing() || (m_isQuick && !isMoving()) ||
        (m_script && !m_script->isAtEnd()))
        glfwPollEvents();
    else if (std::isinf(until))
        glfwWaitEvents();
    else
        glfwWaitEventsTimeout(std::max(until - time, 0.0));
    if (m_gui.takesText())
        m_framesDue = std::max(m_framesDue, 1);
}

} // namespace

void showWindow(const Options& options, Script* script) {
    ViewerWindow(options, script).run();
}

} // namespace nruview
