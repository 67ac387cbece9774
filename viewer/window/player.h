// Plays an animation by the clock.
#pragma once

#include "viewer/workspace/workspace.h"

namespace nruview {

class Player {
public:
    enum class Motion {
        Steps, ///< one after the other, over and over
        Swing  ///< the deformation to and fro, as of a mode
    };

    /// What suits the model: modes and models without steps swing.
    explicit Player(const Workspace& workspace);

    bool isPlaying() const { return m_isPlaying; }
    /// Plays or stops. A swing needs a deformed shape: throws ViewerError where the model has none.
    void toggle(Workspace& workspace);
    void stop() { m_isPlaying = false; }
    void setMotion(Motion motion);
    Motion motion() const { return m_motion; }
    /// Shows what is due after so many seconds more. Throws ViewerError as the workspace does, and plays no
    /// longer then.
    void advance(Workspace& workspace, double seconds);

    double stepsPerSecond = 4.0, swingsPerSecond = 0.5;

private:
    Motion m_motion = Motion::Swing;
    bool m_isPlaying = false;
    double m_due = 0.0; ///< steps that are due, as far as they are not whole
};

} // namespace nruview
