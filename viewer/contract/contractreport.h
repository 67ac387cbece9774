// The contract as a table of text.
#pragma once

#include <ostream>

namespace nruview {

/// Checks all pairs in a context of its own and prints the matrix, each fault and a summary. Throws
/// ViewerError where there is a fault, or no context.
void checkContract(std::ostream& out);

} // namespace nruview
