// The encodings, from VTK's description of its file formats.
#include "tests/viewer/vtkwriter.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "viewer/celltypes.h"

namespace nrutest {

namespace {

using nruview::Field;
using nruview::FieldLocation;
using nruview::Model;

template <class T>
std::string bytesOf(T value, bool bigEndian) {
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &value, sizeof(T));
    if (bigEndian)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <class T>
std::string encode(const std::vector<double>& values, bool binary, bool bigEndian) {
    std::ostringstream text;
    text.precision(17);
    for (const double value : values)
        binary ? text << bytesOf(static_cast<T>(value), bigEndian) : text << value << ' ';
    return text.str();
}

std::string base64(const std::string& bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (i + k < bytes.size() ? static_cast<std::uint8_t>(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : kDigits[group >> (18 - 6 * k) & 63];
    }
    return text;
}

/// Collects the arrays of a .vtu file.
class XmlArrays {
public:
    explicit XmlArrays(const XmlEncoding& encoding) : m_encoding(encoding) {}

    template <class T>
    std::string array(const std::string& type, const std::string& name, int components,
                      const std::vector<double>& values) {
        std::string element = "<DataArray type=\"" + type + "\" Name=\"" + name + "\" NumberOfComponents=\"" +
                              std::to_string(components) + "\" format=";
        const std::string data =
            encode<T>(values, m_encoding.storage != Storage::Ascii, m_encoding.bigEndian);
        if (m_encoding.storage == Storage::Ascii)
            return element + "\"ascii\">" + data + "</DataArray>\n";
        const std::string text = block(data);
        if (m_encoding.storage == Storage::Inline)
            return element + "\"binary\">\n  " + text + "\n</DataArray>\n";
        element += "\"appended\" offset=\"" + std::to_string(m_appended.size()) + "\"/>\n";
        m_appended += text;
        return element;
    }

    const std::string& appended() const { return m_appended; }

private:
    std::string number(std::size_t value) const {
        return m_encoding.headerSize == 8 ? bytesOf(static_cast<std::uint64_t>(value), m_encoding.bigEndian)
                                          : bytesOf(static_cast<std::uint32_t>(value), m_encoding.bigEndian);
    }

    std::string block(const std::string& data) const {
        const bool text = m_encoding.storage != Storage::AppendedRaw;
        if (m_encoding.zlibBlock == 0)
            return text ? base64(number(data.size()) + data) : number(data.size()) + data;
        std::string sizes, compressed;
        std::size_t blocks = 0;
        for (std::size_t at = 0; at < data.size(); at += m_encoding.zlibBlock, ++blocks) {
            const std::string part = data.substr(at, m_encoding.zlibBlock);
            uLongf length = compressBound(part.size());
            std::string out(length, '\0');
            compress(reinterpret_cast<Bytef*>(out.data()), &length,
                     reinterpret_cast<const Bytef*>(part.data()), part.size());
            compressed += out.substr(0, length);
            sizes += number(length);
        }
        const std::string header = number(blocks) + number(m_encoding.zlibBlock) +
                                   number(data.size() % m_encoding.zlibBlock) + sizes;
        return text ? base64(header) + base64(compressed) : header + compressed;
    }

    XmlEncoding m_encoding;
    std::string m_appended;
};

std::vector<double> coordinates(const Model& model) {
    std::vector<double> values;
    for (const nruview::Point& node : model.nodes)
        values.insert(values.end(), node.begin(), node.end());
    return values;
}

std::vector<double> vtkTypes(const Model& model) {
    std::vector<double> values;
    for (const nruview::CellType type : model.types)
        values.push_back(nruview::cellShape(type).vtkNumber);
    return values;
}

std::string xmlFields(XmlArrays& arrays, const Model& model, FieldLocation location) {
    std::string text;
    for (const Field& field : model.fields)
        if (field.location == location)
            text += location == FieldLocation::Node
                        ? arrays.array<float>("Float32", field.name, field.components, field.values)
                        : arrays.array<std::int16_t>("Int16", field.name, field.components, field.values);
    return text;
}

std::string legacyCells(const Model& model, bool binary, int version) {
    const auto lines = [](auto... parts) { return ((parts + std::string("\n")) + ...); };
    const std::vector<double> connectivity(model.connectivity.begin(), model.connectivity.end());
    if (version >= 5) {
        const std::vector<double> offsets(model.offsets.begin(), model.offsets.end());
        return lines("CELLS " + std::to_string(offsets.size()) + " " + std::to_string(connectivity.size()),
                     std::string("OFFSETS vtktypeint64"), encode<std::int64_t>(offsets, binary, true),
                     std::string("CONNECTIVITY vtktypeint64"),
                     encode<std::int64_t>(connectivity, binary, true));
    }
    std::vector<double> list;
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell) {
        list.push_back(static_cast<double>(model.cellNodes(cell).size()));
        list.insert(list.end(), model.cellNodes(cell).begin(), model.cellNodes(cell).end());
    }
    return lines("CELLS " + std::to_string(model.cellCount()) + " " + std::to_string(list.size()),
                 encode<std::int32_t>(list, binary, true));
}

} // namespace

Model referenceModel() {
    Model model;
    model.nodes = {{0, 0, 0}, {2, 0.5, 0}, {0, 3, 0.25}, {0.125, 0, 5}, {-1, 3, 0.5}, {-1.5, -7, 11}};
    const std::vector<std::vector<std::uint32_t>> cells = {{0, 1, 2, 3}, {0, 2, 4, 5}, {5, 4, 3, 2, 1}};
    model.addCell(nruview::CellType::Tetra, cells[0]);
    model.addCell(nruview::CellType::Quad, cells[1]);
    model.addCell(nruview::CellType::PolyLine, cells[2]);
    Field vector{"U", FieldLocation::Node, 3, {}};
    Field scalar{"T", FieldLocation::Node, 1, {}};
    for (int node = 0; node < 6; ++node) {
        scalar.values.push_back(20.5 - node * 0.25);
        vector.values.insert(vector.values.end(), {node * 0.5, -1.0 * node, node * node * 1.0});
    }
    vector.values[4] = std::numeric_limits<double>::quiet_NaN();
    model.fields = {vector, scalar, {"material", FieldLocation::Cell, 1, {7, -300, 12}}};
    return model;
}

std::string writeVtu(const Model& model, const XmlEncoding& encoding) {
    XmlArrays arrays(encoding);
    const std::vector<double> connectivity(model.connectivity.begin(), model.connectivity.end());
    const std::vector<double> offsets(model.offsets.begin() + 1, model.offsets.end());
    std::string text =
        "<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"";
    text += encoding.bigEndian ? "BigEndian\"" : "LittleEndian\"";
    text += encoding.headerSize == 8 ? " header_type=\"UInt64\"" : "";
    text += encoding.zlibBlock != 0 ? " compressor=\"vtkZLibDataCompressor\"" : "";
    text += ">\n<UnstructuredGrid>\n<Piece NumberOfPoints=\"" + std::to_string(model.nodes.size()) +
            "\" NumberOfCells=\"" + std::to_string(model.cellCount()) + "\">\n";
    text += "<PointData>" + xmlFields(arrays, model, FieldLocation::Node) + "</PointData>\n";
    text += "<CellData>" + xmlFields(arrays, model, FieldLocation::Cell) + "</CellData>\n";
    text += "<Points>" + arrays.array<double>("Float64", "Points", 3, coordinates(model)) + "</Points>\n";
    text += "<Cells>" + arrays.array<std::int32_t>("Int32", "connectivity", 1, connectivity);
    text += arrays.array<std::int64_t>("Int64", "offsets", 1, offsets);
    text += arrays.array<std::uint8_t>("UInt8", "types", 1, vtkTypes(model)) + "</Cells>\n";
    text += "</Piece>\n</UnstructuredGrid>\n";
    const std::string name = encoding.storage == Storage::AppendedRaw ? "raw" : "base64";
    if (!arrays.appended().empty())
        text += "<AppendedData encoding=\"" + name + "\">\n_" + arrays.appended() + "\n</AppendedData>\n";
    return text + "</VTKFile>\n";
}

std::string writeLegacy(const Model& model, bool binary, int version) {
    std::string text = "# vtk DataFile Version " + std::to_string(version) + ".1\nreference\n";
    text += binary ? "BINARY\n" : "ASCII\n";
    text += "DATASET UNSTRUCTURED_GRID\nPOINTS " + std::to_string(model.nodes.size()) + " double\n";
    text += encode<double>(coordinates(model), binary, true) + "\n" + legacyCells(model, binary, version);
    text += "CELL_TYPES " + std::to_string(model.cellCount()) + "\n" +
            encode<std::int32_t>(vtkTypes(model), binary, true) + "\n";
    text += "POINT_DATA " + std::to_string(model.nodes.size()) + "\nVECTORS " + model.fields[0].name +
            " float\n" + encode<float>(model.fields[0].values, binary, true) + "\n";
    text += "SCALARS " + model.fields[1].name + " double 1\nLOOKUP_TABLE default\n" +
            encode<double>(model.fields[1].values, binary, true) + "\n";
    text += "CELL_DATA " + std::to_string(model.cellCount()) + "\nFIELD FieldData 1\n" +
            model.fields[2].name + " 1 " + std::to_string(model.cellCount()) + " short\n" +
            encode<short>(model.fields[2].values, binary, true);
    return text + "\n";
}

} // namespace nrutest
