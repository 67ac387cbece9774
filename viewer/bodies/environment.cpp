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

} // namespace

Environment::TemporaryFile::~TemporaryFile() {
    if (!path.empty())
        std::remove(path.c_str());
}

Environment::Environment(const BodySettings& settings) {
    const bool isMadeUp = settings.environment == BodySettings::kStudio;
    if (isMadeUp) {
        m_studio.path = newFile();
        writeStudio(m_studio.path);
    }
    if (!settings.environment.empty())
        setImage(isMadeUp ? m_studio.path : settings.environment,
                 settings.environmentUp.value_or(ImageUp::Y));
    NImageBasedLightHandler::SetProgressFunction(showProgress, &m_lastStep);
    NImageBasedLightHandler::EnableHDRBackgroundRendering(settings.environmentBackground);
    EnablePhysicallyBasedRendering(settings.physical);
    EnableEnvironmentReflection(!settings.environment.empty());
}

Environment::~Environment() {
    EnableEnvironmentReflection(false);
    EnablePhysicallyBasedRendering(false);
    NImageBasedLightHandler::EnableHDRBackgroundRendering(false);
    NImageBasedLightHandler::SetProgressFunction(nullptr, nullptr);
    NImageBasedLightHandler::CleanUpBuffers();
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
