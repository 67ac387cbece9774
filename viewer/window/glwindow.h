// A window of GLFW with its OpenGL context.
#pragma once

#include <string>

struct GLFWwindow;

namespace nruview {

class GlWindow {
public:
    /// Its context becomes current. Throws ViewerError where there is no display or no OpenGL.
    GlWindow(int width, int height, const std::string& title);
    ~GlWindow();
    GlWindow(const GlWindow&) = delete;
    GlWindow& operator=(const GlWindow&) = delete;

    GLFWwindow* handle() const { return m_window; }
    bool shouldClose() const;
    void close();
    /// Of the framebuffer, in pixels; 0 while the window is minimized.
    int width() const;
    int height() const;
    /// How much larger than usual things are to be drawn, for a screen with small pixels.
    double displayScale() const;
    /// Pixels for each unit of the window's own measure, in which the mouse is told.
    double pixelsPerUnit() const;
    void resize(int width, int height);
    void swap();

private:
    struct Library {
        Library();
        ~Library();
    } m_library;
    GLFWwindow* m_window = nullptr;
};

} // namespace nruview
