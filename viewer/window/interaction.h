// Mouse and keys in the picture, whoever tells them: a window system, a script or a test.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "viewer/section/handle.h"
#include "viewer/workspace/workspace.h"

namespace nruview {

enum class MouseButton { Left, Middle, Right };
struct Modifiers {
    bool shift = false, control = false;
};

/// What a key asks of the window; all else is done when the key is told.
enum class WindowRequest { None, Close, TogglePanel, Screenshot, TogglePlaying };

/// A key with what it does, for help texts.
struct KeyHelp {
    std::string_view key, text;
};
std::span<const KeyHelp> keyHelp();

/// Places are pixels of the picture, y from the top.
class Interaction {
public:
    explicit Interaction(Workspace& workspace) : m_workspace(workspace) {}
    Workspace& workspace() { return m_workspace; }

    /// Ways of the mouse count in pixels of 1 / scale.
    void setScale(double scale) { m_scale = scale; }
    void move(double x, double y);
    void press(MouseButton button, Modifiers held);
    /// Of the button that was pressed; what was held down then counts.
    void release();
    std::optional<MouseButton> pressed() const;
    void wheel(double notches);
    /// A name such as "f", "shift+f", "left" or "escape"; unknown ones do nothing. Throws ViewerError for
    /// what the workspace refuses.
    WindowRequest key(std::string_view name);
    /// The mouse stands still or has left: there is something to read beside it, or no longer.
    void rest();
    void leave() { m_readOut.reset(); }

    /// Gives up what is being dragged, if anything is; else nothing is selected any more.
    void cancel();
    /// The rubber band: two opposite corners.
    std::optional<std::array<int, 4>> band() const;
    struct ReadOut {
        std::string text;
        std::array<int, 2> pixel{};
    };
    const std::optional<ReadOut>& readOut() const { return m_readOut; }

    bool boxMode = false;    ///< dragging with the left button selects in a box
    bool onlyVisible = true; ///< a box selects what is seen in it, not what is behind
    bool readsOut = true;

private:
    enum class Motion { None, Turn, Pan, Zoom, Box, Section };
    struct Drag {
        MouseButton button = MouseButton::Left;
        Modifiers held;
        Motion motion = Motion::None;
        double x = 0.0, y = 0.0; ///< where it began
        Point anchor{};          ///< what was seen there
        HandleGrip grip = {};    ///< of the section's handle
        bool hasMoved = false;
    };
    Motion motionOf(MouseButton button, Modifiers held) const;
    void takeHandle();
    Point seenAt(double x, double y) const;
    void goOn(double x, double y);
    void turnAbout(const Point& anchor, double rightRad, double upRad);

    Workspace& m_workspace;
    double m_scale = 1.0;
    double m_x = 0.0, m_y = 0.0;
    std::optional<Drag> m_drag;
    std::optional<ReadOut> m_readOut;
};

} // namespace nruview
