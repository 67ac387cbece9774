// Reading models: every encoding gives the same model, and bad files get one clear reason.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tests/viewer/vtkwriter.h"
#include "viewer/error.h"

namespace {

using namespace nruview;
using nrutest::Storage;
using nrutest::writeLegacy;
using nrutest::writeVtu;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

std::string temporaryPath() {
    return testing::TempDir() + "reader_test_" + std::to_string(getpid());
}

Model readText(const std::string& content) {
    const std::string path = temporaryPath();
    std::ofstream(path, std::ios::binary) << content;
    struct Remover {
        std::string path;
        ~Remover() { std::remove(path.c_str()); }
    } remover{path};
    return readModel(path);
}

/// Everything of a model as text, to the last bit of its numbers.
std::string dump(const Model& model) {
    std::ostringstream text;
    const auto put = [&text](std::string_view what, const auto& numbers) {
        text << std::hexfloat << "\n" << what;
        for (const auto number : numbers)
            text << " " << static_cast<double>(number);
    };
    for (const Point& node : model.nodes)
        put("node", node);
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell)
        put(cellTypeName(model.types[cell]), model.cellNodes(cell));
    for (const Field& field : model.fields)
        put(field.name + (field.location == FieldLocation::Node ? " node " : " cell ") +
                std::to_string(field.components),
            field.values);
    return text.str();
}

struct Encoding {
    std::string name;
    std::string content;
};

const std::vector<Encoding>& encodings() {
    static const std::vector<Encoding> all = {
        {"ascii", writeVtu({Storage::Ascii})},
        {"base64", writeVtu({Storage::Inline})},
        {"base64Zlib", writeVtu({Storage::Inline, 4, false, 32})},
        {"base64ZlibWideBig", writeVtu({Storage::Inline, 8, true, 40})},
        {"appendedBase64", writeVtu({Storage::AppendedBase64})},
        {"appendedRaw", writeVtu({Storage::AppendedRaw})},
        {"appendedRawBig", writeVtu({Storage::AppendedRaw, 4, true})},
        {"appendedRawZlib", writeVtu({Storage::AppendedRaw, 4, false, 32})},
        {"appendedRawZlibWide", writeVtu({Storage::AppendedRaw, 8, false, 16})},
        {"legacyAscii", writeLegacy(false, 3)},
        {"legacyBinary", writeLegacy(true, 3)},
        {"legacyAsciiOffsets", writeLegacy(false, 5)},
        {"legacyBinaryOffsets", writeLegacy(true, 5)},
    };
    return all;
}

TEST(Reader, EveryEncodingGivesTheSameModel) {
    for (const auto& [name, content] : encodings()) {
        SCOPED_TRACE(name);
        EXPECT_EQ(dump(readText(content)), dump(nrutest::referenceModel()));
    }
}

// A file cut short gives an error with its name, or the whole geometry where only fields or closing tags are
// missing.
TEST(Reader, FilesCutShortAreRefusedOrHaveTheWholeGeometry) {
    const Model whole = nrutest::referenceModel();
    for (const auto& [name, content] : encodings()) {
        std::size_t refused = 0;
        for (std::size_t length = 0; length < content.size(); ++length)
            try {
                const Model model = readText(content.substr(0, length));
                ASSERT_TRUE(model.nodes == whole.nodes && model.connectivity == whole.connectivity &&
                            model.types == whole.types)
                    << name << " " << length;
            } catch (const ViewerError& error) {
                ASSERT_THAT(error.what(), HasSubstr(temporaryPath())) << length;
                ++refused;
            }
        EXPECT_GT(refused, content.size() / 3) << name;
    }
}

std::string vtu(const std::string& pieces, const std::string& attributes = "") {
    return "<VTKFile type=\"UnstructuredGrid\" " + attributes + "><UnstructuredGrid>" + pieces +
           "</UnstructuredGrid></VTKFile>";
}

std::string piece(const std::string& points, const std::string& cells, const std::string& data = "") {
    return "<Piece NumberOfPoints=\"3\" NumberOfCells=\"1\"><Points><DataArray type=\"Float32\" "
           "NumberOfComponents=\"3\">" +
           points + "</DataArray></Points><Cells>" + cells + "</Cells>" + data + "</Piece>";
}

std::string xmlArray(const std::string& name, const std::string& values,
                     const std::string& rest = "type=\"Int32\"") {
    return "<DataArray Name=\"" + name + "\" " + rest + ">" + values + "</DataArray>";
}

std::string triangle(const std::string& connectivity = "0 1 2", const std::string& offset = "3",
                     const std::string& type = "5") {
    return xmlArray("connectivity", connectivity) + xmlArray("offsets", offset) + xmlArray("types", type);
}

const std::string kPoints = "0 0 0 1 0 0 0 1 0";

TEST(Reader, JoinsPiecesAndKeepsTheFieldsOfAll) {
    const std::string both = xmlArray("A", "1 2 3");
    const std::string first = "<PointData>" + both + xmlArray("onlyFirst", "4 5 6") + "</PointData>";
    const std::string second = "<PointData>" + both + "<Array type=\"String\" Name=\"text\"/></PointData>";
    const Model model = readText(
        vtu(piece(kPoints, triangle(), first) + piece("0 0 5 1 0 5 0 1 5", triangle("2 1 0"), second)));
    EXPECT_THAT(model.connectivity, ElementsAre(0, 1, 2, 5, 4, 3));
    ASSERT_EQ(model.fields.size(), 1u);
    EXPECT_THAT(model.fields[0].values, ElementsAre(1, 2, 3, 1, 2, 3));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("text"), HasSubstr("onlyFirst")));
}

const std::string kLegacyHead = "# vtk DataFile Version 3.0\ntitle\nASCII\n";
const std::string kLegacyGrid =
    kLegacyHead + "DATASET UNSTRUCTURED_GRID\nPOINTS 3 float\n0 0 0 1 0 0 0 1 0\n";

TEST(Reader, DropsUnknownCellsWithTheirValues) {
    const Model model = readText(kLegacyGrid + "CELLS 3 11\n3 0 1 2\n2 9 9\n3 2 1 0\nCELL_TYPES 3\n5 42 5\n" +
                                 "CELL_DATA 3\nVECTORS v float\n1 2 3 4 5 6 7 8 9\n");
    EXPECT_THAT(model.connectivity, ElementsAre(0, 1, 2, 2, 1, 0));
    EXPECT_THAT(model.fields.at(0).values, ElementsAre(1, 2, 3, 7, 8, 9));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("type 42")));
}

// Polygonal data numbers its cells vertices, lines, polygons, strips: not in the file's order.
TEST(Reader, ReadsPolyDataInTheOrderOfItsCellData) {
    const Model model =
        readText(kLegacyHead + "DATASET POLYDATA\nPOINTS 5 float\n0 0 0 1 0 0 1 1 0 0 1 0 0 2 0\n" +
                 "TRIANGLE_STRIPS 1 5\n4 0 1 3 2\nPOLYGONS 3 15\n3 0 1 2\n4 0 1 2 3\n5 0 1 2 4 3\n"
                 "LINES 2 7\n2 0 1\n3 1 2 3\nVERTICES 2 5\n1 4\n2 0 1\n" +
                 "CELL_DATA 8\nSCALARS s int\nLOOKUP_TABLE default\n0 1 2 3 4 5 6 7\n");
    using enum CellType;
    EXPECT_THAT(model.types,
                ElementsAre(Vertex, PolyVertex, Line, PolyLine, Triangle, Quad, Polygon, TriangleStrip));
    EXPECT_THAT(model.cellNodes(3), ElementsAre(1, 2, 3));
    EXPECT_EQ(model.fields.at(0).values.back(), 7);
}

TEST(Reader, ReadsEveryLegacyAttribute) {
    const Model model =
        readText(kLegacyHead +
                 "DATASET UNSTRUCTURED_GRID\nFIELD FieldData 2\nTIME 1 1 double\n0.5\nnote 1 1 string\nall "
                 "well\nPOINTS 1 float\n1 2 3\nMETADATA\nINFORMATION 0\n\nCELLS 1 2\n1 0\nCELL_TYPES 1\n1\n" +
                 "POINT_DATA 1\nSCALARS two float 2\n1 2\nNORMALS n float\n0 0 1\nTENSORS t double\n1 2 3 4 "
                 "5 6 7 8 9\n" +
                 "COLOR_SCALARS c 4\n0 0.5 1 0.25\nLOOKUP_TABLE colours 2\n0 0 0 1 1 1 1 1\n" +
                 "TEXTURE_COORDINATES uv 2 float\n0.5 0.75\nFIELD FieldData 2\nvon%20Mises 1 1 "
                 "float\n4e2\nMETADATA\n" +
                 "COMPONENT_NAMES\nx\n\nbits 3 1 bit\n1 0 1\n");
    std::vector<std::string> seen;
    for (const Field& field : model.fields)
        seen.push_back(field.name + " " + std::to_string(field.components) + " " +
                       std::to_string(static_cast<int>(4 * field.values.back())));
    EXPECT_THAT(seen, ElementsAre("two 2 8", "n 3 4", "t 9 36", "c 4 1", "uv 2 3", "von Mises 1 1600"));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("note"), HasSubstr("bits")));
}

struct BadFile {
    std::string name;
    std::string content;
    std::string reason; ///< a piece of it
};

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

/// A compressed array of points with a header of these numbers and eight bytes of data.
std::string compressedPoints(const std::string& points, const std::vector<std::uint64_t>& header) {
    std::string data;
    for (const std::uint64_t number : header)
        for (int byte = 0; byte < 8; ++byte)
            data.push_back(static_cast<char>(number >> (8 * byte)));
    return replaced(
        vtu("<Piece NumberOfPoints=\"" + points +
                "\" NumberOfCells=\"1\"><Points><DataArray type=\"Float64\" NumberOfComponents=\"3\" "
                "format=\"appended\" offset=\"0\"/></Points></Piece>",
            "header_type=\"UInt64\" compressor=\"vtkZLibDataCompressor\""),
        "</VTKFile>", "<AppendedData encoding=\"raw\">_" + data + "12345678</AppendedData></VTKFile>");
}

TEST(Reader, BadFilesAreRefusedInOneLineWithTheReason) {
    const std::string ascii = encodings()[0].content;
    const std::string grid = kLegacyGrid + "CELLS 1 4\n3 0 1 2\nCELL_TYPES 1\n5\n";
    const BadFile rows[] = {
        {"empty", "", "is empty"},
        {"neither", "solid part\nfacet normal 0 0 1\n", "neither"},
        {"otherData", replaced(vtu(""), "UnstructuredGrid", "ImageData"), "'ImageData'"},
        {"lz4", vtu("", "compressor=\"vtkLZ4DataCompressor\""), "vtkLZ4DataCompressor"},
        {"noPieces", vtu(""), "has no cells"},
        {"nanNode", vtu(piece("0 0 nan 1 0 0 0 1 0", triangle())),
         "node 0 has a coordinate that is not finite"},
        {"indexTooHigh", vtu(piece(kPoints, triangle("0 1 3"))), "node 3 of 3"},
        {"indexNegative", vtu(piece(kPoints, triangle("0 1 -1"))), "node -1 of 3"},
        {"offsetNegative", vtu(piece(kPoints, triangle("0 1 2", "-3"))), "negative"},
        {"wrongNodeCount", vtu(piece(kPoints, triangle("0 1 2", "3", "9"))), "cell 0 (quad) has 3 nodes"},
        {"onlyUnknown", vtu(piece(kPoints, triangle("0 1 2", "3", "42"))), "type 42"},
        {"tooFewPoints", vtu(piece("0 0 0 1 0 0 0 1", triangle())), "Points ends before 9 numbers"},
        {"tooManyPoints", vtu(piece(kPoints + " 7", triangle())), "more than 9 values"},
        {"noNumber", vtu(piece("0 0 0 1 0 O 0 1 0", triangle())), "'O' is not a number"},
        {"realIndices",
         vtu(piece(kPoints, replaced(triangle(), "Int32\">0",
                                     "Float32\" format=\"binary\">DAAAAAAAAAAAAAAAAAAAAA=="))),
         "whole"},
        {"manyPoints", replaced(ascii, "NumberOfPoints='6'", "NumberOfPoints='999999999999'"),
         "than the file"},
        {"noAppended", replaced(ascii, "format='ascii'", "format='appended' offset='0'"), "no AppendedData"},
        {"zlibBomb", compressedPoints("1000000", {1, 24000000, 0, 8}), "impossible size"},
        {"zlibSizesWrap", compressedPoints("2", {2, 24, 0, 1ull << 63, 1ull << 63}), "past the end"},
        {"zlibDamaged", replaced(encodings()[7].content, "\x78\x9c", "\x78\x9d"), "zlib"},
        {"blockTooLong", vtu(piece(kPoints, replaced(triangle(), ">0", " format=\"binary\">/////w=="))),
         "bytes"},
        {"structured", kLegacyHead + "DATASET STRUCTURED_POINTS\n", "structured_points"},
        {"legacyVersion", replaced(grid, "3.0", "9.0"), "version"},
        {"legacyEncoding", replaced(grid, "ASCII", "HEX"), "ASCII nor BINARY"},
        {"manyLegacyPoints", replaced(grid, "POINTS 3", "POINTS 999999999"), "than the file"},
        {"cellListTooShort", replaced(grid, "3 0 1 2", "4 0 1 2"), "past the end of the cell list"},
        {"cellListTooLong", replaced(grid, "3 0 1 2", "2 0 1 2"), "after the last cell"},
        {"noCellTypes", replaced(grid, "CELL_TYPES 1\n5\n", ""), "1 cells but 0 cell types"},
        {"dataForOthers", grid + "POINT_DATA 4\n", "4 points, but 3"},
        {"fieldForOthers", grid + "CELL_DATA 1\nFIELD f 1\nS 1 2 float\n1 2\n", "2 tuples instead of 1"},
        {"geometryAfterData", grid + "CELL_DATA 1\nCELLS 1 4\n3 0 1 2\n", "unexpected 'cells'"},
        {"keyword", grid + "WEIGHTS 3\n", "unexpected 'weights'"},
    };
    for (const BadFile& row : rows)
        try {
            readText(row.content);
            ADD_FAILURE() << row.name << " was read";
        } catch (const ViewerError& error) {
            const std::string reason = error.what();
            EXPECT_THAT(reason, AllOf(HasSubstr(temporaryPath() + ": "), HasSubstr(row.reason))) << row.name;
            EXPECT_EQ(reason.find('\n'), std::string::npos) << row.name;
        }
}

} // namespace
