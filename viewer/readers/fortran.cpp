// Numbers are tried as they are; only those that are not plain go through a buffer.
#include "viewer/readers/fortran.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace nruview::readers {

namespace {

constexpr std::size_t kLongest = 64; ///< characters of a number

std::optional<double> plainReal(std::string_view text) {
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument)
        return {};
    if (error == std::errc())
        return number;
    const bool isTiny =
        text.find("e-") != std::string_view::npos || text.find("E-") != std::string_view::npos;
    const double infinity = std::numeric_limits<double>::infinity();
    return isTiny ? 0.0 : text.front() == '-' ? -infinity : infinity;
}

/// With an e before the exponent and without a plus before its digits.
std::optional<double> rewrittenReal(std::string_view text) {
    if (text.size() > kLongest)
        return {};
    std::array<char, 2 * kLongest> buffer;
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isSign = text[i] == '+' || text[i] == '-';
        const bool isLetter = std::string_view("eEdD").find(text[i]) != std::string_view::npos;
        if (isSign && length > 0 && buffer[length - 1] != 'e')
            buffer[length++] = 'e';
        if (text[i] != '+')
            buffer[length++] = isLetter ? 'e' : text[i];
    }
    return plainReal({buffer.data(), length});
}

} // namespace

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view column(std::string_view line, std::size_t first, std::size_t count) {
    return first < line.size() ? trimmed(line.substr(first, count)) : std::string_view();
}

std::optional<double> fortranReal(std::string_view text) {
    text = trimmed(text);
    if (text.empty())
        return {};
    if (const auto number = plainReal(text))
        return number;
    if (text.find_first_not_of('*') == std::string_view::npos)
        return std::numeric_limits<double>::quiet_NaN();
    return rewrittenReal(text);
}

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return {};
    return number;
}

} // namespace nruview::readers
