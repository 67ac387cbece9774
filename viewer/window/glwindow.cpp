#include "viewer/window/glwindow.h"

#include <epoxy/gl.h>
// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cmath>

#include "viewer/error.h"

namespace nruview {

GlWindow::Library::Library() {
    if (!glfwInit())
        throw ViewerError("window", "no display; -o FILE.png draws without one");
}

GlWindow::Library::~Library() {
    glfwTerminate();
}

GlWindow::GlWindow(int width, int height, const std::string& title) {
    m_window = glfwCreateWindow(width, height, title.c_str(), nullptr, nullptr);
    if (m_window == nullptr)
        throw ViewerError("window", "no OpenGL for this display; -o FILE.png draws without one");
    glfwMakeContextCurrent(m_window);
    glfwSwapInterval(1);
}

GlWindow::~GlWindow() {
    glfwDestroyWindow(m_window);
}

bool GlWindow::shouldClose() const {
    return glfwWindowShouldClose(m_window) != 0;
}

void GlWindow::close() {
    glfwSetWindowShouldClose(m_window, GLFW_TRUE);
}

int GlWindow::width() const {
    int width = 0, height = 0;
    glfwGetFramebufferSize(m_window, &width, &height);
    return width;
}

int GlWindow::height() const {
    int width = 0, height = 0;
    glfwGetFramebufferSize(m_window, &width, &height);
    return height;
}

double GlWindow::displayScale() const {
    float x = 1.0f, y = 1.0f;
    glfwGetWindowContentScale(m_window, &x, &y);
    return std::clamp(static_cast<double>(x), 0.5, 4.0);
}

double GlWindow::pixelsPerUnit() const {
    int units = 0, height = 0;
    glfwGetWindowSize(m_window, &units, &height);
    return units > 0 && width() > 0 ? static_cast<double>(width()) / units : 1.0;
}

void GlWindow::resize(int width, int height) {
    const double perUnit = pixelsPerUnit();
    glfwSetWindowSize(m_window, static_cast<int>(std::lround(width / perUnit)),
                      static_cast<int>(std::lround(height / perUnit)));
}

void GlWindow::swap() {
    glfwSwapBuffers(m_window);
}

} // namespace nruview
