// The symbols of supports and points, as data for the library's symbol functions.
#pragma once

#include <span>

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

/// By slot; all that the library's functions look up are there.
std::span<utl_symbols> symbolList();

} // namespace nruview
