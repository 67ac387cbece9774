// Gmsh's element types: how many nodes each has, and their places in the viewer's order.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "viewer/model/model.h"

namespace nruview::readers {

struct GmshType {
    int number = 0;
    int nodes = 0;
    int dimension = 0;
    std::optional<CellType> cell;        ///< nothing: the viewer does not draw it
    std::span<const std::uint8_t> order; ///< node i of the cell is node order[i]; empty: as they are
    std::string name;                    ///< of many, for notes
};

/// Null for numbers that Gmsh has not given, and for types whose number of nodes varies.
const GmshType* gmshType(std::int64_t number);

} // namespace nruview::readers
