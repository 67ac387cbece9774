// Dear ImGui in the window: its fonts, its looks, and its drawing without traces in GL's state.
#pragma once

#include "viewer/window/progress.h"

struct ImGuiContext;

namespace nruview {

/// One of several in a window. What is laid out belongs to the one whose beginFrame was last.
class Gui {
public:
    /// Of a window whose context is current. The caller tells the first one the window's events; others take
    /// none.
    Gui(GLFWwindow* window, bool takesEvents);
    ~Gui();
    Gui(const Gui&) = delete;
    Gui& operator=(const Gui&) = delete;

    /// Letters and distances for a screen whose pixels are that much smaller than usual; perUnit: pixels for
    /// each unit of the window's own measure.
    void setScale(double scale, double perUnit);
    /// Height of letters with the room between lines, in the window's measure.
    double em() const;
    /// Both sizes in the window's measure.
    void beginFrame(double width, double height);
    void endFrame();
    /// Into the framebuffer that is bound, what has been laid out in the last frame, if there was one.
    void draw();
    /// Whether the mouse is at work with what has been laid out, wherever it is.
    bool holdsMouse() const;
    bool takesText() const;

private:
    ImGuiContext* m_context;
    ImGuiContext* m_before = nullptr; ///< the frame
    bool m_takesEvents;
    double m_scale = 0.0, m_perUnit = 0.0;
};

/// A card in the middle of the window.
void layOutProgress(const Progress::State& state, double seconds);

} // namespace nruview
