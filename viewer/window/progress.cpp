// The window's thread only shows; it never waits for the work.
#include "viewer/window/progress.h"

#include <epoxy/gl.h>

// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <memory>

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

namespace {

struct DestroyWindow {
    void operator()(GLFWwindow* window) const { glfwDestroyWindow(window); }
};

/// Never seen, for its context: of the same objects as another window's.
std::unique_ptr<GLFWwindow, DestroyWindow> sharingWindow(GLFWwindow* window) {
    glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
    std::unique_ptr<GLFWwindow, DestroyWindow> hidden(glfwCreateWindow(1, 1, "", nullptr, window));
    glfwWindowHint(GLFW_VISIBLE, GLFW_TRUE);
    return hidden;
}

void tellProgress(void* progress, const char* step, double fraction) {
    static_cast<Progress*>(progress)->tell(step, fraction);
}

} // namespace

void Progress::begin(const std::string& what) {
    const std::lock_guard lock(m_mutex);
    m_state = {what, "", {}};
}

void Progress::tell(const std::string& detail, double fraction) {
    const std::lock_guard lock(m_mutex);
    m_state.detail = detail;
    m_state.fraction = fraction;
}

Progress::State Progress::state() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

void workAside(const std::function<void()>& work, const std::function<void()>& show) {
    std::future<void> done = std::async(std::launch::async, work);
    while (done.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        show();
    done.get();
}

std::string readingText(const Options& options) {
    if (!options.sample.empty())
        return "Making the sample " + options.sample;
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(options.file, unknown);
    std::string text = "Reading " + std::filesystem::path(options.file).filename().string();
    if (!unknown && size >= 1000000)
        text += " (" + std::to_string(size / 1000000) + " MB)";
    return text;
}

void buildEnvironment(GLFWwindow* window, Progress& progress, const std::function<void()>& show) {
    const auto hidden = sharingWindow(window);
    if (!hidden)
        return NImageBasedLightHandler::Initialize(); // without anything to see meanwhile
    progress.begin("Building the environment's light");
    NImageBasedLightHandler::SetProgressFunction(tellProgress, &progress);
    const auto build = [&] {
        glfwMakeContextCurrent(hidden.get());
        NImageBasedLightHandler::Initialize();
        glFinish(); // the window's context may use the maps from here on
        glfwMakeContextCurrent(nullptr);
    };
    workAside(build, show);
}

} // namespace nruview
