// A name is a family, a number, mostly of nodes, and letters for the formulation: C3D20R, CPE4H, S8R5. The
// order of nodes is the model's but for that of beams.
#include "viewer/readers/inptypes.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "viewer/model/celltypes.h"

namespace nruview::readers {

namespace {

using Names = std::span<const std::string_view>;

struct Shape {
    int number; ///< behind the family's name
    CellType type;
};

constexpr std::string_view kSolids[] = {"C3D", "DC3D", "DCC3D", "AC3D", "EMC3D", "COH3D", "SC"};
constexpr std::string_view kFluids[] = {"F3D"}; // others of the name are faces of cavities
constexpr std::string_view kFaces[] = {"CPS",  "CPE", "CPEG", "CAX",  "CGAX", "DC2D",  "DCAX", "AC2D",
                                       "ACAX", "S",   "DS",   "STRI", "M3D",  "SFM3D", "R3D"};
constexpr std::string_view kTrusses[] = {"T2D", "T3D", "R2D", "RAX", "DC1D", "RB2D", "RB3D"};
constexpr std::string_view kBeams[] = {"B", "PIPE", "ELBOW", "SAX", "DSAX"};

constexpr Shape kSolidShapes[] = {{4, CellType::Tetra},  {5, CellType::Pyramid},  {6, CellType::Wedge},
                                  {8, CellType::Hexa},   {10, CellType::Tetra10}, {15, CellType::Wedge15},
                                  {20, CellType::Hexa20}};
constexpr Shape kFaceShapes[] = {{3, CellType::Triangle},   {4, CellType::Quad},  {6, CellType::Triangle6},
                                 {65, CellType::Triangle6}, {8, CellType::Quad8}, {9, CellType::Quad9}};
constexpr Shape kFluidShapes[] = {{6, CellType::Wedge}, {8, CellType::Hexa}};
constexpr Shape kTrussShapes[] = {{2, CellType::Line}, {3, CellType::Line3}};
// The first digit of a beam is its space's dimension, the last one its degree, of which the third has two
// nodes.
constexpr Shape kBeamShapes[] = {{1, CellType::Line},   {2, CellType::Line3}, {21, CellType::Line},
                                 {22, CellType::Line3}, {23, CellType::Line}, {31, CellType::Line},
                                 {32, CellType::Line3}, {33, CellType::Line}};

struct Family {
    Names names;
    std::span<const Shape> shapes;
};
constexpr Family kFamilies[] = {{kSolids, kSolidShapes},
                                {kFluids, kFluidShapes},
                                {kFaces, kFaceShapes},
                                {kTrusses, kTrussShapes},
                                {kBeams, kBeamShapes}};

std::optional<CellType> shapeIn(const Family& family, std::string_view stem, int number) {
    if (std::find(family.names.begin(), family.names.end(), stem) == family.names.end())
        return {};
    for (const Shape& shape : family.shapes)
        if (shape.number == number)
            return shape.type;
    return {};
}

} // namespace

std::optional<InpType> inpType(std::string_view name) {
    // Of wedges with nodes on their faces the order of these is not known.
    if (name.starts_with("C3D15V"))
        return {};
    for (std::size_t length = 1; length < name.size(); ++length) {
        int number = 0;
        const auto [end, error] = std::from_chars(name.data() + length, name.data() + name.size(), number);
        if (error != std::errc() || (end != name.data() + name.size() && (*end < 'A' || *end > 'Z')))
            continue;
        for (const Family& family : kFamilies)
            if (const auto type = shapeIn(family, name.substr(0, length), number))
                return InpType{*type, static_cast<std::size_t>(cellShape(*type).nodes),
                               *type == CellType::Line3};
    }
    return {};
}

} // namespace nruview::readers
