// Reads every #include of the tree: a folder may use what lies below it, and of its neighbours only public
// headers.
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

// Floors of the house, from the ground up.
const std::map<std::string, int> kFloors = {
    {"NRenderUtl/host", 1}, {"NRenderUtl/gl", 2},       {"NRenderUtl/shaders", 3}, {"NRenderUtl/Texture", 4},
    {"NRenderUtl/mesh", 4}, {"NRenderUtl/lighting", 4}, {"NRenderUtl/markers", 4},
};
const std::string kGround = "NRenderUtl/ntypes.h";
const std::string kRoof = "NRenderUtl/NRenderUtl.h";

// First two parts of a path: the folder of the library, deeper folders counting to it.
std::string folderOf(const std::string& file) {
    const std::size_t first = file.find('/');
    return file.substr(0, file.find('/', first + 1));
}

bool isPublic(const std::string& header) {
    return std::string(" " PUBLIC_HEADERS " ").find(" " + header + " ") != std::string::npos;
}

bool mayInclude(const std::string& file, const std::string& header) {
    if (!header.starts_with("NRenderUtl/"))
        return !file.starts_with("NRenderUtl/") && !header.starts_with("tests/");
    if (!file.starts_with("NRenderUtl/") || file == kRoof)
        return isPublic(header);
    if (isPublic(file) && !isPublic(header))
        return false;
    if (header == kGround)
        return file != kGround;
    const auto from = kFloors.find(folderOf(file)), to = kFloors.find(folderOf(header));
    if (from == kFloors.end() || to == kFloors.end())
        return false;
    return from->first == to->first || from->second > to->second ||
           (from->second == to->second && isPublic(header));
}

// Project headers that a source file includes, in either spelling.
std::vector<std::string> includesOf(const fs::path& path) {
    static const std::regex kInclude(
        R"re(^\s*#\s*include\s*["<]((NRenderUtl|viewer|tests|examples|bench|\.)[^">]*)[">])re");
    std::ifstream stream(path);
    std::vector<std::string> headers;
    std::smatch match;
    for (std::string line; std::getline(stream, line);)
        if (std::regex_search(line, match, kInclude))
            headers.push_back(match[1]);
    return headers;
}

TEST(Includes, PointDownwards) {
    int read = 0;
    for (const char* top : {"NRenderUtl", "viewer", "examples"})
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(PROJECT_SOURCE_DIR) / top)) {
            if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp")
                continue;
            const std::string file = fs::relative(entry.path(), PROJECT_SOURCE_DIR).generic_string();
            for (const std::string& header : includesOf(entry.path())) {
                EXPECT_TRUE(mayInclude(file, header)) << file << " includes " << header;
                ++read;
            }
        }
    EXPECT_GT(read, 50) << "the tree was not found";
}

} // namespace
