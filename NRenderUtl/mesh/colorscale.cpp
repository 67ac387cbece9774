// The banded colour scale: which colour a value has.
#include "NRenderUtl/mesh/colorbands.h"
#include "NRenderUtl/mesh/nmesh.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

constexpr NgColorLong kGapColor = 0xFFFFFF; // white marks a value between two bands
constexpr float kInitialMin = FLT_MAX;
// Deliberate: the smallest positive normal float, not the most negative one. A scale without bands so keeps
// its minimum above its maximum, and hosts compare a fresh scale's limits with these two values.
constexpr float kInitialMax = FLT_MIN;

/// Channel-wise mix, truncated. A band with an infinite limit has no usable factor and keeps its own colour.
NgColorLong mixColors(NgColorLong from, NgColorLong to, float t) {
    if (!std::isfinite(t))
        return from;
    NgColorLong mixed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const float c0 = static_cast<float>((from >> shift) & 0xFF);
        const float c1 = static_cast<float>((to >> shift) & 0xFF);
        mixed |= (static_cast<NgColorLong>(c0 + t * (c1 - c0)) & 0xFF) << shift;
    }
    return mixed;
}

} // namespace

static_assert(sizeof(RenderColorScale::ColorBand) == 12, "bands are copied and uploaded as one block");

void reportTooManyColorBands() {
    hostMessage(
        NHostMessageNote,
        "Can not set given color band array because max color bands limit exceeded! Please check and fix");
}

RenderColorScale::RenderColorScale() {
    Reset();
}
RenderColorScale::RenderColorScale(const RenderColorScale&) = default;
RenderColorScale& RenderColorScale::operator=(const RenderColorScale&) = default;
RenderColorScale::~RenderColorScale() = default;

const std::vector<RenderColorScale::ColorBand>& RenderColorScale::GetColorBands() const {
    return m_bands;
}
float RenderColorScale::GetMinValue() const {
    return m_minValue;
}
float RenderColorScale::GetMaxValue() const {
    return m_maxValue;
}
NgColorLong RenderColorScale::GetOutOfRangeMinColor() const {
    return m_outOfRangeMinColor;
}
NgColorLong RenderColorScale::GetOutOfRangeMaxColor() const {
    return m_outOfRangeMaxColor;
}
void RenderColorScale::SetOutOfRangeMinColor(NgColorLong color) {
    m_outOfRangeMinColor = color;
}
void RenderColorScale::SetOutOfRangeMaxColor(NgColorLong color) {
    m_outOfRangeMaxColor = color;
}
void RenderColorScale::SetSmearedMode(bool smeared) {
    m_smeared = smeared;
}

NgColorLong RenderColorScale::GetColor(float value) const {
    const int count = static_cast<int>(m_bands.size());
    if (count < 1)
        return kUnsetColor;
    return ngl_add_transparency_into_rgb_color([&] {
        if (hostEqual(m_minValue, m_maxValue))
            return m_bands[count / 2].color;
        if (value < m_minValue)
            return m_outOfRangeMinColor != kUnsetColor ? m_outOfRangeMinColor : m_bands.front().color;
        if (value > m_maxValue)
            return m_outOfRangeMaxColor != kUnsetColor ? m_outOfRangeMaxColor : m_bands.back().color;
        if (hostEqual(value, m_maxValue))
            return m_bands.back().color;
        const int index = FindBandIndex(value);
        if (index < 0)
            return kGapColor;
        const ColorBand& band = m_bands[index];
        if (!m_smeared || index == count - 1)
            return band.color;
        const float t = (value - band.min_val) / (band.max_val - band.min_val);
        return mixColors(band.color, m_bands[index + 1].color, t);
    }());
}

void RenderColorScale::SetColorBands(const std::vector<ColorBand>& bands) {
    if (bands.size() > kMaxColorBands) {
        reportTooManyColorBands();
        return;
    }
    m_bands = bands;
    m_minValue = FLT_MAX;
    m_maxValue = -FLT_MAX;
    for (const ColorBand& band : m_bands) {
        m_minValue = std::min(m_minValue, band.min_val);
        m_maxValue = std::max(m_maxValue, band.max_val);
    }
}

void RenderColorScale::Reset() {
    m_bands.clear();
    m_minValue = kInitialMin;
    m_maxValue = kInitialMax;
    m_outOfRangeMinColor = kUnsetColor;
    m_outOfRangeMaxColor = kUnsetColor;
    m_smeared = false;
}

int RenderColorScale::FindBandIndex(float value) const {
    int low = 0;
    int high = static_cast<int>(m_bands.size()) - 1;
    while (low <= high) {
        const int mid = (low + high) / 2;
        const ColorBand& band = m_bands[mid];
        if (value >= band.min_val && band.max_val > value)
            return mid;
        if (band.min_val > value)
            high = mid - 1;
        else
            low = mid + 1;
    }
    return -1;
}
