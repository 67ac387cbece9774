// One fact a line, so that scripts can read it too.
#include "viewer/app/listing.h"

#include <cstdio>
#include <map>

#include "viewer/model/fields.h"
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

void listPart(std::ostream& out, const ModelPart& part) {
    out << "  " << (part.name.empty() ? "(no name)" : part.name) << ", ";
    if (part.cellCount == 1)
        out << "cell " << part.firstCell;
    else
        out << "cells " << part.firstCell << " to " << part.firstCell + part.cellCount - 1;
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

/// A tensor's range is that of von Mises, a vector's that of its magnitude.
void listField(std::ostream& out, const Model& model, const Field& field) {
    const Scalars scalars = defaultScalars(field);
    const auto found = finiteRange(scalars.values);
    out << "  " << fieldSelector(model, field) << ", "
        << (field.location == FieldLocation::Node ? "node" : "cell") << ", " << field.components
        << (field.components == 1 ? " component" : " components") << ", " << scalars.label << " "
        << (found ? range((*found)[0], (*found)[1]) : "has no finite value") << "\n";
}

} // namespace

void listModel(std::ostream& out, const Model& model, const std::string& name) {
    out << name << "\nnodes " << model.nodes.size() << "\n";
    listCells(out, model);
    if (!model.parts.empty())
        out << "parts " << model.parts.size() << "\n";
    for (const ModelPart& part : model.parts)
        listPart(out, part);
    const Bounds bounds = boundsOf(model.nodes);
    for (int k = 0; k < 3; ++k)
        out << "xyz"[k] << " " << range(bounds.low[k], bounds.high[k]) << "\n";
    out << "fields " << model.fields.size() << "\n";
    for (const Field& field : model.fields)
        listField(out, model, field);
    if (!model.nodeSets.empty())
        out << "node sets " << model.nodeSets.size() << "\n";
    for (const NodeSet& set : model.nodeSets)
        out << "  " << set.name << ", " << set.nodes.size()
            << (set.nodes.size() == 1 ? " node\n" : " nodes\n");
    for (const StepSeries& series : stepSeries(model))
        out << "steps " << series.numbers.size() << " of " << series.name << ", numbered "
            << series.numbers.front() << " to " << series.numbers.back() << "\n";
    for (const std::string& note : model.notes)
        out << "note: " << note << "\n";
}

} // namespace nruview
