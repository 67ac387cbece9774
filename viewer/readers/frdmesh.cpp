// Nodes and elements of a CalculiX result file.
#include "viewer/readers/cellparts.h"
#include "viewer/readers/frdcursor.h"
#include "viewer/readers/numberindex.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kNumberColumn = 3; ///< where the number of a node or an element stands
constexpr std::size_t kRealWidth = 12;

/// The nodes of a cell are those of the file's element at these places.
struct FrdType {
    CellType type;
    std::vector<std::uint8_t> places;
};

std::vector<std::uint8_t> upTo(std::uint8_t count) {
    std::vector<std::uint8_t> places(count);
    for (std::uint8_t i = 0; i < count; ++i)
        places[i] = i;
    return places;
}

/// Of hexahedra and wedges the mid-sides between both ends come before those of the upper end.
const FrdType* frdType(std::int64_t number) {
    static const std::array<FrdType, 12> kTypes = {{
        {CellType::Hexa, upTo(8)},
        {CellType::Wedge, upTo(6)},
        {CellType::Tetra, upTo(4)},
        {CellType::Hexa20, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15}},
        {CellType::Wedge15, {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11}},
        {CellType::Tetra10, upTo(10)},
        {CellType::Triangle, upTo(3)},
        {CellType::Triangle6, upTo(6)},
        {CellType::Quad, upTo(4)},
        {CellType::Quad8, upTo(8)},
        {CellType::Line, upTo(2)},
        {CellType::Line3, upTo(3)},
    }};
    return number >= 1 && number <= 12 ? &kTypes[static_cast<std::size_t>(number) - 1] : nullptr;
}

std::int64_t wholeAt(std::string_view line, std::size_t first, std::size_t width) {
    if (const auto number = wholeNumber(column(line, first, width)))
        return *number;
    throw Refusal("has no number in column " + std::to_string(first + 1) + " of '" +
                  std::string(line.substr(0, 60)) + "'");
}

double coordinateAt(std::string_view line, std::size_t first) {
    if (const auto number = fortranReal(column(line, first, kRealWidth)))
        return *number;
    throw Refusal("has no coordinate in column " + std::to_string(first + 1) + " of '" +
                  std::string(line.substr(0, 60)) + "'");
}

void readTextNodes(FrdFile& file, std::size_t width) {
    for (std::string_view line = file.cursor.line(); !line.starts_with(" -3"); line = file.cursor.line()) {
        if (!line.starts_with(" -1"))
            throw Refusal("has no node in '" + std::string(line.substr(0, 60)) + "'");
        Point point;
        for (std::size_t k = 0; k < 3; ++k)
            point[k] = coordinateAt(line, kNumberColumn + width + k * kRealWidth);
        file.model.nodeNumbers.push_back(wholeAt(line, kNumberColumn, width));
        file.model.nodes.push_back(point);
    }
}

void readBinaryNodes(FrdFile& file, FrdFormat format, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        file.model.nodeNumbers.push_back(file.cursor.binary<std::int32_t>());
        Point point;
        for (double& coordinate : point)
            coordinate =
                format == FrdFormat::Double ? file.cursor.binary<double>() : file.cursor.binary<float>();
        file.model.nodes.push_back(point);
    }
}

// --- elements ----------------------------------------------------------------------------------------------

struct FrdElement {
    std::int64_t number = 0, type = 0, group = 0;
    std::string material; ///< its number, or the beginning of its name
    std::vector<std::int64_t> nodes = {};
};

/// Collects cells with the part of each: those of one group and material.
class ElementCollector {
public:
    explicit ElementCollector(FrdFile& file) : m_file(file), m_nodes(file.model.nodeNumbers) {}

    void add(const FrdElement& element) {
        const FrdType* type = frdType(element.type);
        if (!type) {
            ++m_skipped[element.type];
            return;
        }
        if (element.nodes.size() != type->places.size())
            throw Refusal("has element " + std::to_string(element.number) + " (" +
                          std::string(cellTypeName(type->type)) + ") with " +
                          std::to_string(element.nodes.size()) + " nodes");
        std::vector<std::uint32_t> nodes;
        for (const std::uint8_t place : type->places)
            nodes.push_back(indexOf(element.nodes[place], element.number));
        m_file.model.addCell(type->type, nodes);
        m_file.model.cellNumbers.push_back(element.number);
        m_partOfCell.push_back(partOf(element));
    }

    void finish() {
        for (const auto& [type, count] : m_skipped)
            m_file.model.notes.push_back("skipped " + std::to_string(count) + " elements of type " +
                                         std::to_string(type) + ", which is not known");
        if (m_parts.size() > 1)
            sortIntoParts(m_file.model, m_partOfCell, partNames());
    }

private:
    using PartKey = std::pair<std::string, std::int64_t>; ///< material, group

    std::uint32_t indexOf(std::int64_t node, std::int64_t element) const {
        if (const auto index = m_nodes.find(node))
            return *index;
        throw Refusal("has element " + std::to_string(element) + " with node " + std::to_string(node) +
                      ", which is not there");
    }
    std::uint32_t partOf(const FrdElement& element) {
        const auto next = static_cast<std::uint32_t>(m_parts.size());
        return m_parts.try_emplace({element.material, element.group}, next).first->second;
    }
    /// A group's number is told only where it tells parts apart.
    std::vector<std::string> partNames() const {
        std::vector<std::string> names(m_parts.size());
        for (const auto& [key, part] : m_parts) {
            const auto& [material, group] = key;
            const auto number = wholeNumber(material);
            const auto name = number ? m_file.materials.find(*number) : m_file.materials.end();
            names[part] = oneLine(name != m_file.materials.end() ? name->second
                                  : number                       ? "material " + material
                                                                 : material);
            if (m_parts.begin()->first.second != group || m_parts.rbegin()->first.second != group)
                names[part] += ", group " + std::to_string(group);
        }
        return names;
    }

    FrdFile& m_file;
    NumberIndex m_nodes;
    std::map<PartKey, std::uint32_t> m_parts;
    std::vector<std::uint32_t> m_partOfCell;
    std::map<std::int64_t, std::size_t> m_skipped;
};

/// Lines -2 with the nodes of an element.
void readTextElementNodes(FrdFile& file, std::size_t width, FrdElement& element) {
    while (file.cursor.isNext(" -2")) {
        const std::string_view line = file.cursor.line();
        for (std::size_t at = kNumberColumn; !column(line, at, width).empty(); at += width)
            element.nodes.push_back(wholeAt(line, at, width));
    }
}

void readTextElements(FrdFile& file, std::size_t width, ElementCollector& collector) {
    for (std::string_view line = file.cursor.line(); !line.starts_with(" -3"); line = file.cursor.line()) {
        if (!line.starts_with(" -1"))
            throw Refusal("has no element in '" + std::string(line.substr(0, 60)) + "'");
        const std::size_t next = kNumberColumn + width;
        FrdElement element{wholeAt(line, kNumberColumn, width), wholeAt(line, next, 5),
                           wholeAt(line, next + 5, 5), std::string(column(line, next + 10, 5))};
        readTextElementNodes(file, width, element);
        collector.add(element);
    }
}

void readBinaryElements(FrdFile& file, std::size_t count, ElementCollector& collector) {
    for (std::size_t i = 0; i < count; ++i) {
        FrdElement element;
        for (std::int64_t* value : {&element.number, &element.type, &element.group})
            *value = file.cursor.binary<std::int32_t>();
        element.material = std::to_string(file.cursor.binary<std::int32_t>());
        const FrdType* type = frdType(element.type);
        if (!type)
            throw Refusal("has elements of the unknown type " + std::to_string(element.type));
        for (std::size_t node = 0; node < type->places.size(); ++node)
            element.nodes.push_back(file.cursor.binary<std::int32_t>());
        collector.add(element);
    }
}

} // namespace

FrdFormat frdFormat(std::string_view header) {
    const std::string_view line = trimmed(header);
    const auto number = wholeNumber(line.substr(line.find_last_of(" \t") + 1));
    if (!number || *number < 0 || *number > 3)
        throw Refusal("has a block of unknown form: '" + std::string(line.substr(0, 80)) + "'");
    return static_cast<FrdFormat>(*number);
}

std::size_t frdCount(std::string_view header) {
    return static_cast<std::size_t>(std::max<std::int64_t>(0, wholeAt(header, 24, 12)));
}

void readFrdNodes(FrdFile& file, std::string_view header) {
    const FrdFormat format = frdFormat(header);
    if (!file.model.nodes.empty())
        throw Refusal("has a second list of nodes");
    if (isBinary(format))
        readBinaryNodes(file, format, frdCount(header));
    else
        readTextNodes(file, numberWidth(format));
}

void readFrdElements(FrdFile& file, std::string_view header) {
    const FrdFormat format = frdFormat(header);
    if (file.model.cellCount() != 0)
        throw Refusal("has a second list of elements");
    ElementCollector collector(file);
    if (isBinary(format))
        readBinaryElements(file, frdCount(header), collector);
    else
        readTextElements(file, numberWidth(format), collector);
    collector.finish();
}

} // namespace nruview::readers
