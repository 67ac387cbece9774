// Looked for once, from where the program lies.
#include "viewer/app/datafolder.h"

#include <filesystem>

namespace nruview {

namespace {

namespace fs = std::filesystem;

bool hasData(const fs::path& folder) {
    std::error_code error;
    return fs::exists(folder / "Resources/NuStudio/Rendering/RenderMaterialApperance.xml", error);
}

std::string findFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    for (const fs::path& folder :
         {program.parent_path().parent_path() / "share/NRenderUtl", fs::path(NRUVIEW_SOURCE_DATA)})
        if (hasData(folder))
            return folder.string();
    return {};
}

} // namespace

const std::string& dataFolder() {
    static const std::string folder = findFolder();
    return folder;
}

} // namespace nruview
