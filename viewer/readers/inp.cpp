// Input files of Abaqus and CalculiX, .inp: keywords behind a star, each with lines of data. Keywords that
// say nothing about the mesh are passed over; those that would make a mesh are refused.
#include <algorithm>

#include "viewer/readers/fortran.h"
#include "viewer/readers/inplines.h"
#include "viewer/readers/inpmesh.h"

namespace nruview::readers {

namespace {

using Fields = std::vector<std::string_view>;

std::int64_t number(std::string_view field, const char* what) {
    if (const auto value = wholeNumber(field))
        return *value;
    throw Refusal("has '" + std::string(field.substr(0, 40)) + "' for the number of " + what);
}

double real(std::string_view field) {
    if (const auto value = fortranReal(field))
        return *value;
    throw Refusal("'" + std::string(field.substr(0, 40)) + "' is not a number");
}

class InpReader {
public:
    InpReader(std::string_view content, const std::filesystem::path& folder) : m_lines(content, folder) {}

    InpFile read() {
        std::string_view line;
        while (m_lines.next(line)) {
            m_hasKeyword = m_hasKeyword || isInpKeyword(line);
            if (isInpKeyword(line))
                readKeyword(m_lines.keyword(line));
            else if (m_readData)
                (this->*m_readData)(line);
        }
        finishElement();
        if (!m_hasKeyword)
            throw Refusal("has no keyword of Abaqus or CalculiX");
        return std::move(m_file);
    }

private:
    void readKeyword(const InpKeyword& keyword);
    void beginNodes(const InpKeyword& keyword);
    void beginElements(const InpKeyword& keyword);
    void beginSet(const InpKeyword& keyword);
    void beginPart(const InpKeyword& keyword);
    void endPart(const InpKeyword&) { m_mesh = &m_file.mesh; }
    void beginInstance(const InpKeyword& keyword);
    void beginConditions(const InpKeyword& keyword);
    void addSection(const InpKeyword& keyword);
    void include(const InpKeyword& keyword);
    void refuse(const InpKeyword& keyword) { throw Refusal("uses *" + keyword.name + ", which is not read"); }
    void beginPiece(const std::string& set, bool ofNodes);

    void readNode(std::string_view line);
    void readElement(std::string_view line);
    void skipElement(std::string_view line);
    void readMembers(std::string_view line);
    void readRange(std::string_view line);
    void readCondition(std::string_view line);
    void readPlacement(std::string_view line);
    void finishElement();

    InpLines m_lines;
    InpFile m_file;
    bool m_hasKeyword = false;
    InpMesh* m_mesh = &m_file.mesh;
    void (InpReader::*m_readData)(std::string_view) = nullptr;
    InpSetPiece* m_piece = nullptr; ///< that data go into
    std::string m_typeName;
    InpType m_type;
    std::size_t m_missing = 0; ///< nodes that the last element still lacks
    bool m_continues = false;  ///< whether the last skipped line does
    std::size_t m_placements = 0;
    Fields m_fields;
};

// --- keywords ----------------------------------------------------------------------------------------------

void InpReader::readKeyword(const InpKeyword& keyword) {
    using Action = void (InpReader::*)(const InpKeyword&);
    static const std::map<std::string_view, Action> kActions = {
        {"NODE", &InpReader::beginNodes},
        {"ELEMENT", &InpReader::beginElements},
        {"NSET", &InpReader::beginSet},
        {"ELSET", &InpReader::beginSet},
        {"BOUNDARY", &InpReader::beginConditions},
        {"CLOAD", &InpReader::beginConditions},
        {"PART", &InpReader::beginPart},
        {"ENDPART", &InpReader::endPart},
        {"INSTANCE", &InpReader::beginInstance},
        {"ENDINSTANCE", &InpReader::endPart},
        {"SOLIDSECTION", &InpReader::addSection},
        {"SHELLSECTION", &InpReader::addSection},
        {"SHELLGENERALSECTION", &InpReader::addSection},
        {"MEMBRANESECTION", &InpReader::addSection},
        {"BEAMSECTION", &InpReader::addSection},
        {"BEAMGENERALSECTION", &InpReader::addSection},
        {"COHESIVESECTION", &InpReader::addSection},
        {"NGEN", &InpReader::refuse},
        {"NFILL", &InpReader::refuse},
        {"NCOPY", &InpReader::refuse},
        {"NMAP", &InpReader::refuse},
        {"ELGEN", &InpReader::refuse},
        {"ELCOPY", &InpReader::refuse},
        {"SYSTEM", &InpReader::refuse},
    };
    finishElement();
    if (keyword.name == "INCLUDE") // a file of data goes on with the keyword before it
        return m_lines.include(keyword.value("INPUT"));
    m_readData = nullptr;
    m_piece = nullptr;
    if (const auto action = kActions.find(keyword.name); action != kActions.end())
        (this->*action->second)(keyword);
}

void InpReader::include(const InpKeyword& keyword) {
    if (keyword.has("INPUT"))
        m_lines.include(keyword.value("INPUT"));
}

void InpReader::beginPiece(const std::string& set, bool ofNodes) {
    m_piece = nullptr;
    if (set.empty())
        return;
    m_mesh->pieces.push_back({set, ofNodes, {}, {}, {}});
    m_piece = &m_mesh->pieces.back();
}

void InpReader::beginNodes(const InpKeyword& keyword) {
    if (keyword.has("SYSTEM") && upperCase(keyword.value("SYSTEM")) != "R")
        throw Refusal("has nodes in a coordinate system that is not rectangular");
    beginPiece(keyword.value("NSET"), true);
    m_readData = &InpReader::readNode;
    include(keyword);
}

void InpReader::beginElements(const InpKeyword& keyword) {
    m_typeName = upperCase(keyword.value("TYPE"));
    const std::optional<InpType> type = inpType(m_typeName);
    m_type = type.value_or(InpType{});
    m_continues = false;
    beginPiece(keyword.value("ELSET"), false);
    if (m_piece && type)
        m_mesh->blocks.push_back(m_piece->set);
    m_readData = type ? &InpReader::readElement : &InpReader::skipElement;
    include(keyword);
}

void InpReader::beginSet(const InpKeyword& keyword) {
    const bool ofNodes = keyword.name == "NSET";
    const std::string name = keyword.value(keyword.name);
    if (name.empty())
        throw Refusal("has a set without a name");
    beginPiece(name, ofNodes);
    m_piece->instance = keyword.value("INSTANCE");
    if (ofNodes && keyword.has("ELSET"))
        m_file.notes.push_back("left out of node set " + name + ": the nodes of an element set");
    m_readData = keyword.has("GENERATE") ? &InpReader::readRange : &InpReader::readMembers;
    include(keyword);
}

void InpReader::beginConditions(const InpKeyword& keyword) {
    beginPiece(keyword.name, true);
    m_readData = &InpReader::readCondition;
}

void InpReader::beginPart(const InpKeyword& keyword) {
    const auto [part, isNew] = m_file.parts.try_emplace(upperCase(keyword.value("NAME")));
    if (!isNew)
        throw Refusal("has two parts of the name '" + keyword.value("NAME") + "'");
    m_mesh = &part->second;
}

void InpReader::beginInstance(const InpKeyword& keyword) {
    InpInstance instance;
    instance.name = keyword.value("NAME");
    instance.part = upperCase(keyword.value("PART"));
    m_file.instances.push_back(std::move(instance));
    m_mesh = &m_file.instances.back().own;
    m_placements = 0;
    m_readData = &InpReader::readPlacement;
}

void InpReader::addSection(const InpKeyword& keyword) {
    if (const std::string set = keyword.value("ELSET"); !set.empty())
        m_mesh->sections.push_back(set);
}

// --- data --------------------------------------------------------------------------------------------------

/// Coordinates that are left out are 0; what follows them is a normal.
void InpReader::readNode(std::string_view line) {
    splitFields(line, m_fields);
    const std::int64_t node = number(m_fields[0], "a node");
    Point point{};
    for (std::size_t k = 0; k < 3 && k + 1 < m_fields.size(); ++k)
        point[k] = m_fields[k + 1].empty() ? 0.0 : real(m_fields[k + 1]);
    m_mesh->nodeNumbers.push_back(node);
    m_mesh->nodes.push_back(point);
    if (m_piece)
        m_piece->add(node);
}

void InpReader::readElement(std::string_view line) {
    splitFields(line, m_fields);
    std::size_t field = 0;
    if (m_missing == 0) {
        const std::int64_t element = number(m_fields[field++], "an element");
        m_mesh->elementNumbers.push_back(element);
        m_mesh->types.push_back(m_type);
        m_missing = m_type.nodes;
        if (m_piece)
            m_piece->add(element);
    }
    for (; field < m_fields.size() && m_missing > 0; ++field, --m_missing)
        m_mesh->elementNodes.push_back(number(m_fields[field], "a node"));
    m_file.longer[m_typeName] += field < m_fields.size() ? 1 : 0; // the solver reads no more either
    if (m_missing == 0)
        m_mesh->ends.push_back(m_mesh->elementNodes.size());
}

void InpReader::finishElement() {
    if (m_missing > 0)
        throw Refusal("has element " + std::to_string(m_mesh->elementNumbers.back()) + " (" + m_typeName +
                      ") with less than " + std::to_string(m_type.nodes) + " nodes");
}

void InpReader::skipElement(std::string_view line) {
    m_file.skipped[m_typeName] += m_continues ? 0 : 1;
    m_continues = line.ends_with(',');
}

void InpReader::readMembers(std::string_view line) {
    splitFields(line, m_fields);
    for (const std::string_view field : m_fields)
        if (const auto member = wholeNumber(field))
            m_piece->add(*member);
        else if (!field.empty())
            m_piece->names.emplace_back(field);
}

void InpReader::readRange(std::string_view line) {
    splitFields(line, m_fields);
    const char* const what = "a set's member";
    if (m_fields.size() < 2)
        throw Refusal("has a range of numbers without an end: '" + std::string(line.substr(0, 40)) + "'");
    const std::int64_t step = m_fields.size() > 2 && !m_fields[2].empty() ? number(m_fields[2], what) : 1;
    if (step < 1)
        throw Refusal("has a range of numbers that does not ascend: '" + std::string(line.substr(0, 40)) +
                      "'");
    m_piece->ranges.push_back({number(m_fields[0], what), number(m_fields[1], what), step});
}

/// The node or set that is held or loaded.
void InpReader::readCondition(std::string_view line) {
    splitFields(line, m_fields);
    if (const auto node = wholeNumber(m_fields[0]))
        m_piece->add(*node);
    else if (!m_fields[0].empty())
        m_piece->names.emplace_back(m_fields[0]);
}

/// A shift, then two points of an axis and an angle.
void InpReader::readPlacement(std::string_view line) {
    splitFields(line, m_fields);
    InpInstance& instance = m_file.instances.back();
    std::array<double, 7> values{};
    for (std::size_t i = 0; i < std::min(values.size(), m_fields.size()); ++i)
        values[i] = m_fields[i].empty() ? 0.0 : real(m_fields[i]);
    if (m_placements++ == 0) {
        instance.shift = {values[0], values[1], values[2]};
        return;
    }
    instance.axis = {{{values[0], values[1], values[2]}, {values[3], values[4], values[5]}}};
    instance.angleDeg = values[6];
}

/// The first line that is neither blank nor a comment.
std::string_view firstLine(std::string_view content, std::string_view comment) {
    while (!content.empty()) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        const std::string_view line = trimmed(content.substr(0, end));
        if (!line.empty() && !line.starts_with(comment))
            return line;
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return {};
}

/// Such files begin with five counts.
bool isAvs(std::string_view content) {
    std::string_view line = firstLine(content, "#");
    for (int i = 0; i < 5; ++i) {
        const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
        if (!wholeNumber(line.substr(0, end)))
            return false;
        line = trimmed(line.substr(end));
    }
    return line.empty();
}

} // namespace

bool isInp(std::string_view content, const std::filesystem::path& path) {
    const std::string_view line = firstLine(content, "**");
    const bool isNamedSo = upperCase(path.extension().string()) == ".INP";
    return isNamedSo || (isInpKeyword(line) && !upperCase(line).starts_with("*KEYWORD"));
}

Model readInp(std::string_view content, const std::filesystem::path& path) {
    if (isAvs(content))
        throw Refusal("is an AVS UCD file; of .inp files those of Abaqus and CalculiX are read");
    InpFile file = InpReader(content, path.parent_path()).read();
    return makeInpModel(file);
}

} // namespace nruview::readers
