// Principal values and directions of symmetric tensors.
#pragma once

#include <array>

#include "viewer/model/model.h"

namespace nruview {

struct PrincipalValues {
    std::array<double, 3> values{};  ///< the largest first
    std::array<Point, 3> directions; ///< orthonormal and right-handed
};

/// Of the components xx yy zz xy yz xz, which must be finite.
PrincipalValues principalValues(const std::array<double, 6>& tensor);

} // namespace nruview
