// VTK XML unstructured grids (https://docs.vtk.org, file formats), all encodings of VTK's own writer but lz4
// and lzma.
#include <algorithm>
#include <limits>
#include <optional>

#include <pugixml.hpp>

#include "viewer/readers/blocks.h"
#include "viewer/readers/numbers.h"

namespace nruview::readers {

namespace {

// What arrays may take in memory, decoded: generous for real models, whose coordinates do not compress like
// zeros, and a bound for a small file that claims or inflates to anything.
constexpr std::size_t kMemoryBase = std::size_t{256} << 20;
constexpr std::size_t kMemoryPerFileByte = 128;

struct VtuFile {
    std::string header; ///< the XML without the appended data; the document points into it
    pugi::xml_document document;
    std::string_view appended; ///< from the byte after the underscore
    bool hasAppended = false;
    bool appendedBase64 = false;
    BlockFormat format;
    std::size_t memory = 0; ///< what arrays may still take
};

/// Where in a file the fields of its pieces stand: a field must be in every piece to be kept.
struct Pieces {
    std::size_t read = 0;
    std::vector<std::size_t> fieldPieces; ///< for each field of the model
    SkippedCells skipped;
};

std::string attribute(pugi::xml_node node, const char* name, const char* fallback) {
    return node.attribute(name).as_string(fallback);
}

/// Raw appended data is no XML: everything from its element on is cut off and kept apart.
void cutAppendedData(VtuFile& file, std::string_view content) {
    const std::size_t tag = content.find("<AppendedData");
    file.header = content.substr(0, tag);
    if (tag == std::string_view::npos)
        return;
    const std::size_t tagEnd = content.find('>', tag);
    const std::size_t start = content.find('_', std::min(tagEnd, content.size()));
    if (start == std::string_view::npos)
        throw Refusal("ends inside its AppendedData");
    file.hasAppended = true;
    file.appended = content.substr(start + 1);
    pugi::xml_document element;
    element.load_string((std::string(content.substr(tag, tagEnd - tag)) + "/>").c_str());
    const std::string encoding = attribute(element.first_child(), "encoding", "base64");
    if (encoding != "raw" && encoding != "base64")
        throw Refusal("has appended data of unknown encoding '" + encoding + "'");
    file.appendedBase64 = encoding == "base64";
    file.header += "</VTKFile>";
}

pugi::xml_node parseHeader(VtuFile& file) {
    const pugi::xml_parse_result result = file.document.load_buffer_inplace(
        file.header.data(), file.header.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result)
        throw Refusal("is not well-formed XML: " + std::string(result.description()) + " at byte " +
                      std::to_string(result.offset));
    const pugi::xml_node root = file.document.child("VTKFile");
    if (!root)
        throw Refusal("has no VTKFile element");
    const std::string type = attribute(root, "type", "");
    if (type == "PUnstructuredGrid" || type == "vtkMultiBlockDataSet")
        throw Refusal("only names files that hold the data; open one of them");
    if (type != "UnstructuredGrid")
        throw Refusal("holds VTK data of type '" + type + "'; only UnstructuredGrid is supported");
    return root.child("UnstructuredGrid");
}

void readFormat(VtuFile& file) {
    const pugi::xml_node root = file.document.child("VTKFile");
    const std::string order = attribute(root, "byte_order", "LittleEndian");
    if (order != "LittleEndian" && order != "BigEndian")
        throw Refusal("has unknown byte order '" + order + "'");
    const std::string headerType = attribute(root, "header_type", "UInt32");
    if (headerType != "UInt32" && headerType != "UInt64")
        throw Refusal("has unknown header type '" + headerType + "'");
    const std::string compressor = attribute(root, "compressor", "");
    if (!compressor.empty() && compressor != "vtkZLibDataCompressor")
        throw Refusal("is compressed with '" + compressor + "'; only vtkZLibDataCompressor is supported");
    file.format.bigEndian = order == "BigEndian";
    file.format.headerSize = headerType == "UInt64" ? 8 : 4;
    file.format.zlib = !compressor.empty();
}

std::optional<NumberType> numberType(std::string_view name) {
    constexpr std::array<std::string_view, 10> kNames = {"Int8",   "UInt8", "Int16",  "UInt16",  "Int32",
                                                         "UInt32", "Int64", "UInt64", "Float32", "Float64"};
    const auto found = std::find(kNames.begin(), kNames.end(), name);
    if (found == kNames.end())
        return std::nullopt;
    return static_cast<NumberType>(found - kNames.begin());
}

/// Where the block of an array starts, and how it is encoded.
std::string_view blockText(const VtuFile& file, pugi::xml_node array, BlockFormat& format) {
    format.base64 = true;
    if (attribute(array, "format", "") == "binary")
        return array.text().get();
    if (!file.hasAppended)
        throw Refusal("is appended, but the file has no AppendedData");
    const std::size_t offset =
        parseCount(attribute(array, "offset", ""), "byte offset", file.appended.size());
    format.base64 = file.appendedBase64;
    return file.appended.substr(offset);
}

template <class Out>
std::vector<Out> decodeArray(VtuFile& file, pugi::xml_node array, std::size_t count) {
    const std::string typeName = attribute(array, "type", "");
    const std::optional<NumberType> type = numberType(typeName);
    if (!type)
        throw Refusal("has unknown type '" + typeName + "'");
    if (count > file.memory / sizeof(Out))
        throw Refusal("claims " + std::to_string(count) + " values, more than the file could hold");
    file.memory -= count * sizeof(Out);
    const std::string encoding = attribute(array, "format", "ascii");
    if (encoding == "ascii") {
        std::string_view text = array.text().get();
        std::vector<Out> numbers = takeNumbers<Out>(text, count);
        if (!takeWord(text).empty())
            throw Refusal("has more than " + std::to_string(count) + " values");
        return numbers;
    }
    if (encoding != "binary" && encoding != "appended")
        throw Refusal("has unknown format '" + encoding + "'");
    BlockFormat format = file.format;
    const std::string_view text = blockText(file, array, format);
    return decodeNumbers<Out>(decodeBlock(text, format, count * numberSize(*type)), *type, format.bigEndian);
}

template <class Out>
std::vector<Out> readArray(VtuFile& file, pugi::xml_node array, std::string_view name, std::size_t count) {
    try {
        return decodeArray<Out>(file, array, count);
    } catch (const Refusal& refusal) {
        throw Refusal("array " + std::string(name) + " " + refusal.what());
    }
}

std::size_t componentCount(pugi::xml_node array) {
    const pugi::xml_attribute components = array.attribute("NumberOfComponents");
    return components ? parseCount(components.as_string(), "number of components", 1u << 16) : 1;
}

std::vector<std::int64_t> cellArray(VtuFile& file, pugi::xml_node piece, const char* name,
                                    std::size_t count) {
    const pugi::xml_node array = piece.child("Cells").find_child_by_attribute("DataArray", "Name", name);
    if (!array)
        throw Refusal("has no cell array '" + std::string(name) + "'");
    return readArray<std::int64_t>(file, array, name, count);
}

RawCells readCells(VtuFile& file, pugi::xml_node piece, std::size_t count) {
    RawCells cells;
    cells.types = cellArray(file, piece, "types", count);
    cells.offsets = cellArray(file, piece, "offsets", count);
    const std::int64_t entries = cells.offsets.empty() ? 0 : cells.offsets.back();
    if (entries < 0)
        throw Refusal("has a negative cell offset");
    cells.connectivity = cellArray(file, piece, "connectivity", static_cast<std::size_t>(entries));
    return cells;
}

/// A field of the first piece is new to the model; those of the others continue the one of the same name and
/// shape.
void joinField(Model& model, Pieces& pieces, Field field) {
    const auto same = [&](const Field& other) {
        return other.name == field.name && other.location == field.location;
    };
    const auto found = std::find_if(model.fields.begin(), model.fields.end(), same);
    const auto index = static_cast<std::size_t>(found - model.fields.begin());
    if (found == model.fields.end() && pieces.read == 0) {
        model.fields.push_back(std::move(field));
        pieces.fieldPieces.push_back(1);
    } else if (found == model.fields.end()) {
        model.notes.push_back("skipped field " + field.name + ", which is not in every piece");
    } else if (pieces.fieldPieces[index] != pieces.read || found->components != field.components) {
        model.notes.push_back("skipped a second field " + field.name + " of one name");
    } else {
        found->values.insert(found->values.end(), field.values.begin(), field.values.end());
        ++pieces.fieldPieces[index];
    }
}

void readFields(VtuFile& file, pugi::xml_node data, FieldLocation location, std::size_t tuples,
                const std::vector<std::uint32_t>* kept, Model& model, Pieces& pieces) {
    for (const pugi::xml_node array : data.children()) {
        const std::string name = attribute(array, "Name", "unnamed");
        const std::string type = attribute(array, "type", "");
        if (std::string_view(array.name()) != "DataArray" || type == "String" || type == "Bit") {
            model.notes.push_back("skipped array " + name + ", which has no numbers");
            continue;
        }
        const std::size_t components = componentCount(array);
        if (components == 0)
            continue;
        std::vector<double> values = readArray<double>(file, array, name, tuples * components);
        if (kept)
            values = keptTuples(values, components, *kept);
        joinField(model, pieces, {name, location, static_cast<int>(components), std::move(values)});
    }
}

void readPiece(VtuFile& file, pugi::xml_node piece, Model& model, Pieces& pieces) {
    const std::size_t limit = file.memory;
    const std::size_t nodes = parseCount(attribute(piece, "NumberOfPoints", ""), "number of points", limit);
    const std::size_t cells = parseCount(attribute(piece, "NumberOfCells", ""), "number of cells", limit);
    if (nodes == 0 && cells == 0)
        return;
    const pugi::xml_node points = piece.child("Points").child("DataArray");
    if (!points || componentCount(points) != 3)
        throw Refusal("has a piece without points of three coordinates");
    const std::size_t firstNode = model.nodes.size();
    appendNodes(model, readArray<double>(file, points, "Points", 3 * nodes));
    const std::vector<std::uint32_t> kept =
        appendCells(model, readCells(file, piece, cells), firstNode, pieces.skipped);
    readFields(file, piece.child("PointData"), FieldLocation::Node, nodes, nullptr, model, pieces);
    readFields(file, piece.child("CellData"), FieldLocation::Cell, cells, &kept, model, pieces);
    ++pieces.read;
}

void dropIncompleteFields(Model& model, const Pieces& pieces) {
    std::vector<Field> complete;
    for (std::size_t i = 0; i < model.fields.size(); ++i) {
        if (pieces.fieldPieces[i] == pieces.read)
            complete.push_back(std::move(model.fields[i]));
        else
            model.notes.push_back("skipped field " + model.fields[i].name + ", which is not in every piece");
    }
    model.fields = std::move(complete);
}

} // namespace

Model readVtu(std::string_view content) {
    VtuFile file;
    file.memory = kMemoryBase + kMemoryPerFileByte * content.size();
    cutAppendedData(file, content);
    const pugi::xml_node grid = parseHeader(file);
    readFormat(file);
    Model model;
    Pieces pieces;
    for (const pugi::xml_node piece : grid.children("Piece"))
        readPiece(file, piece, model, pieces);
    dropIncompleteFields(model, pieces);
    finishCells(model, pieces.skipped);
    return model;
}

} // namespace nruview::readers
