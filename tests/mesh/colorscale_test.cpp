// Which colour a value has, and what the host's texture attributes make of a scale.
#include <bit>
#include <cfloat>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"

namespace {

constexpr NgColorLong kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kWhite = 0xFFFFFF;
constexpr NgColorLong kLow = 0x010203, kHigh = 0x040506, kUnset = 0xFFFFFFFF;
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
using Bands = std::vector<RenderColorScale::ColorBand>;

Bands uniformBands(int count) {
    Bands bands;
    for (int i = 0; i < count; ++i)
        bands.push_back({float(i), float(i + 1), NgColorLong(i)});
    return bands;
}

/// Collects the library's console messages; every case is a process of its own.
std::vector<std::string> messages;
void trapMessages() {
    NHostServices services{};
    services.message = [](void*, int, const char* text) { messages.push_back(text); };
    NHostSetServices(&services);
}

const std::vector<std::string> kTooMany = {
    "Can not set given color band array because max color bands limit exceeded! Please check and fix"};

} // namespace

TEST(RenderColorScale, ColorOfAValue) {
    const Bands two = {{0, 1, kRed}, {1, 2, kGreen}}, gap = {{0, 1, kRed}, {2, 3, kGreen}};
    const Bands ramp = {{0, 1, 0x000000}, {1, 2, 0x6400FF}, {2, 3, 0x0A0A0A}};
    const Bands point = {{5, 5, kRed}, {5, 5, kGreen}, {5, 5, kBlue}};
    const Bands open = {{-kInf, 0, kRed}, {0, kInf, kGreen}};
    const struct {
        const char* name;
        Bands bands;
        bool smeared, ownEnds;
        float value;
        NgColorLong color;
    } rows[] = {
        {"lower limit", two, false, true, 0, kRed},
        {"limit of two bands belongs to the upper", two, false, true, 1, kGreen},
        {"the maximum belongs to the last band", two, false, true, 2, kGreen},
        {"below, own colour", two, false, true, -1, kLow},
        {"below, first band", two, false, false, -1, kRed},
        {"above, own colour", two, false, true, 2.5f, kHigh},
        {"above, last band", two, false, false, 2.5f, kGreen},
        {"gap", gap, false, true, 1.5f, kWhite},
        {"not a number", two, false, true, kNaN, kWhite},
        {"smeared", ramp, true, false, 0.5f, 0x32007F},
        {"smeared, downward", ramp, true, false, 1.5f, 0x370584},
        {"smeared, last band", ramp, true, false, 2.5f, 0x0A0A0A},
        {"smeared, a band without end", open, true, false, -5, kRed},
        {"equal range, below", point, false, true, -7, kGreen},
    };
    ngl_set_blending_value(0x5A);
    for (const auto& row : rows) {
        RenderColorScale scale;
        scale.SetColorBands(row.bands);
        scale.SetSmearedMode(row.smeared);
        scale.SetOutOfRangeMinColor(row.ownEnds ? kLow : kUnset);
        scale.SetOutOfRangeMaxColor(row.ownEnds ? kHigh : kUnset);
        EXPECT_EQ(scale.GetColor(row.value), row.color | 0x5A000000) << row.name;
    }
}

TEST(RenderColorScale, FindsEveryBandAndRefusesMoreThan64) {
    ngl_set_blending_value(0);
    trapMessages();
    RenderColorScale scale;
    for (int count = 1; count <= 64; ++count) {
        scale.SetColorBands(uniformBands(count));
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(scale.GetColor(i + 0.5f), NgColorLong(i)) << count << " bands";
    }
    EXPECT_TRUE(messages.empty());
    scale.SetColorBands(uniformBands(65));
    EXPECT_EQ(messages, kTooMany);
    EXPECT_EQ(scale.GetColorBands().size(), 64u);
    EXPECT_EQ(scale.GetMaxValue(), 64.0f);
}

TEST(RenderColorScale, InitialAndEmptyLimits) {
    RenderColorScale scale;
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(scale.GetMinValue()), 0x7F7FFFFFu);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(scale.GetMaxValue()), 0x00800000u);
        EXPECT_EQ(scale.GetOutOfRangeMinColor(), kUnset);
        EXPECT_EQ(scale.GetOutOfRangeMaxColor(), kUnset);
        EXPECT_EQ(scale.GetColor(0), kUnset);
        scale.SetColorBands({{1, 2, kRed}});
        scale.SetOutOfRangeMaxColor(kHigh);
        scale.SetOutOfRangeMinColor(kLow);
        scale.Reset();
    }
    scale.SetColorBands({});
    EXPECT_EQ(scale.GetMinValue(), FLT_MAX);
    EXPECT_EQ(scale.GetMaxValue(), -FLT_MAX);
}

TEST(RenderTextureAttributes, KeepsTheHostsLayout) {
    const RenderTextureAttributes a;
    // The texture name, filled up to a pointer, then the pointer, then words.
    const std::ptrdiff_t word = sizeof(void*), after = 2 * word;
    const std::pair<const void*, std::ptrdiff_t> fields[] = {{&a.texture, 0},
                                                             {&a.hostData, word},
                                                             {&a.hostWord1, after},
                                                             {&a.hostWord2, after + 4},
                                                             {&a.minValue, after + 8},
                                                             {&a.maxValue, after + 12},
                                                             {&a.smeared, after + 16},
                                                             {&a.hostWord3, after + 20},
                                                             {&a.outOfRangeMode, after + 24},
                                                             {&a.outOfRangeMinColor, after + 28},
                                                             {&a.outOfRangeMaxColor, after + 32},
                                                             {&a.hostWord4, after + 36},
                                                             {&a.hostWord5, after + 40},
                                                             {&a.colorScale, after + 48}};
    for (const auto& [field, offset] : fields)
        EXPECT_EQ(static_cast<const char*>(field) - reinterpret_cast<const char*>(&a), offset);
    // A table pointer and the bands, then two limits, two colours and the flag.
    EXPECT_EQ(sizeof(RenderColorScale), sizeof(void*) + sizeof(Bands) + 5 * 4 + 4);
}

TEST(RenderTextureAttributes, UpdatesItsScale) {
    const float limits[66] = {0, 1, 2};
    const NgColorLong colors[65] = {kRed, kGreen};
    const struct {
        const char* name;
        int count, mode;
        NgColorLong low, high;
        bool updated;
    } rows[] = {
        {"no out-of-range colours", 2, 0, kUnset, kUnset, true},
        {"the scale's own", 2, 1, 7, 8, true},
        {"the attributes'", 2, 2, kLow, kHigh, true},
        {"nothing to do", 0, 2, 7, 8, false},
        {"too many still sets the rest", 65, 2, kLow, kHigh, true},
    };
    ngl_set_blending_value(0);
    trapMessages();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        messages.clear();
        RenderTextureAttributes a;
        a.colorScale.SetColorBands({{0, 1, kRed}, {1, 3, kGreen}});
        a.colorScale.SetOutOfRangeMinColor(7);
        a.colorScale.SetOutOfRangeMaxColor(8);
        a.smeared = -1;
        a.outOfRangeMode = row.mode;
        a.outOfRangeMinColor = kLow;
        a.outOfRangeMaxColor = kHigh;
        a.UpdateColorScale(row.count, limits, colors);
        EXPECT_EQ(a.colorScale.GetMaxValue(), row.count == 2 ? 2.0f : 3.0f);
        EXPECT_EQ(a.colorScale.GetColor(0.5f), row.updated ? 0x007F7Fu : kRed) << "smeared";
        EXPECT_EQ(a.colorScale.GetOutOfRangeMinColor(), row.low);
        EXPECT_EQ(a.colorScale.GetOutOfRangeMaxColor(), row.high);
        EXPECT_EQ(messages.size(), row.count > 64 ? 1u : 0u);
    }
}
