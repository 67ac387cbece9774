// Result files of CalculiX: every element type in its place, the forms of numbers and blocks, one reason for
// files that are damaged.
#include <cstdio>

#include "tests/viewer/elements.h"
#include "tests/viewer/files.h"
#include "viewer/model/fields.h"

using namespace nrutest;

namespace {

template <class... Args>
std::string format(const char* form, Args... args) {
    std::array<char, 200> text;
    std::snprintf(text.data(), text.size(), form, args...);
    return text.data();
}

std::string header(const char* name, int count, int form) {
    return format("%6s%18s%12d%37s%d\n", name, "", count, "", form);
}

// --- elements ----------------------------------------------------------------------------------------------

/// Elements by their corners and the pairs of these that the other nodes are between, in the file's order.
const std::tuple<CellType, int, const char*> kElements[] = {
    {CellType::Hexa, 8, ""},
    {CellType::Wedge, 6, ""},
    {CellType::Tetra, 4, ""},
    {CellType::Hexa20, 8, "01 12 23 30 04 15 26 37 45 56 67 74"},
    {CellType::Wedge15, 6, "01 12 20 03 14 25 34 45 53"},
    {CellType::Tetra10, 4, "01 12 20 03 13 23"},
    {CellType::Triangle, 3, ""},
    {CellType::Triangle6, 3, "01 12 20"},
    {CellType::Quad, 4, ""},
    {CellType::Quad8, 4, "01 12 23 30"},
    {CellType::Line, 2, ""},
    {CellType::Line3, 2, "01"},
};

/// Every type once, each with nodes of its own and of alternating materials, of which old files have the
/// name's beginning; elements are numbered from 70.
std::string zoo(int form) {
    const bool isBinary = form >= 2;
    const int width = form == 0 ? 5 : 10;
    const std::size_t perLine = form == 0 ? 15 : 10;
    std::string nodes, elements;
    int node = 0, type = 0;
    for (const auto& [_, corners, middles] : kElements) {
        const int number = 70 + type++;
        const char* material = type % 2 != 0 ? "2" : form == 0 ? "EL   " : "1";
        elements += isBinary ? bytes(number, type, 0, 1 + type % 2)
                             : format(" -1%*d%5d%5d%5s\n", width, number, type, 0, material);
        const std::vector<Point> places = nodesAmong(corners, middles);
        for (std::size_t i = 0; i < places.size(); ++i) {
            const auto [x, y, z] = places[i];
            ++node;
            nodes += form == 3   ? bytes(node, x, y, z)
                     : form == 2 ? bytes(node, float(x), float(y), float(z))
                                 : format(" -1%*d%12.5E%12.5E%12.5E\n", width, node, x, y, z);
            const bool isLast = i + 1 == places.size() || (i + 1) % perLine == 0;
            elements += isBinary ? bytes(node)
                                 : (i % perLine == 0 ? " -2" : "") + format("%*d", width, node) +
                                       (isLast ? "\n" : "");
        }
    }
    const std::string end = isBinary ? "" : " -3\n";
    return "    1C\n    1UMAT    2STEEL\n" + header("2C", node, form) + nodes + end +
           header("3C", type, form) + elements + end + " 9999\n";
}

class Forms : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Frd, Forms, testing::Range(0, 4));

TEST_P(Forms, ElementsAreInTheModelsOrderAndInPartsByMaterial) {
    const Model model = readText(zoo(GetParam()));
    ASSERT_EQ(model.cellCount(), std::size(kElements));
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell) {
        const auto& [type, corners, _] = kElements[model.cellNumbers[cell] - 70];
        EXPECT_EQ(model.types[cell], type);
        for (int i = 1; i < corners; ++i)
            EXPECT_EQ(model.cellNodes(cell)[i], model.cellNodes(cell)[0] + i);
        expectMiddles(model, cell);
    }
    EXPECT_EQ(partsOf(model), GetParam() == 0 ? "STEEL 0, EL 6, " : "STEEL 0, material 1 6, ");
    EXPECT_THAT(model.cellNumbers, ElementsAre(70, 72, 74, 76, 78, 80, 71, 73, 75, 77, 79, 81));
}

// --- results -----------------------------------------------------------------------------------------------

const std::string kMesh = "    1C\n" + header("2C", 2, 1) +
                          " -1         7 0.00000E+00 0.00000E+00 0.00000E+00\n"
                          " -1         5-1.00000E+00-2.00000E+00-3.0000E+100\n -3\n" +
                          header("3C", 1, 1) + " -1         1   11    0    1\n -2         7         5\n -3\n";

std::string begin(const char* value, int kind, int number, int form = 1) {
    return format("  100CL  101%12s%12d%20s%2d%5d%10s%2d\n", value, 2, "", kind, number, "", form);
}

std::string named(const char* block, int type, const std::vector<const char*>& entities) {
    std::string lines = format(" -4  %-8s%5zu    1\n", block, entities.size());
    for (const std::string entity : entities)
        lines += format(" -5  %-8s    1%5d    1    0%5d\n", entity.c_str(), type, entity == "ALL" ? 1 : 0);
    return lines;
}

const std::string kDisp = named("DISP", 2, {"D1", "D2", "D3", "ALL"});

TEST(Frd, NumbersFillTheirColumnsWithoutBlanks) {
    const Model model = readText(kMesh + begin("1.0", 0, 1) + kDisp +
                                 " -1         5-1.00000E+00-2.00000-10012.5000D+001\n -3\n" +
                                 named("NDTEMP", 1, {"T"}).insert(0, begin("1.0", 0, 1)) +
                                 " -1         7         NaN\n -1         5************\n -3\n 9999\n");
    EXPECT_THAT(model.nodeNumbers, ElementsAre(7, 5));
    EXPECT_EQ(model.nodes[1], (Point{-1, -2, -3e100}));
    ASSERT_EQ(model.fields.size(), 2u);
    EXPECT_THAT(model.fields[0].values, ElementsAre(IsNan(), IsNan(), IsNan(), -1, -2e-100, 125));
    EXPECT_THAT(model.fields[1].values, ElementsAre(IsNan(), IsNan()));
    EXPECT_EQ(findDisplacement(model, {}), &model.fields[0]);
}

TEST(Frd, StepsSayWhatTheyAre) {
    const std::string disp = kDisp + " -1         7 0.00000E+00 0.00000E+00 0.00000E+00\n -3\n";
    const std::string imaginary = std::string(disp).replace(disp.find("DISP "), 5, "DISPI");
    const Model model = readText(
        kMesh + "    1PSTEP                         1           1           1\n" + begin("0.5", 0, 1) + disp +
        begin("1.25E-03", 1, 2) + disp + "    1PHID                          3\n" +
        "    1PMODE                         4\n" + begin("417.2", 2, 3) + disp + begin("0.0", 4, 4) + disp +
        begin("33.87", 4, 5) + disp + begin("72.0", 4, 6) + disp + begin("100.0", 1, 7) + disp +
        begin("100.0", 1, 7) + imaginary + " 9999\n");
    std::string labels;
    for (const ResultStep& step : model.steps)
        labels += step.label + (step.isMode ? "*|" : "|");
    EXPECT_EQ(labels, "time 0.5|time 0.00125|mode 4, nodal diameter 3, 417.2 Hz*|preload|"
                      "buckling 1, factor 33.87*|buckling 2, factor 72*|100 Hz|");
    EXPECT_EQ(model.fields.back().name, "DISPI");
    EXPECT_EQ(model.fields.back().step, 6u);
}

TEST(Frd, ValuesThatAreNoTensorBecomeFieldsOfTheirOwn) {
    const std::vector<const char*> phases = {"MAGXX", "MAGYY", "MAGZZ", "MAGXY", "MAGYZ", "MAGZX",
                                             "PHAXX", "PHAYY", "PHAZZ", "PHAXY", "PHAYZ", "PHAZX"};
    const std::vector<const char*> contact = {"COPEN", "CSLIP1", "CSLIP2", "CPRESS", "CSHEAR1", "CSHEAR2"};
    const auto line = [](const char* start, int first) {
        std::string text = start;
        for (int i = first; i < first + 6; ++i)
            text += format("%12.5E", double(i));
        return text + "\n";
    };
    const Model model =
        readText(kMesh + begin("1.0", 1, 1) + named("PSTRESS", 14, phases) + line(" -1         5", 0) +
                 line(" -2          ", 6) + " -3\n" + begin("1.0", 1, 1) + named("CONTACT", 4, contact) +
                 line(" -1         5", 20) + " -3\n" + begin("1.0", 1, 1) +
                 named("SDV", 1, {"SDV1", "SDV2"}) + line(" -1         5", 0) + " -3\n 9999\n");
    ASSERT_EQ(model.fields.size(), 10u);
    EXPECT_EQ(model.fields[9].name, "SDV2");
    EXPECT_EQ(model.fields[1].name, "PSTRESS_PHA");
    EXPECT_EQ(model.fields[1].components, 6);
    EXPECT_EQ(model.fields[1].values[11], 11);
    EXPECT_EQ(model.fields[5].name, "CONTACT_CPRESS");
    EXPECT_EQ(model.fields[5].values[1], 23);
}

TEST(Frd, BinaryResultsAreThoseOfText) {
    const Model model = readText(kMesh + begin("1.0", 0, 1, 2) + kDisp + bytes(5, 1.5f, -2.f, 0.25f) +
                                 bytes(7, 1.f, 2.f, 3.f) + " 9999\n");
    EXPECT_THAT(model.fields.at(0).values, ElementsAre(1, 2, 3, 1.5, -2, 0.25));
}

TEST(Frd, DamagedFilesEndInOneReason) {
    const std::string block = begin("1.0", 0, 1) + kDisp;
    Folder().expectRefused({
        {kMesh.substr(0, kMesh.find(" -1         5")), "is cut short"},
        {kMesh.substr(0, kMesh.rfind(" -3\n")), "is cut short"},
        {kMesh + block, "is cut short"},
        {kMesh + begin("1.0", 0, 1, 3) + kDisp + bytes(5, 1.0), "is cut short"},
        {replaced(kMesh, "5\n", "6\n"), "node 6, which is not there"},
        {replaced(kMesh, "         5\n", "\n"), "element 1 (line) with 1 nodes"},
        {replaced(replaced(kMesh, "5\n", "7\n"), "5-1", "7-1"), "node 7 is there twice"},
        {kMesh.substr(0, kMesh.find("    3C")), "has no elements"},
        {replaced(kMesh, "11", "13"), "1 elements of type 13"},
        {kMesh + block + " -1         5 1.00000E+00\n -3\n", "has no value 2 of node 5"},
        {kMesh + begin("??", 0, 1) + kDisp + " -3\n", "without its time"},
        {kMesh + "    7C\n", "begins no block: '    7C'"},
    });
}

} // namespace
