// From a path to a file's content, with the reason where there is none.
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "viewer/readers/readers.h"

namespace nruview::readers {

namespace {

std::uintmax_t machineMemory() {
    return static_cast<std::uintmax_t>(sysconf(_SC_PHYS_PAGES)) *
           static_cast<std::uintmax_t>(sysconf(_SC_PAGESIZE));
}

std::string gigabytes(std::uintmax_t bytes) {
    return std::to_string((bytes + (1u << 30) - 1) >> 30) + " GB";
}

} // namespace

void checkFile(const std::filesystem::path& path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw Refusal("no such file");
    if (error)
        throw Refusal("cannot be opened: " + error.message());
    if (std::filesystem::is_directory(status))
        throw Refusal("is a folder");
    if (!std::filesystem::is_regular_file(status))
        throw Refusal("is not a regular file");
    errno = 0;
    if (!std::ifstream(path))
        throw Refusal(std::string("cannot be opened: ") + std::strerror(errno));
    if (std::filesystem::file_size(path) == 0)
        throw Refusal("is empty");
}

/// A model takes as much again as its file, at least.
void checkMemory(std::uintmax_t size) {
    const std::uintmax_t memory = machineMemory();
    if (size > memory / 2)
        throw Refusal("has " + gigabytes(size) + ", too many for this machine's memory of " +
                      gigabytes(memory));
}

std::string loadFile(const std::filesystem::path& path) {
    checkFile(path);
    const std::uintmax_t size = std::filesystem::file_size(path);
    checkMemory(size);
    std::ifstream file(path, std::ios::binary);
    std::string content(size, '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    if (static_cast<std::size_t>(file.gcount()) != content.size())
        throw Refusal("cannot be read");
    return content;
}

void refusePacked(std::string_view content) {
    using namespace std::string_view_literals;
    constexpr std::array kPackers = {std::pair("\x1F\x8B"sv, "gzip"), std::pair("BZh"sv, "bzip2"),
                                     std::pair("\xFD\x37zXZ"sv, "xz"), std::pair("PK\x03\x04"sv, "zip"),
                                     std::pair("\x28\xB5\x2F\xFD"sv, "zstd")};
    for (const auto& [mark, name] : kPackers)
        if (content.starts_with(mark))
            throw Refusal(std::string("is compressed with ") + name + "; unpack it first");
}

} // namespace nruview::readers
