// The contour texture that the library draws with.
#pragma once

#include "viewer/scene/colorbands.h"

namespace nruview {

/// Bands in force for the length of a block: white light through their texture, so that lighting shades the
/// colours and their hue stays. The target is that of the texture, GL_TEXTURE_1D or GL_TEXTURE_2D.
class ContourInForce {
public:
    explicit ContourInForce(ColorBands& bands, unsigned int target);
    ~ContourInForce();
    ContourInForce(const ContourInForce&) = delete;
    ContourInForce& operator=(const ContourInForce&) = delete;

private:
    int m_target;
};

} // namespace nruview
