// GLFW owns the window and the context; the picture is drawn anew only when something has changed.
#include "viewer/window/window.h"

#include <epoxy/gl.h>
// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "viewer/error.h"
#include "viewer/labels/labels.h"
#include "viewer/markers/markerpick.h"
#include "viewer/scene/frame.h"
#include "viewer/scene/scene.h"

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

/// What the callbacks change; the window's user pointer leads here.
struct Interaction {
    const ShownModel& shown;
    const Options& options;
    PictureLabels& labels;
    Camera camera;
    double lastX = 0.0, lastY = 0.0;
    double pressX = 0.0, pressY = 0.0;
    std::optional<std::array<int, 2>> picked = {}; ///< pixel of the picture whose read-out is shown
    bool changed = true;

    void moveView() {
        picked.reset();
        changed = true;
    }
};

Interaction& interactionOf(GLFWwindow* window) {
    return *static_cast<Interaction*>(glfwGetWindowUserPointer(window));
}

PictureArea areaOf(GLFWwindow* window, PictureLabels& labels) {
    int width = 0, height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    return labels.area(std::max(width, 1), std::max(height, 1));
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
        turnCamera(state.camera, kTurnRadPerPixel * (x - state.lastX), kTurnRadPerPixel * (state.lastY - y));
        state.moveView();
    }
    state.lastX = x;
    state.lastY = y;
}

void onWheel(GLFWwindow* window, double, double notches) {
    Interaction& state = interactionOf(window);
    state.camera.halfHeight *= std::pow(kZoomPerNotch, notches);
    state.moveView();
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
        state.picked = pixelAt(window, state.lastX, state.lastY);
        state.changed = true;
    }
}

void onKey(GLFWwindow* window, int key, int, int action, int) {
    Interaction& state = interactionOf(window);
    if (action == GLFW_PRESS && key == GLFW_KEY_ESCAPE)
        glfwSetWindowShouldClose(window, GLFW_TRUE);
    if (action == GLFW_PRESS && key == GLFW_KEY_F) {
        state.camera = fitCamera(state.camera.axes, state.shown.bounds, areaOf(window, state.labels),
                                 state.options.perspective);
        state.moveView();
    }
}

void onRefresh(GLFWwindow* window) {
    interactionOf(window).changed = true;
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

void showWindow(const ShownModel& shown, const Markers& markers, const Options& options) {
    const GlfwLibrary glfw;
    GLFWwindow* window = openWindow(options);
    const LibrarySession session(options.fixed);
    Scene scene(shown, options.scene, options.body, &markers);
    PictureLabels labels(shown, scene.legends(shown), options.labels, titleOf(shown, options));
    Interaction state{shown, options, labels,
                      fitCamera(options.view, shown.bounds, areaOf(window, labels), options.perspective)};
    connect(window, state);
    while (!glfwWindowShouldClose(window)) {
        int width = 0, height = 0;
        glfwGetFramebufferSize(window, &width, &height);
        if (state.changed && width > 0 && height > 0) {
            centreCamera(state.camera, labels.area(width, height));
            beginFrame(state.camera, shown.bounds, width, height, options.background);
            scene.draw();
            labels.draw(state.camera, width, height, options.background);
            if (state.picked)
                labels.drawReadOut(describePixel(shown, markers, options.scene.opacity >= 1.0,
                                                 (*state.picked)[0], (*state.picked)[1]),
                                   *state.picked, width, height, options.background);
            glfwSwapBuffers(window);
            state.changed = false;
        }
        glfwWaitEvents();
    }
}

} // namespace nruview
