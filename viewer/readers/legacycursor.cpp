// Walking a legacy VTK file.
#include "viewer/readers/legacycursor.h"

#include <algorithm>
#include <charconv>

#include "viewer/labels/text.h"

namespace nruview::readers {

std::string_view LegacyCursor::line() {
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    std::string_view result = m_rest.substr(0, end);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    if (result.ends_with('\r'))
        result.remove_suffix(1);
    return result;
}

std::string_view LegacyCursor::word() {
    return takeWord(m_rest);
}

std::string_view LegacyCursor::wordOnLine() {
    std::string_view rest = m_rest.substr(0, m_rest.find('\n'));
    const std::string_view result = takeWord(rest);
    if (!result.empty())
        m_rest.remove_prefix(static_cast<std::size_t>(rest.data() - m_rest.data()));
    return result;
}

std::string LegacyCursor::keyword() {
    return lowerCase(word().substr(0, 64));
}

bool LegacyCursor::nextLineStartsWith(std::string_view lowerCaseWord) {
    const std::string_view start = m_rest;
    line();
    if (keyword() == lowerCaseWord)
        return true;
    m_rest = start;
    return false;
}

std::size_t LegacyCursor::count(std::string_view what) {
    return parseCount(word(), what, 8 * m_content.size());
}

std::string_view LegacyCursor::bytes(std::size_t count) {
    if (count > m_rest.size())
        throw Refusal("ends after " + std::to_string(m_rest.size()) + " of " + std::to_string(count) +
                      " bytes");
    const std::string_view result = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return result;
}

std::string decodeName(std::string_view name) {
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        unsigned code = 0;
        const char* digits = name.data() + i + 1;
        if (name[i] == '%' && i + 2 < name.size() &&
            std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2) {
            result.push_back(static_cast<char>(code));
            i += 2;
        } else {
            result.push_back(name[i]);
        }
    }
    return result;
}

} // namespace nruview::readers
