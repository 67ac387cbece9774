// Files for tests: a folder that goes with the block, and bytes as the decoders take them.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

#include "NRenderUtl/host/nhost.h"

namespace nrutest {

inline std::span<const std::uint8_t> bytesOf(std::string_view file) {
    return {reinterpret_cast<const std::uint8_t*>(file.data()), file.size()};
}

struct TestFolder {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("nrutest-\u20AC-" + std::to_string(::getpid()));
    TestFolder() { std::filesystem::create_directories(path); }
    ~TestFolder() { std::filesystem::remove_all(path); }
    GuStringFileName name(const char* file) const { return GuStringFileName((path / file).native()); }
    GuStringFileName write(const char* file, std::string_view bytes) const {
        std::ofstream(path / file, std::ios::binary).write(bytes.data(), std::ssize(bytes));
        return name(file);
    }
};

} // namespace nrutest
