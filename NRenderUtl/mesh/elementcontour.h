// The colour bands for fixed function: the rules of the programs' band library, and a texture that follows
// them.
#pragma once

#include <cstdint>
#include <vector>

#include "NRenderUtl/mesh/elementvalues.h"

/// Which colour a value has in the programs. They differ from RenderColorScale::GetColor: no tolerances, the
/// limits of the range come first, and a gap takes the colour below the range.
class ContourRule {
public:
    /// The values' scale must have bands. Values of elements are not smeared, whatever the scale says.
    explicit ContourRule(const ElementValues& values);

    /// Band of a value: -1 below the range, in a gap and for NaN; the number of bands above the range.
    int band(float value) const;
    NgColorLong color(float value) const;
    float minimum() const { return m_scale.GetMinValue(); }
    float maximum() const { return m_scale.GetMaxValue(); }
    const std::vector<RenderColorScale::ColorBand>& bands() const { return m_scale.GetColorBands(); }
    bool isSmeared() const { return m_smeared; }

private:
    RenderColorScale m_scale;
    bool m_smeared;
};

/// The bands along a one-dimensional texture, between a texel below and the texels above the range. Band
/// limits lie on borders of texels where a texture of the size can have them so, else within half a texel of
/// one.
class ContourTexture {
public:
    struct Range {
        float low, high;
    };

    ContourTexture(const ContourRule& rule, int largestSize);

    /// One packed colour each; a power of two, as drivers of old ask for.
    const std::vector<NgColorLong>& texels() const { return m_texels; }
    /// Texture coordinate of a value: linear but for a push that keeps a value close to a limit on its side
    /// of it, whatever the interpolation rounds. The value must be finite.
    float coordinate(float value) const;

private:
    void paint(int texel, float value);
    void keepThinBands();
    double texelAt(float value) const; ///< with its fraction
    int texelOf(int band, double texel) const;

    ContourRule m_rule;
    Range m_range;
    int m_count; ///< texels within the range, behind the one below
    double m_perUnit;
    double m_push;
    std::vector<NgColorLong> m_texels;
    std::vector<int> m_bands; ///< of the texels within the range and one on each side
};
