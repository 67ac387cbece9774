// Physically based shading switched on, with the environment that lights the model.
#pragma once

#include "viewer/scene/scenesettings.h"

namespace nruview {

/// The library's switches as the settings ask for, until it goes. One at a time.
class Environment {
public:
    /// Throws ViewerError for an environment file that cannot be used. Needs a current context to the end.
    explicit Environment(const BodySettings& settings);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    /// Behind everything that is drawn later, where the settings want it. Each point of the background is
    /// what a mirror would show that reflects the view there.
    void drawBackground() const;

private:
    /// A file of this program's own, deleted with it; none without a name.
    struct TemporaryFile {
        std::string path;
        ~TemporaryFile();
    };
    TemporaryFile m_studio; ///< the environment that is made up
    std::string m_lastStep; ///< of the maps' build, as told
};

} // namespace nruview
