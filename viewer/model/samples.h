// Built-in models with analytic results, of any size.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

/// NAME or NAME:N with N the number of elements along the longest side. "cantilever": a bent beam of
/// hexahedra with its exact stress and displacement; "hole": a plate with a round hole under tension (Kirsch,
/// 1898), stress concentration 3; "flange": the surface of a machined part. Throws ViewerError for an unknown
/// name or a size out of range.
Model makeSample(const std::string& selector);

/// Names of the samples with a line of description each.
std::vector<std::array<std::string, 2>> sampleList();

} // namespace nruview
