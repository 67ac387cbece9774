// readModel(): loads a file, tells its format by its first bytes and gives every refusal the file's name.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>

#include "viewer/error.h"
#include "viewer/readers/readers.h"

namespace nruview {

namespace {

constexpr std::size_t kLongestReason = 300;

std::string loadFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        throw readers::Refusal("no such file");
    if (!std::filesystem::is_regular_file(path, error))
        throw readers::Refusal("is not a regular file");
    std::ifstream file(path, std::ios::binary);
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!file || error)
        throw readers::Refusal("cannot be opened");
    std::string content(size, '\0');
    file.read(content.data(), static_cast<std::streamsize>(size));
    if (static_cast<std::uintmax_t>(file.gcount()) != size)
        throw readers::Refusal("cannot be read");
    if (content.empty())
        throw readers::Refusal("is empty");
    return content;
}

Model readContent(std::string_view content) {
    if (content.starts_with("# vtk DataFile Version"))
        return readers::readLegacyVtk(content);
    if (content.starts_with("\xEF\xBB\xBF"))
        content.remove_prefix(3);
    const std::size_t first = content.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos && content[first] == '<')
        return readers::readVtu(content);
    throw readers::Refusal("is neither a .vtu (VTK XML) nor a legacy .vtk file");
}

/// Names from a file can hold anything: a reason stays one line of bounded length.
std::string oneLine(std::string reason) {
    std::replace_if(
        reason.begin(), reason.end(), [](unsigned char c) { return c < ' ' || c == 127; }, '?');
    return reason.size() <= kLongestReason ? reason : reason.substr(0, kLongestReason) + "...";
}

} // namespace

Model readModel(const std::string& path) {
    try {
        Model model = readContent(loadFile(path));
        checkModel(model, path);
        return model;
    } catch (const readers::Refusal& refusal) {
        throw ViewerError(path, oneLine(refusal.what()));
    } catch (const std::bad_alloc&) {
        throw ViewerError(path, "is too large for this machine's memory");
    }
}

} // namespace nruview
