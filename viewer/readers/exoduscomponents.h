// Exodus II has scalars alone: which of them are the components of one vector or tensor is in their names.
#pragma once

#include "viewer/readers/readers.h"

namespace nruview::readers {

struct Quantity {
    std::string name;
    /// Index of the variable of each component; nothing: zero, as across the plane of a plane model.
    std::vector<std::optional<std::size_t>> variables;
};

/// Scalars whose names differ by a last x y z, or by the pairs of a tensor, in any order and case and with or
/// without a separator, become one where all are there; others stay alone. In the order of the names.
std::vector<Quantity> findQuantities(const std::vector<std::string>& names, std::size_t dimensions);

} // namespace nruview::readers
