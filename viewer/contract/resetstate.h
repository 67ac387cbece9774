// OpenGL as a new context has it.
#pragma once

namespace nruview {

/// Sets everything that states of hosts and drawings of the library change back to its initial value, but for
/// objects and the viewport: explicitly, since drivers forget some of it in their attribute stacks.
void resetState();

} // namespace nruview
