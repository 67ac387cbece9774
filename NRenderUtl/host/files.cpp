// File names and files: normalisation, existence and modification date.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/paths.h"

namespace fs = std::filesystem;

fs::path hostPath(const GuString& name) {
    if (name.Wide().find(L'\0') != std::wstring::npos)
        return {};
    const std::string utf8 = name.Utf8();
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

GuStringFileName GuStringFileName::Normalized() const noexcept {
    std::wstring unified = Wide();
    std::replace(unified.begin(), unified.end(), L'\\', L'/');
    const std::u8string normal = hostPath(GuString(unified)).lexically_normal().u8string();
    return GuStringFileName(std::string_view(reinterpret_cast<const char*>(normal.data()), normal.size()));
}

bool GuStringFileName::Exists() const noexcept {
    std::error_code error;
    const fs::file_status status = fs::status(hostPath(*this), error);
    return fs::exists(status) && !fs::is_directory(status);
}

std::optional<std::int64_t> hostFileDate(const GuStringFileName& path) {
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(hostPath(path), error);
    if (error)
        return std::nullopt;
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}
