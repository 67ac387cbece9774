// Every row shows what the workspace has and asks it for a change; nothing is kept here but what is being
// typed.
#include "viewer/window/panel.h"

#include <imgui.h>
#include <imgui_stdlib.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <numeric>

#include "viewer/app/optionvalues.h"
#include "viewer/bodies/materials.h"
#include "viewer/error.h"
#include "viewer/model/numbering.h"
#include "viewer/window/widgets.h"

namespace nruview {

namespace {

using widgets::button;
using widgets::choose;
using widgets::section;
using widgets::slide;
using widgets::toggle;

const ImVec4 kRefusal = {0.75f, 0.12f, 0.10f, 1.0f};

/// "12-40, 52" and as much more as there is room for.
std::string numbersText(const Model& model, const std::vector<std::uint32_t>& cells) {
    constexpr std::size_t kMostLetters = 160;
    std::string text;
    for (const auto& [first, last] : numbersOfCells(model, cells)) {
        if (text.size() > kMostLetters)
            return text + ", …";
        text += text.empty() ? "" : ", ";
        text += std::to_string(first);
        if (last != first)
            text.append("-").append(std::to_string(last));
    }
    return text;
}

/// "Shift + F" for "shift+f".
std::string keyText(std::string_view key) {
    std::string text;
    for (const char letter : key) {
        const bool begins = text.empty() || text.back() == ' ';
        if (letter == '+')
            text += " + ";
        else
            text += begins ? static_cast<char>(std::toupper(static_cast<unsigned char>(letter))) : letter;
    }
    return text;
}

} // namespace

Panel::Panel(Workspace& workspace, Interaction& interaction, Player& player)
    : m_workspace(workspace), m_interaction(interaction), m_player(player),
      m_choices(workspace.shown().model), m_materials(materialNames()) {
    nameScreenshot();
}

void Panel::attempt(const std::function<void()>& act) {
    try {
        act();
    } catch (const ViewerError& error) {
        refuse(error.what());
    }
}

void Panel::change(std::function<void(Options&)> edit) {
    later([this, edit = std::move(edit)] { m_workspace.change(edit); });
}

bool Panel::act() {
    const auto asked = std::exchange(m_asked, {});
    for (const auto& each : asked)
        attempt(each);
    return !asked.empty();
}

/// "nruview-001.png", the first that is not there.
void Panel::nameScreenshot() {
    std::error_code ignored;
    for (int number = 1; number < 1000; ++number) {
        char name[32];
        std::snprintf(name, sizeof name, "nruview-%03d.png", number);
        m_screenshotFile = name;
        if (!std::filesystem::exists(name, ignored))
            return;
    }
}

void Panel::layOut(double left, double width, double height) {
    ImGui::SetNextWindowPos({static_cast<float>(left), 0.0f});
    ImGui::SetNextWindowSize({static_cast<float>(width), static_cast<float>(height)});
    ImGui::Begin("panel", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings |
                     ImGuiWindowFlags_NoBringToFrontOnFocus);
    const float em = ImGui::GetFontSize();
    const float foot = (m_line.text.empty() ? 2.6f : 5.4f) * em;
    ImGui::BeginChild("sections", {0.0f, -foot});
    layOutModel();
    layOutResult();
    layOutColors();
    layOutPicture();
    layOutSection();
    layOutBody();
    layOutMarkers();
    layOutSelection();
    layOutKeys();
    ImGui::EndChild();
    layOutFoot();
    ImGui::End();
}

void Panel::layOutFoot() {
    ImGui::Separator();
    const float save = 5.0f * ImGui::GetFontSize();
    ImGui::SetNextItemWidth(-save - ImGui::GetStyle().ItemSpacing.x);
    ImGui::InputText("##file", &m_screenshotFile);
    ImGui::SameLine();
    if (ImGui::Button("Save", {save, 0.0f}))
        m_screenshot = m_screenshotFile;
    if (m_line.text.empty())
        return;
    ImGui::PushStyleColor(ImGuiCol_Text,
                          m_line.isRefusal ? kRefusal : ImGui::GetStyleColorVec4(ImGuiCol_Text));
    ImGui::TextWrapped("%s", m_line.text.c_str());
    ImGui::PopStyleColor();
}

void Panel::layOutModel() {
    if (!section("Model", true))
        return;
    const Model& model = m_workspace.shown().model;
    widgets::fact("Nodes", countText(model.nodes.size()));
    for (const std::string& type : m_choices.cellTypes)
        widgets::fact(&type == &m_choices.cellTypes.front() ? "Elements" : "", type);
    for (const std::string& note : model.notes)
        widgets::fact(&note == &model.notes.front() ? "Note" : "", note);
    if (!model.parts.empty())
        layOutBlocks();
}

/// Whether a block is seen: some of its elements are not hidden.
bool Panel::isBlockSeen(const ModelPart& part) const {
    const ElementFacts& facts = m_workspace.shown().elements;
    for (std::uint32_t i = 0; i < part.cellCount; ++i)
        if (facts.isShown(part.firstCell + i))
            return true;
    return part.cellCount == 0;
}

void Panel::showBlock(const ModelPart& part, bool on) {
    std::vector<std::uint32_t> cells(part.cellCount);
    std::iota(cells.begin(), cells.end(), part.firstCell);
    const Cells hidden = joined(cellsOf(m_workspace.shown().elements.settings.hidden), cells,
                                on ? Selecting::Remove : Selecting::Add);
    change([=, this](Options& options) {
        options.shown.elements.hidden = numbersOfCells(m_workspace.shown().model, hidden);
    });
}

void Panel::layOutBlocks() {
    const std::vector<ModelPart>& parts = m_workspace.shown().model.parts;
    constexpr std::size_t kMostRows = 8;
    const float height =
        static_cast<float>(std::min(parts.size(), kMostRows)) * ImGui::GetFrameHeightWithSpacing();
    ImGui::TextDisabled("Blocks");
    ImGui::BeginChild("blocks", {0.0f, height});
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(parts.size()));
    while (clipper.Step())
        for (int i = clipper.DisplayStart; i < clipper.DisplayEnd; ++i)
            layOutBlock(static_cast<std::size_t>(i));
    ImGui::EndChild();
}

void Panel::layOutBlock(std::size_t index) {
    const ModelPart& part = m_workspace.shown().model.parts[index];
    ImGui::PushID(static_cast<int>(index));
    bool isSeen = isBlockSeen(part);
    const std::string name = part.name.empty() ? "block " + std::to_string(index) : part.name;
    if (ImGui::Checkbox(name.c_str(), &isSeen))
        showBlock(part, isSeen);
    const std::string count = countText(part.cellCount);
    ImGui::SameLine(ImGui::GetWindowContentRegionMax().x - ImGui::CalcTextSize(count.c_str()).x);
    ImGui::TextDisabled("%s", count.c_str());
    ImGui::PopID();
}

void Panel::layOutSelection() {
    if (!section("Selection", false))
        return;
    const Model& model = m_workspace.shown().model;
    const std::vector<std::uint32_t> cells = m_workspace.selected();
    widgets::fact("Selected", cells.empty()
                                  ? "none"
                                  : countText(cells.size()) + (cells.size() == 1 ? " element" : " elements"));
    if (!cells.empty())
        widgets::fact("Numbers", numbersText(model, cells));
    std::string list;
    if (widgets::text("Select", list))
        change([=](Options& options) { options.shown.elements.selected = parseElements("Select", list); });
    {
        const widgets::Disabled disabled(cells.empty());
        if (button("Hide", 0, 4, "hide the selection (H)"))
            later([this] { m_workspace.hideSelected(); });
        if (button("Isolate", 1, 4, "show the selection alone (I)"))
            later([this] { m_workspace.isolateSelected(); });
        if (button("Fit", 2, 4, "fit the view to the selection (Shift+F)"))
            later([this] { m_workspace.fitSelected(); });
        if (button("Clear", 3, 4, "select nothing (Esc)"))
            later([this] { m_workspace.select({}, Selecting::Replace); });
    }
    if (button("Show all", 0, 1, "show what is hidden, too (A)"))
        later([this] { m_workspace.showAll(); });
    toggle("Box by dragging", m_interaction.boxMode);
    toggle("Seen ones only", m_interaction.onlyVisible);
    toggle("Read-out", m_interaction.readsOut);
}

void Panel::layOutKeys() {
    if (!section("Mouse and keys", false))
        return;
    constexpr KeyHelp kMouse[] = {{"left drag", "turn"},
                                  {"middle drag", "move; also Shift + left drag"},
                                  {"wheel", "zoom; also right drag"},
                                  {"click", "select; Ctrl and Shift: more"},
                                  {"Ctrl + drag", "select in a box"}};
    for (const KeyHelp& row : kMouse)
        widgets::fact(std::string(row.key).c_str(), std::string(row.text));
    for (const KeyHelp& row : keyHelp())
        widgets::fact(keyText(row.key).c_str(), std::string(row.text));
}

} // namespace nruview
