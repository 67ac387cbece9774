// Header and body of PLY, of which only the lengths of lists and the colours of faces are looked at.
#include "viewer/readers/plyfile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>

#include "viewer/readers/words.h"

namespace nruview::readers {

namespace {

enum class Type { None, Int8, Uint8, Int16, Uint16, Int32, Uint32, Float, Double };

struct Property {
    Type count = Type::None; ///< of a list's length; None: a single value
    Type value = Type::None;
    std::string name;
};

struct Element {
    std::string name;
    std::size_t count = 0;
    std::vector<Property> properties;
};

struct Header {
    bool ascii = false, bigEndian = false;
    std::vector<Element> elements;
    std::size_t end = 0; ///< where the body begins
};

Type typeOf(const std::string& name) {
    constexpr std::pair<std::string_view, Type> kNames[] = {
        {"char", Type::Int8},     {"int8", Type::Int8},     {"uchar", Type::Uint8},
        {"uint8", Type::Uint8},   {"short", Type::Int16},   {"int16", Type::Int16},
        {"ushort", Type::Uint16}, {"uint16", Type::Uint16}, {"int", Type::Int32},
        {"int32", Type::Int32},   {"uint", Type::Uint32},   {"uint32", Type::Uint32},
        {"float", Type::Float},   {"float32", Type::Float}, {"double", Type::Double},
        {"float64", Type::Double}};
    for (const auto& [known, type] : kNames)
        if (name == known)
            return type;
    throw Refusal("has a property of unknown type " + name);
}

std::size_t sizeOf(Type type) {
    constexpr std::size_t kSizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8};
    return kSizes[static_cast<std::size_t>(type)];
}

// --- header ------------------------------------------------------------------------------------------------

void addElement(std::istream& words, std::size_t most, Header& header) {
    Element element;
    if (!(words >> element.name >> element.count) || element.count > most)
        throw Refusal("cannot hold the elements that its header announces");
    header.elements.push_back(std::move(element));
}

void addProperty(std::istream& words, Header& header) {
    Property property;
    std::string type;
    words >> type;
    if (type == "list") {
        words >> type;
        property.count = typeOf(type);
        words >> type;
    }
    property.value = typeOf(type);
    words >> property.name;
    if (header.elements.empty())
        throw Refusal("has a property of no element");
    header.elements.back().properties.push_back(std::move(property));
}

Header readHeader(std::string_view content) {
    constexpr std::string_view kEnd = "\nend_header";
    Header header;
    header.end = content.find(kEnd);
    if (header.end == std::string_view::npos)
        throw Refusal("has no end of its header");
    std::istringstream lines{std::string(content.substr(0, header.end))};
    header.end = std::min(content.find('\n', header.end + kEnd.size()), content.size() - 1) + 1;
    for (std::string line, keyword; std::getline(lines, line);) {
        std::istringstream words(line);
        words >> keyword;
        if (keyword == "format") {
            words >> keyword;
            header.ascii = keyword == "ascii";
            header.bigEndian = keyword == "binary_big_endian";
        } else if (keyword == "element") {
            addElement(words, content.size() - header.end, header);
        } else if (keyword == "property") {
            addProperty(words, header);
        }
    }
    return header;
}

// --- body --------------------------------------------------------------------------------------------------

/// Takes values off the body one by one; only whole numbers from 0 are told apart, all others are 0.
class Body {
public:
    Body(const Header& header, std::string_view content)
        : m_ascii(header.ascii), m_bigEndian(header.bigEndian), m_rest(content.substr(header.end)) {}

    /// Nothing at the end of the file.
    std::optional<std::size_t> take(Type type) { return m_ascii ? takeText() : takeBytes(type); }
    bool skip(Type type, std::size_t count) {
        if (!m_ascii) {
            const bool there = count <= m_rest.size() / sizeOf(type);
            m_rest.remove_prefix(there ? count * sizeOf(type) : 0);
            return there;
        }
        for (std::size_t i = 0; i < count; ++i)
            if (takeWord(m_rest).empty())
                return false;
        return true;
    }

private:
    std::optional<std::size_t> takeText() {
        const std::string_view word = takeWord(m_rest);
        if (word.empty())
            return {};
        std::size_t number = 0;
        std::from_chars(word.data(), word.data() + word.size(), number);
        return number;
    }
    std::optional<std::size_t> takeBytes(Type type) {
        const std::size_t size = sizeOf(type);
        if (m_rest.size() < size)
            return {};
        std::size_t number = 0;
        for (std::size_t i = 0; i < size && type < Type::Float; ++i)
            number |= std::size_t{static_cast<unsigned char>(m_rest[m_bigEndian ? size - 1 - i : i])}
                      << 8 * i;
        m_rest.remove_prefix(size);
        return number;
    }

    bool m_ascii, m_bigEndian;
    std::string_view m_rest;
};

/// Place of a byte of colour in a packed one, by its property; -1 for other properties.
int shiftOf(const Property& property) {
    constexpr std::array<std::string_view, 3> kNames = {"red", "green", "blue"};
    const auto found = std::find(kNames.begin(), kNames.end(), property.name);
    const bool isByte = property.count == Type::None && property.value == Type::Uint8;
    return isByte && found != kNames.end() ? 8 * static_cast<int>(found - kNames.begin()) : -1;
}

/// The colour that one element has, 0 for none; nothing where the file ends before.
std::optional<std::uint32_t> walk(const Element& element, Body& body) {
    std::uint32_t color = 0;
    for (const Property& property : element.properties) {
        const bool isList = property.count != Type::None;
        const auto number = body.take(isList ? property.count : property.value);
        if (!number || (isList && !body.skip(property.value, *number)))
            return {};
        if (const int shift = shiftOf(property); shift >= 0)
            color |= 0xFF000000 | static_cast<std::uint32_t>(*number & 0xFF) << shift;
    }
    return color;
}

} // namespace

PlyFacts readPlyFacts(std::string_view content) {
    const Header header = readHeader(content);
    Body body(header, content);
    PlyFacts facts;
    for (const Element& element : header.elements) {
        const bool isFace = element.name == "face";
        for (std::size_t i = 0; i < element.count; ++i) {
            const auto color = walk(element, body);
            if (!color)
                throw Refusal("is cut short: it ends in " + element.name + " " + std::to_string(i) + " of " +
                              std::to_string(element.count));
            if (isFace && *color != 0)
                facts.faceColors.push_back(*color);
        }
        facts.faces += isFace ? element.count : 0;
    }
    return facts;
}

} // namespace nruview::readers
