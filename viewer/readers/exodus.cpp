// Exodus II files: nodes and numbers, and what is made of the rest.
#include <algorithm>
#include <fstream>
#include <limits>
#include <numeric>

#include "viewer/readers/apart.h"
#include "viewer/readers/exodusparts.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kMostNodes = std::numeric_limits<std::uint32_t>::max() - 1;

void readNodes(const ExodusFile& file, Model& model) {
    const std::size_t count = file.dimension("num_nodes"), dimensions = spaceOf(file);
    if (count == 0)
        throw Refusal("has no nodes");
    if (count > kMostNodes)
        throw Refusal("has more nodes than the viewer can hold");
    const bool together = file.has("coord");
    std::vector<double> values;
    if (together)
        values = file.values<double>("coord", dimensions * count);
    for (std::size_t axis = 0; axis < dimensions; ++axis) {
        if (!together)
            values = file.values<double>(std::string("coord") + "xyz"[axis], count);
        model.nodes.resize(count);
        const double* own = values.data() + (together ? axis * count : 0);
        for (std::size_t i = 0; i < count; ++i)
            model.nodes[i][axis] = own[i];
    }
}

/// Exodus counts from 1 where a file tells no numbers.
std::vector<std::int64_t> numbersOf(const ExodusFile& file, const std::string& variable, std::size_t count) {
    if (file.has(variable)) {
        const auto numbers = file.values<long long>(variable, count);
        return {numbers.begin(), numbers.end()};
    }
    std::vector<std::int64_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

bool areUsable(std::vector<std::int64_t> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers.empty() ||
           (numbers.front() >= 0 && numbers.back() <= std::numeric_limits<std::uint32_t>::max() &&
            std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end());
}

void readNumbers(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, Model& model) {
    model.nodeNumbers = numbersOf(file, "node_num_map", model.nodes.size());
    const auto elements = numbersOf(file, "elem_num_map", file.dimension("num_elem"));
    for (const ExodusBlock& block : blocks) {
        if (block.firstElement + block.elementCount > elements.size())
            throw Refusal("has more elements in its blocks than it announces");
        const auto first = elements.begin() + static_cast<std::ptrdiff_t>(block.firstElement);
        model.cellNumbers.insert(model.cellNumbers.end(), first,
                                 first + static_cast<std::ptrdiff_t>(block.elementCount));
    }
    for (auto* numbers : {&model.nodeNumbers, &model.cellNumbers})
        if (!areUsable(*numbers)) {
            std::iota(numbers->begin(), numbers->end(), 1);
            model.notes.push_back(
                std::string(numbers == &model.nodeNumbers ? "nodes" : "elements") +
                " are counted from 1: the file's own numbers are negative, too large or there twice");
        }
}

/// Kinds of things that have no place in the model.
void noteOthers(const ExodusFile& file, Model& model) {
    constexpr struct {
        const char *dimension, *name;
    } kKinds[] = {{"num_ed_blk", "edge block"},      {"num_fa_blk", "face block"},
                  {"num_edge_sets", "edge set"},     {"num_face_sets", "face set"},
                  {"num_elem_sets", "element set"},  {"num_glo_var", "global variable"},
                  {"num_edge_var", "edge variable"}, {"num_face_var", "face variable"}};
    std::string list;
    for (const auto& kind : kKinds)
        if (const std::size_t count = file.dimension(kind.dimension))
            list += (list.empty() ? "" : ", ") + std::to_string(count) + " " + kind.name +
                    (count == 1 ? "" : "s");
    if (!list.empty())
        model.notes.push_back("not read: " + list);
}

Model import(const std::filesystem::path& path) {
    const ExodusFile file(path);
    Model model;
    readNodes(file, model);
    const std::vector<ExodusBlock> blocks = readBlocks(file, model);
    readNumbers(file, blocks, model);
    readResults(file, blocks, model);
    readSets(file, blocks, model);
    noteOthers(file, model);
    return model;
}

} // namespace

std::size_t spaceOf(const ExodusFile& file) {
    const std::size_t dimensions = file.dimension("num_dim");
    if (dimensions == 0)
        throw Refusal("is a netCDF or HDF5 file, but not of Exodus II");
    if (dimensions > 3)
        throw Refusal("is of " + std::to_string(dimensions) + " dimensions");
    return dimensions;
}

std::vector<long long> idsOf(const ExodusFile& file, const std::string& variable, std::size_t count) {
    if (file.has(variable))
        return file.values<long long>(variable, count);
    std::vector<long long> ids(count);
    std::iota(ids.begin(), ids.end(), 1);
    return ids;
}

std::string nameOf(const std::vector<std::string>& names, const std::vector<long long>& ids, std::size_t i,
                   const std::string& kind) {
    return i < names.size() && !names[i].empty() ? names[i] : kind + " " + std::to_string(ids[i]);
}

bool isExodus(const std::filesystem::path& path) {
    std::string head(8, '\0');
    std::ifstream(path, std::ios::binary).read(head.data(), 8);
    return head.starts_with("CDF\1") || head.starts_with("CDF\2") || head.starts_with("CDF\5") ||
           head == "\x89HDF\r\n\x1a\n";
}

Model readExodus(const std::filesystem::path& path) {
    return readApart([&] { return import(path); }, std::filesystem::file_size(path));
}

} // namespace nruview::readers
