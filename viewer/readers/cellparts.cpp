// A counting sort: one pass counts, one places.
#include "viewer/readers/cellparts.h"

#include <algorithm>

namespace nruview::readers {

namespace {

/// The cells in the order of their parts.
std::vector<std::uint32_t> orderOf(const std::vector<std::uint32_t>& partOfCell,
                                   const std::vector<ModelPart>& parts) {
    std::vector<std::uint32_t> next;
    for (const ModelPart& part : parts)
        next.push_back(part.firstCell);
    std::vector<std::uint32_t> order(partOfCell.size());
    for (std::uint32_t cell = 0; cell < partOfCell.size(); ++cell)
        order[next[partOfCell[cell]]++] = cell;
    return order;
}

} // namespace

void sortIntoParts(Model& model, const std::vector<std::uint32_t>& partOfCell,
                   const std::vector<std::string>& names) {
    std::vector<ModelPart> parts;
    for (const std::string& name : names)
        parts.push_back({name, 0, 0, {}, 1.0});
    for (const std::uint32_t part : partOfCell)
        ++parts[part].cellCount;
    for (std::size_t i = 1; i < parts.size(); ++i)
        parts[i].firstCell = parts[i - 1].firstCell + parts[i - 1].cellCount;

    Model unsorted;
    unsorted.types.swap(model.types);
    unsorted.offsets.swap(model.offsets);
    unsorted.connectivity.swap(model.connectivity);
    unsorted.cellNumbers.swap(model.cellNumbers);
    for (const std::uint32_t cell : orderOf(partOfCell, parts)) {
        model.addCell(unsorted.types[cell], unsorted.cellNodes(cell));
        if (!unsorted.cellNumbers.empty())
            model.cellNumbers.push_back(unsorted.cellNumbers[cell]);
    }
    std::erase_if(parts, [](const ModelPart& part) { return part.cellCount == 0; });
    model.parts = std::move(parts);
}

} // namespace nruview::readers
