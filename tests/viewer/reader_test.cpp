// Reading models: every encoding gives the same model, and bad files get one clear reason.
#include "tests/viewer/vtkwriter.h"

using namespace nrutest;

namespace {

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

TEST(Reader, EveryEncodingGivesTheSameModelAndIsRefusedWhenItIsCutShort) {
    const Model whole = readText(kAscii);
    EXPECT_THAT(whole.nodes.back(), ElementsAre(-1.5, -7, 11));
    EXPECT_THAT(whole.cellNodes(2), ElementsAre(5, 4, 3, 2, 1));
    EXPECT_EQ(whole.fields.at(1).values, kScalar);
    EXPECT_EQ(whole.fields.at(0).values.back(), kVector.back());
    for (const auto& [name, content] : kEncodings) {
        SCOPED_TRACE(name);
        EXPECT_EQ(dump(readText(content)), dump(whole));
        Folder().expectRefusedWhenCutShort(content, whole, 1);
    }
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

std::string collection(const std::string& members) {
    return "<VTKFile type=\"Collection\"><Collection>" + members + "</Collection></VTKFile>";
}
const std::string kMembers =
    collection("<DataSet timestep='2.5' file='b.vtu'/><DataSet timestep='0.5' file='a.vtu'/>");

TEST(Reader, ReadsTheFilesOfACollectionAsStepsOfOneMesh) {
    const Folder folder;
    folder.write("a.vtu", kAscii);
    folder.write("b.vtu", replaced(kAscii, "-7 11 <", "-7 12 <"));
    const Model model = folder.parse(kMembers, "c.pvd");
    EXPECT_THAT(model.nodes.back(), ElementsAre(-1.5, -7, 11));
    ASSERT_EQ(model.fields.size(), 6u);
    EXPECT_EQ(model.fields[4].name, model.fields[1].name);
    EXPECT_EQ(std::pair(*model.fields[1].step, *model.fields[4].step), std::pair(0u, 1u));
    EXPECT_EQ(std::pair(model.steps.at(0).label, model.steps.at(1).value),
              std::pair(std::string("time 0.5"), 2.5));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("nodes move")));

    folder.write("b.vtu", replaced(kAscii, "3 2 1 <", "3 2 0 <"));
    const std::string twice = "<DataSet timestep='1' file='a.vtu'/><DataSet timestep='1' file='b.vtu'/>";
    folder.expectRefused({{kMembers, "another mesh in b.vtu"},
                          {collection("<DataSet file='none.vtu'/>"), "names none.vtu, which no such file"},
                          {collection("<DataSet file='../a.vtu'/>"), "not lie in its folder"},
                          {collection(twice), "several files for one time"},
                          {collection(""), "names no files"}},
                         "c.pvd");
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
    const auto inXml = [](const char* from, const char* to) { return replaced(kAscii, from, to); };
    const auto inLegacy = [](const char* from, const char* to) { return replaced(kLegacy, from, to); };
    Folder().expectRefused({
        {"", "is empty"},
        {"OFF\n1 0 0\n", "is none of"},
        {"\x1F\x8B\x08", "is compressed with gzip; unpack it first"},
        {inXml("UnstructuredGrid", "PUnstructuredGrid"), "only names files"},
        {inXml("UnstructuredGrid", "ImageData"), "'ImageData'"},
        {replaced(kWideZlib, "vtkZLib", "vtkLZ4"), "vtkLZ4DataCompressor"},
        {inXml("Points='6' NumberOfCells='3'", "Points='0' NumberOfCells='0'"), "has no cells"},
        {inXml("-7 11 <", "-7 nan <"), "node 5 has a coordinate that is not finite"},
        {inXml("3 2 1 <", "3 2 6 <"), "node 6 of 6"},
        {inXml("3 2 1 <", "3 2 -1 <"), "node -1 of 6"},
        {inXml("4 8 13 <", "4 8 -3 <"), "negative"},
        {inXml("10 9 4 <", "10 5 4 <"), "cell 1 (triangle) has 4 nodes"},
        {inXml("10 9 4 <", "42 42 42 <"), "type 42"},
        {inXml("-7 11 <", "-7 <"), "Points ends after 17 of 18 numbers"},
        {inXml("-7 11 <", "-7 11 7 <"), "more than 18 values"},
        {inXml("-7 11 <", "-7 1O <"), "'1O' is not a number"},
        {inXml("Points='6'", "Points='999999999999'"), "than the file"},
        {inXml("format='ascii'", "format='appended' offset='0'"), "no AppendedData"},
        {withHeader(manyZlib, {1, 24000000, 0, 8}), "impossible size"},
        {withHeader(kWideZlib, {2, 144, 0, 8, ~7ull}), "past the end"},
        {replaced(kWideZlib, "\x78\x9c", "\x78\x9d"), "zlib"},
        {withHeader(kRaw, {~0ull}), "bytes instead of 144"},
        {inLegacy("UNSTRUCTURED_GRID", "STRUCTURED_POINTS"), "structured_points"},
        {inLegacy("3.1", "9.0"), "version"},
        {inLegacy("POINTS 6", "POINTS 999999999"), "than the file"},
        {inLegacy("16\n4", "16\n99"), "past the end of the cell list"},
        {inLegacy("16\n4", "16\n3"), "after the last cell"},
        {inLegacy("CELL_TYPES 3\n10 9 4 \n", ""), "3 cells but 0 cell types"},
        {inLegacy("POINT_DATA 6", "POINT_DATA 4"), "4 points, but 6"},
        {inLegacy("material 1 3", "material 1 2"), "2 tuples instead of 3"},
        {inLegacy("VECTORS", "WEIGHTS"), "unexpected 'weights'"},
    });
}

} // namespace
