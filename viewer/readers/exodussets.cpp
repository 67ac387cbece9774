// Sets of nodes and of sides.
#include <algorithm>

#include "viewer/readers/exoduselements.h"
#include "viewer/readers/exodusparts.h"

namespace nruview::readers {

namespace {

/// Sets of nodes and of sides may have one name.
void addSet(Model& model, std::string name, std::vector<std::uint32_t> nodes) {
    const auto isTaken = [&](const NodeSet& set) { return set.name == name; };
    if (std::any_of(model.nodeSets.begin(), model.nodeSets.end(), isTaken))
        name += " (" + std::to_string(model.nodeSets.size() + 1) + ")";
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    model.nodeSets.push_back({std::move(name), std::move(nodes)});
}

/// The values of a variable of a set; none for a set without any.
std::vector<std::uint32_t> membersOf(const ExodusFile& file, const char* variable, const char* dimension,
                                     std::size_t number) {
    const std::string name = numbered(variable, number);
    if (!file.has(name))
        return {};
    return file.values<std::uint32_t>(name, file.dimension(numbered(dimension, number)));
}

void readNodeSet(const ExodusFile& file, std::size_t number, const std::string& name, Model& model) {
    auto nodes = membersOf(file, "node_ns", "num_nod_ns", number);
    for (std::uint32_t& node : nodes) {
        if (node < 1 || node > model.nodes.size())
            throw Refusal("has node " + std::to_string(node) + " of " + std::to_string(model.nodes.size()) +
                          " in " + name);
        --node;
    }
    addSet(model, name, std::move(nodes));
}

/// Sides of elements that are left out have no nodes.
void readSideSet(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, std::size_t number,
                 const std::string& name, Model& model) {
    const auto elements = membersOf(file, "elem_ss", "num_side_ss", number);
    const auto sides = membersOf(file, "side_ss", "num_side_ss", number);
    std::vector<std::uint32_t> nodes;
    for (std::size_t i = 0; i < elements.size() && i < sides.size(); ++i) {
        const auto after = std::upper_bound(
            blocks.begin(), blocks.end(), elements[i],
            [](std::size_t element, const ExodusBlock& block) { return element <= block.firstElement; });
        if (after == blocks.begin())
            continue;
        const ExodusBlock& block = *(after - 1);
        const std::size_t place = elements[i] - 1 - block.firstElement;
        if (place >= block.elementCount)
            continue;
        const auto side = sideNodes(model, block.firstCell + place, block.isShell, sides[i]);
        nodes.insert(nodes.end(), side.begin(), side.end());
    }
    addSet(model, name, std::move(nodes));
}

} // namespace

void readSets(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, Model& model) {
    const std::size_t nodeSets = file.dimension("num_node_sets");
    const auto nodeIds = idsOf(file, "ns_prop1", nodeSets);
    const auto nodeNames = file.texts("ns_names");
    for (std::size_t i = 0; i < nodeSets; ++i)
        readNodeSet(file, i + 1, nameOf(nodeNames, nodeIds, i, "node set"), model);
    const std::size_t sideSets = file.dimension("num_side_sets");
    const auto sideIds = idsOf(file, "ss_prop1", sideSets);
    const auto sideNames = file.texts("ss_names");
    for (std::size_t i = 0; i < sideSets; ++i)
        readSideSet(file, blocks, i + 1, nameOf(sideNames, sideIds, i, "side set"), model);
}

} // namespace nruview::readers
