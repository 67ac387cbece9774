// The symbols of supports: drawn and picked through the library's symbol functions.
#pragma once

#include <optional>

#include "viewer/markers/markers.h"

namespace nruview {

/// Both work in the view of the last beginFrame. A symbol stands a little before its node, so that the model
/// about the node does not hide it.
void drawSupports(const std::vector<Support>& supports);
/// Whether a symbol is at a window pixel, y counted from the top.
bool isSupportAt(const Support& support, int x, int y);
/// Where the symbol stands.
Point symbolPlace(const Support& support);

} // namespace nruview
