// Blocks of results. Each says what the values of a node are called and of which kind they are.
#include "viewer/readers/frdresults.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace nruview::readers {

namespace {

constexpr std::size_t kNumberColumn = 3;
constexpr std::size_t kRealWidth = 12, kRealsPerLine = 6;
constexpr std::size_t kValuesPerByte = 16; ///< results of few nodes are laid out for all: within limits

// Kinds of values.
constexpr std::int64_t kVector = 2, kMatrix = 4, kVectorPhase = 12, kMatrixPhase = 14;

std::int64_t wholeOr(std::string_view text, std::int64_t otherwise) {
    return wholeNumber(text).value_or(otherwise);
}

std::string shortNumber(double value) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.6g", value);
    return text.data();
}

std::string_view continued(FrdCursor& cursor) {
    if (!cursor.isNext(" -2"))
        throw Refusal("has values of a node that end early");
    return cursor.line();
}

/// The place of a tensor's component by the end of its name; 6 for others.
std::size_t tensorPlace(std::string_view name) {
    constexpr std::array<std::string_view, 6> kEnds = {"XX", "YY", "ZZ", "XY", "YZ", "ZX"};
    const auto found =
        std::find_if(kEnds.begin(), kEnds.end(), [&](std::string_view end) { return name.ends_with(end); });
    return static_cast<std::size_t>(found - kEnds.begin());
}

} // namespace

FrdResults::FrdResults(FrdFile& file)
    : m_file(file), m_nodes(file.model.nodeNumbers), m_memory(kValuesPerByte * file.cursor.size()) {}

void FrdResults::readParameter(std::string_view line) {
    const std::string_view name = column(line, 4, 8);
    const std::string_view value = column(line, 24, 12);
    if (name == "1PSTEP")
        m_parameters = {};
    else if (name == "1PMODE")
        m_parameters.mode = wholeOr(value, 0);
    else if (name == "1PHID")
        m_parameters.diameter = wholeOr(value, -1);
}

FrdResults::Step FrdResults::stepOf(std::string_view header) const {
    Step step = m_parameters;
    const auto value = fortranReal(column(header, 12, 12));
    if (!value || !std::isfinite(*value))
        throw Refusal("has a block of results without its time: '" + std::string(header.substr(0, 80)) + "'");
    step.value = *value;
    step.kind = wholeOr(column(header, 56, 2), 0);
    step.number = wholeOr(column(header, 58, 5), 0);
    step.text = column(header, 36, 20);
    return step;
}

std::uint32_t FrdResults::indexOf(const Step& step) {
    const StepKey key = {step.kind, step.number, step.value, step.mode, step.diameter};
    const auto [entry, isNew] = m_stepIndices.try_emplace(key, static_cast<std::uint32_t>(m_steps.size()));
    if (isNew)
        m_steps.push_back(step);
    return entry->second;
}

void FrdResults::readBlock(std::string_view header) {
    const FrdFormat format = frdFormat(header);
    const Step step = stepOf(header);
    m_parameters = {};
    const std::string_view title = m_file.cursor.line();
    if (!title.starts_with(" -4"))
        throw Refusal("has a block of results without a name: '" + std::string(title.substr(0, 40)) + "'");
    const std::string name = oneLine(std::string(column(title, 5, 8)));
    const std::vector<Entity> entities = readEntities(title, format);
    const std::vector<double> values = readValues(entities.size(), format, frdCount(header));
    if (entities.empty() || values.empty())
        return;
    const std::uint32_t index = indexOf(step);
    for (const Piece& piece : piecesOf(name, entities))
        addField(piece, entities.size(), values, index);
}

/// Lines -5; what is to be calculated from other values is not in the file.
std::vector<FrdResults::Entity> FrdResults::readEntities(std::string_view title, FrdFormat format) {
    std::vector<Entity> entities;
    const std::int64_t count = wholeOr(column(title, 13, 5), 0);
    for (std::int64_t i = 0; isBinary(format) ? i < count : m_file.cursor.isNext(" -5"); ++i) {
        const std::string_view line = m_file.cursor.line();
        if (!line.starts_with(" -5"))
            throw Refusal("has fewer names of values than announced in '" + std::string(title) + "'");
        if (wholeOr(column(line, 33, 5), 0) != 1)
            entities.push_back({oneLine(std::string(column(line, 5, 8))), wholeOr(column(line, 18, 5), 1)});
    }
    return entities;
}

/// The values of all nodes; empty where the block has none.
std::vector<double> FrdResults::readValues(std::size_t perNode, FrdFormat format, std::size_t count) {
    std::vector<double> values;
    const bool isEmpty = isBinary(format) ? count == 0 : m_file.cursor.isNext(" -3");
    if (!isEmpty) {
        const std::size_t size = perNode * m_file.model.nodes.size();
        if (size > m_memory)
            throw Refusal("has more blocks of results than its size allows for");
        m_memory -= size;
        values.assign(size, std::numeric_limits<double>::quiet_NaN());
    }
    if (isBinary(format))
        readBinaryValues(perNode, format, count, values);
    else
        readTextValues(perNode, numberWidth(format), values);
    return values;
}

/// Six values a line, the others in lines -2.
void FrdResults::readTextValues(std::size_t perNode, std::size_t width, std::vector<double>& values) {
    for (std::string_view line = m_file.cursor.line(); !line.starts_with(" -3");
         line = m_file.cursor.line()) {
        const auto node = wholeNumber(column(line, kNumberColumn, width));
        if (!line.starts_with(" -1") || !node)
            throw Refusal("has no values of a node in '" + std::string(line.substr(0, 60)) + "'");
        double* const place = valuesOf(*node, perNode, values);
        for (std::size_t i = 0; i < perNode; ++i) {
            if (i > 0 && i % kRealsPerLine == 0)
                line = continued(m_file.cursor);
            const auto value =
                fortranReal(column(line, kNumberColumn + width + i % kRealsPerLine * kRealWidth, kRealWidth));
            if (!value)
                throw Refusal("has no value " + std::to_string(i + 1) + " of node " + std::to_string(*node));
            if (place)
                place[i] = *value;
        }
    }
}

void FrdResults::readBinaryValues(std::size_t perNode, FrdFormat format, std::size_t count,
                                  std::vector<double>& values) {
    FrdCursor& cursor = m_file.cursor;
    for (std::size_t n = 0; n < count; ++n) {
        double* const place = valuesOf(cursor.binary<std::int32_t>(), perNode, values);
        for (std::size_t i = 0; i < perNode; ++i) {
            const double value =
                format == FrdFormat::Double ? cursor.binary<double>() : cursor.binary<float>();
            if (place)
                place[i] = value;
        }
    }
}

/// Null for a node that the file does not have.
double* FrdResults::valuesOf(std::int64_t node, std::size_t perNode, std::vector<double>& values) {
    const auto index = m_nodes.find(node);
    m_strangeNodes += index ? 0 : 1;
    return index ? values.data() + perNode * *index : nullptr;
}

/// Vectors and tensors stay together, amplitudes and phases become a field each; else each value is one.
std::vector<FrdResults::Piece> FrdResults::piecesOf(const std::string& block,
                                                    const std::vector<Entity>& entities) {
    const std::size_t count = entities.size();
    const auto areAll = [&](std::int64_t type) {
        return std::all_of(entities.begin(), entities.end(),
                           [&](const Entity& entity) { return entity.type == type; });
    };
    const auto areTensors = [&] {
        for (std::size_t i = 0; i < count; ++i)
            if (tensorPlace(entities[i].name) != i % 6)
                return false;
        return true;
    };
    if (areAll(kVector) && count == 3)
        return {{block, {0, 1, 2}}};
    if (areAll(kMatrix) && count == 6 && areTensors())
        return {{block, {0, 1, 2, 3, 4, 5}}};
    if (areAll(kVectorPhase) && count == 6)
        return {{block + "_MAG", {0, 1, 2}}, {block + "_PHA", {3, 4, 5}}};
    if (areAll(kMatrixPhase) && count == 12 && areTensors())
        return {{block + "_MAG", {0, 1, 2, 3, 4, 5}}, {block + "_PHA", {6, 7, 8, 9, 10, 11}}};
    if (count == 1)
        return {{block, {0}}};
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < count; ++i)
        pieces.push_back(
            {entities[i].name.starts_with(block) ? entities[i].name : block + "_" + entities[i].name, {i}});
    return pieces;
}

void FrdResults::addField(const Piece& piece, std::size_t perNode, const std::vector<double>& values,
                          std::uint32_t step) {
    if (!m_names.insert({piece.name, step}).second) {
        m_file.model.notes.push_back("skipped a second block " + piece.name + " of one step");
        return;
    }
    Field field{piece.name, FieldLocation::Node, static_cast<int>(piece.components.size()), {}, step};
    field.values.reserve(values.size() / perNode * piece.components.size());
    for (std::size_t first = 0; first < values.size(); first += perNode)
        for (const std::size_t component : piece.components)
            field.values.push_back(values[first + component]);
    m_file.model.fields.push_back(std::move(field));
}

/// Imaginary parts and phases belong to oscillations, whose value is a frequency.
bool FrdResults::isComplex(std::uint32_t step) const {
    return m_names.contains({"DISPI", step}) || m_names.contains({"PDISP_PHA", step}) ||
           m_names.contains({"STRESSI", step});
}

std::string FrdResults::labelOf(std::uint32_t index, std::int64_t buckling) const {
    const Step& step = m_steps[index];
    const std::string value = shortNumber(step.value);
    if (step.kind == Frequency)
        return "mode " + std::to_string(step.mode) +
               (step.diameter >= 0 ? ", nodal diameter " + std::to_string(step.diameter) : "") + ", " +
               value + " Hz";
    if (!step.text.empty())
        return oneLine(step.text) + " " + value;
    if (step.kind == Named)
        return buckling > 0 ? "buckling " + std::to_string(buckling) + ", factor " + value : "preload";
    if (isComplex(index))
        return value + " Hz";
    return (step.kind == LoadStep ? "load " : "time ") + value;
}

void FrdResults::finish() {
    if (m_strangeNodes > 0)
        m_file.model.notes.push_back("skipped " + std::to_string(m_strangeNodes) +
                                     " results of nodes that are not there");
    std::int64_t buckling = 0;
    for (std::uint32_t i = 0; i < m_steps.size(); ++i) {
        const Step& step = m_steps[i];
        // The solver writes the state before the buckling with the factor 0.
        const bool isBuckling = step.kind == Named && step.text.empty() && step.value != 0.0;
        buckling = isBuckling ? buckling + 1 : 0;
        m_file.model.steps.push_back(
            {labelOf(i, buckling), step.value, step.kind == Frequency || isBuckling});
    }
}

} // namespace nruview::readers
