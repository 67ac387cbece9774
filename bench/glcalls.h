// Counts the OpenGL calls that the library makes.
#pragma once

#include <map>
#include <string>

/// Calls by function since the last call of this, which starts the counting: the first answers nothing.
/// Functions that were never called before counting starts are not seen.
std::map<std::string, int> takeGlCalls();
