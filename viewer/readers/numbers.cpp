// Number decoding. Text is read with from_chars: exact, fast, and the same in every locale.
#include "viewer/readers/numbers.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <limits>

namespace nruview::readers {

namespace {

constexpr std::string_view kSpace = " \t\r\n\v\f";

bool isSpace(char c) {
    return kSpace.find(c) != std::string_view::npos;
}

template <class In, class Out>
std::vector<Out> decodeAs(std::string_view bytes, bool bigEndian) {
    if constexpr (std::is_floating_point_v<In> && std::is_integral_v<Out>) {
        throw Refusal("has real numbers where whole ones belong");
    } else {
        std::vector<Out> numbers(bytes.size() / sizeof(In));
        const bool swap = bigEndian != (std::endian::native == std::endian::big);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            std::array<char, sizeof(In)> raw;
            std::memcpy(raw.data(), bytes.data() + i * sizeof(In), sizeof(In));
            if (swap)
                std::reverse(raw.begin(), raw.end());
            numbers[i] = static_cast<Out>(std::bit_cast<In>(raw));
        }
        return numbers;
    }
}

/// from_chars leaves the number as it was when it is too large or too small for a double.
double outOfRange(std::string_view word) {
    if (word.find("e-") != std::string_view::npos || word.find("E-") != std::string_view::npos)
        return 0.0;
    const double infinity = std::numeric_limits<double>::infinity();
    return word.front() == '-' ? -infinity : infinity;
}

[[noreturn]] void refuseWord(std::string_view word) {
    throw Refusal("'" + std::string(word.substr(0, 40)) + "' is not a number");
}

} // namespace

std::size_t numberSize(NumberType type) {
    constexpr std::array<std::size_t, 10> kSizes = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    return kSizes[static_cast<std::size_t>(type)];
}

template <class Out>
std::vector<Out> decodeNumbers(std::string_view bytes, NumberType type, bool bigEndian) {
    switch (type) {
    case NumberType::Int8:
        return decodeAs<std::int8_t, Out>(bytes, bigEndian);
    case NumberType::UInt8:
        return decodeAs<std::uint8_t, Out>(bytes, bigEndian);
    case NumberType::Int16:
        return decodeAs<std::int16_t, Out>(bytes, bigEndian);
    case NumberType::UInt16:
        return decodeAs<std::uint16_t, Out>(bytes, bigEndian);
    case NumberType::Int32:
        return decodeAs<std::int32_t, Out>(bytes, bigEndian);
    case NumberType::UInt32:
        return decodeAs<std::uint32_t, Out>(bytes, bigEndian);
    case NumberType::Int64:
        return decodeAs<std::int64_t, Out>(bytes, bigEndian);
    case NumberType::UInt64:
        return decodeAs<std::uint64_t, Out>(bytes, bigEndian);
    case NumberType::Float32:
        return decodeAs<float, Out>(bytes, bigEndian);
    case NumberType::Float64:
        break;
    }
    return decodeAs<double, Out>(bytes, bigEndian);
}

std::string_view takeWord(std::string_view& text) {
    const std::size_t start = std::min(text.find_first_not_of(kSpace), text.size());
    std::size_t end = start;
    while (end < text.size() && !isSpace(text[end]))
        ++end;
    const std::string_view word = text.substr(start, end - start);
    text.remove_prefix(end);
    return word;
}

template <class Out>
bool takeNumber(std::string_view& text, Out& number) {
    const std::string_view word = takeWord(text);
    if (word.empty())
        return false;
    const char* first = word.data() + (word.front() == '+' ? 1 : 0);
    const char* last = word.data() + word.size();
    const auto [end, error] = std::from_chars(first, last, number);
    if (end != last || error == std::errc::invalid_argument)
        refuseWord(word);
    if (error == std::errc::result_out_of_range) {
        if constexpr (std::is_integral_v<Out>)
            refuseWord(word);
        else
            number = outOfRange(word);
    }
    return true;
}

template <class Out>
std::vector<Out> takeNumbers(std::string_view& text, std::size_t count) {
    // Every number takes a character and all but the last a separator.
    if (count > (text.size() + 1) / 2)
        throw Refusal("ends before " + std::to_string(count) + " numbers");
    std::vector<Out> numbers(count);
    for (std::size_t i = 0; i < count; ++i)
        if (!takeNumber(text, numbers[i]))
            throw Refusal("ends after " + std::to_string(i) + " of " + std::to_string(count) + " numbers");
    return numbers;
}

std::size_t parseCount(std::string_view word, std::string_view what, std::size_t limit) {
    std::size_t count = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
    if (word.empty() || error != std::errc() || end != word.data() + word.size())
        throw Refusal("'" + std::string(word.substr(0, 40)) + "' is not a " + std::string(what));
    if (count > limit)
        throw Refusal(std::string(what) + " " + std::to_string(count) + " is more than the file could hold");
    return count;
}

template std::vector<double> decodeNumbers(std::string_view, NumberType, bool);
template std::vector<std::int64_t> decodeNumbers(std::string_view, NumberType, bool);
template bool takeNumber(std::string_view&, double&);
template bool takeNumber(std::string_view&, std::int64_t&);
template std::vector<double> takeNumbers(std::string_view&, std::size_t);
template std::vector<std::int64_t> takeNumbers(std::string_view&, std::size_t);

} // namespace nruview::readers
