// Words of a text, one by one.
#pragma once

#include <algorithm>
#include <cctype>
#include <string_view>

namespace nruview::readers {

constexpr std::string_view kBlank = " \t\r\n";

/// The next word, taken off; empty at the end.
inline std::string_view takeWord(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlank), rest.size()));
    const std::string_view word = rest.substr(0, rest.find_first_of(kBlank));
    rest.remove_prefix(word.size());
    return word;
}

/// In any case.
inline bool isWord(std::string_view word, std::string_view lowerCase) {
    return std::equal(word.begin(), word.end(), lowerCase.begin(), lowerCase.end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
}

} // namespace nruview::readers
