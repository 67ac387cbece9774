// GLFW owns the window and the context; the picture is drawn anew only when something has changed.
#include "viewer/window.h"

#include <epoxy/gl.h>
// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "viewer/error.h"
#include "viewer/frame.h"
#include "viewer/labels.h"
#include "viewer/scene.h"

namespace nruview {

namespace {

constexpr double kTurnRadPerPixel = 0.008;
constexpr double kZoomPerNotch = 0.88;

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
    bool changed = true;
};

Interaction& interactionOf(GLFWwindow* window) {
    return *static_cast<Interaction*>(glfwGetWindowUserPointer(window));
}

PictureArea areaOf(GLFWwindow* window, PictureLabels& labels) {
    int width = 0, height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    return labels.area(std::max(width, 1), std::max(height, 1));
}

void onMove(GLFWwindow* window, double x, double y) {
    Interaction& state = interactionOf(window);
    if (glfwGetMouseButton(window, GLFW_MOUSE_BUTTON_LEFT) == GLFW_PRESS) {
        turnCamera(state.camera, kTurnRadPerPixel * (x - state.lastX), kTurnRadPerPixel * (state.lastY - y));
        state.changed = true;
    }
    state.lastX = x;
    state.lastY = y;
}

void onWheel(GLFWwindow* window, double, double notches) {
    Interaction& state = interactionOf(window);
    state.camera.halfHeight *= std::pow(kZoomPerNotch, notches);
    state.changed = true;
}

void onKey(GLFWwindow* window, int key, int, int action, int) {
    Interaction& state = interactionOf(window);
    if (action == GLFW_PRESS && key == GLFW_KEY_ESCAPE)
        glfwSetWindowShouldClose(window, GLFW_TRUE);
    if (action == GLFW_PRESS && key == GLFW_KEY_F) {
        state.camera = fitCamera(state.camera.axes, state.shown.bounds, areaOf(window, state.labels),
                                 state.options.perspective);
        state.changed = true;
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
            glfwSwapBuffers(window);
            state.changed = false;
        }
        glfwWaitEvents();
    }
}

} // namespace nruview
