// Cells sorted into the parts that they belong to.
#pragma once

#include "viewer/readers/readers.h"

namespace nruview::readers {

/// Puts the cells of each part one behind the other, in their own order, with their numbers; partOfCell are
/// places in names. Parts without cells drop out. For models that have no fields of cells yet.
void sortIntoParts(Model& model, const std::vector<std::uint32_t>& partOfCell,
                   const std::vector<std::string>& names);

} // namespace nruview::readers
