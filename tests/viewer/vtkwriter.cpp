// The encodings, from VTK's description of its file formats.
#include "tests/viewer/vtkwriter.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

namespace nrutest {

namespace {

using Numbers = std::vector<double>;

const Numbers kPoints = {0, 0, 0, 2, .5, 0, 0, 3, .25, .125, 0, 5, -1, 3, .5, -1.5, -7, 11};
const Numbers kConnectivity = {0, 1, 2, 3, 0, 2, 4, 5, 5, 4, 3, 2, 1}, kEnds = {4, 8, 13},
              kTypes = {10, 9, 4};
const Numbers kVector = {0, 1, 2, 3, NAN, -5, 6, 7, 8, 9, .5, 11, 12, 13, 14, 15, 16, -17.25};
const Numbers kScalar = {20.5, 20.25, 20, 19.75, 19.5, -19.25}, kMaterial = {7, -300, 12};

template <class T>
std::string bytesOf(T value, bool bigEndian) {
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &value, sizeof(T));
    if (bigEndian)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <class T>
std::string encode(const Numbers& values, bool binary, bool bigEndian) {
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

/// The arrays of a .vtu file; appended ones are collected.
struct XmlArrays : XmlEncoding {
    std::string appended;

    template <class T>
    std::string array(const std::string& type, const std::string& name, int components,
                      const Numbers& values) {
        const std::string data = encode<T>(values, storage != Storage::Ascii, bigEndian);
        std::string element = "<DataArray type='" + type + "' Name='" + name + "' NumberOfComponents='" +
                              std::to_string(components) + "' format=";
        if (storage == Storage::Ascii)
            return element + "'ascii'>" + data + "</DataArray>\n";
        if (storage == Storage::Inline)
            return element + "'binary'>\n  " + block(data) + "\n</DataArray>\n";
        element += "'appended' offset='" + std::to_string(appended.size()) + "'/>\n";
        appended += block(data);
        return element;
    }

    std::string number(std::size_t value) const {
        return headerSize == 8 ? bytesOf(static_cast<std::uint64_t>(value), bigEndian)
                               : bytesOf(static_cast<std::uint32_t>(value), bigEndian);
    }

    std::string block(const std::string& data) const {
        const bool text = storage != Storage::AppendedRaw;
        if (zlibBlock == 0)
            return text ? base64(number(data.size()) + data) : number(data.size()) + data;
        std::string sizes, compressed;
        std::size_t blocks = 0;
        for (std::size_t at = 0; at < data.size(); at += zlibBlock, ++blocks) {
            const std::string part = data.substr(at, zlibBlock);
            uLongf length = compressBound(part.size());
            std::string out(length, '\0');
            compress(reinterpret_cast<Bytef*>(out.data()), &length,
                     reinterpret_cast<const Bytef*>(part.data()), part.size());
            compressed += out.substr(0, length);
            sizes += number(length);
        }
        const std::string header =
            number(blocks) + number(zlibBlock) + number(data.size() % zlibBlock) + sizes;
        return text ? base64(header) + base64(compressed) : header + compressed;
    }
};

} // namespace

nruview::Model referenceModel() {
    using enum nruview::CellType;
    using nruview::FieldLocation;
    nruview::Model model;
    for (std::size_t i = 0; i < kPoints.size(); i += 3)
        model.nodes.push_back({kPoints[i], kPoints[i + 1], kPoints[i + 2]});
    model.types = {Tetra, Quad, PolyLine};
    model.offsets.insert(model.offsets.end(), kEnds.begin(), kEnds.end());
    model.connectivity.assign(kConnectivity.begin(), kConnectivity.end());
    model.fields = {{"U", FieldLocation::Node, 3, kVector},
                    {"T", FieldLocation::Node, 1, kScalar},
                    {"material", FieldLocation::Cell, 1, kMaterial}};
    return model;
}

std::string writeVtu(const XmlEncoding& encoding) {
    XmlArrays arrays{encoding, ""};
    std::string text = "<?xml version='1.0'?>\n<VTKFile type='UnstructuredGrid' version='1.0' byte_order='";
    text += encoding.bigEndian ? "BigEndian'" : "LittleEndian'";
    text += encoding.headerSize == 8 ? " header_type='UInt64'" : "";
    text += encoding.zlibBlock != 0 ? " compressor='vtkZLibDataCompressor'" : "";
    text += ">\n<UnstructuredGrid>\n<Piece NumberOfPoints='6' NumberOfCells='3'>\n<PointData>";
    text += arrays.array<float>("Float32", "U", 3, kVector) + arrays.array<float>("Float32", "T", 1, kScalar);
    text += "</PointData>\n<CellData>" + arrays.array<std::int16_t>("Int16", "material", 1, kMaterial);
    text += "</CellData>\n<Points>" + arrays.array<double>("Float64", "Points", 3, kPoints);
    text += "</Points>\n<Cells>" + arrays.array<std::int32_t>("Int32", "connectivity", 1, kConnectivity);
    text += arrays.array<std::int64_t>("Int64", "offsets", 1, kEnds);
    text += arrays.array<std::uint8_t>("UInt8", "types", 1, kTypes);
    text += "</Cells>\n</Piece>\n</UnstructuredGrid>\n";
    const std::string name = encoding.storage == Storage::AppendedRaw ? "raw" : "base64";
    if (!arrays.appended.empty())
        text += "<AppendedData encoding='" + name + "'>\n_" + arrays.appended + "\n</AppendedData>\n";
    return text + "</VTKFile>\n";
}

std::string writeLegacy(bool binary, int version) {
    std::string text = "# vtk DataFile Version " + std::to_string(version) + ".1\nreference\n";
    text += binary ? "BINARY\n" : "ASCII\n";
    text += "DATASET UNSTRUCTURED_GRID\nPOINTS 6 double\n" + encode<double>(kPoints, binary, true);
    if (version >= 5)
        text += "\nCELLS 4 13\nOFFSETS vtktypeint64\n" + encode<std::int64_t>({0, 4, 8, 13}, binary, true) +
                "\nCONNECTIVITY vtktypeint64\n" + encode<std::int64_t>(kConnectivity, binary, true);
    else
        text += "\nCELLS 3 16\n" +
                encode<std::int32_t>({4, 0, 1, 2, 3, 4, 0, 2, 4, 5, 5, 5, 4, 3, 2, 1}, binary, true);
    text += "\nCELL_TYPES 3\n" + encode<std::int32_t>(kTypes, binary, true);
    text += "\nPOINT_DATA 6\nVECTORS U float\n" + encode<float>(kVector, binary, true);
    text += "\nSCALARS T double 1\nLOOKUP_TABLE default\n" + encode<double>(kScalar, binary, true);
    return text + "\nCELL_DATA 3\nFIELD FieldData 1\nmaterial 1 3 short\n" +
           encode<short>(kMaterial, binary, true) + "\n";
}

} // namespace nrutest
