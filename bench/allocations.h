// Counts the blocks of memory that the library asks for.
#pragma once

namespace nrubench {

/// Calls of malloc, its kin and operator new so far, on any thread, by the library and, on its behalf, by the
/// C++ standard library.
long libraryAllocations();

} // namespace nrubench
