// Which colour a value has, and what the host's texture attributes make of a scale.
#include <cfloat>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/nmesh.h"

namespace {

constexpr NgColorLong kRed = 0x0000FF, kGreen = 0x00FF00;
constexpr NgColorLong kLow = 0x010203, kHigh = 0x040506, kUnset = 0xFFFFFFFF;
constexpr float kInf = std::numeric_limits<float>::infinity();
using Bands = std::vector<RenderColorScale::ColorBand>;

} // namespace

TEST(RenderColorScale, GivesTheColorOfAValue) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Bands ramp = {{0, 1, 0x6400FF}, {1, 2, 0x0A0A0A}}, open = {{-kInf, 0, kRed}, {0, kInf, kGreen}},
                gap = {{0, 1, kRed}, {2, 3, kGreen}}, point = {{5, 5, 1}, {5, 5, 2}, {5, 5, 3}};
    const struct {
        const char* name;
        Bands bands;
        bool smeared, ownEnds;
        float value;
        NgColorLong color;
    } rows[] = {{"a mix, truncated", ramp, true, true, 0.5f, 0x370584},
                {"smeared, the last band", ramp, true, true, 1.5f, 0x0A0A0A},
                {"smeared, a band without end", open, true, true, -5, kRed},
                {"a limit is of the band above", ramp, false, true, 1, 0x0A0A0A},
                {"the maximum is of the last band", ramp, false, true, 2, 0x0A0A0A},
                {"below", ramp, false, true, -1e-30f, kLow},
                {"above", ramp, false, true, 2.0001f, kHigh},
                {"below, unset", ramp, true, false, -kInf, 0x6400FF},
                {"above, unset", ramp, true, false, kInf, 0x0A0A0A},
                {"a gap is white", gap, true, true, 1.5f, 0xFFFFFF},
                {"not a number is white", ramp, false, true, nan, 0xFFFFFF},
                {"equal limits come first", point, false, true, 9, 2}};
    ngl_set_blending_value(0x5A);
    for (const auto& [name, bands, smeared, ownEnds, value, color] : rows) {
        RenderColorScale scale;
        scale.SetColorBands(bands);
        scale.SetSmearedMode(smeared);
        scale.SetOutOfRangeMinColor(ownEnds ? kLow : kUnset);
        scale.SetOutOfRangeMaxColor(ownEnds ? kHigh : kUnset);
        EXPECT_EQ(scale.GetColor(value) & 0xFFFFFF, color) << name;
    }
    RenderColorScale blended;
    blended.SetColorBands(ramp);
    EXPECT_EQ(blended.GetColor(0.5f), 0x5A6400FFu);
}

TEST(RenderColorScale, TakesAtMost64Bands) {
    ngl_set_blending_value(0);
    RenderColorScale scale;
    Bands bands;
    for (unsigned i = 0; i < 64; ++i)
        bands.push_back({float(i), i + 1.0f, i});
    scale.SetColorBands(bands);
    bands.push_back({64, 65, 64});
    ::testing::internal::CaptureStderr();
    scale.SetColorBands(bands);
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("max color bands limit exceeded"),
              std::string::npos);
    EXPECT_EQ(scale.GetMaxValue(), 64.0f);
    EXPECT_EQ(scale.GetColor(63.5f), 63u);
}

// Limits that no division gives back exactly, of bands alike in width, nearly so, and not at all.
TEST(RenderColorScale, LimitsDecideToTheLastBit) {
    ngl_set_blending_value(0);
    for (const float bend : {0.0f, 0.001f, 0.09f}) {
        SCOPED_TRACE(bend);
        const auto limit = [=](unsigned i) { return 0.1f * i - 3 + bend * (i % 2); };
        Bands bands;
        for (unsigned i = 0; i < 63; ++i)
            bands.push_back({limit(i), limit(i + 1), i});
        RenderColorScale scale;
        scale.SetColorBands(bands);
        for (unsigned i = 1; i < bands.size(); ++i) {
            ASSERT_EQ(scale.GetColor(bands[i].min_val), i);
            ASSERT_EQ(scale.GetColor(std::nextafter(bands[i].max_val, -kInf)), i);
            ASSERT_EQ(scale.GetColor(std::nextafter(bands[i - 1].max_val, -kInf)), i - 1);
        }
    }
}

TEST(RenderColorScale, WithoutBandsHasNoColorAndLimitsThatHostsKnow) {
    RenderColorScale scale;
    scale.SetColorBands({{1, 2, kRed}});
    scale.Reset();
    EXPECT_EQ(std::pair(scale.GetMinValue(), scale.GetMaxValue()), std::pair(FLT_MAX, FLT_MIN));
    EXPECT_EQ(scale.GetColor(0), kUnset);
    scale.SetColorBands({});
    EXPECT_EQ(std::pair(scale.GetMinValue(), scale.GetMaxValue()), std::pair(FLT_MAX, -FLT_MAX));
}

TEST(RenderTextureAttributes, KeepsTheHostsLayout) {
    using Offsets = std::vector<std::ptrdiff_t>;
    static_assert(sizeof(void*) == 8);
    const RenderTextureAttributes a;
    const auto address = [](const auto& field) { return reinterpret_cast<const char*>(&field); };
    const auto offsets = [&](const auto&... field) { return Offsets{(address(field) - address(a))...}; };
    EXPECT_EQ(offsets(a.texture, a.hostData, a.hostWord1, a.hostWord2, a.minValue, a.maxValue, a.smeared,
                      a.hostWord3, a.outOfRangeMode, a.outOfRangeMinColor, a.outOfRangeMaxColor, a.hostWord4,
                      a.hostWord5, a.colorScale),
              (Offsets{0, 8, 16, 20, 24, 28, 32, 36, 40, 44, 48, 52, 56, 64}));
    // A table pointer and the bands, then two limits, two colours and the flag.
    EXPECT_EQ(sizeof(RenderColorScale), 8 + sizeof(Bands) + 5 * 4 + 4);
}

TEST(RenderTextureAttributes, UpdatesItsScale) {
    const float limits[66] = {0, 1, 2};
    const NgColorLong colors[65] = {kRed, kGreen};
    // bands, mode, then the out-of-range colours, the maximum and the colour of 0.5
    const std::tuple<const char*, int, int, NgColorLong, NgColorLong, float, NgColorLong> rows[] = {
        {"no out-of-range colours", 2, 0, kUnset, kUnset, 2, 0x007F7F},
        {"the scale's own", 2, 1, 7, 8, 2, 0x007F7F},
        {"the attributes'", 2, 2, kLow, kHigh, 2, 0x007F7F},
        {"nothing to do", 0, 2, 7, 8, 3, kRed},
        {"too many still sets the rest", 65, 2, kLow, kHigh, 3, 0x007F7F},
    };
    ngl_set_blending_value(0);
    for (const auto& [name, count, mode, low, high, maximum, smeared] : rows) {
        SCOPED_TRACE(name);
        RenderTextureAttributes a;
        a.colorScale.SetColorBands({{0, 1, kRed}, {1, 3, kGreen}});
        a.colorScale.SetOutOfRangeMinColor(7);
        a.colorScale.SetOutOfRangeMaxColor(8);
        a.smeared = -1;
        a.outOfRangeMode = mode;
        a.outOfRangeMinColor = kLow;
        a.outOfRangeMaxColor = kHigh;
        a.UpdateColorScale(count, limits, colors);
        EXPECT_EQ(a.colorScale.GetMaxValue(), maximum);
        EXPECT_EQ(a.colorScale.GetColor(0.5f), smeared);
        EXPECT_EQ(a.colorScale.GetOutOfRangeMinColor(), low);
        EXPECT_EQ(a.colorScale.GetOutOfRangeMaxColor(), high);
    }
}
