// The tables of Exodus II's element types and sides (Schoof and Yarberry, SAND92-2137).
#include "viewer/readers/exoduselements.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <numeric>

#include "viewer/model/celltypes.h"

namespace nruview::readers {

namespace {

enum class Family { None, Point, Line, Triangle, Quad, Shell, Tetra, Hexa, Wedge, Pyramid };

struct FamilyName {
    std::string_view name;
    Family family;
};

constexpr FamilyName kFamilies[] = {
    {"SPHERE", Family::Point}, {"POINT", Family::Point},       {"CIRCLE", Family::Point},
    {"NODE", Family::Point},   {"BAR", Family::Line},          {"BEAM", Family::Line},
    {"TRUSS", Family::Line},   {"EDGE", Family::Line},         {"ROD", Family::Line},
    {"LINE", Family::Line},    {"SPRING", Family::Line},       {"DAMPER", Family::Line},
    {"TRI", Family::Triangle}, {"TRIANGLE", Family::Triangle}, {"TRISHELL", Family::Shell},
    {"QUAD", Family::Quad},    {"QUADSHELL", Family::Shell},   {"SHELL", Family::Shell},
    {"TET", Family::Tetra},    {"TETRA", Family::Tetra},       {"HEX", Family::Hexa},
    {"HEXA", Family::Hexa},    {"HEXSHELL", Family::Hexa},     {"WEDGE", Family::Wedge},
    {"PRISM", Family::Wedge},  {"PENTA", Family::Wedge},       {"PYRAMID", Family::Pyramid},
    {"PYRA", Family::Pyramid},
};

/// Nodes of Exodus in the model's order, where they are not in it already.
constexpr std::uint8_t kPolyline4[] = {0, 2, 3, 1};
constexpr std::uint8_t kHexa20[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15};
constexpr std::uint8_t kHexa27[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 16, 17,
                                    18, 19, 12, 13, 14, 15, 23, 24, 25, 26, 21, 22, 20};
constexpr std::uint8_t kWedge15[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11};
constexpr std::uint8_t kWedge18[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11, 15, 16, 17};
constexpr std::uint8_t kWedge20[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11, 19, 17, 18};
constexpr std::uint8_t kWedge21[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11, 20, 18, 19};

struct FormRow {
    Family family;
    std::size_t nodes; ///< at least; the last row of a family that fits counts
    CellType type;
    std::span<const std::uint8_t> order = {}; ///< none: the model's
};

// The rows that end a family are forms with more than one node on an edge: their corners are left.
constexpr FormRow kForms[] = {
    {Family::Point, 1, CellType::Vertex},
    {Family::Line, 1, CellType::Vertex},
    {Family::Line, 2, CellType::Line},
    {Family::Line, 3, CellType::Line3},
    {Family::Line, 4, CellType::PolyLine, kPolyline4},
    {Family::Line, 5, CellType::Line},
    {Family::Triangle, 3, CellType::Triangle},
    {Family::Triangle, 6, CellType::Triangle6},
    {Family::Triangle, 7, CellType::Triangle7},
    {Family::Triangle, 8, CellType::Triangle},
    {Family::Quad, 4, CellType::Quad},
    {Family::Quad, 8, CellType::Quad8},
    {Family::Quad, 9, CellType::Quad9},
    {Family::Quad, 10, CellType::Quad},
    {Family::Tetra, 4, CellType::Tetra},
    {Family::Tetra, 10, CellType::Tetra10},
    {Family::Tetra, 16, CellType::Tetra},
    {Family::Hexa, 8, CellType::Hexa},
    {Family::Hexa, 20, CellType::Hexa20, kHexa20},
    {Family::Hexa, 27, CellType::Hexa27, kHexa27},
    {Family::Hexa, 28, CellType::Hexa},
    {Family::Wedge, 6, CellType::Wedge},
    {Family::Wedge, 15, CellType::Wedge15, kWedge15},
    {Family::Wedge, 18, CellType::Wedge18, kWedge18},
    {Family::Wedge, 19, CellType::Wedge15, kWedge15},
    {Family::Wedge, 20, CellType::Wedge18, kWedge20},
    {Family::Wedge, 21, CellType::Wedge18, kWedge21},
    {Family::Wedge, 22, CellType::Wedge},
    {Family::Pyramid, 5, CellType::Pyramid},
    {Family::Pyramid, 13, CellType::Pyramid13},
    {Family::Pyramid, 20, CellType::Pyramid},
};

/// Shells have the names of neither triangles nor quads: their nodes tell.
Family shellFamily(std::size_t nodes) {
    if (nodes == 2)
        return Family::Line;
    return nodes == 3 || nodes == 6 || nodes == 7 ? Family::Triangle : Family::Quad;
}

Family familyOf(const std::string& name) {
    std::string letters;
    for (const unsigned char c : name) {
        if (!std::isalpha(c))
            break;
        letters += static_cast<char>(std::toupper(c));
    }
    const auto found = std::find_if(std::begin(kFamilies), std::end(kFamilies),
                                    [&](const FamilyName& known) { return known.name == letters; });
    return found == std::end(kFamilies) ? Family::None : found->family;
}

/// Exodus's sides as places in the list of a solid's faces.
std::span<const std::uint8_t> sidesOf(std::span<const FaceShape> faces) {
    static constexpr std::uint8_t kTetra[] = {1, 2, 3, 0}, kPyramid[] = {1, 2, 3, 4, 0},
                                  kWedge[] = {0, 1, 2, 3, 4}, kHexa[] = {2, 1, 3, 0, 4, 5};
    if (faces.size() == 4)
        return kTetra;
    if (faces.size() == 6)
        return kHexa;
    return faces[1].corners == 3 ? std::span<const std::uint8_t>(kPyramid) : kWedge;
}

std::vector<std::uint8_t> sideOfSolid(std::span<const FaceShape> faces, std::size_t side) {
    const std::span<const std::uint8_t> sides = sidesOf(faces);
    if (side < 1 || side > sides.size())
        return {};
    const FaceShape& face = faces[sides[side - 1]];
    return {face.nodes.begin(), face.nodes.begin() + face.count};
}

std::vector<std::uint32_t> endOfLine(std::span<const std::uint32_t> nodes, CellType type, std::size_t side) {
    const std::uint32_t last = type == CellType::PolyLine ? nodes.back() : nodes[1];
    return side == 1 || side == 2 ? std::vector{side == 1 ? nodes[0] : last} : std::vector<std::uint32_t>();
}

/// The ends of an edge of a plane element and the node between them, where it has one.
std::vector<std::uint32_t> edgeNodes(std::span<const std::uint32_t> nodes, std::size_t corners,
                                     std::size_t side) {
    if (side < 1 || side > corners)
        return {};
    std::vector<std::uint32_t> edge = {nodes[side - 1], nodes[side % corners]};
    if (nodes.size() >= 2 * corners)
        edge.push_back(nodes[corners + side - 1]);
    return edge;
}

} // namespace

std::optional<ElementForm> elementForm(const std::string& name, std::size_t nodes, std::size_t dimensions) {
    const Family named = familyOf(name);
    const Family family = named == Family::Shell ? shellFamily(nodes) : named;
    const FormRow* found = nullptr;
    for (const FormRow& row : kForms)
        if (row.family == family && row.nodes <= nodes)
            found = &row;
    if (found == nullptr)
        return {};
    ElementForm form{found->type, {found->order.begin(), found->order.end()}, false};
    if (form.order.empty()) {
        form.order.resize(static_cast<std::size_t>(cellShape(form.type).nodes));
        std::iota(form.order.begin(), form.order.end(), std::uint8_t{0});
    }
    form.isShell = named == Family::Shell || (named == Family::Triangle && dimensions == 3) ||
                   (family == Family::Line && dimensions > 1);
    return form;
}

std::vector<std::uint32_t> sideNodes(const Model& model, std::size_t cell, bool isShell, std::size_t side) {
    const CellShape& shape = cellShape(model.types[cell]);
    const std::span<const std::uint32_t> nodes = model.cellNodes(cell);
    if (shape.dimension == 0 || (isShell && (side == 1 || side == 2)))
        return {nodes.begin(), nodes.end()};
    const std::size_t place = isShell ? side - 2 : side;
    if (shape.dimension == 1)
        return endOfLine(nodes, model.types[cell], place);
    if (shape.dimension == 2)
        return edgeNodes(nodes, shape.faces.empty() ? nodes.size() : shape.faces[0].corners, place);
    std::vector<std::uint32_t> result;
    for (const std::uint8_t node : sideOfSolid(shape.faces, place))
        result.push_back(nodes[node]);
    return result;
}

} // namespace nruview::readers
