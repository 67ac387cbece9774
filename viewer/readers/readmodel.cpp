// readModel(): tells a file's format by its first bytes and gives every refusal the file's name.
#include <algorithm>
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
        return readers::isCollection(content) ? readers::readCollection(content, path)
                                              : readers::readVtu(content);
    if (first != std::string_view::npos && readers::isGmsh(content.substr(first)))
        return readers::readGmsh(content);
    if (readers::isInp(content, path))
        return readers::readInp(content, path);
    if (std::optional<Model> surface = readers::readSurface(content, path))
        return std::move(*surface);
    readers::refusePacked(content);
    throw readers::Refusal(
        "is none of .vtu and .pvd (VTK XML), legacy .vtk, Exodus II, .frd, .inp, .msh (Gmsh), .stl, .obj, "
        ".ply, .glb and .gltf");
}

} // namespace

std::string readers::oneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 127; }, '?');
    return text.size() <= kLongestText ? text : text.substr(0, kLongestText) + "...";
}

Model readModel(const std::string& path) {
    try {
        readers::checkFile(path);
        // netCDF takes what it needs from the file itself.
        Model model =
            readers::isExodus(path) ? readers::readExodus(path) : readContent(readers::loadFile(path), path);
        checkModel(model, path);
        return model;
    } catch (const readers::Refusal& refusal) {
        throw ViewerError(path, readers::oneLine(refusal.what()));
    } catch (const std::bad_alloc&) {
        throw ViewerError(path, "is too large for this machine's memory");
    }
}

} // namespace nruview
