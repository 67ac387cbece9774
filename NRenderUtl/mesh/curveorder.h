// The order of positions along a space-filling curve, on which neighbours lie close together.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "NRenderUtl/mesh/elementsurface.h"

/// A position by its number, and where it is on the curve.
struct CurvePlace {
    std::uint32_t code;
    std::uint32_t item;
};

/// The numbers of all positions, in order; of one place on the curve in ascending order. Throws
/// std::bad_alloc.
std::vector<CurvePlace> curveOrder(std::span<const ElementSurface::Vector> positions);
