// A workspace without a display.
#pragma once

#include "viewer/app/offscreen.h"
#include "viewer/scene/frame.h"
#include "viewer/workspace/commands.h"

namespace nruview {

class OffscreenPlace : public CommandPlace {
public:
    /// Throws ViewerError where nothing can be drawn, and as Workspace does.
    OffscreenPlace(Model model, const Options& options);

    Workspace& workspace() override { return *m_workspace; }
    void resize(int width, int height) override;
    Pixels picture() override;

private:
    int m_width, m_height;
    OffscreenContext m_context;
    std::optional<LibrarySession> m_session;
    std::optional<Workspace> m_workspace;
};

} // namespace nruview
