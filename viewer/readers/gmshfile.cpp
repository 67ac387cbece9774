// The sections of a Gmsh file (https://gmsh.info/doc/texinfo/gmsh.html, "MSH file format"), versions 2, 4.0
// and 4.1. Sections that are not known are passed over.
#include "viewer/readers/gmshfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace nruview::readers {

namespace {

/// What is known of a geometric entity, whose elements stand in blocks from version 4 on.
struct Entity {
    std::uint32_t groupSet = 0, partition = 0;
};

/// A negative number of a group says that it turns an entity round, which is of no concern here; one of a
/// partition, that the element is its ghost.
std::int64_t magnitude(std::int64_t number) {
    return std::abs(std::max(number, -std::numeric_limits<std::int64_t>::max()));
}

class Parser {
public:
    explicit Parser(std::string_view content) : m_cursor(content) { m_file.size = content.size(); }

    GmshFile parse();

private:
    void readNamed(std::string_view name);
    bool readSection(std::string_view name);
    void readFormat();
    void readNames();
    void readEntities(bool partitioned);
    void readEntity(int dimension, bool partitioned);
    std::int64_t readPartition();
    void readNodes();
    void readOldNodes();
    void readNodeBlock();
    void readElements();
    void readOldElements();
    std::int64_t readOldRun(std::int64_t most);
    std::size_t readTagCount();
    Entity readTags(std::size_t count);
    void readElementBlock();
    void readNodesOf(const GmshType& type, std::int64_t number, const Entity& entity);

    bool isOld() const { return m_file.version < 40; }
    bool isNewest() const { return m_file.version >= 41; }
    /// The number of a node or an element.
    std::int64_t number() { return isNewest() ? m_cursor.size() : m_cursor.integer(); }
    const GmshType& readType();
    std::uint32_t groupSet(std::vector<std::int64_t> groups);
    std::uint32_t groupSet(std::int64_t group);

    GmshCursor m_cursor;
    GmshFile m_file;
    bool m_hasNodes = false, m_hasElements = false;
    NumberIndex m_nodeIndex;
    std::map<std::pair<int, std::int64_t>, Entity> m_entities; ///< by dimension and number
    std::map<std::vector<std::int64_t>, std::uint32_t> m_groupSets{{{}, 0}};
    std::map<std::int64_t, std::uint32_t> m_singleGroupSets{{0, 0}};
};

// --- format, groups, entities ------------------------------------------------------------------------------

void Parser::readFormat() {
    std::string_view line = m_cursor.line();
    const std::string version(takeWord(line));
    std::string_view word = version;
    double number = 0;
    if (!takeNumber(word, number))
        throw Refusal("has no version");
    m_file.version = number > 0 && number < 100 ? static_cast<int>(std::lround(10 * number)) : 0;
    if (m_file.version < 20 || m_file.version > 41 || (m_file.version > 22 && isOld()))
        throw Refusal("is of version " + version + "; 2.0 to 2.2, 4.0 and 4.1 are read");
    const std::vector<std::int64_t> kinds = takeNumbers<std::int64_t>(line, 2);
    const bool isWide = kinds[1] == 8;
    if (kinds[0] < 0 || kinds[0] > 1 || !(isWide || (kinds[1] == 4 && isNewest())))
        throw Refusal("is of an unknown kind: type " + std::to_string(kinds[0]) + ", numbers of " +
                      std::to_string(kinds[1]) + " bytes");
    GmshEncoding encoding{kinds[0] == 1, false, isWide ? std::size_t{8} : 4};
    m_cursor.setEncoding(encoding);
    if (!encoding.binary)
        return;
    constexpr std::int64_t kSwappedOne = 1 << 24;
    const std::int64_t one = m_cursor.integer();
    encoding.bigEndian = one == kSwappedOne;
    if (one != 1 && one != kSwappedOne)
        throw Refusal("has a damaged mark of its byte order");
    m_cursor.setEncoding(encoding);
}

void Parser::readNames() {
    const auto count = m_cursor.numberLine<std::int64_t>();
    m_cursor.checkCount(count, "number of names", 1);
    for (std::int64_t i = 0; i < count; ++i) {
        std::string_view dimension = m_cursor.word(), number = m_cursor.word();
        GmshGroup group{};
        if (!takeNumber(number, group.second))
            throw Refusal("ends before the last name");
        group.first = static_cast<int>(parseCount(dimension, "dimension", 3));
        m_file.names[group] = m_cursor.quotedLine();
    }
}

std::uint32_t Parser::groupSet(std::vector<std::int64_t> groups) {
    const auto next = static_cast<std::uint32_t>(m_file.groupSets.size());
    const auto [found, isNew] = m_groupSets.try_emplace(std::move(groups), next);
    if (isNew)
        m_file.groupSets.push_back(found->first);
    return found->second;
}

std::uint32_t Parser::groupSet(std::int64_t group) {
    const auto [found, isNew] = m_singleGroupSets.try_emplace(magnitude(group), 0);
    if (isNew)
        found->second = groupSet(std::vector{magnitude(group)});
    return found->second;
}

/// The first of an entity's partitions; its parent stands before them.
std::int64_t Parser::readPartition() {
    m_cursor.skipIntegers(2);
    std::int64_t first = 0;
    const std::size_t count = m_cursor.count("number of partitions", 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t partition = m_cursor.integer();
        first = i == 0 ? partition : first;
    }
    return first;
}

void Parser::readEntity(int dimension, bool partitioned) {
    const std::int64_t tag = m_cursor.integer();
    Entity entity;
    if (partitioned)
        entity.partition = static_cast<std::uint32_t>(readPartition());
    m_cursor.skipReals(dimension == 0 && isNewest() ? 3 : 6); // a place or a box
    std::vector<std::int64_t> groups;
    const std::size_t count = m_cursor.count("number of groups", 1);
    for (std::size_t i = 0; i < count; ++i)
        if (const std::int64_t group = magnitude(m_cursor.integer()); groups.size() < kMostGmshGroups)
            groups.push_back(group);
    entity.groupSet = groupSet(std::move(groups));
    if (dimension > 0)
        m_cursor.skipIntegers(m_cursor.count("number of bounds", 1));
    m_entities[{dimension, tag}] = entity;
}

void Parser::readEntities(bool partitioned) {
    if (partitioned) {
        m_cursor.size();
        m_cursor.skipIntegers(2 * m_cursor.count("number of ghost entities", 2));
    }
    std::array<std::size_t, 4> counts{};
    for (std::size_t& count : counts)
        count = m_cursor.count("number of entities", 5);
    for (int dimension = 0; dimension < 4; ++dimension)
        for (std::size_t i = 0; i < counts[static_cast<std::size_t>(dimension)]; ++i)
            readEntity(dimension, partitioned);
}

// --- nodes -------------------------------------------------------------------------------------------------

void Parser::readOldNodes() {
    const auto count = m_cursor.numberLine<std::int64_t>();
    m_cursor.checkCount(count, "number of nodes", 4);
    for (std::int64_t i = 0; i < count; ++i) {
        m_file.nodeNumbers.push_back(m_cursor.integer());
        const double x = m_cursor.real(), y = m_cursor.real();
        m_file.nodes.push_back({x, y, m_cursor.real()});
    }
}

/// In version 4.1 all numbers stand before all places. Parameters on curves and surfaces may follow a place.
void Parser::readNodeBlock() {
    std::array<std::int64_t, 2> entity = {m_cursor.integer(), m_cursor.integer()};
    const std::int64_t dimension = entity[isNewest() ? 0 : 1];
    const bool hasParameters = m_cursor.integer() != 0;
    if (dimension < 0 || dimension > 3)
        throw Refusal("has nodes of dimension " + std::to_string(dimension));
    const std::size_t count = m_cursor.count("number of nodes", 4);
    if (isNewest())
        for (std::size_t i = 0; i < count; ++i)
            m_file.nodeNumbers.push_back(m_cursor.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (!isNewest())
            m_file.nodeNumbers.push_back(m_cursor.integer());
        const double x = m_cursor.real(), y = m_cursor.real();
        m_file.nodes.push_back({x, y, m_cursor.real()});
        m_cursor.skipReals(hasParameters ? static_cast<std::size_t>(dimension) : 0);
    }
}

void compareTotal(std::size_t found, std::size_t announced, const char* what) {
    if (found != announced)
        throw Refusal("has " + std::to_string(found) + " of the " + std::to_string(announced) + " " + what +
                      " that it announces");
}

void Parser::readNodes() {
    if (std::exchange(m_hasNodes, true))
        throw Refusal("is there twice");
    if (isOld()) {
        readOldNodes();
    } else {
        const std::size_t blocks = m_cursor.count("number of blocks", 4);
        const std::size_t total = m_cursor.count("number of nodes", 4);
        m_cursor.skipSizes(isNewest() ? 2 : 0);
        for (std::size_t i = 0; i < blocks; ++i)
            readNodeBlock();
        compareTotal(m_file.nodes.size(), total, "nodes");
    }
    if (m_file.nodes.size() >= std::numeric_limits<std::uint32_t>::max())
        throw Refusal("has more nodes than the viewer can hold");
    m_nodeIndex = NumberIndex(m_file.nodeNumbers);
    if (m_nodeIndex.hasRepeated())
        throw Refusal("has two nodes of one number");
}

// --- elements ----------------------------------------------------------------------------------------------

const GmshType& Parser::readType() {
    const std::int64_t number = m_cursor.integer();
    const GmshType* type = gmshType(number);
    if (type == nullptr)
        throw Refusal("has elements of type " + std::to_string(number) +
                      ", whose number of nodes is not known");
    return *type;
}

void Parser::readNodesOf(const GmshType& type, std::int64_t number, const Entity& entity) {
    if (!type.cell) {
        for (int i = 0; i < type.nodes; ++i)
            this->number();
        ++m_file.skipped[type.name];
        m_file.skippedDimension = std::max(m_file.skippedDimension, type.dimension);
        return;
    }
    GmshElements& elements = m_file.elements;
    for (int i = 0; i < type.nodes; ++i) {
        const std::int64_t node = this->number();
        const auto index = m_nodeIndex.find(node);
        if (!index)
            throw Refusal("element " + std::to_string(number) + " uses node " + std::to_string(node) +
                          ", which is not there");
        elements.nodes.push_back(*index);
    }
    elements.offsets.push_back(elements.nodes.size());
    elements.numbers.push_back(number);
    elements.types.push_back(&type);
    elements.groupSets.push_back(entity.groupSet);
    elements.partitions.push_back(entity.partition);
}

/// Tags: the group, the entity, then in how many partitions the element is, and these.
Entity Parser::readTags(std::size_t count) {
    Entity entity;
    for (std::size_t tag = 0; tag < count; ++tag) {
        const std::int64_t value = m_cursor.integer();
        if (tag == 0)
            entity.groupSet = groupSet(value);
        else if (tag == 3)
            entity.partition = static_cast<std::uint32_t>(magnitude(value));
    }
    return entity;
}

std::size_t Parser::readTagCount() {
    const std::int64_t count = m_cursor.integer();
    m_cursor.checkCount(count, "number of tags", 1);
    return static_cast<std::size_t>(count);
}

/// Elements of one type with equally many tags, as binary files have them.
std::int64_t Parser::readOldRun(std::int64_t most) {
    const GmshType& type = readType();
    const std::int64_t count = m_cursor.integer();
    const std::size_t tags = readTagCount();
    m_cursor.checkCount(count, "number of elements", 1 + static_cast<std::size_t>(type.nodes));
    if (count < 1 || count > most)
        throw Refusal("has a run of " + std::to_string(count) + " elements where " + std::to_string(most) +
                      " are left");
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t number = m_cursor.integer();
        const Entity entity = readTags(tags);
        readNodesOf(type, number, entity);
    }
    return count;
}

void Parser::readOldElements() {
    const auto count = m_cursor.numberLine<std::int64_t>();
    m_cursor.checkCount(count, "number of elements", 2);
    if (m_cursor.encoding().binary) {
        for (std::int64_t left = count; left > 0;)
            left -= readOldRun(left);
        return;
    }
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t number = m_cursor.integer();
        const GmshType& type = readType();
        const Entity entity = readTags(readTagCount());
        readNodesOf(type, number, entity);
    }
}

void Parser::readElementBlock() {
    const std::array<std::int64_t, 2> key = {m_cursor.integer(), m_cursor.integer()};
    const GmshType& type = readType();
    const auto found = m_entities.find({static_cast<int>(key[isNewest() ? 0 : 1]), key[isNewest() ? 1 : 0]});
    const Entity entity = found == m_entities.end() ? Entity{} : found->second;
    const std::size_t count = m_cursor.count("number of elements", 1 + static_cast<std::size_t>(type.nodes));
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t number = this->number();
        readNodesOf(type, number, entity);
    }
}

void Parser::readElements() {
    if (!m_hasNodes)
        throw Refusal("stands before the nodes");
    if (std::exchange(m_hasElements, true))
        throw Refusal("is there twice");
    if (isOld()) {
        readOldElements();
        return;
    }
    const std::size_t blocks = m_cursor.count("number of blocks", 4);
    const std::size_t total = m_cursor.count("number of elements", 2);
    m_cursor.skipSizes(isNewest() ? 2 : 0);
    const auto found = [&] {
        std::size_t count = m_file.elements.size();
        for (const auto& [name, skipped] : m_file.skipped)
            count += skipped;
        return count;
    };
    for (std::size_t i = 0; i < blocks; ++i)
        readElementBlock();
    compareTotal(found(), total, "elements");
}

// --- the file ----------------------------------------------------------------------------------------------

/// False for a section that is not known.
bool Parser::readSection(std::string_view name) {
    if (name == "PhysicalNames")
        readNames();
    else if (name == "Entities" || name == "PartitionedEntities")
        readEntities(name != "Entities");
    else if (name == "Nodes")
        readNodes();
    else if (name == "Elements")
        readElements();
    else if (name == "NodeData")
        m_file.data.push_back(readGmshData(m_cursor, GmshDataKind::Node));
    else if (name == "ElementData")
        m_file.data.push_back(readGmshData(m_cursor, GmshDataKind::Element));
    else if (name == "ElementNodeData")
        m_file.data.push_back(readGmshData(m_cursor, GmshDataKind::ElementNode));
    else
        return false;
    return true;
}

void Parser::readNamed(std::string_view name) {
    const std::string end = "$End" + std::string(name);
    if (name == "NOD")
        throw Refusal("is of version 1; 2.0 to 2.2, 4.0 and 4.1 are read");
    if (name != "Comments" && (m_file.version == 0) != (name == "MeshFormat"))
        throw Refusal(m_file.version == 0 ? "stands before $MeshFormat" : "is there twice");
    if (name == "MeshFormat")
        readFormat();
    else if (!readSection(name))
        return m_cursor.skipPast(end);
    if (m_cursor.word() != end)
        throw Refusal("does not end where its counts say");
}

GmshFile Parser::parse() {
    for (std::string_view word = m_cursor.word(); !word.empty(); word = m_cursor.word()) {
        if (word[0] != '$')
            throw Refusal("has no section where one should begin, before byte " +
                          std::to_string(m_cursor.position()));
        m_cursor.line();
        try {
            readNamed(word.substr(1));
        } catch (const Refusal& refusal) {
            throw Refusal("section " + std::string(word.substr(0, 40)) + " " + refusal.what());
        }
    }
    return std::move(m_file);
}

} // namespace

GmshFile parseGmsh(std::string_view content) {
    return Parser(content).parse();
}

} // namespace nruview::readers
