// Exodus II's element types, and its node orders as the model's.
#pragma once

#include "viewer/readers/readers.h"

namespace nruview::readers {

struct ElementForm {
    CellType type = CellType::Vertex;
    /// Place in the file's list of each of the model's nodes; fewer than the file has where the model has no
    /// such type and takes the next lower one.
    std::vector<std::uint8_t> order;
    bool isShell = false; ///< its first two sides are all of it, seen from both; its edges or ends follow
};

/// By the type's name, in any case and with or without a number behind it, and the number of nodes. Nothing
/// for a type that the model cannot hold.
std::optional<ElementForm> elementForm(const std::string& name, std::size_t nodes, std::size_t dimensions);

/// Nodes of a side of a cell, in no certain order; sides count from 1. Empty where there is no such side.
std::vector<std::uint32_t> sideNodes(const Model& model, std::size_t cell, bool isShell, std::size_t side);

} // namespace nruview::readers
