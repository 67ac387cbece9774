// One small model, written in every encoding that the reader knows (https://docs.vtk.org, file formats): a
// tetrahedron, a quad and a polyline with a vector at the nodes (one value of it NaN), a scalar at the nodes
// and an integer at the cells.
#pragma once

#include <zlib.h>

#include <cmath>

#include "tests/viewer/files.h"

namespace nrutest {

using Numbers = std::vector<double>;

inline const Numbers kPoints = {0, 0, 0, 2, .5, 0, 0, 3, .25, .125, 0, 1e9 + 1, -1, 3, .5, -1.5, -7, 11};
inline const Numbers kConnectivity = {0, 1, 2, 3, 0, 2, 4, 5, 5, 4, 3, 2, 1};
inline const Numbers kEnds = {4, 8, 13}, kTypes = {10, 9, 4}, kMaterial = {7, -300, 12};
inline const Numbers kVector = {0, 1, 2, 3, NAN, -5, 6, 7, 8, 9, .5, 11, 12, 13, 14, 15, 16, -17.25};
inline const Numbers kScalar = {20.5, 20.25, 20, 19.75, 19.5, -19.25};

template <class T>
std::string encode(const Numbers& values, bool binary, bool bigEndian = true) {
    std::ostringstream text;
    text.precision(17);
    for (const double value : values)
        binary ? text << bytesOf(static_cast<T>(value), bigEndian) : text << value << ' ';
    return text.str();
}

inline std::string base64(const std::string& bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = i; k < i + 3; ++k)
            group = group << 8 | (k < bytes.size() ? static_cast<std::uint8_t>(bytes[k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : kDigits[group >> (18 - 6 * k) & 63];
    }
    return text;
}

enum class Storage { Ascii, Inline, AppendedBase64, AppendedRaw };

/// Writes .vtu files.
struct XmlWriter {
    Storage storage = Storage::Ascii;
    int headerSize = 4;
    bool bigEndian = false;
    std::size_t zlibBlock = 0; ///< bytes of a compressed block; 0 = not compressed
    std::string appended = {};

    std::string number(std::size_t value) const {
        return headerSize == 8 ? bytesOf<std::uint64_t>(value, bigEndian)
                               : bytesOf(static_cast<std::uint32_t>(value), bigEndian);
    }

    std::string stored(const std::string& bytes) const {
        return storage == Storage::AppendedRaw ? bytes : base64(bytes);
    }

    std::string block(const std::string& data) const {
        if (zlibBlock == 0)
            return stored(number(data.size()) + data);
        std::string sizes, compressed;
        for (std::size_t at = 0; at < data.size(); at += zlibBlock) {
            const std::string part = data.substr(at, zlibBlock);
            uLongf length = compressBound(part.size());
            std::string out(length, '\0');
            compress(reinterpret_cast<Bytef*>(out.data()), &length,
                     reinterpret_cast<const Bytef*>(part.data()), part.size());
            compressed += out.substr(0, length);
            sizes += number(length);
        }
        const std::string blocks = number(sizes.size() / static_cast<std::size_t>(headerSize));
        return stored(blocks + number(zlibBlock) + number(data.size() % zlibBlock) + sizes) +
               stored(compressed);
    }

    template <class T>
    std::string array(const std::string& name, const Numbers& values, int components = 1) {
        const std::string data = encode<T>(values, storage != Storage::Ascii, bigEndian);
        const char* kind = std::is_floating_point_v<T> ? "Float" : std::is_signed_v<T> ? "Int" : "UInt";
        std::string element = "<DataArray type='" + (kind + std::to_string(8 * sizeof(T))) + "' Name='" +
                              name + "' NumberOfComponents='" + std::to_string(components) + "' format=";
        if (storage == Storage::Ascii)
            return element + "'ascii'>" + data + "</DataArray>\n";
        if (storage == Storage::Inline)
            return element + "'binary'>\n  " + block(data) + "\n</DataArray>\n";
        element += "'appended' offset='" + std::to_string(appended.size()) + "'/>\n";
        appended += block(data);
        return element;
    }

    std::string write() {
        std::string text = "<?xml version='1.0'?>\n<VTKFile type='UnstructuredGrid' byte_order='";
        text += bigEndian ? "BigEndian'" : "LittleEndian'";
        text += headerSize == 8 ? " header_type='UInt64'" : "";
        text += zlibBlock != 0 ? " compressor='vtkZLibDataCompressor'" : "";
        text += ">\n<UnstructuredGrid>\n<Piece NumberOfPoints='6' NumberOfCells='3'>\n";
        text += "<Points>" + array<double>("Points", kPoints, 3) + "</Points>\n<PointData>";
        text += array<float>("U", kVector, 3);
        text += array<float>("T", kScalar) + "</PointData>\n<CellData>";
        text += array<std::int16_t>("material", kMaterial) + "</CellData>\n<Cells>";
        text += array<std::int32_t>("connectivity", kConnectivity);
        text += array<std::int64_t>("offsets", kEnds);
        text += array<std::uint8_t>("types", kTypes);
        text += "</Cells>\n</Piece>\n</UnstructuredGrid>\n";
        const std::string encoding = storage == Storage::AppendedRaw ? "raw" : "base64";
        if (!appended.empty())
            text += "<AppendedData encoding='" + encoding + "'>\n_" + appended + "\n</AppendedData>\n";
        return text + "</VTKFile>\n";
    }
};

/// A legacy file; version 5 has OFFSETS and CONNECTIVITY.
inline std::string writeLegacy(bool binary, int version) {
    std::string text = "# vtk DataFile Version " + std::to_string(version) + ".1\nreference\n";
    text += binary ? "BINARY\n" : "ASCII\n";
    text += "DATASET UNSTRUCTURED_GRID\nPOINTS 6 double\n" + encode<double>(kPoints, binary);
    if (version >= 5)
        text += "\nCELLS 4 13\nOFFSETS vtktypeint64\n" + encode<std::int64_t>({0, 4, 8, 13}, binary) +
                "\nCONNECTIVITY vtktypeint64\n" + encode<std::int64_t>(kConnectivity, binary);
    else
        text +=
            "\nCELLS 3 16\n" + encode<std::int32_t>({4, 0, 1, 2, 3, 4, 0, 2, 4, 5, 5, 5, 4, 3, 2, 1}, binary);
    text += "\nCELL_TYPES 3\n" + encode<std::int32_t>(kTypes, binary);
    text += "\nPOINT_DATA 6\nVECTORS U float\n" + encode<float>(kVector, binary);
    text += "\nSCALARS T double 1\nLOOKUP_TABLE default\n" + encode<double>(kScalar, binary);
    return text + "\nCELL_DATA 3\nFIELD FieldData 1\nmaterial 1 3 short\n" +
           encode<short>(kMaterial, binary) + "\n";
}

} // namespace nrutest
