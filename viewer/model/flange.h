// A machined part without results: a flange with a hub, bolt holes and rounded edges.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

/// Closed skin of quads, all facing outward, lengths in mm; n quads along the sides of a bolt hole's sector.
Model makeFlange(std::uint32_t n);

/// Quads of that.
std::uint64_t flangeCells(std::uint32_t n);

} // namespace nruview
