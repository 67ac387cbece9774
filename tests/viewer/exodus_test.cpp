// Exodus II: one model in every storage kind, the node orders of its elements, names that belong together,
// and one clear reason for bad files.
#include <cstring>

#include "tests/viewer/elements.h"
#include "tests/viewer/exoduswriter.h"
#include "tests/viewer/files.h"
#include "viewer/model/fields.h"
#include "viewer/readers/exoduscomponents.h"

using namespace nrutest;

namespace {

Model read(const ExodusWriter& file, int mode = 0) {
    const Folder folder;
    file.write(folder.path("a.e"), mode);
    return readModel(folder.path("a.e"));
}

/// A tetrahedron and two triangles of a shell, two steps; the second block alone has the element variable.
ExodusWriter twoBlocks() {
    ExodusWriter file;
    file.points({{0, 1, 0, 0, 2}, {0, 0, 1, 0, 2}, {0, 0, 0, 1, 2}});
    file.block("TETRA", 4, {1, 2, 3, 4});
    file.block("tri3", 3, {2, 3, 5, 1, 3, 4});
    file.whole("eb_prop1", {"num_el_blk"}, {7, 9});
    file.whole("node_num_map", {"num_nodes"}, {10, 20, 30, 40, 50});
    file.whole("elem_num_map", {"num_elem"}, {300, 100, 200});
    file.texts("eb_names", {"", "skin of it"});
    file.dimensions["time_step"] = 2;
    file.real("time_whole", {"time_step"}, {0.25, 0.5});
    file.texts("name_nod_var", {"DispX", "DispY", "T", "DispZ"});
    for (const char* number : {"1", "2", "3", "4"}) {
        const double value = number[0] - '0';
        file.real(std::string("vals_nod_var") + number, {"time_step", "num_nodes"},
                  {value, 0, 0, 0, 0, 10 * value, 0, 0, 0, -value});
    }
    file.texts("name_elem_var", {"eq ps"});
    file.dimensions["num_elem_var"] = 1;
    file.whole("elem_var_tab", {"num_el_blk", "num_elem_var"}, {0, 1});
    file.real("vals_elem_var1eb1", {"time_step", "num_el_in_blk1"}, {5, 5});
    file.real("vals_elem_var1eb2", {"time_step", "num_el_in_blk2"}, {1, 2, 3, 4});
    file.dimensions["num_node_sets"] = file.dimensions["num_side_sets"] = 1;
    file.dimensions["num_nod_ns1"] = 2;
    file.whole("node_ns1", {"num_nod_ns1"}, {5, 2});
    file.texts("ns_names", {"held"});
    file.dimensions["num_side_ss1"] = 3;
    file.whole("elem_ss1", {"num_side_ss1"}, {1, 2, 3});
    file.whole("side_ss1", {"num_side_ss1"}, {4, 3, 9}); // a face, an edge, none
    file.whole("ss_prop1", {"num_side_sets"}, {33});
    return file;
}

TEST(ExodusReader, StorageKindsGiveOneModel) {
    for (const int mode : {0, NC_64BIT_OFFSET, NC_64BIT_DATA, NC_NETCDF4, NC_NETCDF4 | NC_CLASSIC_MODEL}) {
        SCOPED_TRACE(mode);
        const Model model = read(twoBlocks(), mode);
        EXPECT_THAT(model.nodes, ElementsAre(Point{0, 0, 0}, Point{1, 0, 0}, Point{0, 1, 0}, Point{0, 0, 1},
                                             Point{2, 2, 2}));
        EXPECT_THAT(model.types, ElementsAre(CellType::Tetra, CellType::Triangle, CellType::Triangle));
        EXPECT_THAT(model.connectivity, ElementsAre(0, 1, 2, 3, 1, 2, 4, 0, 2, 3));
        EXPECT_THAT(model.nodeNumbers, ElementsAre(10, 20, 30, 40, 50));
        EXPECT_THAT(model.cellNumbers, ElementsAre(300, 100, 200));
        EXPECT_EQ(partsOf(model), "block 7 0, skin of it 1, ");
        EXPECT_EQ(setsOf(model), "held: 1 4, side set 33: 0 1 2, ");
        ASSERT_EQ(model.steps.size(), 2u);
        EXPECT_EQ(model.steps[1].label, "time 0.5");
        ASSERT_EQ(model.fields.size(), 6u);
        const Field* displacement = findDisplacement(model, 1);
        ASSERT_NE(displacement, nullptr);
        EXPECT_THAT(displacement->values, ElementsAre(10, 20, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, -1, -2, -4));
        EXPECT_THAT(findField(model, "T", 0).values, ElementsAre(3, 0, 0, 0, 0));
        EXPECT_THAT(findField(model, "eq ps", 0).values, ElementsAre(IsNan(), 1, 2));
        EXPECT_THAT(findField(model, "eq ps", 1).values, ElementsAre(IsNan(), 3, 4));
        EXPECT_THAT(model.notes, IsEmpty());
    }
}

// A plane model as old files have it: all coordinates and all variables in one, and no numbers of use.
TEST(ExodusReader, OldPlaneFiles) {
    ExodusWriter file;
    file.dimensions = {{"num_dim", 2}, {"num_nodes", 4}, {"num_nod_var", 2}, {"time_step", 2}};
    file.real("coord", {"num_dim", "num_nodes"}, {0, 3, 3, 0, 0, 0, 2, 2});
    file.block("QUAD", 4, {1, 2, 3, 4});
    file.whole("node_num_map", {"num_nodes"}, {7, 8, 9, 7});
    file.texts("name_nod_var", {"u_x", "u_y"});
    file.real("vals_nod_var", {"time_step", "num_nod_var", "num_nodes"},
              {1, 2, 3, 4, 5, 6, 7, 8, -1, -2, -3, -4, -5, -6, -7, -8});
    const Model model = read(file);
    EXPECT_THAT(model.nodes, ElementsAre(Point{0, 0, 0}, Point{3, 0, 0}, Point{3, 2, 0}, Point{0, 2, 0}));
    EXPECT_THAT(model.nodeNumbers, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(model.cellNumbers, ElementsAre(1));
    EXPECT_THAT(model.notes, ElementsAre(HasSubstr("nodes are counted from 1")));
    EXPECT_THAT(findField(model, "u", 1).values, ElementsAre(-1, -5, 0, -2, -6, 0, -3, -7, 0, -4, -8, 0));
}

// Nodes behind the corners as the corners that each lies between, in Exodus's order.
constexpr const char* kTetra14 = "01 12 02 03 13 23 012 123 023 013";
constexpr const char* kHexa27 = "01 12 23 03 04 15 26 37 45 56 67 47 01234567 0123 4567 0347 1256 0145 2367";
constexpr const char* kWedge18 = "01 12 02 03 14 25 34 45 35 0134 1245 0235";
constexpr const char* kWedge20 = "01 12 02 03 14 25 34 45 35 012 345 1245 0235 0134";
constexpr const char* kWedge21 = "01 12 02 03 14 25 34 45 35 012345 012 345 1245 0235 0134";
constexpr const char* kPyramid18 = "01 12 23 03 04 14 24 34 0123 014 124 234 034";
struct ElementRow {
    const char* type;
    std::size_t nodes;
    int corners;
    const char* middles;
    CellType cell;
};
const ElementRow kElements[] = {
    {"Sphere", 1, 1, "", CellType::Vertex},
    {"BEAM", 2, 2, "", CellType::Line},
    {"truss3", 3, 2, "01", CellType::Line3},
    {"TRISHELL", 3, 3, "", CellType::Triangle},
    {"TRI7", 7, 3, "01 12 02 012", CellType::Triangle7},
    {"SHELL6", 6, 3, "01 12 02", CellType::Triangle6},
    {"SHELL", 4, 4, "", CellType::Quad},
    {"QUADSHELL8", 8, 4, "01 12 23 03", CellType::Quad8},
    {"SHELL9", 9, 4, "01 12 23 03 0123", CellType::Quad9},
    {"tetra10", 10, 4, kTetra14, CellType::Tetra10},
    {"TET14", 14, 4, kTetra14, CellType::Tetra10},
    {"HEX", 8, 8, "", CellType::Hexa},
    {"HEX20", 20, 8, kHexa27, CellType::Hexa20},
    {"HEX27", 27, 8, kHexa27, CellType::Hexa27},
    {"PRISM6", 6, 6, "", CellType::Wedge},
    {"WEDGE", 15, 6, kWedge18, CellType::Wedge15},
    {"WEDGE18", 18, 6, kWedge18, CellType::Wedge18},
    {"WEDGE20", 20, 6, kWedge20, CellType::Wedge18},
    {"WEDGE21", 21, 6, kWedge21, CellType::Wedge18},
    {"PYRAMID13", 13, 5, kPyramid18, CellType::Pyramid13},
    {"PYRAMID18", 18, 5, kPyramid18, CellType::Pyramid13},
    {"PYRAMID5", 5, 5, "", CellType::Pyramid},
};

/// One element with corners at places that no mean repeats.
ExodusWriter oneElement(const ElementRow& row) {
    const std::vector<Point> nodes = nodesAmong(row.corners, row.middles);
    std::vector<std::vector<double>> axes(3);
    std::vector<double> connectivity;
    for (std::size_t i = 0; i < row.nodes; ++i) {
        connectivity.push_back(static_cast<double>(i + 1));
        for (std::size_t axis = 0; axis < 3; ++axis)
            axes[axis].push_back(nodes[i][axis]);
    }
    ExodusWriter file;
    file.points(axes);
    file.block(row.type, row.nodes, connectivity);
    return file;
}

TEST(ExodusReader, MiddlesOfFacesAreBetweenTheirCorners) {
    for (const ElementRow& row : kElements) {
        SCOPED_TRACE(row.type);
        const Model model = read(oneElement(row));
        ASSERT_THAT(model.types, ElementsAre(row.cell));
        for (int i = 0; i < row.corners; ++i)
            EXPECT_EQ(model.cellNodes(0)[i], i);
        expectMiddles(model, 0);
        EXPECT_EQ(model.notes.empty(), model.connectivity.size() == row.nodes) << "of lost nodes";
    }
}

TEST(ExodusReader, LinesAndPolygonsInTheirOrder) {
    ExodusWriter file;
    file.points({{0, 3, 1, 2, 5, 5}});
    file.block("EDGE4", 4, {1, 2, 3, 4});
    file.block("nsided", 7, {1, 3, 4, 6, 5, 2, 1});
    file.variables.back().dimensions = {"num_nod_per_el2"};
    file.dimensions["num_el_in_blk2"] = file.dimensions["polygons"] = 2;
    file.dimensions["num_elem"] = 3;
    file.whole("ebepecnt2", {"polygons"}, {4, 3});
    const Model model = read(file);
    EXPECT_THAT(model.types, ElementsAre(CellType::PolyLine, CellType::Polygon, CellType::Polygon));
    EXPECT_THAT(model.connectivity, ElementsAre(0, 2, 3, 1, 0, 2, 3, 5, 4, 1, 0));
    EXPECT_THAT(model.offsets, ElementsAre(0, 4, 8, 11));
}

// Each side of an element in a set of its own.
TEST(ExodusReader, SidesOfElements) {
    const std::pair<ElementRow, const char*> rows[] = {
        {{"HEX8", 8, 8, "", {}}, "1: 0 1 4 5, 2: 1 2 5 6, 3: 2 3 6 7, 4: 0 3 4 7, 5: 0 1 2 3, 6: 4 5 6 7, "},
        {{"TET10", 10, 4, kTetra14, {}}, "1: 0 1 3 4 7 8, 2: 1 2 3 5 8 9, 3: 0 2 3 6 7 9, 4: 0 1 2 4 5 6, "},
        {{"WEDGE", 6, 6, "", {}}, "1: 0 1 3 4, 2: 1 2 4 5, 3: 0 2 3 5, 4: 0 1 2, 5: 3 4 5, "},
        {{"PYRAMID", 5, 5, "", {}}, "1: 0 1 4, 2: 1 2 4, 3: 2 3 4, 4: 0 3 4, 5: 0 1 2 3, "},
        {{"SHELL8", 8, 4, kHexa27, {}},
         "1: 0 1 2 3 4 5 6 7, 2: 0 1 2 3 4 5 6 7, 3: 0 1 4, 4: 1 2 5, 5: 2 3 6, 6: 0 3 7, "},
        {{"QUAD4", 4, 4, "", {}}, "1: 0 1, 2: 1 2, 3: 2 3, 4: 0 3, 5:, "},
    };
    for (const auto& [element, sides] : rows) {
        ExodusWriter file = oneElement(element);
        const auto count = std::count(sides, sides + std::strlen(sides), ':');
        file.dimensions["num_side_sets"] = static_cast<std::size_t>(count);
        std::vector<std::string> names;
        for (int i = 1; i <= count; ++i) {
            const std::string number = std::to_string(i);
            file.dimensions["num_side_ss" + number] = 1;
            file.whole("elem_ss" + number, {"num_side_ss" + number}, {1});
            file.whole("side_ss" + number, {"num_side_ss" + number}, {1.0 * i});
            names.push_back(number);
        }
        file.texts("ss_names", names);
        EXPECT_EQ(setsOf(read(file)), sides) << element.type;
    }
}

// Quantities as their names and the variables of their components.
TEST(ExodusComponents, NamesThatBelongTogether) {
    const std::tuple<int, std::vector<std::string>, const char*> rows[] = {
        {3, {"dispz", "DISPX", "dispX", "T", "dispY"}, "disp 2 4 0, DISPX 1, T 3, "},
        {3, {"V.X", "V.Y", "V.Z", "a b x", "a b y", "x"}, "V 0 1 2, a b x 3, a b y 4, x 5, "},
        {3, {"S_zz", "S_yz", "S_xy", "S_XX", "S_yy", "S_zx"}, "S 3 4 0 2 1 5, "},
        {3, {"exx", "eyy", "ezz", "exy", "eyz", "exz", "exx2"}, "e 0 1 2 3 4 5, exx2 6, "},
        {3, {"Fxx", "Fxy", "Fxz", "Fyx", "Fyy", "Fyz", "Fzx", "Fzy", "Fzz"}, "F 0 1 2 3 4 5 6 7 8, "},
        {3, {"t_xx", "t_xy", "t_xz", "t_zz"}, "t_xx 0, t_xy 1, t_xz 2, t_zz 3, "},
        {3, {"fluxx", "fluxy", "fluxz"}, "flux 0 1 2, "},
        {3, {"u", "u_x", "u_y", "u_z"}, "u 0, u_x 1, u_y 2, u_z 3, "},
        {3, {"u_x", "u_y"}, "u_x 0, u_y 1, "},
        {2, {"u_x", "u_y", "s_xx", "s_yy", "s_zz", "s_xy"}, "u 0 1 -, s 2 3 4 5 - -, "},
    };
    for (const auto& [dimensions, names, expected] : rows) {
        std::ostringstream found;
        for (const readers::Quantity& quantity : readers::findQuantities(names, dimensions)) {
            found << quantity.name;
            for (const auto& variable : quantity.variables)
                found << ' ' << (variable ? std::to_string(*variable) : "-");
            found << ", ";
        }
        EXPECT_EQ(found.str(), expected);
    }
}

// --- bad files ---------------------------------------------------------------------------------------------

TEST(ExodusReader, BadFilesGetOneReason) {
    const auto changed = [](const char* name, const std::vector<double>& values) {
        ExodusWriter file = twoBlocks();
        std::find_if(file.variables.begin(), file.variables.end(), [&](const ExodusVariable& variable) {
            return variable.name == name;
        })->values = values;
        return file;
    };
    ExodusWriter other, noY = twoBlocks(), hollow = twoBlocks();
    other.dimensions = {{"lon", 3}};
    noY.variables.erase(noY.variables.begin() + 1);
    hollow.dimensions["num_nod_ns1"] = hollow.dimensions["num_nodes"] = std::size_t{1} << 31;
    for (ExodusVariable& v : hollow.variables) // what is not written takes no room in the file
        v.values.clear();
    const std::string noElements = "has no elements of a supported type; skipped 1 elements ";
    const std::tuple<ExodusWriter, int, std::string> rows[] = {
        {other, 0, "is a netCDF or HDF5 file, but not of Exodus II"},
        {noY, 0, "has no coordy"},
        {hollow, NC_NETCDF4, "needs more memory than a file of its size should"},
        {changed("connect2", {2, 3, 6, 1, 3, 4}), 0, "has an element with node 6 of 5 in connect2"},
        {changed("connect1", {1, 2, 3, 0}), 0, "has an element with node 0 of 5 in connect1"},
        {changed("node_ns1", {5, 7}), 0, "has node 7 of 5 in held"},
        {changed("coordz", {0, NAN, 0, 0, 0}), 0, "node 1 has a coordinate that is not finite"},
        {oneElement({"nfaced", 8, 8, "", {}}), 0, noElements + "of type nfaced"},
        {oneElement({"", 8, 8, "", {}}), 0, noElements + "without a type"},
    };
    const Folder folder;
    for (const auto& [file, mode, reason] : rows) {
        file.write(folder.path("a.e"), mode);
        EXPECT_EQ(folder.refusal("a.e").substr(0, reason.size()), reason);
    }
    for (const int mode : {0, NC_64BIT_DATA, NC_NETCDF4}) {
        ExodusWriter file = twoBlocks();
        file.dimensions["long"] = 10000;
        file.real("padding", {"long"}, std::vector<double>(10000));
        file.write(folder.path("a.e"), mode);
        std::filesystem::resize_file(folder.path("a.e"),
                                     std::filesystem::file_size(folder.path("a.e")) - 10000);
        EXPECT_THAT(folder.refusal("a.e"),
                    HasSubstr(mode == NC_NETCDF4 ? "cannot be read: netCDF" : "is cut short"))
            << mode;
    }
}

} // namespace
