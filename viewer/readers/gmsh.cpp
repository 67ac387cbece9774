// From a Gmsh file to a model: groups become blocks, numbers stay.
#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>

#include "viewer/model/celltypes.h"
#include "viewer/readers/gmshfile.h"
#include "viewer/readers/readers.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kMostGroupNotes = 10;
constexpr std::int64_t kNoGroup = std::numeric_limits<std::int64_t>::max();

/// Elements as cells: in the order of their blocks, those that a file repeats for each of their groups once.
struct Arrangement {
    std::vector<std::uint32_t> elements; ///< of each cell
    std::vector<std::uint32_t> places;   ///< the cell of each element
};

// --- groups ------------------------------------------------------------------------------------------------

/// Groups of equal dimension follow each other, those of solids first, and elements without one are last.
struct BlockKey {
    int dimension = 0;
    std::int64_t group = kNoGroup;

    bool operator==(const BlockKey&) const = default;
    bool operator<(const BlockKey& other) const {
        return dimension != other.dimension ? dimension > other.dimension : group < other.group;
    }
};

BlockKey blockOf(const GmshFile& file, std::uint32_t element) {
    const std::vector<std::int64_t>& groups = file.groupSets[file.elements.groupSets[element]];
    return {file.elements.types[element]->dimension, groups.empty() ? kNoGroup : groups.front()};
}

/// Names as the file has them, with the group's number where two groups share one.
class BlockNames {
public:
    explicit BlockNames(const GmshFile& file) : m_names(file.names) {
        for (const auto& [group, name] : file.names)
            ++m_uses[name];
    }

    std::string operator()(const BlockKey& key) const {
        constexpr std::array<std::string_view, 4> kKinds = {"points", "lines", "surface", "volume"};
        const std::string kind(kKinds[static_cast<std::size_t>(key.dimension)]);
        if (key.group == kNoGroup)
            return kind + " without a group";
        const std::string numbered = kind + " " + std::to_string(key.group);
        const auto named = m_names.find({key.dimension, key.group});
        if (named == m_names.end() || named->second.empty())
            return numbered;
        return m_uses.at(named->second) == 1 ? named->second : named->second + " (" + numbered + ")";
    }

private:
    const std::map<GmshGroup, std::string>& m_names;
    std::map<std::string, int> m_uses;
};

/// Version 2 writes an element again, with a number of its own, for each further group that it is in. Returns
/// the element that each repeats, itself where it is the first.
std::vector<std::uint32_t> joinRepeated(GmshFile& file) {
    GmshElements& elements = file.elements;
    std::vector<std::uint32_t> firsts(elements.size());
    std::iota(firsts.begin(), firsts.end(), 0u);
    if (file.version >= 40 || file.groupSets.size() < 3)
        return firsts;
    std::map<std::vector<std::int64_t>, std::uint32_t> sets;
    for (std::uint32_t i = 0; i < file.groupSets.size(); ++i)
        sets.emplace(file.groupSets[i], i);
    std::unordered_map<std::string_view, std::uint32_t> known;
    for (std::uint32_t i = 0; i < elements.size(); ++i) {
        const std::span<const std::uint32_t> nodes = elements.nodesOf(i);
        const std::string_view key(reinterpret_cast<const char*>(nodes.data()), nodes.size_bytes());
        const std::uint32_t first = known.try_emplace(key, i).first->second;
        const std::vector<std::int64_t>& added = file.groupSets[elements.groupSets[i]];
        std::vector<std::int64_t> groups = file.groupSets[elements.groupSets[first]];
        const bool isOther = !added.empty() && !groups.empty() &&
                             std::find(groups.begin(), groups.end(), added.front()) == groups.end();
        if (elements.types[first] != elements.types[i] || !isOther)
            continue;
        firsts[i] = first;
        if (groups.size() >= kMostGmshGroups)
            continue;
        groups.push_back(added.front());
        const auto [set, isNew] = sets.try_emplace(groups, static_cast<std::uint32_t>(file.groupSets.size()));
        if (isNew)
            file.groupSets.push_back(groups);
        elements.groupSets[first] = set->second;
    }
    return firsts;
}

Arrangement arrange(GmshFile& file) {
    const std::vector<std::uint32_t> firsts = joinRepeated(file);
    Arrangement result;
    for (std::uint32_t i = 0; i < firsts.size(); ++i)
        if (firsts[i] == i)
            result.elements.push_back(i);
    if (file.groupSets.size() > 1)
        std::stable_sort(result.elements.begin(), result.elements.end(),
                         [&](auto a, auto b) { return blockOf(file, a) < blockOf(file, b); });
    result.places.resize(firsts.size());
    for (std::uint32_t cell = 0; cell < result.elements.size(); ++cell)
        result.places[result.elements[cell]] = cell;
    for (std::uint32_t i = 0; i < firsts.size(); ++i)
        result.places[i] = result.places[firsts[i]];
    return result;
}

void appendParts(Model& model, const GmshFile& file, const Arrangement& cells) {
    if (file.groupSets.size() < 2)
        return;
    const BlockNames names(file);
    BlockKey key;
    for (std::uint32_t cell = 0; cell < cells.elements.size(); ++cell) {
        const BlockKey next = blockOf(file, cells.elements[cell]);
        if (cell == 0 || !(next == key))
            model.parts.push_back({names(next), cell, 0, {}, 1.0});
        key = next;
        ++model.parts.back().cellCount;
    }
}

/// Groups of points hold or load the nodes that they are at.
void appendNodeSets(Model& model, const GmshFile& file) {
    std::map<std::int64_t, std::vector<std::uint32_t>> sets;
    for (std::uint32_t i = 0; i < file.elements.size(); ++i)
        if (file.elements.types[i]->dimension == 0)
            for (const std::int64_t group : file.groupSets[file.elements.groupSets[i]])
                sets[group].push_back(file.elements.nodesOf(i)[0]);
    const BlockNames names(file);
    for (auto& [group, nodes] : sets) {
        std::sort(nodes.begin(), nodes.end());
        nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
        model.nodeSets.push_back({names({0, group}), std::move(nodes)});
    }
}

/// How many elements each set of several groups of one dimension has.
void noteSharedElements(Model& model, const GmshFile& file, const Arrangement& cells) {
    std::map<std::pair<int, std::uint32_t>, std::size_t> counts;
    for (const std::uint32_t element : cells.elements) {
        const int dimension = file.elements.types[element]->dimension;
        const std::uint32_t set = file.elements.groupSets[element];
        if (dimension > 0 && file.groupSets[set].size() > 1)
            ++counts[{dimension, set}];
    }
    const BlockNames names(file);
    std::size_t notes = 0;
    for (const auto& [key, count] : counts) {
        if (++notes > kMostGroupNotes)
            break;
        std::string others;
        for (const std::int64_t group : file.groupSets[key.second])
            others += (others.empty() ? "" : ", ") + names({key.first, group});
        model.notes.push_back(std::to_string(count) +
                              " elements are in several groups and stand in the first: " + others);
    }
}

// --- cells -------------------------------------------------------------------------------------------------

void appendCells(Model& model, const GmshFile& file, const Arrangement& cells) {
    std::size_t baseNodes = 0;
    std::vector<std::uint32_t> nodes;
    for (const std::uint32_t element : cells.elements) {
        const GmshType& type = *file.elements.types[element];
        const std::span<const std::uint32_t> found = file.elements.nodesOf(element);
        nodes.assign(found.begin(), found.end());
        if (!type.order.empty()) {
            nodes.resize(type.order.size());
            std::transform(type.order.begin(), type.order.end(), nodes.begin(),
                           [&](std::uint8_t place) { return found[place]; });
        }
        baseNodes += found.size() - nodes.size();
        model.addCell(*type.cell, nodes);
    }
    if (baseNodes > 0)
        model.notes.push_back("the node in the middle of the base of " + std::to_string(baseNodes) +
                              " quadratic pyramids is not drawn");
}

bool isNumbering(const std::vector<std::int64_t>& numbers) {
    const auto isOutside = [](std::int64_t number) {
        return number < 0 || number > std::int64_t{std::numeric_limits<std::uint32_t>::max()};
    };
    return !NumberIndex(numbers).hasRepeated() && std::none_of(numbers.begin(), numbers.end(), isOutside);
}

/// Numbers that users could not tell things by are replaced by counting.
void keepNumbers(Model& model, std::vector<std::int64_t>& place, std::vector<std::int64_t> numbers,
                 const std::string& what) {
    if (isNumbering(numbers))
        place = std::move(numbers);
    else
        model.notes.push_back("the numbers of the " + what +
                              " repeat or are too large; they are counted from 0");
}

void appendNumbers(Model& model, const GmshFile& file, const Arrangement& cells) {
    std::vector<std::int64_t> numbers;
    for (const std::uint32_t element : cells.elements)
        numbers.push_back(file.elements.numbers[element]);
    keepNumbers(model, model.nodeNumbers, file.nodeNumbers, "nodes");
    keepNumbers(model, model.cellNumbers, std::move(numbers), "elements");
}

void appendPartitions(Model& model, const GmshFile& file, const Arrangement& cells) {
    const std::vector<std::uint32_t>& partitions = file.elements.partitions;
    if (std::all_of(partitions.begin(), partitions.end(), [](std::uint32_t p) { return p == 0; }))
        return;
    Field field{"partition", FieldLocation::Cell, 1, {}};
    for (const std::uint32_t element : cells.elements)
        field.values.push_back(partitions[element]);
    model.fields.push_back(std::move(field));
}

/// Refuses a file of whose bodies nothing would be left but their boundaries.
void noteSkipped(Model& model, const GmshFile& file) {
    for (const auto& [name, count] : file.skipped)
        model.notes.push_back("skipped " + std::to_string(count) + " " + name + ", which are not supported");
    int dimension = -1;
    for (const GmshType* type : file.elements.types)
        dimension = std::max(dimension, type->dimension);
    if (dimension < file.skippedDimension)
        throw Refusal("cannot be drawn: " + model.notes.front());
    if (dimension < 0)
        throw Refusal("has no elements");
}

} // namespace

bool isGmsh(std::string_view content) {
    return content.starts_with("$MeshFormat") || content.starts_with("$Comments") ||
           content.starts_with("$NOD");
}

Model readGmsh(std::string_view content) {
    GmshFile file = parseGmsh(content);
    Model model;
    noteSkipped(model, file);
    const Arrangement cells = arrange(file);
    model.nodes = std::move(file.nodes);
    appendCells(model, file, cells);
    appendParts(model, file, cells);
    appendNodeSets(model, file);
    appendNumbers(model, file, cells);
    noteSharedElements(model, file, cells);
    appendPartitions(model, file, cells);
    appendGmshFields(model, file, cells.places);
    lendToBoundary(model);
    return model;
}

} // namespace nruview::readers
