// Text of files and options.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace nruview {

inline std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return result;
}

} // namespace nruview
