// Physically based shading switched on, with the environment that lights the model.
#pragma once

#include <functional>

#include "viewer/scene/scenesettings.h"

namespace nruview {

/// The library's switches as the settings ask for, until the last one goes. Of several the one that was made
/// or used last counts.
class Environment {
public:
    /// Throws ViewerError for an environment file that cannot be used. Needs a current context to the end.
    explicit Environment(const BodySettings& settings);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    /// Switches the library over where another one has been made since: before drawing.
    void use() const;
    /// Behind everything that is drawn later, where the settings want it. Each point of the background is
    /// what a mirror would show that reflects the view there.
    void drawBackground() const;

    /// Makes the maps of a new environment when that comes, by NImageBasedLightHandler::Initialize, instead
    /// of the library at their first use: for a window that stays alive meanwhile. Null: nobody does.
    static void setBuilder(std::function<void()> build);

private:
    BodySettings m_settings;
};

} // namespace nruview
