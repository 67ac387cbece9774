// What a bug report about drawing needs to say of the machine.
#pragma once

#include <ostream>

namespace nruview {

/// Starts the library in an off-screen context and writes what it finds: driver, limits, capabilities, its
/// decisions in its own words, programs and the route of each family, a fact a line. fixed: as under --fixed.
/// Throws ViewerError without a context.
void reportStartUp(std::ostream& out, bool fixed);

} // namespace nruview
