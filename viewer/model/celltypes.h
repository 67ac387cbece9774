// What each cell type is made of: its number in VTK files, its node count and its faces.
#pragma once

#include <optional>

#include "viewer/model/model.h"

namespace nruview {

/// A face of a cell as places in the cell's node list: the corners in order round the face, then the mid-side
/// after each corner (quadratic faces), then the centre (faces of 7 and 9 nodes).
struct FaceShape {
    std::uint8_t corners = 0;
    std::uint8_t count = 0;
    std::array<std::uint8_t, 9> nodes{};
};

struct CellShape {
    std::string_view name;
    int vtkNumber = 0;
    int nodes = 0;   ///< 0 = any number, at least minimum
    int minimum = 0; ///< smallest number of nodes
    int dimension = 0;
    /// Solids: all faces, outward for a cell of positive volume. Shells of a fixed number of nodes: the one
    /// face.
    std::span<const FaceShape> faces;
};

const CellShape& cellShape(CellType type);

/// Nothing for a number that is not one of CellType's.
std::optional<CellType> cellTypeOfVtk(std::int64_t number);

} // namespace nruview
