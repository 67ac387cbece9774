// Numbers and indices, translated through a table in the order of the numbers.
#include "viewer/model/numbering.h"

#include <algorithm>
#include <numeric>

#include "viewer/error.h"

namespace nruview {

namespace {

using Index = std::uint32_t;
using Numbers = std::vector<std::int64_t>;

/// What is numbered, in words for errors.
struct Kind {
    const char* one;
    const char* many;
};
constexpr Kind kNodes{"node", "nodes"}, kCells{"element", "elements"};

void append(ElementList& list, Index index) {
    if (!list.empty() && list.back().last + 1 == index)
        ++list.back().last;
    else
        list.push_back({index, index});
}

std::string text(const ElementRange& range) {
    const std::string first = std::to_string(range.first);
    return range.first == range.last ? first : first + " to " + std::to_string(range.last);
}

[[noreturn]] void refuse(const char* option, const Kind& kind, const std::string& missing, std::int64_t first,
                         std::int64_t last) {
    throw ViewerError(option, std::string("there is no ") + kind.one + " " + missing + "; the model's " +
                                  kind.many + " are " + std::to_string(first) + " to " +
                                  std::to_string(last));
}

void checkCounted(const ElementList& list, std::size_t count, const char* option, const Kind& kind) {
    for (const ElementRange& range : list)
        if (range.last >= count)
            refuse(option, kind, std::to_string(range.last), 0, static_cast<std::int64_t>(count) - 1);
}

ElementList translated(const Numbers& numbers, const ElementList& list, const char* option,
                       const Kind& kind) {
    std::vector<Index> order(numbers.size());
    std::iota(order.begin(), order.end(), Index{0});
    std::sort(order.begin(), order.end(), [&](Index a, Index b) { return numbers[a] < numbers[b]; });
    ElementList indices;
    for (const ElementRange& range : list) {
        auto found = std::lower_bound(order.begin(), order.end(), std::int64_t{range.first},
                                      [&](Index i, std::int64_t number) { return numbers[i] < number; });
        if (found == order.end() || numbers[*found] > range.last)
            refuse(option, kind, text(range), numbers[order.front()], numbers[order.back()]);
        for (; found != order.end() && numbers[*found] <= range.last; ++found)
            append(indices, *found);
    }
    return indices;
}

ElementList indicesOf(const Numbers& numbers, std::size_t count, const ElementList& list, const char* option,
                      const Kind& kind) {
    if (!list.empty() && !numbers.empty())
        return translated(numbers, list, option, kind);
    checkCounted(list, count, option, kind);
    return list;
}

} // namespace

std::int64_t nodeNumber(const Model& model, std::uint32_t node) {
    return model.nodeNumbers.empty() ? node : model.nodeNumbers[node];
}

std::int64_t cellNumber(const Model& model, std::uint32_t cell) {
    return model.cellNumbers.empty() ? cell : model.cellNumbers[cell];
}

ElementList nodeIndices(const Model& model, const ElementList& numbers, const char* option) {
    return indicesOf(model.nodeNumbers, model.nodes.size(), numbers, option, kNodes);
}

ElementList cellIndices(const Model& model, const ElementList& numbers, const char* option) {
    return indicesOf(model.cellNumbers, model.cellCount(), numbers, option, kCells);
}

ElementList numbersOfCells(const Model& model, std::vector<std::uint32_t> cells) {
    for (std::uint32_t& cell : cells)
        cell = static_cast<std::uint32_t>(cellNumber(model, cell));
    std::sort(cells.begin(), cells.end());
    ElementList numbers;
    for (const std::uint32_t cell : cells)
        append(numbers, cell);
    return numbers;
}

} // namespace nruview
