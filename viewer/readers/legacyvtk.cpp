// Legacy VTK files, versions 1.0 to 5.1: UNSTRUCTURED_GRID and POLYDATA (https://docs.vtk.org, file formats).
#include <algorithm>
#include <optional>

#include "viewer/labels/text.h"
#include "viewer/readers/legacycursor.h"

namespace nruview::readers {

namespace {

enum class Section { Geometry, Node, Cell };

// Polygonal data numbers its cells in this order, whatever the order in the file.
constexpr std::array<std::string_view, 4> kPolyKinds = {"vertices", "lines", "polygons", "triangle_strips"};

struct LegacyFile {
    explicit LegacyFile(std::string_view content) : cursor(content) {}

    LegacyCursor cursor;
    bool polyData = false;
    bool hasDataset = false;
    Section section = Section::Geometry;
    std::size_t tuples = 0; ///< of the section
    std::vector<double> coordinates;
    std::array<RawCells, 4> cells; ///< a grid's are the first
    std::vector<Field> fields;
    std::vector<std::string> notes;
};

std::optional<NumberType> numberType(const std::string& name) {
    using enum NumberType;
    // vtkIdType is written as 32 bits; long is 64 bits on the machines that write VTK files today.
    constexpr std::array<std::pair<std::string_view, NumberType>, 22> kTypes = {{
        {"char", Int8},
        {"signed_char", Int8},
        {"unsigned_char", UInt8},
        {"short", Int16},
        {"unsigned_short", UInt16},
        {"int", Int32},
        {"vtkidtype", Int32},
        {"unsigned_int", UInt32},
        {"long", Int64},
        {"unsigned_long", UInt64},
        {"float", Float32},
        {"double", Float64},
        {"vtktypeint8", Int8},
        {"vtktypeuint8", UInt8},
        {"vtktypeint16", Int16},
        {"vtktypeuint16", UInt16},
        {"vtktypeint32", Int32},
        {"vtktypeuint32", UInt32},
        {"vtktypeint64", Int64},
        {"vtktypeuint64", UInt64},
        {"vtktypefloat32", Float32},
        {"vtktypefloat64", Float64},
    }};
    const auto found =
        std::find_if(kTypes.begin(), kTypes.end(), [&](const auto& type) { return type.first == name; });
    if (found == kTypes.end())
        return std::nullopt;
    return found->second;
}

NumberType readType(LegacyFile& file) {
    const std::string name = lowerCase(file.cursor.word());
    const std::optional<NumberType> type = numberType(name);
    if (!type)
        throw Refusal("has unknown number type '" + name.substr(0, 40) + "'");
    return *type;
}

void readDataset(LegacyFile& file) {
    const std::string type = file.cursor.keyword();
    if (type != "unstructured_grid" && type != "polydata")
        throw Refusal("holds dataset '" + type + "'; only UNSTRUCTURED_GRID and POLYDATA are supported");
    file.polyData = type == "polydata";
    file.hasDataset = true;
}

void readPoints(LegacyFile& file) {
    const std::size_t count = file.cursor.count("number of points");
    const NumberType type = readType(file);
    file.coordinates = file.cursor.numbers<double>(type, 3 * count);
}

/// Versions before 5: each cell's number of nodes, then its nodes.
void readClassicCells(LegacyFile& file, RawCells& cells, std::size_t count, std::size_t size) {
    const std::vector<std::int64_t> list = file.cursor.numbers<std::int64_t>(NumberType::Int32, size);
    std::size_t at = 0;
    for (std::size_t cell = 0; cell < count; ++cell) {
        if (at >= size || list[at] < 0 || static_cast<std::size_t>(list[at]) > size - at - 1)
            throw Refusal("has a cell that reaches past the end of the cell list");
        const auto first = list.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        cells.connectivity.insert(cells.connectivity.end(), first, first + list[at]);
        cells.offsets.push_back(static_cast<std::int64_t>(cells.connectivity.size()));
        at += 1 + static_cast<std::size_t>(list[at]);
    }
    if (at != size)
        throw Refusal("has " + std::to_string(size - at) + " numbers after the last cell of a cell list");
}

/// Version 5: one offset more than there are cells, then all nodes.
void readOffsetCells(LegacyFile& file, RawCells& cells, std::size_t count, std::size_t size) {
    cells.offsets = file.cursor.numbers<std::int64_t>(readType(file), count);
    if (!cells.offsets.empty() && cells.offsets.front() != 0)
        throw Refusal("has cell offsets that do not start at 0");
    if (!cells.offsets.empty())
        cells.offsets.erase(cells.offsets.begin());
    if (file.cursor.keyword() != "connectivity")
        throw Refusal("has OFFSETS without CONNECTIVITY");
    cells.connectivity = file.cursor.numbers<std::int64_t>(readType(file), size);
}

void readCells(LegacyFile& file, RawCells& cells) {
    cells = {};
    const std::size_t count = file.cursor.count("number of cells");
    const std::size_t size = file.cursor.count("cell list length");
    if (file.cursor.nextLineStartsWith("offsets"))
        readOffsetCells(file, cells, count, size);
    else
        readClassicCells(file, cells, count, size);
}

void readCellTypes(LegacyFile& file) {
    const std::size_t count = file.cursor.count("number of cell types");
    file.cells[0].types = file.cursor.numbers<std::int64_t>(NumberType::Int32, count);
}

/// VTK's number for a cell of polygonal data.
std::int64_t polyType(std::size_t kind, std::int64_t nodes) {
    constexpr std::int64_t kVertex = 1, kPolyVertex = 2, kLine = 3, kPolyLine = 4, kTriangle = 5, kStrip = 6,
                           kPolygon = 7, kQuad = 9;
    switch (kind) {
    case 0:
        return nodes == 1 ? kVertex : kPolyVertex;
    case 1:
        return nodes == 2 ? kLine : kPolyLine;
    case 2:
        return nodes == 3 ? kTriangle : nodes == 4 ? kQuad : kPolygon;
    default:
        return kStrip;
    }
}

/// All cells of the file in the order of its cell data.
RawCells joinCells(LegacyFile& file) {
    if (!file.polyData)
        return std::move(file.cells[0]);
    RawCells all;
    for (std::size_t kind = 0; kind < file.cells.size(); ++kind) {
        const RawCells& part = file.cells[kind];
        const auto base = static_cast<std::int64_t>(all.connectivity.size());
        std::int64_t begin = 0;
        for (const std::int64_t end : part.offsets) {
            all.types.push_back(polyType(kind, end - begin));
            all.offsets.push_back(base + end);
            begin = end;
        }
        all.connectivity.insert(all.connectivity.end(), part.connectivity.begin(), part.connectivity.end());
    }
    return all;
}

void beginSection(LegacyFile& file, Section section) {
    std::size_t cells = 0;
    for (const RawCells& part : file.cells)
        cells += part.offsets.size();
    const std::size_t expected = section == Section::Node ? file.coordinates.size() / 3 : cells;
    file.section = section;
    file.tuples = file.cursor.count("number of tuples");
    if (file.tuples != expected)
        throw Refusal("has data for " + std::to_string(file.tuples) +
                      (section == Section::Node ? " points, but " : " cells, but ") +
                      std::to_string(expected) + " of them");
}

/// Strings in binary files: the two highest bits of the first byte say how many bytes the length takes.
void skipStrings(LegacyFile& file, std::size_t count) {
    file.cursor.line();
    for (std::size_t i = 0; i < count; ++i) {
        if (!file.cursor.binary()) {
            if (file.cursor.position() == file.cursor.size())
                throw Refusal("ends inside a list of strings");
            file.cursor.line();
            continue;
        }
        const auto first = static_cast<std::uint8_t>(file.cursor.bytes(1).front());
        std::size_t length = first & 63;
        const std::size_t more = (std::size_t{1} << (3 - (first >> 6))) - 1;
        for (const char c : file.cursor.bytes(more))
            length = length << 8 | static_cast<std::uint8_t>(c);
        file.cursor.bytes(length);
    }
}

/// Reads the array after this line; nothing, with a note, for one that has no numbers of whole bytes.
std::optional<std::vector<double>> readValues(LegacyFile& file, const std::string& name,
                                              std::string_view typeWord, std::size_t components,
                                              std::size_t tuples) {
    const std::string type = lowerCase(typeWord.substr(0, 40));
    const std::size_t count = components * tuples;
    if (const std::optional<NumberType> number = numberType(type))
        return file.cursor.numbers<double>(*number, count);
    if (type == "string" || type == "utf8_string") {
        skipStrings(file, count);
    } else if (type == "bit" && file.cursor.binary()) {
        file.cursor.line();
        file.cursor.bytes((count + 7) / 8);
    } else if (type == "bit") {
        file.cursor.numbers<double>(NumberType::UInt8, count);
    } else {
        throw Refusal("has array " + name + " of unknown type '" + type + "'");
    }
    file.notes.push_back("skipped array " + name + " of type " + type);
    return std::nullopt;
}

void keepField(LegacyFile& file, std::string name, std::size_t components, std::vector<double> values) {
    const FieldLocation location = file.section == Section::Node ? FieldLocation::Node : FieldLocation::Cell;
    const auto same = [&](const Field& other) { return other.name == name && other.location == location; };
    if (std::any_of(file.fields.begin(), file.fields.end(), same))
        file.notes.push_back("skipped a second field " + name + " of one name");
    else if (components > 0)
        file.fields.push_back({std::move(name), location, static_cast<int>(components), std::move(values)});
}

/// METADATA ends with an empty line.
void skipMetadata(LegacyFile& file) {
    file.cursor.line();
    while (!file.cursor.line().empty()) {
    }
}

void readFieldArray(LegacyFile& file, const std::string& name) {
    const std::size_t components = file.cursor.count("number of components");
    const std::size_t tuples = file.cursor.count("number of tuples");
    if (components > 0 && tuples > 8 * file.cursor.size() / components)
        throw Refusal("has array " + name + ", which is larger than the file could hold");
    auto values = readValues(file, name, file.cursor.wordOnLine(), components, tuples);
    if (!values || file.section == Section::Geometry)
        return;
    if (tuples != file.tuples)
        throw Refusal("has field " + name + " with " + std::to_string(tuples) + " tuples instead of " +
                      std::to_string(file.tuples));
    keepField(file, name, components, std::move(*values));
}

/// FIELD: arrays that say their own sizes. Before POINT_DATA and CELL_DATA they belong to the file as a whole
/// and are passed over.
void readFieldArrays(LegacyFile& file) {
    file.cursor.wordOnLine();
    std::size_t arrays = file.cursor.count("number of arrays");
    while (arrays > 0) {
        const std::string name = decodeName(file.cursor.word());
        if (name.empty())
            throw Refusal("ends before its last array");
        if (name == "METADATA") {
            skipMetadata(file);
            continue;
        }
        --arrays;
        if (name != "NULL_ARRAY")
            readFieldArray(file, name);
    }
}

/// SCALARS name type [components], then mostly LOOKUP_TABLE name.
void readScalars(LegacyFile& file) {
    const std::string name = decodeName(file.cursor.wordOnLine());
    const std::string_view type = file.cursor.wordOnLine();
    const std::string_view word = file.cursor.wordOnLine();
    const std::size_t components = word.empty() ? 1 : parseCount(word, "number of components", 1u << 16);
    if (file.cursor.nextLineStartsWith("lookup_table"))
        file.cursor.wordOnLine();
    if (auto values = readValues(file, name, type, components, file.tuples))
        keepField(file, name, components, std::move(*values));
}

/// COLOR_SCALARS name components: text from 0 to 1, or bytes, which are brought to that range.
void readColorScalars(LegacyFile& file) {
    const std::string name = decodeName(file.cursor.wordOnLine());
    const std::size_t components = parseCount(file.cursor.wordOnLine(), "number of components", 1u << 16);
    std::vector<double> values = file.cursor.numbers<double>(NumberType::UInt8, components * file.tuples);
    if (file.cursor.binary())
        std::transform(values.begin(), values.end(), values.begin(),
                       [](double value) { return value / 255.0; });
    keepField(file, name, components, std::move(values));
}

/// Attributes of a fixed number of components: name type.
void readAttribute(LegacyFile& file, std::size_t components) {
    const std::string name = decodeName(file.cursor.wordOnLine());
    const std::string_view type = file.cursor.wordOnLine();
    if (auto values = readValues(file, name, type, components, file.tuples))
        keepField(file, name, components, std::move(*values));
}

/// TEXTURE_COORDINATES name components type.
void readTextureCoordinates(LegacyFile& file) {
    const std::string name = decodeName(file.cursor.wordOnLine());
    const std::size_t components = parseCount(file.cursor.wordOnLine(), "number of components", 3);
    const std::string_view type = file.cursor.wordOnLine();
    if (auto values = readValues(file, name, type, components, file.tuples))
        keepField(file, name, components, std::move(*values));
}

/// Colours of a LOOKUP_TABLE are passed over: the viewer has its own colour scales.
void skipLookupTable(LegacyFile& file) {
    file.cursor.wordOnLine();
    file.cursor.numbers<double>(NumberType::UInt8, 4 * file.cursor.count("lookup table size"));
}

bool readGeometry(LegacyFile& file, const std::string& keyword) {
    const auto kind = std::find(kPolyKinds.begin(), kPolyKinds.end(), keyword);
    if (file.section != Section::Geometry)
        return false;
    if (keyword == "dataset")
        readDataset(file);
    else if (keyword == "points")
        readPoints(file);
    else if (!file.polyData && keyword == "cells")
        readCells(file, file.cells[0]);
    else if (!file.polyData && keyword == "cell_types")
        readCellTypes(file);
    else if (file.polyData && kind != kPolyKinds.end())
        readCells(file, file.cells[static_cast<std::size_t>(kind - kPolyKinds.begin())]);
    else
        return false;
    return true;
}

/// Number of components of an attribute that says none; nothing for a keyword that is not one.
std::optional<std::size_t> fixedComponents(const std::string& keyword) {
    constexpr std::array<std::pair<std::string_view, std::size_t>, 7> kAttributes = {{{"vectors", 3},
                                                                                      {"normals", 3},
                                                                                      {"tensors", 9},
                                                                                      {"tensors6", 6},
                                                                                      {"global_ids", 1},
                                                                                      {"pedigree_ids", 1},
                                                                                      {"edge_flags", 1}}};
    for (const auto& [name, components] : kAttributes)
        if (name == keyword)
            return components;
    return std::nullopt;
}

bool readAttributes(LegacyFile& file, const std::string& keyword) {
    if (file.section == Section::Geometry)
        return false;
    if (const std::optional<std::size_t> components = fixedComponents(keyword))
        readAttribute(file, *components);
    else if (keyword == "scalars")
        readScalars(file);
    else if (keyword == "color_scalars")
        readColorScalars(file);
    else if (keyword == "texture_coordinates")
        readTextureCoordinates(file);
    else if (keyword == "lookup_table")
        skipLookupTable(file);
    else
        return false;
    return true;
}

/// False for a keyword that does not belong here.
bool readSection(LegacyFile& file, const std::string& keyword) {
    if (keyword == "point_data")
        beginSection(file, Section::Node);
    else if (keyword == "cell_data")
        beginSection(file, Section::Cell);
    else if (keyword == "field")
        readFieldArrays(file);
    else if (keyword == "metadata")
        skipMetadata(file);
    else
        return readGeometry(file, keyword) || readAttributes(file, keyword);
    return true;
}

void readBody(LegacyFile& file) {
    for (std::string keyword = file.cursor.keyword(); !keyword.empty(); keyword = file.cursor.keyword()) {
        bool known = true;
        try {
            known = readSection(file, keyword);
        } catch (const Refusal& refusal) {
            throw Refusal("section " + keyword + ": " + refusal.what());
        }
        if (!known)
            throw Refusal("has unexpected '" + keyword + "' before byte " +
                          std::to_string(file.cursor.position()));
    }
    if (!file.hasDataset)
        throw Refusal("has no DATASET");
}

/// The first lines: version, title, ASCII or BINARY.
void readHeader(LegacyFile& file) {
    std::string_view version = file.cursor.line().substr(std::string_view("# vtk DataFile Version").size());
    double number = 0;
    if (!takeNumber(version, number) || number < 1.0 || number >= 6.0)
        throw Refusal("is of an unknown version of the legacy VTK format");
    file.cursor.line();
    const std::string encoding = file.cursor.keyword();
    if (encoding != "ascii" && encoding != "binary")
        throw Refusal("says neither ASCII nor BINARY in its third line");
    file.cursor.setBinary(encoding == "binary");
}

Model makeModel(LegacyFile& file) {
    Model model;
    model.notes = std::move(file.notes);
    appendNodes(model, file.coordinates);
    SkippedCells skipped;
    const std::vector<std::uint32_t> kept = appendCells(model, joinCells(file), 0, skipped);
    finishCells(model, skipped);
    for (Field& field : file.fields) {
        if (field.location == FieldLocation::Cell)
            field.values = keptTuples(field.values, static_cast<std::size_t>(field.components), kept);
        model.fields.push_back(std::move(field));
    }
    return model;
}

} // namespace

Model readLegacyVtk(std::string_view content) {
    LegacyFile file(content);
    readHeader(file);
    readBody(file);
    return makeModel(file);
}

} // namespace nruview::readers
