// Two columns, of which the first is as wide as the longest name.
#include "viewer/window/widgets.h"

#include <imgui.h>
#include <imgui_stdlib.h>

#include <map>

namespace nruview::widgets {

namespace {

constexpr float kNames_em = 7.2f;

/// The name, and the place for what follows. Returns the name as an id.
std::string beginRow(const char* name) {
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted(name);
    ImGui::SameLine(kNames_em * ImGui::GetFontSize());
    ImGui::SetNextItemWidth(-1.0f);
    return "##" + std::string(name);
}

/// A value while it is typed, by its row.
template <typename Value, typename Input>
bool typed(const std::string& id, Value& value, Input input) {
    static std::map<ImGuiID, Value> beingTyped;
    const ImGuiID key = ImGui::GetID(id.c_str());
    const auto found = beingTyped.find(key);
    Value shown = found != beingTyped.end() ? found->second : value;
    input(id.c_str(), shown);
    if (ImGui::IsItemActive()) {
        beingTyped[key] = shown;
        return false;
    }
    const bool isDone = ImGui::IsItemDeactivatedAfterEdit();
    if (isDone)
        value = shown;
    beingTyped.erase(key);
    return isDone;
}

} // namespace

bool section(const char* name, bool openAtFirst) {
    return ImGui::CollapsingHeader(name, openAtFirst ? ImGuiTreeNodeFlags_DefaultOpen : 0);
}

bool toggle(const char* name, bool& on) {
    return ImGui::Checkbox(beginRow(name).c_str(), &on);
}

bool choose(const char* name, const std::vector<std::string>& items, int& chosen) {
    const std::string id = beginRow(name);
    const auto at = static_cast<std::size_t>(chosen);
    if (!ImGui::BeginCombo(id.c_str(), at < items.size() ? items[at].c_str() : ""))
        return false;
    bool isSet = false;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string label = items[i] + "##" + std::to_string(i);
        if (ImGui::Selectable(label.c_str(), i == at)) {
            chosen = static_cast<int>(i);
            isSet = true;
        }
        if (i == at && ImGui::IsWindowAppearing())
            ImGui::SetScrollHereY();
    }
    ImGui::EndCombo();
    return isSet;
}

bool slide(const char* name, double& value, double low, double high, const char* format) {
    return ImGui::SliderScalar(beginRow(name).c_str(), ImGuiDataType_Double, &value, &low, &high, format,
                               ImGuiSliderFlags_AlwaysClamp);
}

bool slide(const char* name, int& value, int low, int high) {
    return ImGui::SliderInt(beginRow(name).c_str(), &value, low, high, "%d", ImGuiSliderFlags_AlwaysClamp);
}

bool number(const char* name, double& value) {
    return typed(beginRow(name), value,
                 [](const char* id, double& shown) { ImGui::InputDouble(id, &shown, 0.0, 0.0, "%.6g"); });
}

bool text(const char* name, std::string& value) {
    return typed(beginRow(name), value,
                 [](const char* id, std::string& shown) { ImGui::InputText(id, &shown); });
}

bool color(const char* name, std::uint32_t& value) {
    ImVec4 parts = ImGui::ColorConvertU32ToFloat4(value);
    if (!ImGui::ColorEdit3(beginRow(name).c_str(), &parts.x, ImGuiColorEditFlags_DisplayHex))
        return false;
    parts.w = 1.0f;
    value = ImGui::ColorConvertFloat4ToU32(parts);
    return true;
}

bool button(const char* label, int index, int count, const char* note) {
    const float between = ImGui::GetStyle().ItemSpacing.x;
    if (index > 0)
        ImGui::SameLine();
    const float width = ImGui::GetWindowContentRegionMax().x - ImGui::GetWindowContentRegionMin().x;
    const auto parts = static_cast<float>(count);
    const bool isPressed = ImGui::Button(label, {(width - (parts - 1.0f) * between) / parts, 0.0f});
    if (note != nullptr && ImGui::IsItemHovered())
        ImGui::SetTooltip("%s", note);
    return isPressed;
}

void fact(const char* name, const std::string& value) {
    ImGui::TextDisabled("%s", name);
    ImGui::SameLine(kNames_em * ImGui::GetFontSize());
    ImGui::TextWrapped("%s", value.c_str());
}

Disabled::Disabled(bool disabled) {
    ImGui::BeginDisabled(disabled);
}

Disabled::~Disabled() {
    ImGui::EndDisabled();
}

} // namespace nruview::widgets
