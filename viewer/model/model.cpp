// The model's own functions and the checks that every reader and sample passes through.
#include "viewer/model/model.h"

#include <algorithm>
#include <cmath>

#include "viewer/error.h"
#include "viewer/model/celltypes.h"

namespace nruview {

namespace {

std::string cellLabel(const Model& model, std::size_t cell) {
    return "cell " + std::to_string(cell) + " (" + std::string(cellTypeName(model.types[cell])) + ")";
}

void checkNodes(const Model& model, const std::string& subject) {
    if (model.nodes.empty())
        throw ViewerError(subject, "has no nodes");
    const auto finite = [](const Point& p) {
        return std::all_of(p.begin(), p.end(), [](double x) { return std::isfinite(x); });
    };
    const auto bad = std::find_if_not(model.nodes.begin(), model.nodes.end(), finite);
    if (bad != model.nodes.end())
        throw ViewerError(subject, "node " + std::to_string(bad - model.nodes.begin()) +
                                       " has a coordinate that is not finite");
}

void checkCell(const Model& model, std::size_t cell, const std::string& subject) {
    const CellShape& shape = cellShape(model.types[cell]);
    const std::span<const std::uint32_t> nodes = model.cellNodes(cell);
    const auto count = static_cast<std::size_t>(shape.minimum);
    if (shape.nodes != 0 ? nodes.size() != count : nodes.size() < count)
        throw ViewerError(subject,
                          cellLabel(model, cell) + " has " + std::to_string(nodes.size()) + " nodes");
    for (const std::uint32_t node : nodes)
        if (node >= model.nodes.size())
            throw ViewerError(subject, cellLabel(model, cell) + " uses node " + std::to_string(node) +
                                           " of " + std::to_string(model.nodes.size()));
}

void checkCells(const Model& model, const std::string& subject) {
    const auto& offsets = model.offsets;
    if (offsets.size() != model.cellCount() + 1 || offsets.front() != 0 ||
        offsets.back() != model.connectivity.size() || !std::is_sorted(offsets.begin(), offsets.end()))
        throw ViewerError(subject, "the cell offsets do not fit the connectivity");
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell)
        checkCell(model, cell, subject);
}

void checkField(const Model& model, const Field& field, const std::string& subject) {
    const bool atNodes = field.location == FieldLocation::Node;
    const std::size_t tuples = atNodes ? model.nodes.size() : model.cellCount();
    if (field.components < 1 || field.values.size() != tuples * static_cast<std::size_t>(field.components))
        throw ViewerError(subject, "field " + field.name + " has " + std::to_string(field.values.size()) +
                                       " values of " + std::to_string(field.components) + " components for " +
                                       std::to_string(tuples) + (atNodes ? " nodes" : " cells"));
}

void checkStep(const Model& model, const Field& field, const std::string& subject) {
    if (field.step && *field.step >= model.steps.size())
        throw ViewerError(subject, "field " + field.name + " belongs to step " + std::to_string(*field.step) +
                                       " of " + std::to_string(model.steps.size()));
}

void checkNumbers(std::vector<std::int64_t> numbers, std::size_t count, const char* kind,
                  const std::string& subject) {
    if (numbers.empty())
        return;
    if (numbers.size() != count)
        throw ViewerError(subject, std::string("not every ") + kind + " has a number");
    std::sort(numbers.begin(), numbers.end());
    if (numbers.front() < 0 || numbers.back() > std::int64_t{0xFFFFFFFF})
        throw ViewerError(subject, std::string(kind) + " numbers go from " + std::to_string(numbers.front()) +
                                       " to " + std::to_string(numbers.back()));
    const auto twice = std::adjacent_find(numbers.begin(), numbers.end());
    if (twice != numbers.end())
        throw ViewerError(subject, std::string(kind) + " " + std::to_string(*twice) + " is there twice");
}

void checkNodeSet(const Model& model, const NodeSet& set, const std::string& subject) {
    for (const std::uint32_t node : set.nodes)
        if (node >= model.nodes.size())
            throw ViewerError(subject, "node set " + set.name + " has node " + std::to_string(node) + " of " +
                                           std::to_string(model.nodes.size()));
}

void checkParts(const Model& model, const std::string& subject) {
    std::uint64_t next = 0;
    for (const ModelPart& part : model.parts) {
        if (part.firstCell != next)
            throw ViewerError(subject, "part " + part.name + " does not begin where the one before it ends");
        next += part.cellCount;
    }
    if (!model.parts.empty() && next != model.cellCount())
        throw ViewerError(subject, "the parts have " + std::to_string(next) + " cells of " +
                                       std::to_string(model.cellCount()));
    if (!model.cornerNormals.empty() && model.cornerNormals.size() != model.connectivity.size())
        throw ViewerError(subject, "the normals do not fit the cells");
}

} // namespace

void Model::addCell(CellType type, std::span<const std::uint32_t> cellNodes) {
    types.push_back(type);
    connectivity.insert(connectivity.end(), cellNodes.begin(), cellNodes.end());
    offsets.push_back(static_cast<std::uint32_t>(connectivity.size()));
}

ModelPart partOf(const Model& model, std::uint32_t cell) {
    const auto isBefore = [](const ModelPart& part, std::uint32_t i) {
        return part.firstCell + part.cellCount <= i;
    };
    const auto part = std::lower_bound(model.parts.begin(), model.parts.end(), cell, isBefore);
    return part == model.parts.end() ? ModelPart{} : *part;
}

std::string_view cellTypeName(CellType type) {
    return cellShape(type).name;
}

void checkModel(const Model& model, const std::string& subject) {
    checkNodes(model, subject);
    checkCells(model, subject);
    for (const Field& field : model.fields) {
        checkField(model, field, subject);
        checkStep(model, field, subject);
    }
    checkNumbers(model.nodeNumbers, model.nodes.size(), "node", subject);
    checkNumbers(model.cellNumbers, model.cellCount(), "element", subject);
    for (const NodeSet& set : model.nodeSets)
        checkNodeSet(model, set, subject);
    checkParts(model, subject);
}

} // namespace nruview
