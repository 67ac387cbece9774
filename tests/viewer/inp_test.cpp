// Input files of Abaqus and CalculiX: element types by name, sets, parts, instances and included files, and
// one reason for what is not read.
#include "tests/viewer/files.h"

using namespace nrutest;

namespace {

std::string nodes(int count) {
    std::string text = "*NODE\n";
    for (int i = 1; i <= count; ++i)
        text += std::to_string(i) + ", " + std::to_string(i) + ".\n";
    return text;
}

TEST(Inp, ElementTypesAreKnownByFamilyAndNumber) {
    using enum CellType;
    const std::vector<std::tuple<const char*, CellType, int>> rows = {
        {"C3D4", Tetra, 4},       {"C3D5", Pyramid, 5},    {"C3D8I", Hexa, 8},      {"C3D10MH", Tetra10, 10},
        {"SC6R", Wedge, 6},       {"DC3D15", Wedge15, 15}, {"C3D20RT", Hexa20, 20}, {"S4R5", Quad, 4},
        {"STRI65", Triangle6, 6}, {"S9R5", Quad9, 9},      {"M3D3", Triangle, 3},   {"CPEG8RH", Quad8, 8},
        {"CAX6M", Triangle6, 6},  {"R3D4", Quad, 4},       {"B31OS", Line, 2},      {"B32R", Line3, 3},
        {"B23", Line, 2},         {"T2D3", Line3, 3},      {"SAX1", Line, 2},
    };
    for (const auto& [name, type, count] : rows) {
        std::string element = "7";
        for (int i = 1; i <= count; ++i)
            element += (i == 11 ? ",\n" : ", ") + std::to_string(i);
        const Model model = readText(nodes(20) + "*ELEMENT, TYPE=" + name + "\n" + element + "\n");
        ASSERT_EQ(model.types, std::vector{type}) << name;
        EXPECT_EQ(model.connectivity.back(), type == Line3 ? 1 : count - 1) << name;
    }
    const Model model =
        readText(nodes(3) + "*ELEMENT,TYPE=T3D2\n1,1,2\n*ELEMENT,TYPE=SPRINGA\n2,1,\n2\n3,1,3\n" +
                 "*ELEMENT,TYPE=C3D15V\n*ELEMENT,TYPE=C3D27\n4,1,2,3\n*ELEMENT,TYPE=MASS\n5,1\n");
    EXPECT_THAT(model.notes,
                ElementsAre("skipped 1 elements of type C3D27", "skipped 1 elements of type MASS",
                            "skipped 2 elements of type SPRINGA"));
}

TEST(Inp, SetsAndSectionsBecomeNodeSetsAndParts) {
    const Folder folder;
    folder.write("sub/more.inp", "2, 1.0, , 0\n");
    const Model model = folder.parse(R"(** made by hand
*heading
1, 2, three
*Node, nset = Some
 1, 0, 0
*INCLUDE, INPUT=sub/more.inp
 30, 2., -1.5D+1, 2-3
*ELEMENT,
 TYPE=T3D2, ELSET="Left Side"
5, 1,
2

9, 2, 30
*ELEMENT, TYPE=T3D2, ELSET=right,
4, 1, 30, 2
*ELSET, ELSET=both
LEFT SIDE, Right
*NSET, NSET=odd, GENERATE
1, 100, 2
*NSET, NSET=all
odd, 30, gone
*Solid Section, elset=RIGHT, material=M
1.
*STEP
*BOUNDARY
odd, 1, 3
*CLOAD
30, 2, 5.
*NODE PRINT, NSET=all
U
*END STEP
)");
    EXPECT_THAT(model.nodeNumbers, ElementsAre(1, 2, 30));
    EXPECT_THAT(model.nodes, ElementsAre(Point{0, 0, 0}, Point{1, 0, 0}, Point{2, -15, 0.002}));
    EXPECT_THAT(model.cellNumbers, ElementsAre(5, 9, 4));
    EXPECT_EQ(setsOf(model), "Some: 0 1 2, odd: 0, all: 0 2, BOUNDARY: 0, CLOAD: 2, ");
    EXPECT_EQ(partsOf(model), "other elements 0, RIGHT 2, ");
    EXPECT_THAT(model.notes, ElementsAre("left out what stands behind the nodes of 1 elements of type T3D2",
                                         "left out of set all: gone, which is not there"));
}

TEST(Inp, InstancesStandAtTheirPlaces) {
    const Model model = readText(R"(*PART, NAME=Bar
*NODE
1, 0, 0, 0
2, 2, 0, 0
*ELEMENT, TYPE=B31, ELSET=steel
1, 1, 2
*NSET, NSET=tip
2
*BEAM SECTION, ELSET=steel, SECTION=RECT, MATERIAL=M
1., 1.
*END PART
*ASSEMBLY, NAME=A
*INSTANCE, NAME=first, PART=bar
*END INSTANCE
*INSTANCE, NAME=second, PART=Bar
1., 0, 0
1., 5., 0, 1., 5., -2., 90.
*END INSTANCE
*NSET, NSET=ends, INSTANCE=Second
1
*NSET, NSET=ends
first.TIP, second.2
*END ASSEMBLY
)");
    // From (1 0 0) and (3 0 0), by a quarter turn about the negative z-axis through (1 5 0).
    const std::vector<Point> places = {{0, 0, 0}, {2, 0, 0}, {-4, 5, 0}, {-4, 3, 0}};
    ASSERT_EQ(model.nodes.size(), places.size());
    for (std::size_t i = 0; i < places.size(); ++i)
        for (int k = 0; k < 3; ++k)
            EXPECT_THAT(model.nodes[i][k], DoubleNear(places[i][k], 1e-12)) << i << " " << k;
    EXPECT_THAT(model.connectivity, ElementsAre(0, 1, 2, 3));
    EXPECT_TRUE(model.nodeNumbers.empty());
    EXPECT_THAT(model.notes,
                ElementsAre(HasSubstr("numbered the nodes"), HasSubstr("numbered the elements")));
    EXPECT_EQ(setsOf(model), "ends: 1 2 3, first.tip: 1, second.tip: 3, ");
    EXPECT_EQ(partsOf(model), "first.steel 0, second.steel 1, ");
}

TEST(Inp, WhatIsNotReadEndsInOneReason) {
    const Folder folder; // with a file that one in the folder within it must not reach
    folder.write("inside/sub/more.inp", "2, 1, 0, 0\n");
    folder.write("inside/self.inp", "*INCLUDE, INPUT=self.inp\n");
    folder.write("outside.inp", "2, 1, 0, 0\n");
    std::filesystem::create_symlink(folder.path("outside.inp"), folder.path("inside/link.inp"));
    const std::string bar = nodes(3) + "*ELEMENT, TYPE=B31\n";
    std::string doubling = bar + "1,1,2\n*NSET,NSET=A\n1,2,3\n";
    for (int i = 0; i < 40; ++i)
        doubling += "*NSET,NSET=A\nA\n";
    const std::vector<BadFile> rows = {
        {"*NODE, INPUT=../outside.inp\n", "not in its own folder"},
        {"*INCLUDE, INPUT=sub/../../outside.inp\n", "not in its own folder"},
        {"*INCLUDE, INPUT=" + folder.path("outside.inp") + "\n", "not in its own folder"},
        {"*INCLUDE, INPUT=link.inp\n", "not in its own folder"},
        {"*INCLUDE, INPUT=none.inp\n", "cannot include 'none.inp': no such file"},
        {"*INCLUDE, INPUT=self.inp\n", "includes too many files"},
        {bar + "1, 1\n*STEP\n", "element 1 (B31) with less than 2 nodes"},
        {bar + "1, 1, 4\n", "element 1 with node 4, which is not there"},
        {bar + "1, 1, x\n", "has 'x' for the number of a node"},
        {bar + "1, 1, 2\n1, 2, 3\n", "element 1 is there twice"},
        {bar, "has no elements"},
        {nodes(2) + "*NGEN\n1, 2, 1\n", "uses *NGEN"},
        {"*NODE, SYSTEM=C\n1, 1, 90\n", "not rectangular"},
        {"*INSTANCE, NAME=a, PART=b\n*END INSTANCE\n", "part 'B', which is not there"},
        {"# comment\n8 1 0 0 0\n1 0 0 0\n", "is an AVS UCD file"},
        {"nothing\n", "has no keyword"},
        {doubling, "more members than the viewer can hold"},
    };
    folder.expectRefused(rows, "inside/model.inp");
}

} // namespace
