// One fact a line, so that scripts can read it too.
#include "viewer/listing.h"

#include <cstdio>
#include <map>

#include "viewer/camera.h"
#include "viewer/fields.h"

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
    const Bounds bounds = boundsOf(model.nodes);
    for (int k = 0; k < 3; ++k)
        out << "xyz"[k] << " " << range(bounds.low[k], bounds.high[k]) << "\n";
    out << "fields " << model.fields.size() << "\n";
    for (const Field& field : model.fields)
        listField(out, model, field);
    for (const StepSeries& series : stepSeries(model))
        out << "steps " << series.numbers.size() << " of " << series.name << ", numbered "
            << series.numbers.front() << " to " << series.numbers.back() << "\n";
    for (const std::string& note : model.notes)
        out << "note: " << note << "\n";
}

} // namespace nruview
