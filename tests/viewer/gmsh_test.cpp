// Reading Gmsh files: every version and encoding gives the same model, with its groups, numbers and results.
#include <cmath>

#include "tests/viewer/elements.h"
#include "tests/viewer/files.h"
#include "tests/viewer/gmshwriter.h"

using namespace nrutest;

namespace {

const std::string kText = MshWriter{}.write();

TEST(Gmsh, EveryVersionAndEncodingGivesTheSameModelAndIsRefusedWhenItIsCutShort) {
    const Model whole = readText(kText);
    for (const auto& [version, binary, bigEndian] :
         {std::tuple(22, false, false), std::tuple(22, true, false), std::tuple(22, true, true),
          std::tuple(40, false, false), std::tuple(40, true, false), std::tuple(41, false, false),
          std::tuple(41, true, false), std::tuple(41, true, true)}) {
        SCOPED_TRACE(std::to_string(version) + (binary ? " binary" : "") + (bigEndian ? " big" : ""));
        const std::string file = MshWriter{version, binary, bigEndian}.write();
        EXPECT_EQ(dump(readText(file)), dump(whole));
        Folder().expectRefusedWhenCutShort(file, whole, 3);
    }
}

// Solids come before what lies on them, and groups in the order of their numbers.
TEST(Gmsh, GroupsAreBlocksAndValuesFindTheirPlaces) {
    const Model model = readText(kText);
    EXPECT_THAT(model.nodes.at(11), ElementsAre(2.5, 1.25, 2));
    EXPECT_EQ(model.nodeNumbers.at(11), 120);
    EXPECT_THAT(model.cellNumbers, ElementsAre(102, 101, 31, 1));
    EXPECT_EQ(partsOf(model), "right 0, left 1, surface 3 2, held node 3, ");
    EXPECT_EQ(setsOf(model), "held node: 2, ");
    ASSERT_EQ(model.fields.size(), 4u);
    const Field &first = model.fields[0], &last = model.fields[1], &pairs = model.fields[2];
    EXPECT_EQ(first.values.at(1), 1.5);
    EXPECT_TRUE(std::isnan(first.values.at(0)));
    EXPECT_EQ(last.values.at(11), 3);
    EXPECT_EQ(std::tuple(*first.step, *last.step, *pairs.step), std::tuple(0, 1, 1));
    EXPECT_THAT(std::pair(model.steps.at(1).label, model.steps.at(1).value), testing::Pair("time 0.5", 0.5));
    // The quad shows what the hexahedron behind it has, the point nothing.
    EXPECT_THAT(std::vector(pairs.values.begin(), pairs.values.begin() + 6), ElementsAre(5, 6, 7, 8, 7, 8));
    EXPECT_TRUE(std::isnan(pairs.values.at(6)));
    // Node 50 is the third of hexahedron 101 and the fourth of 102.
    EXPECT_EQ(model.fields[3].values.at(4), (3 + 7) / 2.0);
    EXPECT_THAT(model.notes,
                ElementsAre(HasSubstr("P has 1 value"), HasSubstr("C has values at the nodes of"),
                            HasSubstr("1 boundary element")));
}

std::string mesh(const std::string& nodes, const std::string& elements) {
    return "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Nodes\n" + nodes + "$EndNodes\n$Elements\n" + elements +
           "$EndElements\n";
}

/// The corners that lie about each node, as Gmsh's manual draws its elements.
const std::tuple<int, int, const char*> kOrders[] = {
    {8, 2, "01"},
    {9, 3, "01 12 20"},
    {16, 4, "01 12 23 30"},
    {10, 4, "01 12 23 30 0123"},
    {11, 4, "01 12 02 03 23 13"},
    {17, 8, "01 03 04 12 15 23 26 37 45 47 56 67"},
    {12, 8, "01 03 04 12 15 23 26 37 45 47 56 67 0321 0154 0473 1265 2376 4567 01234567"},
    {18, 6, "01 02 03 12 14 25 34 35 45"},
    {13, 6, "01 02 03 12 14 25 34 35 45 0143 0253 1254"},
    {19, 5, "01 03 04 12 14 23 24 34"},
    {14, 5, "01 03 04 12 14 23 24 34 0321"},
};

TEST(Gmsh, NodesBetweenCornersComeToTheirPlaces) {
    for (const auto& [type, corners, about] : kOrders) {
        std::string list, numbers;
        int count = 0;
        for (const Point& p : nodesAmong(corners, about)) {
            const std::string number = std::to_string(++count);
            list += number;
            for (const double coordinate : p)
                list += ' ' + std::to_string(coordinate);
            list += '\n';
            numbers += ' ' + number;
        }
        const Model model = readText(mesh(std::to_string(count) + '\n' + list,
                                          "1\n1 " + std::to_string(type) + " 0" + numbers + "\n"));
        ASSERT_EQ(model.cellCount(), 1u);
        expectMiddles(model, 0);
    }
}

const std::string kNodes = "4\n1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\n";

// Version 2 repeats an element for each further group; a solid that was there twice would have no outer
// faces.
TEST(Gmsh, ElementsInSeveralGroupsAreThereOnce) {
    const Model model = readText(
        mesh(kNodes, "5\n7 4 2 2 1 1 2 3 4\n8 4 2 6 1 1 2 3 4\n9 2 2 6 1 1 2 3\n9 2 4 0 1 1 3 1 2 4\n"
                     "2 26 0 1 2 3 4\n"));
    EXPECT_THAT(model.types, ElementsAre(CellType::Tetra, CellType::Triangle, CellType::Triangle));
    EXPECT_THAT(model.cellNumbers, IsEmpty());
    EXPECT_EQ(model.parts.at(2).name, "surface without a group");
    EXPECT_THAT(model.fields.at(0).values, ElementsAre(0, 0, 3));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("skipped 1 lines of 4 nodes"),
                                         HasSubstr("numbers of the elements repeat"),
                                         HasSubstr("1 elements are in several groups and stand in the first: "
                                                   "volume 2, volume 6")));
}

TEST(Gmsh, BadFilesAreRefusedInOneLineWithTheReason) {
    const auto changed = [](const char* from, const char* to) { return replaced(kText, from, to); };
    const std::string newest = MshWriter{41}.write(), binary = MshWriter{22, true}.write();
    const std::string onlyHigher =
        mesh(kNodes, "2\n1 29 0 1 2 3 4 1 2 3 4 1 2 3 4 1 2 3 4 1 2 3 4\n2 15 0 1\n");
    Folder().expectRefused({
        {"$NOD\n1\n", "version 1"},
        {changed("2.2", "3.0"), "version 3.0; 2.0 to 2.2, 4.0 and 4.1 are read"},
        {changed("0 8", "0 4"), "numbers of 4 bytes"},
        {replaced(binary, bytes(1), bytes(2)), "byte order"},
        {changed("$Nodes\n12\n", "$Nodes\n0\n"), "$Nodes does not end"},
        {changed("$Nodes\n12\n", "$Nodes\n999999999\n"), "more than the file could hold"},
        {changed("$Nodes\n12\n", "$Nodes\n-2\n"), "negative"},
        {changed(" 0 20 1.5", " 0 10 1.5"), "two nodes of one number"},
        {changed("110 100 \n", "110 105 \n"), "element 101 uses node 105, which is not there"},
        {changed("31 3 2 ", "31 34 2 "), "type 34, whose number of nodes is not known"},
        {onlyHigher, "skipped 1 tetrahedra of 20 nodes"},
        {replaced(newest, "$Elements\n4 4", "$Elements\n4 5"), "4 of the 5 elements"},
        {changed("0\n1\n2\n", "0\n70000\n2\n"), "components"},
        {changed("$EndPeriodic", ""), "has no $EndPeriodic"},
        {changed("$Nodes", "Nodes"), "no section"},
    });
}

} // namespace
