// The table of https://gmsh.info/doc/texinfo/gmsh.html ("MSH file format", "Node ordering"), with the higher
// orders that are only counted.
#include "viewer/readers/gmshtypes.h"

#include <map>

namespace nruview::readers {

namespace {

// Gmsh orders edges by their smaller corner and faces likewise.
constexpr std::uint8_t kTetra10[] = {0, 1, 2, 3, 4, 5, 6, 7, 9, 8};
constexpr std::uint8_t kHexa20[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 11, 13, 9, 16, 18, 19, 17, 10, 12, 14, 15};
constexpr std::uint8_t kHexa27[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  11, 13, 9,  16, 18,
                                    19, 17, 10, 12, 14, 15, 22, 23, 21, 24, 20, 25, 26};
constexpr std::uint8_t kWedge15[] = {0, 1, 2, 3, 4, 5, 6, 9, 7, 12, 14, 13, 8, 10, 11};
constexpr std::uint8_t kWedge18[] = {0, 1, 2, 3, 4, 5, 6, 9, 7, 12, 14, 13, 8, 10, 11, 15, 17, 16};
constexpr std::uint8_t kPyramid13[] = {0, 1, 2, 3, 4, 5, 8, 10, 6, 7, 9, 11, 12};

struct DrawnType {
    int number, nodes, dimension;
    CellType cell;
    std::span<const std::uint8_t> order;
};

// The node in the middle of a pyramid's base is left out: the base is drawn by its eight others.
const DrawnType kDrawn[] = {
    {15, 1, 0, CellType::Vertex, {}},
    {1, 2, 1, CellType::Line, {}},
    {8, 3, 1, CellType::Line3, {}},
    {2, 3, 2, CellType::Triangle, {}},
    {9, 6, 2, CellType::Triangle6, {}},
    {3, 4, 2, CellType::Quad, {}},
    {16, 8, 2, CellType::Quad8, {}},
    {10, 9, 2, CellType::Quad9, {}},
    {4, 4, 3, CellType::Tetra, {}},
    {11, 10, 3, CellType::Tetra10, kTetra10},
    {5, 8, 3, CellType::Hexa, {}},
    {17, 20, 3, CellType::Hexa20, kHexa20},
    {12, 27, 3, CellType::Hexa27, kHexa27},
    {6, 6, 3, CellType::Wedge, {}},
    {18, 15, 3, CellType::Wedge15, kWedge15},
    {13, 18, 3, CellType::Wedge18, kWedge18},
    {7, 5, 3, CellType::Pyramid, {}},
    {19, 13, 3, CellType::Pyramid13, kPyramid13},
    {14, 14, 3, CellType::Pyramid13, kPyramid13},
};

struct OtherType {
    int number, nodes;
};
constexpr OtherType kLines[] = {{26, 4}, {27, 5},  {28, 6},  {62, 7}, {63, 8},
                                {64, 9}, {65, 10}, {66, 11}, {84, 1}};
constexpr OtherType kTriangles[] = {{20, 9},  {21, 10}, {22, 12}, {23, 15}, {24, 15}, {25, 21},
                                    {42, 28}, {43, 36}, {44, 45}, {45, 55}, {46, 66}, {52, 18},
                                    {53, 21}, {54, 24}, {55, 27}, {56, 30}, {85, 1}};
constexpr OtherType kQuads[] = {{36, 16}, {37, 25}, {38, 36}, {39, 12},  {40, 16},  {41, 20},
                                {47, 49}, {48, 64}, {49, 81}, {50, 100}, {51, 121}, {57, 24},
                                {58, 28}, {59, 32}, {60, 36}, {61, 40},  {86, 1}};
constexpr OtherType kTetras[] = {{29, 20},  {30, 35},  {31, 56},  {32, 22},  {33, 28}, {71, 84},
                                 {72, 120}, {73, 165}, {74, 220}, {75, 286}, {79, 34}, {80, 40},
                                 {81, 46},  {82, 52},  {83, 58},  {87, 1},   {137, 16}};
constexpr OtherType kHexas[] = {{88, 1},   {92, 64},  {93, 125},  {94, 216}, {95, 343},
                                {96, 512}, {97, 729}, {98, 1000}, {99, 32},  {100, 44},
                                {101, 56}, {102, 68}, {103, 80},  {104, 92}, {105, 104}};
constexpr OtherType kWedges[] = {{89, 1},    {90, 40},   {91, 75},   {106, 126}, {107, 196},
                                 {108, 288}, {109, 405}, {110, 550}, {111, 24},  {112, 33},
                                 {113, 42},  {114, 51},  {115, 60},  {116, 69},  {117, 78}};
constexpr OtherType kPyramids[] = {{118, 30},  {119, 55},  {120, 91}, {121, 140}, {122, 204},
                                   {123, 285}, {124, 385}, {125, 21}, {126, 29},  {127, 37},
                                   {128, 45},  {129, 53},  {130, 61}, {131, 69},  {132, 1}};
constexpr OtherType kTrihedra[] = {{140, 4}};

struct Shape {
    const char* name;
    int dimension;
    std::span<const OtherType> types;
};
constexpr Shape kOthers[] = {
    {"lines", 1, kLines},       {"triangles", 2, kTriangles}, {"quads", 2, kQuads},
    {"tetrahedra", 3, kTetras}, {"hexahedra", 3, kHexas},     {"wedges", 3, kWedges},
    {"pyramids", 3, kPyramids}, {"trihedra", 2, kTrihedra},
};

std::map<std::int64_t, GmshType> makeTypes() {
    std::map<std::int64_t, GmshType> types;
    for (const DrawnType& type : kDrawn)
        types[type.number] = {type.number, type.nodes, type.dimension, type.cell, type.order, ""};
    for (const Shape& shape : kOthers)
        for (const auto& [number, nodes] : shape.types)
            types[number] = {
                number,
                nodes,
                shape.dimension,
                {},
                {},
                shape.name + (" of " + std::to_string(nodes)) + (nodes == 1 ? " node" : " nodes")};
    return types;
}

} // namespace

const GmshType* gmshType(std::int64_t number) {
    static const std::map<std::int64_t, GmshType> types = makeTypes();
    const auto found = types.find(number);
    return found == types.end() ? nullptr : &found->second;
}

} // namespace nruview::readers
