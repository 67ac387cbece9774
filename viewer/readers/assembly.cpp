// From raw cells and coordinates to a model: unknown cell types drop out, indices are checked.
#include <limits>

#include "viewer/model/celltypes.h"
#include "viewer/readers/readers.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kMaximumIndex = std::numeric_limits<std::uint32_t>::max() - 1;

void checkOffsets(const RawCells& cells) {
    std::int64_t previous = 0;
    for (const std::int64_t end : cells.offsets) {
        if (end < previous)
            throw Refusal("the cell offsets do not ascend");
        previous = end;
    }
    if (static_cast<std::size_t>(previous) != cells.connectivity.size())
        throw Refusal("the cell offsets end at " + std::to_string(previous) + " but the connectivity has " +
                      std::to_string(cells.connectivity.size()) + " entries");
}

std::uint32_t nodeIndex(std::int64_t index, std::size_t firstNode, std::size_t nodeCount) {
    if (index < 0 || static_cast<std::size_t>(index) >= nodeCount)
        throw Refusal("a cell uses node " + std::to_string(index) + " of " + std::to_string(nodeCount));
    return static_cast<std::uint32_t>(firstNode + static_cast<std::size_t>(index));
}

} // namespace

std::vector<std::uint32_t> appendCells(Model& model, const RawCells& cells, std::size_t firstNode,
                                       SkippedCells& skipped) {
    if (cells.types.size() != cells.offsets.size())
        throw Refusal("has " + std::to_string(cells.offsets.size()) + " cells but " +
                      std::to_string(cells.types.size()) + " cell types");
    checkOffsets(cells);
    if (model.connectivity.size() + cells.connectivity.size() > kMaximumIndex)
        throw Refusal("has more cells than the viewer can hold");
    std::vector<std::uint32_t> kept;
    std::vector<std::uint32_t> nodes;
    for (std::size_t cell = 0; cell < cells.types.size(); ++cell) {
        const std::optional<CellType> type = cellTypeOfVtk(cells.types[cell]);
        if (!type) {
            ++skipped[cells.types[cell]];
            continue;
        }
        nodes.clear();
        for (std::int64_t i = cell == 0 ? 0 : cells.offsets[cell - 1]; i < cells.offsets[cell]; ++i)
            nodes.push_back(nodeIndex(cells.connectivity[static_cast<std::size_t>(i)], firstNode,
                                      model.nodes.size() - firstNode));
        model.addCell(*type, nodes);
        kept.push_back(static_cast<std::uint32_t>(cell));
    }
    return kept;
}

std::vector<double> keptTuples(const std::vector<double>& values, std::size_t components,
                               const std::vector<std::uint32_t>& kept) {
    std::vector<double> result;
    result.reserve(kept.size() * components);
    for (const std::uint32_t cell : kept)
        for (std::size_t c = 0; c < components; ++c)
            result.push_back(values[cell * components + c]);
    return result;
}

void finishCells(Model& model, const SkippedCells& skipped) {
    for (const auto& [type, count] : skipped)
        model.notes.push_back("skipped " + std::to_string(count) + " cells of VTK's type " +
                              std::to_string(type) + ", which is not supported");
    if (model.cellCount() == 0)
        throw Refusal(skipped.empty() ? "has no cells"
                                      : "has no cells of a supported type; " + model.notes.back());
}

void appendNodes(Model& model, const std::vector<double>& coordinates) {
    if (model.nodes.size() + coordinates.size() / 3 > kMaximumIndex)
        throw Refusal("has more nodes than the viewer can hold");
    model.nodes.reserve(model.nodes.size() + coordinates.size() / 3);
    for (std::size_t i = 0; i + 2 < coordinates.size(); i += 3)
        model.nodes.push_back({coordinates[i], coordinates[i + 1], coordinates[i + 2]});
}

} // namespace nruview::readers
