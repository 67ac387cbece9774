// The element types of Abaqus and CalculiX by their names.
#pragma once

#include "viewer/model/model.h"

namespace nruview::readers {

struct InpType {
    CellType type = CellType::Vertex;
    std::size_t nodes = 0;
    bool middleSecond = false; ///< of a line's three nodes
};

/// By the name in capitals; nothing for elements that have no shape of their own, or one that is not known.
std::optional<InpType> inpType(std::string_view name);

} // namespace nruview::readers
