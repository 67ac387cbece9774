// What the colour scale and the texture attributes share.
#pragma once

#include <cstddef>

#include "NRenderUtl/ntypes.h"

/// The shaders' band array has this many entries.
inline constexpr std::size_t kMaxColorBands = 64;

/// Value of an out-of-range colour that is not set.
inline constexpr NgColorLong kUnsetColor = 0xFFFFFFFF;

/// Console message of a refused band array.
void reportTooManyColorBands();
