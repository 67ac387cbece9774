// Reading models: every encoding gives the same model, and bad files get one clear reason.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/viewer/vtkwriter.h"
#include "viewer/error.h"
#include "viewer/model/model.h"

namespace {

using namespace nrutest;
using namespace nruview;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::PrintToString;

const std::string kPath =
    (std::filesystem::temp_directory_path() / ("reader_test_" + std::to_string(getpid()))).string();

Model readText(const std::string& content) {
    std::ofstream(kPath, std::ios::binary) << content;
    struct Remover {
        ~Remover() { std::remove(kPath.c_str()); }
    } remover;
    return readModel(kPath);
}

/// Everything of a model as text; no list in it is longer than what is printed in full.
std::string dump(const Model& model) {
    std::string text = PrintToString(std::tuple(model.nodes, model.types, model.offsets, model.connectivity));
    for (const Field& field : model.fields)
        text += PrintToString(std::tuple(field.name, field.location, field.components, field.values));
    return text;
}

const std::string kAscii = XmlWriter{}.write();
const std::string kRaw = XmlWriter{Storage::AppendedRaw}.write();
const std::string kWideZlib = XmlWriter{Storage::AppendedRaw, 8, false, 16}.write();
const std::string kLegacy = writeLegacy(false, 3);

const std::vector<std::pair<const char*, std::string>> kEncodings = {
    {"ascii", kAscii},
    {"base64", XmlWriter{Storage::Inline}.write()},
    {"base64Zlib", XmlWriter{Storage::Inline, 4, false, 32}.write()},
    {"base64ZlibWideBig", XmlWriter{Storage::Inline, 8, true, 40}.write()},
    {"appendedBase64", XmlWriter{Storage::AppendedBase64}.write()},
    {"appendedRaw", kRaw},
    {"appendedRawBig", XmlWriter{Storage::AppendedRaw, 4, true}.write()},
    {"appendedRawZlibWide", kWideZlib},
    {"legacyAscii", kLegacy},
    {"legacyBinary", writeLegacy(true, 3)},
    {"legacyAsciiOffsets", writeLegacy(false, 5)},
    {"legacyBinaryOffsets", writeLegacy(true, 5)},
};

// A file cut short gives an error with its name, or the whole geometry where only fields or closing tags are
// missing.
TEST(Reader, EveryEncodingGivesTheSameModelAndIsRefusedWhenItIsCutShort) {
    const Model whole = readText(kAscii);
    EXPECT_THAT(whole.nodes.back(), ElementsAre(-1.5, -7, 11));
    EXPECT_THAT(whole.cellNodes(2), ElementsAre(5, 4, 3, 2, 1));
    EXPECT_EQ(whole.fields.at(1).values, kScalar);
    EXPECT_EQ(whole.fields.at(0).values.back(), kVector.back());
    for (const auto& [name, content] : kEncodings) {
        EXPECT_EQ(dump(readText(content)), dump(whole)) << name;
        std::size_t refused = 0;
        for (std::size_t length = 0; length < content.size(); ++length)
            try {
                const Model model = readText(content.substr(0, length));
                ASSERT_EQ(model.nodes, whole.nodes) << name << " " << length;
                ASSERT_EQ(model.connectivity, whole.connectivity) << name << " " << length;
            } catch (const ViewerError& error) {
                ASSERT_THAT(error.what(), HasSubstr(kPath)) << length;
                ++refused;
            }
        EXPECT_GT(refused, content.size() / 3) << name;
    }
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

TEST(Reader, JoinsPiecesAndKeepsTheFieldsOfAll) {
    const std::size_t begin = kAscii.find("<Piece"), end = kAscii.find("</UnstructuredGrid");
    const std::string second = replaced(kAscii.substr(begin, end - begin), "'T'", "'onlySecond'");
    const std::string text = "<CellData><Array type='String' Name='text'/>";
    const Model model =
        readText(kAscii.substr(0, end) + replaced(second, "<CellData>", text) + kAscii.substr(end));
    EXPECT_EQ(model.types.size(), 6u);
    EXPECT_THAT(model.cellNodes(4), ElementsAre(6, 8, 10, 11));
    ASSERT_EQ(model.fields.size(), 2u);
    EXPECT_THAT(model.fields[1].values, ElementsAre(7, -300, 12, 7, -300, 12));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("onlySecond"), HasSubstr("text"), HasSubstr("field T")));
}

TEST(Reader, DropsUnknownCellsWithTheirValues) {
    const std::string pairs = replaced(kLegacy, "1 3 short\n7 -300 12", "2 3 short\n1 2 3 4 5 6");
    const Model model = readText(replaced(pairs, "10 9 4 ", "10 42 4 "));
    EXPECT_THAT(model.connectivity, ElementsAre(0, 1, 2, 3, 5, 4, 3, 2, 1));
    EXPECT_THAT(model.fields.at(2).values, ElementsAre(1, 2, 5, 6));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("type 42")));
}

const std::string kLegacyHead = "# vtk DataFile Version 3.0\ntitle\nASCII\n";

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
}

TEST(Reader, ReadsEveryLegacyAttribute) {
    const Model model = readText(
        kLegacyHead + "DATASET UNSTRUCTURED_GRID\nFIELD FieldData 2\nTIME 1 1 double\n0.5\n" +
        "note 1 1 string\nall well\nPOINTS 1 float\n1 2 3\nMETADATA\nINFORMATION 0\n\nCELLS 1 2\n1 0\n" +
        "CELL_TYPES 1\n1\nPOINT_DATA 1\nSCALARS two float 2\n1 2\nNORMALS n float\n0 0 1\n" +
        "TENSORS t double\n1 2 3 4 5 6 7 8 9\nLOOKUP_TABLE colours 2\n0 0 0 1 1 1 1 1\n" +
        "TEXTURE_COORDINATES uv 2 float\n0.5 0.75\nFIELD FieldData 2\nvon%20Mises 1 1 float\n4e2\n" +
        "METADATA\nCOMPONENT_NAMES\nx\n\nbits 3 1 bit\n1 0 1\n");
    std::vector<std::string> seen;
    for (const Field& field : model.fields)
        seen.push_back(field.name + " " + std::to_string(field.components) + " " +
                       std::to_string(static_cast<int>(4 * field.values.back())));
    EXPECT_THAT(seen, ElementsAre("two 2 8", "n 3 4", "t 9 36", "uv 2 3", "von Mises 1 1600"));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("note"), HasSubstr("bits")));
}

/// A collection of two files in a folder of its own: a text for each, and an element for each.
struct Collection {
    std::filesystem::path folder = kPath + ".d";
    explicit Collection(const std::string& first, const std::string& second) {
        std::filesystem::create_directory(folder);
        std::ofstream(folder / "a.vtu") << first;
        std::ofstream(folder / "b.vtu") << second;
    }
    ~Collection() { std::filesystem::remove_all(folder); }
    Model read(const std::string& members) const {
        std::ofstream(folder / "c.pvd")
            << "<VTKFile type=\"Collection\"><Collection>" << members << "</Collection></VTKFile>";
        return readModel(folder / "c.pvd");
    }
};
const std::string kMembers = "<DataSet timestep='2.5' file='b.vtu'/><DataSet timestep='0.5' file='a.vtu'/>";

TEST(Reader, ReadsTheFilesOfACollectionAsStepsOfOneMesh) {
    const Model model = Collection(kAscii, replaced(kAscii, "-7 11 <", "-7 12 <")).read(kMembers);
    EXPECT_THAT(model.nodes.back(), ElementsAre(-1.5, -7, 11));
    ASSERT_EQ(model.fields.size(), 6u);
    EXPECT_EQ(model.fields[4].name, model.fields[1].name);
    EXPECT_EQ(std::pair(*model.fields[1].step, *model.fields[4].step), std::pair(0u, 1u));
    EXPECT_EQ(std::pair(model.steps.at(0).label, model.steps.at(1).value),
              std::pair(std::string("time 0.5"), 2.5));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("nodes move")));
}

TEST(Reader, CollectionsThatAreNoStepsOfOneMeshAreRefused) {
    const Collection other(kAscii, replaced(kAscii, "3 2 1 <", "3 2 0 <"));
    const std::string replies[] = {"another mesh in b.vtu", "names none.vtu, which no such file",
                                   "not lie in its folder", "several files for one time", "names no files"};
    const std::string members[] = {kMembers, "<DataSet file='none.vtu'/>", "<DataSet file='../a.vtu'/>",
                                   "<DataSet timestep='1' file='a.vtu'/><DataSet timestep='1' file='b.vtu'/>",
                                   ""};
    for (std::size_t i = 0; i < std::size(members); ++i)
        try {
            other.read(members[i]);
            ADD_FAILURE() << members[i];
        } catch (const ViewerError& error) {
            EXPECT_THAT(error.what(), HasSubstr(replies[i]));
        }
}

/// With other numbers at the head of the first appended array.
std::string withHeader(std::string file, const std::vector<std::uint64_t>& header) {
    std::string bytes;
    for (const std::uint64_t number : header)
        bytes += bytesOf(number, false);
    return file.replace(file.find("\n_") + 2, bytes.size(), bytes);
}

TEST(Reader, BadFilesAreRefusedInOneLineWithTheReason) {
    const std::string manyZlib = replaced(kWideZlib, "Points='6'", "Points='1000000'");
    using Text = std::string;
    // A file, what is replaced in it, and a piece of the reason.
    const std::tuple<const char*, Text, Text, Text, Text> rows[] = {
        {"empty", "", "", "", "is empty"},
        {"none", "OFF\n1 0 0\n", "", "", "is none of"},
        {"packed", "\x1F\x8B\x08", "", "", "is compressed with gzip; unpack it first"},
        {"pieces", kAscii, "UnstructuredGrid", "PUnstructuredGrid", "only names files"},
        {"otherData", kAscii, "UnstructuredGrid", "ImageData", "'ImageData'"},
        {"lz4", kWideZlib, "vtkZLib", "vtkLZ4", "vtkLZ4DataCompressor"},
        {"noCells", kAscii, "Points='6' NumberOfCells='3'", "Points='0' NumberOfCells='0'", "has no cells"},
        {"nanNode", kAscii, "-7 11 <", "-7 nan <", "node 5 has a coordinate that is not finite"},
        {"indexTooHigh", kAscii, "3 2 1 <", "3 2 6 <", "node 6 of 6"},
        {"indexNegative", kAscii, "3 2 1 <", "3 2 -1 <", "node -1 of 6"},
        {"offsetNegative", kAscii, "4 8 13 <", "4 8 -3 <", "negative"},
        {"wrongNodeCount", kAscii, "10 9 4 <", "10 5 4 <", "cell 1 (triangle) has 4 nodes"},
        {"onlyUnknown", kAscii, "10 9 4 <", "42 42 42 <", "type 42"},
        {"tooFewPoints", kAscii, "-7 11 <", "-7 <", "Points ends after 17 of 18 numbers"},
        {"tooManyPoints", kAscii, "-7 11 <", "-7 11 7 <", "more than 18 values"},
        {"noNumber", kAscii, "-7 11 <", "-7 1O <", "'1O' is not a number"},
        {"manyPoints", kAscii, "Points='6'", "Points='999999999999'", "than the file"},
        {"noAppended", kAscii, "format='ascii'", "format='appended' offset='0'", "no AppendedData"},
        {"zlibBomb", withHeader(manyZlib, {1, 24000000, 0, 8}), "", "", "impossible size"},
        {"zlibWrap", withHeader(kWideZlib, {2, 144, 0, 8, ~7ull}), "", "", "past the end"},
        {"zlibDamaged", kWideZlib, "\x78\x9c", "\x78\x9d", "zlib"},
        {"blockTooLong", withHeader(kRaw, {~0ull}), "", "", "bytes instead of 144"},
        {"structured", kLegacy, "UNSTRUCTURED_GRID", "STRUCTURED_POINTS", "structured_points"},
        {"version", kLegacy, "3.1", "9.0", "version"},
        {"manyLegacyPoints", kLegacy, "POINTS 6", "POINTS 999999999", "than the file"},
        {"cellTooLong", kLegacy, "16\n4", "16\n99", "past the end of the cell list"},
        {"cellTooShort", kLegacy, "16\n4", "16\n3", "after the last cell"},
        {"noCellTypes", kLegacy, "CELL_TYPES 3\n10 9 4 \n", "", "3 cells but 0 cell types"},
        {"dataForOthers", kLegacy, "POINT_DATA 6", "POINT_DATA 4", "4 points, but 6"},
        {"fieldForOthers", kLegacy, "material 1 3", "material 1 2", "2 tuples instead of 3"},
        {"keyword", kLegacy, "VECTORS", "WEIGHTS", "unexpected 'weights'"},
    };
    for (const auto& [name, file, from, to, reason] : rows)
        try {
            readText(replaced(file, from, to));
            ADD_FAILURE() << name << " was read";
        } catch (const ViewerError& error) {
            EXPECT_THAT(error.what(), AllOf(HasSubstr(kPath + ": "), HasSubstr(reason))) << name;
            EXPECT_THAT(error.what(), Not(HasSubstr("\n"))) << name;
        }
}

} // namespace
