// The contour colours: bands over a value range as a colour scale of the library and as its texture.
#pragma once

#include <array>

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

/// Grey, which is no colour of a band: there is no value.
constexpr NgColorLong kNoValueColor = 0xFFA0A0A0;

/// Colours from blue (low) to red (high). The library gets values as fractions of the range, taken in double
/// precision: large values with a small range, and ranges below the library's tolerance, keep all their
/// bands.
class ColorBands {
public:
    /// count 1 to 64. A range of no length puts every value into the middle band.
    ColorBands(int count, const std::array<double, 2>& range, bool smeared);

    /// Texture coordinate of a value: 0 at the range's low end, 1 at its high end, held to [-1e6, 1e6].
    float coordinate(double value) const;
    /// Value at which band i begins; i = count is the end of the last.
    double limit(int i) const;
    int count() const { return m_count; }
    bool smeared() const { return m_attributes.smeared != 0; }
    NgColorLong color(int band) const;
    /// The scale of coordinates.
    const RenderColorScale& scale() const { return m_attributes.colorScale; }

    /// What the library asks for as the active texture. createTexture needs a current context, which then
    /// owns it; the target is GL_TEXTURE_1D or, for markers, GL_TEXTURE_2D.
    RenderTextureAttributes& attributes() { return m_attributes; }
    void createTexture(unsigned int target);

private:
    int m_count;
    std::array<double, 2> m_range;
    RenderTextureAttributes m_attributes;
};

} // namespace nruview
