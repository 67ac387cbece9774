// The colour schemes that NglSetColorScheme copies into the library table.
#pragma once

#include "NRenderUtl/ntypes.h"

inline constexpr int kSchemeCount = 4;
/// Colours that a scheme defines; the further entries of its 256 are 0.
inline constexpr int kSchemeColorCount = 64;

extern const NgColorLong kSchemeColors[kSchemeColorCount][kSchemeCount];
