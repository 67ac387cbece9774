// The panel beside the picture: all settings of what is shown.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "viewer/window/choices.h"
#include "viewer/window/interaction.h"
#include "viewer/window/player.h"

namespace nruview {

class Panel {
public:
    Panel(Workspace& workspace, Interaction& interaction, Player& player);

    static double width_em() { return 23.0; }
    /// At the right of the picture; in the window's own measure.
    void layOut(double left, double width, double height);

    /// A line at the foot: what was done, or why not.
    void say(const std::string& text) { m_line = {text, false}; }
    void refuse(const std::string& text) { m_line = {text, true}; }
    void forgetRefusal() { m_line = m_line.isRefusal ? Line{} : m_line; }
    /// Does it, or says why the workspace refuses.
    void attempt(const std::function<void()>& act);
    /// Does what the user has asked for while the panel was laid out: once nothing is, since it may take
    /// long. Returns whether there was anything.
    bool act();
    /// The file that the user wants the picture saved in; empty: none.
    std::string takeScreenshot() { return std::exchange(m_screenshot, ""); }
    /// As if the user had pressed the button for it.
    void askForScreenshot() { m_screenshot = m_screenshotFile; }
    /// Names the next file.
    void nameScreenshot();

private:
    void later(std::function<void()> asked) { m_asked.push_back(std::move(asked)); }
    void change(std::function<void(Options&)> edit);
    const Options& options() const { return m_workspace.options(); }
    void option(const char* name, bool isOn, const std::function<void(Options&, bool)>& set);
    void chooseField(const char* name, const std::vector<std::string>& fields, const std::string& current,
                     const char* none, const std::function<void(Options&, const std::string&)>& set);

    void layOutFoot();
    void layOutModel();
    void layOutBlocks();
    void layOutBlock(std::size_t index);
    void layOutSelection();
    void layOutKeys();
    // panelresult.cpp
    void layOutResult();
    void layOutSteps();
    void layOutDeformation();
    void layOutAnimation();
    void layOutColors();
    void setRange(const std::array<double, 2>& range);
    // panelpicture.cpp
    void layOutPicture();
    void layOutViews();
    void layOutBody();
    void layOutMarkers();
    // panelsection.cpp
    void layOutSection();

    bool isBlockSeen(const ModelPart& part) const;
    void showBlock(const ModelPart& part, bool on);

    Workspace& m_workspace;
    Interaction& m_interaction;
    Player& m_player;
    const Choices m_choices;
    const std::vector<std::string> m_materials;
    struct Line {
        std::string text;
        bool isRefusal = false;
    } m_line;
    std::vector<std::function<void()>> m_asked;
    std::string m_screenshotFile, m_screenshot;
};

} // namespace nruview
