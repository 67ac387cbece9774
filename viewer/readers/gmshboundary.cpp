// Boundary elements and the solids behind them.
#include <algorithm>
#include <cmath>
#include <limits>

#include "viewer/model/celltypes.h"
#include "viewer/readers/gmshfile.h"

namespace nruview::readers {

namespace {

using FaceKey = std::array<std::uint32_t, 4>;
constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

FaceKey faceKey(std::span<const std::uint32_t> nodes, const FaceShape& face) {
    FaceKey key{kNone, kNone, kNone, kNone};
    for (std::size_t i = 0; i < face.corners; ++i)
        key[i] = nodes[face.nodes[i]];
    std::sort(key.begin(), key.end());
    return key;
}

/// A cell of a surface and the solid that has it as a face.
struct Boundary {
    FaceKey key;
    std::uint32_t cell = kNone, solid = kNone;
};

std::vector<Boundary> surfaceCells(const Model& model) {
    std::vector<Boundary> cells;
    for (std::uint32_t cell = 0; cell < model.cellCount(); ++cell)
        if (const CellShape& shape = cellShape(model.types[cell]); shape.dimension == 2)
            cells.push_back({faceKey(model.cellNodes(cell), shape.faces[0]), cell, kNone});
    std::sort(cells.begin(), cells.end(), [](const Boundary& a, const Boundary& b) { return a.key < b.key; });
    return cells;
}

std::vector<Boundary> boundaries(const Model& model) {
    std::vector<Boundary> all = surfaceCells(model);
    std::vector<bool> onBoundary(model.nodes.size(), false);
    for (const Boundary& boundary : all)
        for (const std::uint32_t node : boundary.key)
            if (node != kNone)
                onBoundary[node] = true;
    const auto before = [](const Boundary& a, const FaceKey& key) { return a.key < key; };
    for (std::uint32_t cell = 0; cell < model.cellCount() && !all.empty(); ++cell) {
        const CellShape& shape = cellShape(model.types[cell]);
        for (const FaceShape& face : shape.dimension == 3 ? shape.faces : std::span<const FaceShape>()) {
            const FaceKey key = faceKey(model.cellNodes(cell), face);
            if (!std::all_of(key.begin(), key.end(), [&](auto n) { return n == kNone || onBoundary[n]; }))
                continue;
            for (auto found = std::lower_bound(all.begin(), all.end(), key, before);
                 found != all.end() && found->key == key; ++found)
                found->solid = found->solid == kNone ? cell : found->solid;
        }
    }
    std::erase_if(all, [](const Boundary& boundary) { return boundary.solid == kNone; });
    return all;
}

bool lend(Field& field, const Boundary& boundary) {
    const auto components = static_cast<std::size_t>(field.components);
    const auto from = field.values.begin() + static_cast<std::ptrdiff_t>(boundary.solid * components);
    const auto to = field.values.begin() + static_cast<std::ptrdiff_t>(boundary.cell * components);
    const auto end = to + field.components;
    if (!std::all_of(to, end, [](double value) { return std::isnan(value); }) || std::isnan(*from))
        return false;
    std::copy(from, from + field.components, to);
    return true;
}

} // namespace

void lendToBoundary(Model& model) {
    const auto atCells = [](const Field& field) { return field.location == FieldLocation::Cell; };
    if (std::none_of(model.fields.begin(), model.fields.end(), atCells))
        return;
    const std::vector<Boundary> all = boundaries(model);
    std::size_t most = 0;
    for (Field& field : model.fields)
        if (atCells(field))
            most = std::max(most,
                            static_cast<std::size_t>(std::count_if(
                                all.begin(), all.end(), [&](const Boundary& b) { return lend(field, b); })));
    if (most > 0)
        model.notes.push_back(std::to_string(most) +
                              " boundary elements without values show those of the solids behind them");
}

} // namespace nruview::readers
