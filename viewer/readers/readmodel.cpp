// readModel(): loads a file, tells its format by its first bytes and gives every refusal the file's name.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>

#include "viewer/error.h"
#include "viewer/readers/readers.h"

namespace nruview {

namespace {

constexpr std::size_t kLongestText = 300;

Model readContent(std::string_view content, const std::string& path) {
    if (content.starts_with("# vtk DataFile Version"))
        return readers::readLegacyVtk(content);
    if (readers::isFrd(content))
        return readers::readFrd(content);
    if (content.starts_with("\xEF\xBB\xBF"))
        content.remove_prefix(3);
    const std::size_t first = content.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos && content[first] == '<')
        return readers::readVtu(content);
    if (first != std::string_view::npos && readers::isGmsh(content.substr(first)))
        return readers::readGmsh(content);
    if (readers::isInp(content, path))
        return readers::readInp(content, path);
    if (std::optional<Model> surface = readers::readSurface(content, path))
        return std::move(*surface);
    throw readers::Refusal(
        "is none of .vtu (VTK XML), legacy .vtk, .frd, .inp, .msh (Gmsh), .stl, .obj, .ply, .glb and "
        ".gltf");
}

} // namespace

std::string readers::oneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 127; }, '?');
    return text.size() <= kLongestText ? text : text.substr(0, kLongestText) + "...";
}

std::string readers::loadFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        throw Refusal("no such file");
    if (!std::filesystem::is_regular_file(path, error))
        throw Refusal("is not a regular file");
    std::ifstream file(path, std::ios::binary);
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!file || error)
        throw Refusal("cannot be opened");
    std::string content(size, '\0');
    file.read(content.data(), static_cast<std::streamsize>(size));
    if (static_cast<std::uintmax_t>(file.gcount()) != size)
        throw Refusal("cannot be read");
    if (content.empty())
        throw Refusal("is empty");
    return content;
}

Model readModel(const std::string& path) {
    try {
        Model model = readContent(readers::loadFile(path), path);
        checkModel(model, path);
        return model;
    } catch (const readers::Refusal& refusal) {
        throw ViewerError(path, readers::oneLine(refusal.what()));
    } catch (const std::bad_alloc&) {
        throw ViewerError(path, "is too large for this machine's memory");
    }
}

} // namespace nruview
