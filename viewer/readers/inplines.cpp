// Included files are limited in depth, number and size: a file may include itself, or another many times.
#include "viewer/readers/inplines.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "viewer/readers/fortran.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kDeepest = 10, kMostIncludes = 1000;
constexpr std::size_t kMostBytes = std::size_t{1} << 32;

std::string withoutBlanks(std::string_view text) {
    std::string result(text);
    std::erase_if(result, [](unsigned char c) { return std::isspace(c); });
    return upperCase(result);
}

std::string_view unquoted(std::string_view text) {
    text = trimmed(text);
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

} // namespace

bool InpKeyword::has(std::string_view parameter) const {
    return std::any_of(parameters.begin(), parameters.end(),
                       [&](const auto& candidate) { return candidate[0] == parameter; });
}

std::string InpKeyword::value(std::string_view parameter) const {
    for (const auto& [name, value] : parameters)
        if (name == parameter)
            return value;
    return {};
}

InpLines::InpLines(std::string_view content, std::filesystem::path folder) : m_folder(std::move(folder)) {
    m_sources.push_back({{}, content});
}

bool InpLines::next(std::string_view& line) {
    if (!m_again.empty()) {
        line = std::exchange(m_again, {});
        return true;
    }
    while (!m_sources.empty()) {
        std::string_view& rest = m_sources.back().rest;
        if (rest.empty()) {
            m_sources.pop_back();
            continue;
        }
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1);
        line = trimmed(rest.substr(0, rest[end] == '\n' ? end : end + 1));
        rest.remove_prefix(end + 1);
        if (!line.empty() && !line.starts_with("**"))
            return true;
    }
    return false;
}

InpKeyword InpLines::keyword(std::string_view line) {
    std::string text(line);
    while (text.ends_with(',') && next(line)) {
        if (!std::isalpha(static_cast<unsigned char>(line.front()))) {
            m_again = line;
            break;
        }
        text += line;
    }
    std::vector<std::string_view> fields;
    splitFields(text, fields);
    InpKeyword keyword{withoutBlanks(fields.front().substr(1)), {}};
    for (std::size_t i = 1; i < fields.size(); ++i) {
        const std::size_t equals = std::min(fields[i].find('='), fields[i].size());
        const std::string_view value = fields[i].substr(std::min(equals + 1, fields[i].size()));
        keyword.parameters.push_back(
            {withoutBlanks(fields[i].substr(0, equals)), std::string(unquoted(value))});
    }
    return keyword;
}

void InpLines::include(const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(name).lexically_normal();
    if (name.empty() || path.is_absolute() || *path.begin() == "..")
        throw Refusal("includes '" + name + "', which is not in its own folder");
    std::error_code error;
    const auto folder = std::filesystem::weakly_canonical(m_folder, error);
    const auto target = std::filesystem::weakly_canonical(m_folder / path, error);
    if (std::mismatch(folder.begin(), folder.end(), target.begin(), target.end()).first != folder.end())
        throw Refusal("includes '" + name + "', which is not in its own folder");
    if (m_sources.size() >= kDeepest || ++m_includes > kMostIncludes)
        throw Refusal("includes too many files, the last of them '" + name + "'");
    try {
        m_sources.push_back({loadFile(target), {}});
    } catch (const Refusal& refusal) {
        throw Refusal("cannot include '" + name + "': " + refusal.what());
    }
    m_sources.back().rest = m_sources.back().content;
    m_bytes += m_sources.back().content.size();
    if (m_bytes > kMostBytes)
        throw Refusal("includes more than can be read");
}

bool isInpKeyword(std::string_view line) {
    return line.size() > 1 && line[0] == '*' && std::isalpha(static_cast<unsigned char>(line[1]));
}

std::string upperCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return std::toupper(c); });
    return result;
}

void splitFields(std::string_view line, std::vector<std::string_view>& fields) {
    fields.clear();
    for (std::size_t start = 0; start < line.size();) {
        const std::size_t end = std::min(line.find(',', start), line.size());
        fields.push_back(unquoted(line.substr(start, end - start)));
        start = end + 1;
    }
}

} // namespace nruview::readers
