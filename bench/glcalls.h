// Counts the OpenGL calls that the library makes.
#pragma once

#include <map>
#include <string>

/// Calls by function since the last call of this, the first of which starts the counting. Needs a current
/// context of EGL.
std::map<std::string, int> takeGlCalls();
