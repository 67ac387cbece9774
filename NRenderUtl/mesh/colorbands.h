// What the colour scale and the texture attributes share.
#pragma once

#include <cstddef>

/// The shaders' band array has this many entries.
inline constexpr std::size_t kMaxColorBands = 64;

/// Console message of a refused band array.
void reportTooManyColorBands();
