// Reading Gmsh files: every version and encoding gives the same model, with its groups, numbers and results.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "tests/viewer/gmshwriter.h"
#include "viewer/error.h"
#include "viewer/model/celltypes.h"

namespace {

using namespace nrutest;
using namespace nruview;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::PrintToString;

Model readText(const std::string& content) {
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("gmsh_test_" + std::to_string(getpid()))).string();
    std::ofstream(path, std::ios::binary) << content;
    struct Remover {
        ~Remover() { std::remove(path.c_str()); }
    } remover;
    return readModel(path);
}

std::string dump(const Model& model) {
    std::string text = PrintToString(std::tuple(model.nodes, model.types, model.connectivity,
                                                model.nodeNumbers, model.cellNumbers, model.notes));
    for (const ModelPart& part : model.parts)
        text += PrintToString(std::tuple(part.name, part.firstCell, part.cellCount));
    for (const Field& field : model.fields)
        text += PrintToString(std::tuple(field.name, field.location, field.step, field.values));
    return text;
}

const std::string kText = MshWriter{}.write();

TEST(Gmsh, EveryVersionAndEncodingGivesTheSameModelAndIsRefusedWhenItIsCutShort) {
    const Model whole = readText(kText);
    for (const auto& [version, binary, bigEndian] :
         {std::tuple(22, false, false), std::tuple(22, true, false), std::tuple(22, true, true),
          std::tuple(40, false, false), std::tuple(40, true, false), std::tuple(41, false, false),
          std::tuple(41, true, false), std::tuple(41, true, true)}) {
        const std::string file = MshWriter{version, binary, bigEndian}.write();
        EXPECT_EQ(dump(readText(file)), dump(whole)) << version << binary << bigEndian;
        std::size_t refused = 0;
        for (std::size_t length = 0; length < file.size(); length += 3)
            try {
                ASSERT_EQ(readText(file.substr(0, length)).connectivity, whole.connectivity) << version;
            } catch (const ViewerError& error) {
                ASSERT_THAT(error.what(), Not(HasSubstr("\n")));
                ++refused;
            }
        EXPECT_GT(refused, file.size() / 6) << version << binary;
    }
}

// Solids come before what lies on them, and groups in the order of their numbers.
TEST(Gmsh, GroupsAreBlocksAndValuesFindTheirPlaces) {
    const Model model = readText(kText);
    EXPECT_THAT(model.nodes.at(11), ElementsAre(2.5, 1.25, 2));
    EXPECT_EQ(model.nodeNumbers.at(11), 120);
    EXPECT_THAT(model.cellNumbers, ElementsAre(102, 101, 31, 1));
    std::vector<std::string> parts;
    for (const ModelPart& part : model.parts)
        parts.push_back(part.name + " " + std::to_string(part.firstCell));
    EXPECT_THAT(parts, ElementsAre("right 0", "left 1", "surface 3 2", "held node 3"));
    ASSERT_EQ(model.nodeSets.size(), 1u);
    EXPECT_EQ(model.nodeSets[0].name, "held node");
    EXPECT_THAT(model.nodeSets[0].nodes, ElementsAre(2));

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

Point meanOf(const std::vector<Point>& points) {
    Point mean{};
    for (const Point& point : points)
        for (std::size_t k = 0; k < 3; ++k)
            mean[k] += point[k] / static_cast<double>(points.size());
    return mean;
}

/// An element whose corners are such that every mean tells of what.
std::string quadraticMesh(int type, int corners, const std::string& about) {
    const auto corner = [](int i) { return Point{1.0 * i, 1.0 * i * i, std::pow(4.0, i)}; };
    std::vector<Point> nodes;
    for (int i = 0; i < corners; ++i)
        nodes.push_back(corner(i));
    std::istringstream words(about);
    for (std::string word; words >> word;) {
        std::vector<Point> of;
        for (const char digit : word)
            of.push_back(corner(digit - '0'));
        nodes.push_back(meanOf(of));
    }
    std::ostringstream list, numbers;
    list.precision(17);
    list << nodes.size() << '\n';
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        list << i + 1 << ' ' << nodes[i][0] << ' ' << nodes[i][1] << ' ' << nodes[i][2] << '\n';
        numbers << ' ' << i + 1;
    }
    return mesh(list.str(), "1\n1 " + std::to_string(type) + " 0" + numbers.str() + "\n");
}

TEST(Gmsh, NodesBetweenCornersComeToTheirPlaces) {
    for (const auto& [type, corners, about] : kOrders) {
        const Model model = readText(quadraticMesh(type, corners, about));
        const auto at = [&](std::size_t i) { return model.nodes[model.cellNodes(0)[i]]; };
        if (model.types[0] == CellType::Line3) {
            EXPECT_EQ(at(2), meanOf({at(0), at(1)}));
        }
        if (model.types[0] == CellType::Hexa27) {
            EXPECT_EQ(model.cellNodes(0)[26], 26u);
        }
        for (const FaceShape& face : cellShape(model.types[0]).faces) {
            std::vector<Point> ends;
            for (std::size_t i = 0; i < face.corners; ++i) {
                ends.push_back(at(face.nodes[i]));
                EXPECT_EQ(at(face.nodes[face.corners + i]),
                          meanOf({ends[i], at(face.nodes[(i + 1) % face.corners])}))
                    << type;
            }
            if (face.count % 2 == 1) {
                EXPECT_EQ(at(face.nodes[face.count - 1]), meanOf(ends)) << type;
            }
        }
    }
}

const std::string kNodes = "4\n1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\n";

// Version 2 repeats an element for each further group; a solid that was there twice would have no outer
// faces.
TEST(Gmsh, ElementsInSeveralGroupsAreThereOnce) {
    const Model model = readText(
        mesh(kNodes, "4\n7 4 2 2 1 1 2 3 4\n8 4 2 6 1 1 2 3 4\n9 2 2 6 1 1 2 3\n9 2 4 0 1 1 3 1 2 4\n"));
    EXPECT_THAT(model.types, ElementsAre(CellType::Tetra, CellType::Triangle, CellType::Triangle));
    EXPECT_THAT(model.cellNumbers, IsEmpty());
    EXPECT_EQ(model.parts.at(2).name, "surface without a group");
    EXPECT_THAT(model.fields.at(0).values, ElementsAre(0, 0, 3));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("numbers of the elements repeat"),
                                         HasSubstr("1 elements are in several groups and stand in the first: "
                                                   "volume 2, volume 6")));
}

TEST(Gmsh, OtherElementTypesAreNamedAndSkipped) {
    const Model model = readText(mesh(kNodes, "2\n1 4 0 1 2 3 4\n2 26 0 1 2 3 4\n"));
    EXPECT_EQ(model.cellCount(), 1u);
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("skipped 1 lines of 4 nodes")));
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

TEST(Gmsh, BadFilesAreRefusedInOneLineWithTheReason) {
    using Text = std::string;
    const Text newest = MshWriter{41}.write(), binary = MshWriter{22, true}.write();
    const std::tuple<const char*, Text, Text, Text, Text> rows[] = {
        {"old", "$NOD\n1\n", "", "", "version 1"},
        {"version3", kText, "2.2", "3.0", "version 3.0; 2.0 to 2.2, 4.0 and 4.1 are read"},
        {"singleReals", kText, "0 8", "0 4", "numbers of 4 bytes"},
        {"byteOrder", binary, Text("\1\0\0\0", 4), Text("\2\0\0\0", 4), "byte order"},
        {"noNodes", kText, "$Nodes\n12\n", "$Nodes\n0\n", "$Nodes does not end"},
        {"manyNodes", kText, "$Nodes\n12\n", "$Nodes\n999999999\n", "more than the file could hold"},
        {"negative", kText, "$Nodes\n12\n", "$Nodes\n-2\n", "negative"},
        {"twoNodes", kText, " 0 20 1.5", " 0 10 1.5", "two nodes of one number"},
        {"noSuchNode", kText, "110 100 \n", "110 105 \n", "element 101 uses node 105, which is not there"},
        {"polygon", kText, "31 3 2 ", "31 34 2 ", "type 34, whose number of nodes is not known"},
        {"onlyHigher", mesh(kNodes, "2\n1 29 0 1 2 3 4 1 2 3 4 1 2 3 4 1 2 3 4 1 2 3 4\n2 15 0 1\n"), "", "",
         "skipped 1 tetrahedra of 20 nodes"},
        {"fewElements", newest, "$Elements\n4 4", "$Elements\n4 5", "4 of the 5 elements"},
        {"components", kText, "0\n1\n2\n", "0\n70000\n2\n", "components"},
        {"noEnd", kText, "$EndPeriodic", "", "has no $EndPeriodic"},
        {"noSection", kText, "$Nodes", "Nodes", "no section"},
    };
    for (const auto& [name, file, from, to, reason] : rows)
        try {
            readText(replaced(file, from, to));
            ADD_FAILURE() << name << " was read";
        } catch (const ViewerError& error) {
            EXPECT_THAT(error.what(), AllOf(HasSubstr(reason), Not(HasSubstr("\n")))) << name;
        }
}

} // namespace
