// Words, lines and arrays of a legacy VTK file, text or big-endian binary.
#pragma once

#include "viewer/readers/numbers.h"

namespace nruview::readers {

class LegacyCursor {
public:
    explicit LegacyCursor(std::string_view content) : m_content(content), m_rest(content) {}

    void setBinary(bool binary) { m_binary = binary; }
    bool binary() const { return m_binary; }
    std::size_t size() const { return m_content.size(); }
    std::size_t position() const { return m_content.size() - m_rest.size(); }

    /// The rest of the line, without its end; moves to the next line.
    std::string_view line();
    /// The next word; empty at the end of the file.
    std::string_view word();
    /// The next word of this line; empty at its end, which is not passed.
    std::string_view wordOnLine();
    /// The next word in lower case.
    std::string keyword();
    /// Passes the rest of the line and then the word, if it is what follows (in any case); otherwise moves
    /// nowhere.
    bool nextLineStartsWith(std::string_view lowerCaseWord);
    /// The next word as a count of things that each take a bit of the file or more.
    std::size_t count(std::string_view what);
    /// Passes count bytes; refuses when there are fewer.
    std::string_view bytes(std::size_t count);

    /// The array that starts after this line. Refuses one that is longer than the file.
    template <class Out>
    std::vector<Out> numbers(NumberType type, std::size_t count) {
        line();
        if (!m_binary)
            return takeNumbers<Out>(m_rest, count);
        if (count > m_rest.size())
            throw Refusal("ends before " + std::to_string(count) + " numbers");
        return decodeNumbers<Out>(bytes(count * numberSize(type)), type, true);
    }

private:
    std::string_view m_content;
    std::string_view m_rest;
    bool m_binary = false;
};

/// A name with %20 and the like decoded.
std::string decodeName(std::string_view name);

} // namespace nruview::readers
