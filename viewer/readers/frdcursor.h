// Lines and binary records of a CalculiX result file.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "viewer/readers/fortran.h"
#include "viewer/readers/readers.h"

namespace nruview::readers {

enum class FrdFormat { Short, Long, Float, Double }; ///< the number that ends a header

/// Two text forms, which differ in the width of node and element numbers, and two binary ones.
inline bool isBinary(FrdFormat format) {
    return format >= FrdFormat::Float;
}
inline std::size_t numberWidth(FrdFormat format) {
    return format == FrdFormat::Short ? 5 : 10;
}

class FrdCursor {
public:
    explicit FrdCursor(std::string_view content) : m_rest(content) {}

    bool atEnd() const { return m_rest.empty(); }
    std::size_t size() const { return m_rest.size(); }

    /// The next line without its end.
    std::string_view line() {
        if (atEnd())
            throw Refusal("is cut short: it ends inside a block");
        const std::size_t end = m_rest.find('\n');
        const std::string_view line = m_rest.substr(0, end);
        m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
        return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
    }
    /// Whether the next line begins so.
    bool isNext(std::string_view start) const { return m_rest.starts_with(start); }

    /// A number as little-endian machines write it.
    template <class T>
    T binary() {
        std::array<char, sizeof(T)> bytes;
        if (m_rest.size() < bytes.size())
            throw Refusal("is cut short: it ends inside a binary block");
        std::memcpy(bytes.data(), m_rest.data(), bytes.size());
        m_rest.remove_prefix(bytes.size());
        if (std::endian::native == std::endian::big)
            std::reverse(bytes.begin(), bytes.end());
        return std::bit_cast<T>(bytes);
    }

private:
    std::string_view m_rest;
};

/// The file so far: headers tell what follows them.
struct FrdFile {
    FrdCursor cursor;
    Model model;
    std::map<std::int64_t, std::string> materials;
};

/// The header's format and, before it, its count; refuses others.
FrdFormat frdFormat(std::string_view header);
std::size_t frdCount(std::string_view header);

/// Blocks 2C and 3C, the line of the block's name given.
void readFrdNodes(FrdFile& file, std::string_view header);
void readFrdElements(FrdFile& file, std::string_view header);

} // namespace nruview::readers
