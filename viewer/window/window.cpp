// GLFW owns the window and the context; the picture is drawn anew only when something has changed.
#include "viewer/window/window.h"

#include <epoxy/gl.h>
// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "viewer/error.h"
#include "viewer/scene/frame.h"
#include "viewer/workspace/workspace.h"

namespace nruview {

namespace {

constexpr double kTurnRadPerPixel = 0.008;
constexpr double kZoomPerNotch = 0.88;
constexpr double kClick_px = 3.0; ///< a longer way between press and release is a drag

struct GlfwLibrary {
    GlfwLibrary() {
        if (!glfwInit())
            throw ViewerError("window", "no display; -o FILE.png draws without one");
    }
    ~GlfwLibrary() { glfwTerminate(); }
    GlfwLibrary(const GlfwLibrary&) = delete;
    GlfwLibrary& operator=(const GlfwLibrary&) = delete;
};

/// Where a script's commands run.
class WindowPlace : public CommandPlace {
public:
    WindowPlace(GLFWwindow* window, Workspace& workspace) : m_window(window), m_workspace(workspace) {}
    Workspace& workspace() override { return m_workspace; }
    void resize(int width, int height) override {
        glfwSetWindowSize(m_window, width, height);
        glfwPollEvents();
    }
    Pixels picture() override {
        int width = 0, height = 0;
        glfwGetFramebufferSize(m_window, &width, &height);
        m_workspace.draw(std::max(width, 1), std::max(height, 1));
        return readPixels(m_workspace.width(), m_workspace.height());
    }

private:
    GLFWwindow* m_window;
    Workspace& m_workspace;
};

/// What the callbacks change; the window's user pointer leads here.
struct Interaction {
    Workspace& workspace;
    double lastX = 0.0, lastY = 0.0;
    double pressX = 0.0, pressY = 0.0;
    bool isStale = true; ///< the window has lost its picture
};

Interaction& interactionOf(GLFWwindow* window) {
    return *static_cast<Interaction*>(glfwGetWindowUserPointer(window));
}

/// The picture's pixel at a place of the window, which may be measured in larger units.
std::array<int, 2> pixelAt(GLFWwindow* window, double x, double y) {
    int width = 1, height = 1, windowWidth = 1, windowHeight = 1;
    glfwGetFramebufferSize(window, &width, &height);
    glfwGetWindowSize(window, &windowWidth, &windowHeight);
    return {static_cast<int>(x * width / std::max(windowWidth, 1)),
            static_cast<int>(y * height / std::max(windowHeight, 1))};
}

void onMove(GLFWwindow* window, double x, double y) {
    Interaction& state = interactionOf(window);
    if (glfwGetMouseButton(window, GLFW_MOUSE_BUTTON_LEFT) == GLFW_PRESS) {
        state.workspace.turn(kTurnRadPerPixel * (x - state.lastX), kTurnRadPerPixel * (state.lastY - y));
    }
    state.lastX = x;
    state.lastY = y;
}

void onWheel(GLFWwindow* window, double, double notches) {
    Interaction& state = interactionOf(window);
    const auto [x, y] = pixelAt(window, state.lastX, state.lastY);
    state.workspace.zoom(std::pow(kZoomPerNotch, -notches), x, y);
}

/// A press and a release at the same place pick.
void onButton(GLFWwindow* window, int button, int action, int) {
    Interaction& state = interactionOf(window);
    if (button != GLFW_MOUSE_BUTTON_LEFT)
        return;
    if (action == GLFW_PRESS) {
        state.pressX = state.lastX;
        state.pressY = state.lastY;
    } else if (std::hypot(state.lastX - state.pressX, state.lastY - state.pressY) <= kClick_px) {
        const auto [x, y] = pixelAt(window, state.lastX, state.lastY);
        state.workspace.showReadOut(x, y);
    }
}

void onKey(GLFWwindow* window, int key, int, int action, int) {
    if (action == GLFW_PRESS && key == GLFW_KEY_ESCAPE)
        glfwSetWindowShouldClose(window, GLFW_TRUE);
    if (action == GLFW_PRESS && key == GLFW_KEY_F)
        interactionOf(window).workspace.fit();
}

void onRefresh(GLFWwindow* window) {
    interactionOf(window).isStale = true;
}

GLFWwindow* openWindow(const Options& options) {
    glfwWindowHint(GLFW_SAMPLES, 4);
    glfwWindowHint(GLFW_STENCIL_BITS, 8);
    const std::string title = "nruview " + (options.sample.empty() ? options.file : options.sample);
    GLFWwindow* window = glfwCreateWindow(options.width, options.height, title.c_str(), nullptr, nullptr);
    if (window == nullptr)
        throw ViewerError("window", "no OpenGL for this display; -o FILE.png draws without one");
    glfwMakeContextCurrent(window);
    return window;
}

void connect(GLFWwindow* window, Interaction& state) {
    glfwSetWindowUserPointer(window, &state);
    glfwSetCursorPosCallback(window, onMove);
    glfwSetMouseButtonCallback(window, onButton);
    glfwSetScrollCallback(window, onWheel);
    glfwSetKeyCallback(window, onKey);
    glfwSetWindowRefreshCallback(window, onRefresh);
}

} // namespace

void showWindow(Model model, const Options& options, Script* script) {
    const GlfwLibrary glfw;
    GLFWwindow* window = openWindow(options);
    const LibrarySession session(options.fixed);
    Workspace workspace(std::move(model), options);
    Interaction state{workspace};
    connect(window, state);
    WindowPlace place(window, workspace);
    while (!glfwWindowShouldClose(window)) {
        int width = 0, height = 0;
        glfwGetFramebufferSize(window, &width, &height);
        state.isStale |= workspace.needsDrawing();
        if (state.isStale && width > 0 && height > 0) {
            workspace.draw(width, height);
            glfwSwapBuffers(window);
            state.isStale = false;
        }
        if (script != nullptr && !script->isAtEnd()) {
            script->runNext(place);
            glfwPollEvents();
        } else {
            glfwWaitEvents();
        }
        if (script != nullptr && script->hasQuit())
            glfwSetWindowShouldClose(window, GLFW_TRUE);
    }
}

} // namespace nruview
