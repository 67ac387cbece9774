// The library keeps one environment: it is set here and its maps are built when they are first used.
#include "viewer/bodies/environment.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/app/messages.h"
#include "viewer/bodies/studio.h"
#include "viewer/error.h"

namespace nruview {

namespace {

NImageBasedLightHandler::ImageUpVector upVector(ImageUp up) {
    using Handler = NImageBasedLightHandler;
    switch (up) {
    case ImageUp::X:
        return Handler::ImageUpX;
    case ImageUp::MinusX:
        return Handler::ImageUpMinusX;
    case ImageUp::Y:
        return Handler::ImageUpY;
    case ImageUp::MinusY:
        return Handler::ImageUpMinusY;
    case ImageUp::Z:
        return Handler::ImageUpZ;
    case ImageUp::MinusZ:
        break;
    }
    return Handler::ImageUpMinusZ;
}

std::string newFile() {
    std::string path = (std::filesystem::temp_directory_path() / "nruview_XXXXXX").string();
    const int file = mkstemp(path.data());
    if (file == -1)
        throw ViewerError(path, "cannot be written");
    close(file);
    return path;
}

/// A line that counts up on a terminal; elsewhere a line for each step when verbose.
void showProgress(void* lastStep, const char* step, double fraction) {
    if (isatty(STDERR_FILENO) != 0) {
        const std::string text =
            std::string(step) + ", " + std::to_string(static_cast<int>(100.0 * fraction)) + " %";
        std::fprintf(stderr, "\rnruview: environment: %-40s%s", text.c_str(), fraction < 1.0 ? "" : "\n");
    } else if (std::string& last = *static_cast<std::string*>(lastStep); last != step) {
        tell(std::string("environment: ") + step);
        last = step;
    }
}

/// The library's own line tells the reason, after the file's name.
[[noreturn]] void refuse(const std::string& file, const std::string& error, const std::string& line) {
    const std::size_t colon = line.rfind(": ");
    throw ViewerError(file, colon == std::string::npos ? error : error + " (" + line.substr(colon + 2) + ")");
}

void setImage(const std::string& file, ImageUp up) {
    const HeldMessages messages;
    if (const NErrorPtr error = NImageBasedLightHandler::SetHDRImage(GuString(file).c_str(), upVector(up)))
        refuse(file, error->GetTextUtf8(), messages.last());
}

/// A file of this program's own, deleted with it; none without a name.
struct TemporaryFile {
    std::string path;
    ~TemporaryFile() {
        if (!path.empty())
            std::remove(path.c_str());
    }
};

/// The library has one environment; its maps stay for those that want the same.
struct InForce {
    int users = 0;
    std::string file; ///< as the settings name it; empty: none
    ImageUp up = ImageUp::Y;
    TemporaryFile studio; ///< the environment that is made up, once it is
    std::string lastStep; ///< of the maps' build, as told
    std::function<void()> build;
};

InForce& inForce() {
    static InForce state;
    return state;
}

const std::string& studioFile() {
    std::string& path = inForce().studio.path;
    if (path.empty()) {
        path = newFile();
        writeStudio(path);
    }
    return path;
}

void putInForce(const std::string& file, ImageUp up) {
    InForce& state = inForce();
    if (file.empty() || (file == state.file && up == state.up))
        return;
    setImage(file == BodySettings::kStudio ? studioFile() : file, up);
    state.file = file;
    state.up = up;
    if (state.build && IsFastRendererEnabled() != 0)
        state.build();
}

} // namespace

Environment::Environment(const BodySettings& settings) : m_settings(settings) {
    NImageBasedLightHandler::SetProgressFunction(showProgress, &inForce().lastStep);
    use();
    ++inForce().users;
}

Environment::~Environment() {
    if (--inForce().users > 0)
        return;
    EnableEnvironmentReflection(false);
    EnablePhysicallyBasedRendering(false);
    NImageBasedLightHandler::EnableHDRBackgroundRendering(false);
    NImageBasedLightHandler::SetProgressFunction(nullptr, nullptr);
    NImageBasedLightHandler::CleanUpBuffers();
    inForce().file.clear();
}

void Environment::use() const {
    putInForce(m_settings.environment, m_settings.environmentUp.value_or(ImageUp::Y));
    NImageBasedLightHandler::EnableHDRBackgroundRendering(m_settings.environmentBackground);
    EnablePhysicallyBasedRendering(m_settings.physical);
    EnableEnvironmentReflection(!m_settings.environment.empty());
}

void Environment::setBuilder(std::function<void()> build) {
    inForce().build = std::move(build);
}

/// The library turns the background by half a turn about z against the light; the view is turned back.
void Environment::drawBackground() const {
    _NglInfoStr turned = *NglGetNglInfo();
    for (int column : {0, 1})
        for (double& element : turned.modelView[column])
            element = -element;
    NImageBasedLightHandler::DrawHDRBackground(&turned);
}

} // namespace nruview
