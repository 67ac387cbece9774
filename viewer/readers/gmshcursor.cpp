// Walking a Gmsh file.
#include "viewer/readers/gmshcursor.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nruview::readers {

namespace {

/// A number from its bytes.
template <class In>
In decode(std::string_view bytes, bool bigEndian) {
    std::array<char, sizeof(In)> raw;
    std::memcpy(raw.data(), bytes.data(), sizeof(In));
    if (bigEndian != (std::endian::native == std::endian::big))
        std::reverse(raw.begin(), raw.end());
    return std::bit_cast<In>(raw);
}

template <class Number>
Number takeOne(std::string_view& text) {
    Number number{};
    if (!takeNumber(text, number))
        throw Refusal("ends where a number belongs");
    return number;
}

} // namespace

std::string_view GmshCursor::line() {
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    std::string_view result = m_rest.substr(0, end);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    if (result.ends_with('\r'))
        result.remove_suffix(1);
    return result;
}

template <class Number>
Number GmshCursor::numberLine() {
    const auto number = takeOne<Number>(m_rest);
    line();
    return number;
}

template std::int64_t GmshCursor::numberLine();
template double GmshCursor::numberLine();

std::string GmshCursor::quotedLine() {
    std::string_view text = line();
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    text.remove_suffix(text.size() - std::min(text.find_last_not_of(" \t") + 1, text.size()));
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return oneLine(std::string(text));
}

void GmshCursor::skipPast(std::string_view text) {
    const std::size_t found = m_rest.find(text);
    if (found == std::string_view::npos)
        throw Refusal("has no " + std::string(text));
    m_rest.remove_prefix(found + text.size());
}

std::string_view GmshCursor::bytes(std::size_t count) {
    if (count > m_rest.size())
        throw Refusal("ends where a number belongs");
    const std::string_view result = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return result;
}

std::int64_t GmshCursor::integer() {
    if (!m_encoding.binary)
        return takeOne<std::int64_t>(m_rest);
    return decode<std::int32_t>(bytes(4), m_encoding.bigEndian);
}

std::int64_t GmshCursor::size() {
    if (!m_encoding.binary)
        return takeOne<std::int64_t>(m_rest);
    if (m_encoding.sizeBytes == 4)
        return decode<std::uint32_t>(bytes(4), m_encoding.bigEndian);
    return decode<std::int64_t>(bytes(8), m_encoding.bigEndian);
}

double GmshCursor::real() {
    if (!m_encoding.binary)
        return takeOne<double>(m_rest);
    return decode<double>(bytes(8), m_encoding.bigEndian);
}

void GmshCursor::checkCount(std::int64_t count, std::string_view what, std::size_t numbersEach) const {
    // In text a number takes a character and all but the last a separator.
    const std::size_t numbers = (m_rest.size() + 1) / (m_encoding.binary ? 4 : 2);
    if (count < 0 || static_cast<std::size_t>(count) > numbers / numbersEach)
        throw Refusal(std::string(what) + " " + std::to_string(count) +
                      (count < 0 ? " is negative" : " is more than the file could hold"));
}

std::size_t GmshCursor::count(std::string_view what, std::size_t numbersEach) {
    const std::int64_t count = size();
    checkCount(count, what, numbersEach);
    return static_cast<std::size_t>(count);
}

void GmshCursor::skipSizes(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        size();
}

void GmshCursor::skipIntegers(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        integer();
}

void GmshCursor::skipReals(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        real();
}

} // namespace nruview::readers
