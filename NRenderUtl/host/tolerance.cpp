// Comparison of doubles by a tolerance that grows with their size.
#include <algorithm>
#include <cmath>

#include "NRenderUtl/host/hostutl.h"

namespace {

constexpr double kRelativeTolerance = 1e-10;
constexpr double kSmallestTolerance = 1e-30; // keeps a division by a difference above it finite

} // namespace

double hostTolerance(double value) {
    return std::max(kRelativeTolerance * std::fabs(value), kSmallestTolerance);
}

bool hostEqual(double a, double b) {
    if (a == b)
        return true; // equal infinities, whose difference is NaN
    return std::fabs(a - b) < hostTolerance(std::max(std::fabs(a), std::fabs(b)));
}
