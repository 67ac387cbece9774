#include "NRenderUtl/mesh/elementcontour.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "NRenderUtl/mesh/colorbands.h"

namespace {

using Band = RenderColorScale::ColorBand;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr double kOnBorder = 1e-6;    // of the range: a band limit this close to a border lies on it
constexpr double kLargestTexel = 1e6; // keeps what is far out of range within the precision of floats
constexpr double kRounding = 0x1p-18; // several roundings of a texture coordinate
constexpr double kNoRange = 1e-6;     // stands for a range without length, relative to its value

/// A band with an infinite limit has no usable factor and keeps its own colour.
NgColorLong mixed(NgColorLong from, NgColorLong to, float t) {
    if (!std::isfinite(t))
        return from;
    NgColorLong color = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto c0 = static_cast<float>(from >> shift & 0xFF), c1 = static_cast<float>(to >> shift & 0xFF);
        color |= static_cast<NgColorLong>(std::clamp(c0 + t * (c1 - c0) + 0.5f, 0.0f, 255.0f)) << shift;
    }
    return color;
}

/// The lowest and the highest limit but for infinite ones.
ContourTexture::Range finiteRange(const ContourRule& rule) {
    ContourTexture::Range range{kInfinity, -kInfinity};
    for (const Band& band : rule.bands())
        for (const float limit : {band.min_val, band.max_val})
            if (std::isfinite(limit))
                range = {std::min(range.low, limit), std::max(range.high, limit)};
    return range.low <= range.high ? range : ContourTexture::Range{0, 0};
}

/// The smallest number of texels whose borders meet every band limit; 0 when it is above `most`.
int evenTexelCount(const ContourRule& rule, const ContourTexture::Range& range, int most) {
    const double length = double{range.high} - range.low;
    const auto isEven = [&](const Band& band, int count) {
        const double from = std::max((band.min_val - range.low) / length, 0.0) * count;
        const double to = std::min((band.max_val - range.low) / length, 1.0) * count;
        const double error = std::max(std::abs(from - std::round(from)), std::abs(to - std::round(to)));
        return error < kOnBorder * count && std::round(to) > std::round(from);
    };
    for (int count = 1; count <= most; ++count)
        if (std::ranges::all_of(rule.bands(), [&](const Band& band) { return isEven(band, count); }))
            return count;
    return 0;
}

/// Texels within the range. Smeared colours change from texel to texel, so there the more the better.
int texelCount(const ContourRule& rule, const ContourTexture::Range& range, int most) {
    if (range.low == range.high)
        return 1;
    const int even = evenTexelCount(rule, range, most);
    if (even == 0)
        return most;
    return rule.isSmeared() ? most / even * even : even;
}

} // namespace

// --- rule --------------------------------------------------------------------------------------------------

ContourRule::ContourRule(const ElementValues& values)
    : m_scale(values.scale), m_smeared(values.smeared && values.kind == ElementValues::OfNodes) {}

int ContourRule::band(float value) const {
    const int count = static_cast<int>(bands().size());
    if (value < minimum())
        return -1;
    if (value > maximum())
        return count;
    if (minimum() == maximum())
        return count / 2;
    if (value == maximum())
        return count - 1;
    for (int low = 0, high = count - 1; low <= high;) {
        const int middle = (low + high) / 2;
        const Band& band = bands()[middle];
        if (value >= band.min_val && band.max_val > value)
            return middle;
        band.min_val > value ? high = middle - 1 : low = middle + 1;
    }
    return -1;
}

NgColorLong ContourRule::color(float value) const {
    const int band = this->band(value), last = static_cast<int>(bands().size()) - 1;
    const NgColorLong below = m_scale.GetOutOfRangeMinColor(), above = m_scale.GetOutOfRangeMaxColor();
    if (band < 0)
        return below != kUnsetColor ? below : bands().front().color;
    if (band > last)
        return above != kUnsetColor ? above : bands().back().color;
    const Band& own = bands()[band];
    if (!m_smeared || band == last || minimum() == maximum())
        return own.color;
    return mixed(own.color, bands()[band + 1].color, (value - own.min_val) / (own.max_val - own.min_val));
}

// --- texture -----------------------------------------------------------------------------------------------

ContourTexture::ContourTexture(const ContourRule& rule, int largestSize)
    : m_rule(rule), m_range(finiteRange(rule)), m_count(texelCount(rule, m_range, largestSize - 2)) {
    const double length = double{m_range.high} - m_range.low;
    m_perUnit = m_count / (length > 0 ? length : kNoRange * std::max(1.0, std::abs(double{m_range.low})));
    const auto size = std::bit_ceil(static_cast<unsigned>(m_count + 2));
    m_push = size * kRounding;
    const float below = std::nextafter(m_range.low, -kInfinity),
                above = std::nextafter(m_range.high, kInfinity);
    m_texels.assign(size, rule.color(above));
    m_bands.assign(m_count + 2, rule.band(above));
    m_texels[0] = rule.color(below);
    m_bands[0] = rule.band(below);
    for (int i = 1; i <= m_count; ++i)
        paint(i,
              std::clamp(static_cast<float>(m_range.low + (i - 0.5) / m_perUnit), m_range.low, m_range.high));
    keepThinBands();
}

void ContourTexture::paint(int texel, float value) {
    m_bands[texel] = m_rule.band(value);
    m_texels[texel] = m_rule.color(value);
}

/// A band between the middles of two texels gets one of them, for the fields that lie in it.
void ContourTexture::keepThinBands() {
    for (int band = 0; band < static_cast<int>(m_rule.bands().size()); ++band) {
        const auto& [low, high, color] = m_rule.bands()[band];
        const auto middle = static_cast<float>((double{low} + high) / 2);
        if (m_rule.band(middle) == band && std::ranges::find(m_bands, band) == m_bands.end())
            paint(std::clamp(static_cast<int>(texelAt(middle)), 1, m_count), middle);
    }
}

double ContourTexture::texelAt(float value) const {
    return 1 + (double{value} - m_range.low) * m_perUnit;
}

float ContourTexture::coordinate(float value) const {
    double texel = texelAt(value);
    if (value < m_range.low) {
        texel = std::min(texel, 1 - m_push);
    } else if (value > m_range.high) {
        texel = std::max(texel, m_count + 1 + m_push);
    } else {
        const int at = texelOf(m_rule.band(value), texel);
        texel = std::clamp(texel, at + m_push, at + 1 - m_push);
    }
    return static_cast<float>(std::clamp(texel, -kLargestTexel, kLargestTexel) /
                              static_cast<double>(m_texels.size()));
}

int ContourTexture::texelOf(int band, double texel) const {
    const int at = std::min(static_cast<int>(texel), m_count);
    for (const int candidate : {at, at - 1, at + 1})
        if (m_bands[candidate] == band)
            return candidate;
    return at;
}
