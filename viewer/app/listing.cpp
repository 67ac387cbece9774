// One fact a line, so that scripts can read it too.
#include "viewer/app/listing.h"

#include <cstdio>
#include <map>
#include <numeric>

#include "viewer/model/fields.h"
#include "viewer/model/numbering.h"
#include "viewer/model/surface.h"
#include "viewer/scene/camera.h"

namespace nruview {

namespace {

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string range(double low, double high) {
    return number(low) + " .. " + number(high);
}

void listCells(std::ostream& out, const Model& model) {
    std::map<CellType, std::size_t> counts;
    for (CellType type : model.types)
        ++counts[type];
    out << "cells " << model.cellCount() << "\n";
    for (const auto& [type, count] : counts)
        out << "  " << cellTypeName(type) << " " << count << "\n";
}

/// What the drawing shows of solids and shells: a check against other programs.
void listFaces(std::ostream& out, const Model& model) {
    const Surface surface = extractSurface(model);
    if (surface.faceCount == 0)
        return;
    const std::size_t others = surface.faceCount - surface.triangleFaces - surface.quadFaces;
    out << "outer faces " << surface.faceCount << "\n";
    for (const auto& [name, count] : {std::pair("triangle", surface.triangleFaces),
                                      std::pair("quad", surface.quadFaces), std::pair("polygon", others)})
        if (count > 0)
            out << "  " << name << " " << count << "\n";
    out << "area " << number(surfaceArea(model, surface)) << "\n";
}

/// The numbers that --hide and the like take.
void listNumbers(std::ostream& out, const Model& model, const ModelPart& part) {
    std::vector<std::uint32_t> cells(part.cellCount);
    std::iota(cells.begin(), cells.end(), part.firstCell);
    const ElementList numbers = numbersOfCells(model, std::move(cells));
    if (numbers.empty())
        out << "no cells";
    else if (part.cellCount == 1)
        out << "cell " << numbers.front().first;
    else if (numbers.size() == 1)
        out << "cells " << numbers.front().first << " to " << numbers.front().last;
    else
        out << part.cellCount << " cells from " << numbers.front().first << " to " << numbers.back().last;
}

void listPart(std::ostream& out, const Model& model, const ModelPart& part) {
    out << "  " << (part.name.empty() ? "(no name)" : part.name) << ", ";
    listNumbers(out, model, part);
    char text[64];
    if (part.color) {
        std::snprintf(text, sizeof text, ", color %02x%02x%02x", *part.color & 0xFF, *part.color >> 8 & 0xFF,
                      *part.color >> 16 & 0xFF);
        out << text;
    }
    if (part.opacity < 1.0)
        out << ", opacity " << number(part.opacity);
    out << "\n";
}

/// The fields are one result at several steps. A tensor's range is that of von Mises, a vector's that of its
/// magnitude.
void listResult(std::ostream& out, const Model& model, std::span<const std::size_t> fields) {
    const Field& field = model.fields[fields.front()];
    std::string label;
    std::vector<double> values;
    for (const std::size_t i : fields) {
        Scalars scalars = defaultScalars(model.fields[i]);
        label = scalars.label;
        if (const auto found = finiteRange(scalars.values))
            values.insert(values.end(), found->begin(), found->end());
    }
    const auto found = finiteRange(values);
    out << "  " << fieldSelector(model, field) << ", "
        << (field.location == FieldLocation::Node ? "node" : "cell") << ", " << field.components
        << (field.components == 1 ? " component" : " components") << ", " << label << " "
        << (found ? range((*found)[0], (*found)[1]) : "has no finite value");
    if (field.step)
        out << ", " << fields.size() << (fields.size() == 1 ? " step" : " steps");
    out << "\n";
}

void listFields(std::ostream& out, const Model& model) {
    std::vector<std::vector<std::size_t>> results;
    for (const StepSeries& series : stepSeries(model))
        if (series.numbers.empty())
            results.push_back(series.fields);
    for (std::size_t i = 0; i < model.fields.size(); ++i)
        if (!model.fields[i].step)
            results.push_back({i});
    out << "fields " << results.size() << "\n";
    for (const std::vector<std::size_t>& fields : results)
        listResult(out, model, fields);
}

void listSteps(std::ostream& out, const Model& model) {
    if (!model.steps.empty())
        out << "steps " << model.steps.size() << "\n";
    for (std::size_t i = 0; i < model.steps.size(); ++i)
        out << "  " << i << ", " << model.steps[i].label << "\n";
    for (const StepSeries& series : stepSeries(model))
        if (!series.numbers.empty())
            out << "steps " << series.numbers.size() << " of " << series.name << ", numbered "
                << series.numbers.front() << " to " << series.numbers.back() << "\n";
}

} // namespace

void listModel(std::ostream& out, const Model& model, const std::string& name) {
    out << name << "\nnodes " << model.nodes.size() << "\n";
    listCells(out, model);
    listFaces(out, model);
    if (!model.parts.empty())
        out << "parts " << model.parts.size() << "\n";
    for (const ModelPart& part : model.parts)
        listPart(out, model, part);
    const Bounds bounds = boundsOf(model.nodes);
    for (int k = 0; k < 3; ++k)
        out << "xyz"[k] << " " << range(bounds.low[k], bounds.high[k]) << "\n";
    listFields(out, model);
    if (!model.nodeSets.empty())
        out << "node sets " << model.nodeSets.size() << "\n";
    for (const NodeSet& set : model.nodeSets)
        out << "  " << set.name << ", " << set.nodes.size()
            << (set.nodes.size() == 1 ? " node\n" : " nodes\n");
    listSteps(out, model);
    for (const std::string& note : model.notes)
        out << "note: " << note << "\n";
}

} // namespace nruview
