#include "NRenderUtl/mesh/scaleentries.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

#include "NRenderUtl/mesh/colorbands.h"

namespace {

using Bands = std::vector<RenderColorScale::ColorBand>;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kNotSmeared = -1.0f;

bool ascend(const Bands& bands) {
    for (std::size_t i = 0; i < bands.size(); ++i)
        if (!(bands[i].min_val <= bands[i].max_val) || (i > 0 && !(bands[i - 1].max_val <= bands[i].min_val)))
            return false;
    return true;
}

float inFloat(unsigned color) {
    return static_cast<float>(color & 0xFFFFFF);
}

/// The next larger value that drivers tell from this one: they take denormal values for 0.
float nextAfter(float value) {
    if (std::fabs(value) < FLT_MIN)
        return FLT_MIN;
    const float next = std::nextafter(value, kInfinity);
    return std::fabs(next) < FLT_MIN ? 0.0f : next;
}

class EntriesMaker {
public:
    explicit EntriesMaker(const RenderColorScale& scale)
        : m_bands(scale.GetColorBands()), m_low(scale.GetMinValue()), m_high(scale.GetMaxValue()) {
        const unsigned below = scale.GetOutOfRangeMinColor(), above = scale.GetOutOfRangeMaxColor();
        m_below = inFloat(below == kUnsetColor ? m_bands.front().color : below);
        m_above = inFloat(above == kUnsetColor ? m_bands.back().color : above);
    }

    ScaleEntries make() {
        const bool oneValue = m_low == m_high;
        const float middle = inFloat(m_bands[m_bands.size() / 2].color);
        add(kNaN, kNaN, oneValue ? middle : m_below);
        add(-kInfinity, m_low, m_below);
        if (!oneValue)
            addBands();
        // The largest value belongs to the last band.
        add(m_high, nextAfter(m_high), oneValue ? middle : inFloat(m_bands.back().color));
        add(nextAfter(m_high), kInfinity, m_above);
        const float factor = static_cast<float>(m_bands.size()) / (m_high - m_low);
        const float offset = 2 - m_low * factor;
        const bool usable = std::isfinite(factor) && std::isfinite(offset);
        return {std::move(m_entries), usable ? factor : 0, usable ? offset : 2};
    }

private:
    void add(float start, float end, float color, float smearedTo = kNotSmeared) {
        m_entries.push_back({start, end, color, smearedTo});
    }

    void addBands() {
        float end = m_low;
        for (std::size_t i = 0; i < m_bands.size(); ++i) {
            const RenderColorScale::ColorBand& band = m_bands[i];
            if (end < band.min_val)
                add(end, band.min_val, m_below); // deliberate: between bands, the colour below the range
            end = band.max_val;
            if (band.min_val < band.max_val)
                add(band.min_val, band.max_val, inFloat(band.color),
                    i + 1 < m_bands.size() ? inFloat(m_bands[i + 1].color) : kNotSmeared);
        }
    }

    const Bands& m_bands;
    const float m_low, m_high;
    float m_below = 0, m_above = 0; ///< colours out of range
    std::vector<ScaleEntry> m_entries;
};

} // namespace

std::optional<ScaleEntries> makeScaleEntries(const RenderColorScale& scale) {
    if (scale.GetColorBands().empty() || !ascend(scale.GetColorBands()))
        return {};
    return EntriesMaker(scale).make();
}
