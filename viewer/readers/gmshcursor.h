// Words, lines and numbers of a Gmsh file, text or binary.
#pragma once

#include "viewer/readers/numbers.h"

namespace nruview::readers {

/// How the numbers of a file are stored; text by default.
struct GmshEncoding {
    bool binary = false;
    bool bigEndian = false;
    std::size_t sizeBytes = 8; ///< of counts and, from version 4.1, of the numbers of nodes and elements
};

class GmshCursor {
public:
    explicit GmshCursor(std::string_view content) : m_content(content), m_rest(content) {}

    const GmshEncoding& encoding() const { return m_encoding; }
    void setEncoding(const GmshEncoding& encoding) { m_encoding = encoding; }
    std::size_t fileSize() const { return m_content.size(); }
    std::size_t position() const { return m_content.size() - m_rest.size(); }

    // --- text, in binary files too: lines, words, counts
    /// The rest of the line, without its end; moves to the next line.
    std::string_view line();
    /// The next word; empty at the end of the file.
    std::string_view word() { return takeWord(m_rest); }
    /// The next line's number; the rest of the line is passed.
    template <class Number>
    Number numberLine();
    /// The next line's text, without the quotes about it.
    std::string quotedLine();
    /// Moves behind the text where it is next found; refuses where it is not.
    void skipPast(std::string_view text);

    // --- numbers in the file's encoding
    std::int64_t integer(); ///< of four bytes
    std::int64_t size();    ///< of sizeBytes
    double real();
    /// A size that counts things of at least so many numbers each; refuses more than the rest could hold.
    std::size_t count(std::string_view what, std::size_t numbersEach);
    void checkCount(std::int64_t count, std::string_view what, std::size_t numbersEach) const;
    void skipSizes(std::size_t count);
    void skipIntegers(std::size_t count);
    void skipReals(std::size_t count);

private:
    std::string_view bytes(std::size_t count);
    std::int64_t stored(NumberType type);

    std::string_view m_content;
    std::string_view m_rest;
    GmshEncoding m_encoding;
};

} // namespace nruview::readers
