// The back end for OpenGL 2 needs no more of a driver than the library does.
#include "viewer/window/gui.h"

#include <epoxy/gl.h>
#include <imgui.h>
// after imgui.h
#include <backends/imgui_impl_glfw.h>
#include <backends/imgui_impl_opengl2.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "viewer/labels/hosttext.h"

namespace nruview {

namespace {

constexpr double kLetters_px = 14.0;

/// Letters of Europe's languages, Greek for quantities, signs of mathematics, and shapes for buttons.
constexpr ImWchar kLetters[] = {0x0020, 0x024F, 0x0370, 0x052F, 0x2000, 0x209F, 0x2190,
                                0x21FF, 0x2200, 0x22FF, 0x25A0, 0x25FF, 0};

void setLooks(double scale) {
    ImGuiStyle style;
    ImGui::StyleColorsLight(&style);
    style.WindowRounding = 0.0f;
    style.FrameRounding = style.GrabRounding = style.PopupRounding = 3.0f;
    style.FrameBorderSize = 1.0f;
    style.WindowPadding = {8.0f, 8.0f};
    style.ItemSpacing = {6.0f, 5.0f};
    style.FramePadding = {6.0f, 3.0f};
    style.ScrollbarSize = 12.0f;
    const ImVec4 accent = {0.16f, 0.44f, 0.75f, 1.0f};
    const auto blend = [&](float alpha) { return ImVec4(accent.x, accent.y, accent.z, alpha); };
    ImVec4* colors = style.Colors;
    colors[ImGuiCol_WindowBg] = {0.945f, 0.949f, 0.957f, 1.0f};
    colors[ImGuiCol_FrameBg] = {1.0f, 1.0f, 1.0f, 1.0f};
    colors[ImGuiCol_Border] = {0.76f, 0.78f, 0.81f, 1.0f};
    colors[ImGuiCol_Header] = {0.86f, 0.88f, 0.91f, 1.0f};
    colors[ImGuiCol_HeaderHovered] = blend(0.25f);
    colors[ImGuiCol_HeaderActive] = blend(0.4f);
    colors[ImGuiCol_Button] = {0.995f, 0.995f, 0.995f, 1.0f};
    colors[ImGuiCol_ButtonHovered] = blend(0.22f);
    colors[ImGuiCol_ButtonActive] = blend(0.45f);
    colors[ImGuiCol_CheckMark] = colors[ImGuiCol_PlotHistogram] = colors[ImGuiCol_SliderGrab] = accent;
    colors[ImGuiCol_SliderGrabActive] = blend(0.8f);
    style.ScaleAllSizes(static_cast<float>(scale));
    ImGui::GetStyle() = style;
}

void setFont(double size_px) {
    ImFontAtlas& fonts = *ImGui::GetIO().Fonts;
    fonts.Clear();
    ImGui_ImplOpenGL2_DestroyFontsTexture();
    std::error_code ignored;
    const auto size = static_cast<float>(std::lround(size_px));
    if (const std::string file = fontFile(); std::filesystem::exists(file, ignored))
        fonts.AddFontFromFileTTF(file.c_str(), size, nullptr, kLetters);
    else
        fonts.AddFontDefault();
    ImGui_ImplOpenGL2_CreateFontsTexture();
}

/// What the back end takes for granted and what it changes, for the length of a block.
class GuiState {
public:
    GuiState() {
        glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        if (epoxy_gl_version() >= 20) {
            glGetIntegerv(GL_CURRENT_PROGRAM, &m_program);
            glUseProgram(0);
        }
        if (epoxy_gl_version() >= 15)
            glBindBuffer(GL_ARRAY_BUFFER, 0);
        glActiveTexture(GL_TEXTURE0);
        glClientActiveTexture(GL_TEXTURE0);
        for (const GLenum off : {GL_TEXTURE_1D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP, GL_FOG, GL_ALPHA_TEST,
                                 GL_COLOR_LOGIC_OP, GL_POLYGON_STIPPLE, GL_POLYGON_OFFSET_FILL})
            glDisable(off);
        for (GLenum plane = 0; plane < 6; ++plane)
            glDisable(GL_CLIP_PLANE0 + plane);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    }
    ~GuiState() {
        if (m_program != 0)
            glUseProgram(static_cast<GLuint>(m_program));
        glPopAttrib();
        glPopClientAttrib();
    }
    GuiState(const GuiState&) = delete;
    GuiState& operator=(const GuiState&) = delete;

private:
    GLint m_program = 0;
};

/// The context of a Gui in force for the length of a block.
class ContextInForce {
public:
    explicit ContextInForce(ImGuiContext* context) : m_before(ImGui::GetCurrentContext()) {
        ImGui::SetCurrentContext(context);
    }
    ~ContextInForce() { ImGui::SetCurrentContext(m_before); }
    ContextInForce(const ContextInForce&) = delete;
    ContextInForce& operator=(const ContextInForce&) = delete;

private:
    ImGuiContext* m_before;
};

} // namespace

/// The first context stays in force: events find it there.
Gui::Gui(GLFWwindow* window, bool takesEvents)
    : m_context(ImGui::CreateContext()), m_takesEvents(takesEvents) {
    const ContextInForce context(m_context);
    ImGui::GetIO().IniFilename = nullptr; // nothing is written into the user's folder
    if (takesEvents)
        ImGui_ImplGlfw_InitForOpenGL(window, false);
    ImGui_ImplOpenGL2_Init();
}

Gui::~Gui() {
    {
        const ContextInForce context(m_context);
        ImGui_ImplOpenGL2_Shutdown();
        if (m_takesEvents)
            ImGui_ImplGlfw_Shutdown();
    }
    ImGui::DestroyContext(m_context);
}

void Gui::setScale(double scale, double perUnit) {
    if (scale == m_scale && perUnit == m_perUnit)
        return;
    const ContextInForce context(m_context);
    m_scale = scale;
    m_perUnit = perUnit;
    setLooks(scale / perUnit);
    setFont(kLetters_px * scale);
    ImGui::GetIO().FontGlobalScale = static_cast<float>(1.0 / perUnit);
}

double Gui::em() const {
    return kLetters_px * m_scale / m_perUnit;
}

void Gui::beginFrame(double width, double height) {
    m_before = ImGui::GetCurrentContext();
    ImGui::SetCurrentContext(m_context);
    ImGui_ImplOpenGL2_NewFrame();
    if (m_takesEvents) {
        ImGui_ImplGlfw_NewFrame();
    } else {
        ImGui::GetIO().DisplaySize = {static_cast<float>(width), static_cast<float>(height)};
        ImGui::GetIO().DisplayFramebufferScale = {static_cast<float>(m_perUnit),
                                                  static_cast<float>(m_perUnit)};
    }
    ImGui::NewFrame();
}

void Gui::endFrame() {
    ImGui::Render();
    ImGui::SetCurrentContext(m_before);
}

bool Gui::holdsMouse() const {
    const ContextInForce context(m_context);
    return ImGui::IsAnyItemActive() ||
           ImGui::IsPopupOpen(nullptr, ImGuiPopupFlags_AnyPopupId | ImGuiPopupFlags_AnyPopupLevel);
}

bool Gui::takesText() const {
    const ContextInForce context(m_context);
    return ImGui::GetIO().WantTextInput;
}

void Gui::draw() {
    const ContextInForce context(m_context);
    if (ImGui::GetFrameCount() == 0)
        return;
    const GuiState state;
    ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData());
}

void layOutProgress(const Progress::State& state, double seconds) {
    const ImVec2 size = ImGui::GetIO().DisplaySize;
    const float em = ImGui::GetFontSize();
    ImGui::SetNextWindowPos({0.5f * size.x, 0.5f * size.y}, ImGuiCond_Always, {0.5f, 0.5f});
    ImGui::SetNextWindowSize({std::min(26.0f * em, size.x), 0.0f});
    ImGui::Begin("progress", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoInputs |
                     ImGuiWindowFlags_NoSavedSettings);
    ImGui::TextUnformatted(state.what.c_str());
    if (state.fraction) {
        ImGui::ProgressBar(static_cast<float>(*state.fraction), {-1.0f, 0.0f});
    } else { // how long it will take nobody knows: a piece that runs
        const auto run = static_cast<float>(0.5 - 0.5 * std::cos(2.0 * seconds));
        const ImVec2 from = ImGui::GetCursorScreenPos();
        const float width = ImGui::GetContentRegionAvail().x, piece = 0.2f * width;
        const float left = from.x + run * (width - piece), height = 0.4f * em;
        ImDrawList& list = *ImGui::GetWindowDrawList();
        list.AddRectFilled(from, {from.x + width, from.y + height}, ImGui::GetColorU32(ImGuiCol_FrameBg),
                           3.0f);
        list.AddRectFilled({left, from.y}, {left + piece, from.y + height},
                           ImGui::GetColorU32(ImGuiCol_PlotHistogram), 3.0f);
        ImGui::Dummy({width, height});
    }
    ImGui::TextDisabled("%s%s%.0f s", state.detail.c_str(), state.detail.empty() ? "" : ", ", seconds);
    ImGui::End();
}

} // namespace nruview
