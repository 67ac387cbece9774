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

using Bands = std::vector<RenderColorScale::ColorBand>;

bool isInside(const RenderColorScale::ColorBand& band, float value) {
    return value >= band.min_val && band.max_val > value;
}

/// The band in which a value from min to below max lies if all are of one width.
int evenBand(int count, float min, float max, float value) {
    return std::min(static_cast<int>((value - min) / (max - min) * static_cast<float>(count)), count - 1);
}

/// Whether bands ascend without overlap, so that a value is in one at most, and are so alike in width that
/// this one is known without a search. The last must end well above its start for the rule of equal maxima.
bool areEven(const Bands& bands, float min, float max) {
    if (bands.empty() || !std::isfinite(max - min) || hostEqual(bands.back().min_val, max))
        return false;
    const int count = static_cast<int>(bands.size());
    float end = min;
    for (int i = 0; i < count; ++i) {
        const float middle = bands[i].min_val + (bands[i].max_val - bands[i].min_val) / 2;
        if (!(bands[i].min_val >= end) || !isInside(bands[i], middle) ||
            evenBand(count, min, max, middle) != i)
            return false;
        end = bands[i].max_val;
    }
    return true;
}

NgColorLong colorIn(const Bands& bands, std::size_t index, bool smeared, float value) {
    const auto& [start, end, color] = bands[index];
    if (!smeared || index == bands.size() - 1)
        return color;
    return mixColors(color, bands[index + 1].color, (value - start) / (end - start));
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
        if (m_even && value >= m_minValue && value < m_maxValue) {
            const int guess = evenBand(count, m_minValue, m_maxValue, value);
            if (isInside(m_bands[guess], value))
                return colorIn(m_bands, guess, m_smeared, value);
        }
        if (hostEqual(m_minValue, m_maxValue))
            return m_bands[count / 2].color;
        if (value < m_minValue)
            return m_outOfRangeMinColor != kUnsetColor ? m_outOfRangeMinColor : m_bands.front().color;
        if (value > m_maxValue)
            return m_outOfRangeMaxColor != kUnsetColor ? m_outOfRangeMaxColor : m_bands.back().color;
        if (hostEqual(value, m_maxValue))
            return m_bands.back().color;
        const int index = FindBandIndex(value);
        return index < 0 ? kGapColor : colorIn(m_bands, index, m_smeared, value);
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
    m_even = areEven(m_bands, m_minValue, m_maxValue);
}

void RenderColorScale::Reset() {
    m_bands.clear();
    m_minValue = kInitialMin;
    m_maxValue = kInitialMax;
    m_outOfRangeMinColor = kUnsetColor;
    m_outOfRangeMaxColor = kUnsetColor;
    m_smeared = false;
    m_even = false;
}

int RenderColorScale::FindBandIndex(float value) const {
    int low = 0;
    int high = static_cast<int>(m_bands.size()) - 1;
    while (low <= high) {
        const int mid = (low + high) / 2;
        const ColorBand& band = m_bands[mid];
        if (isInside(band, value))
            return mid;
        if (band.min_val > value)
            high = mid - 1;
        else
            low = mid + 1;
    }
    return -1;
}
