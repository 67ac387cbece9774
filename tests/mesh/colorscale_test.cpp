// Which colour a value has, and what the host's texture attributes make of a scale.
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/texturehook.h"
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

/// Console messages of the library while a test runs.
class MessageTrap {
public:
    MessageTrap() {
        NHostServices services{};
        services.context = this;
        services.message = [](void* self, int, const char* text) {
            static_cast<MessageTrap*>(self)->messages.push_back(text);
        };
        NHostSetServices(&services);
    }
    ~MessageTrap() { NHostSetServices(nullptr); }
    std::vector<std::string> messages;
};

const std::vector<std::string> kTooMany = {
    "Can not set given color band array because max color bands limit exceeded! Please check and fix"};

} // namespace

TEST(RenderColorScale, ColorOfAValue) {
    const Bands two = {{0, 1, kRed}, {1, 2, kGreen}};
    const Bands gap = {{0, 1, kRed}, {2, 3, kGreen}};
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
        {"just below it", two, false, true, std::nextafter(1.0f, 0.0f), kRed},
        {"the maximum belongs to the last band", two, false, true, 2, kGreen},
        {"below, own colour", two, false, true, -1, kLow},
        {"below, first band", two, false, false, -1, kRed},
        {"above, own colour", two, false, true, 2.5f, kHigh},
        {"above, last band", two, false, false, 2.5f, kGreen},
        {"minus infinity", two, false, false, -kInf, kRed},
        {"gap", gap, false, true, 1.5f, kWhite},
        {"not a number", two, false, true, kNaN, kWhite},
        {"smeared", ramp, true, false, 0.5f, 0x32007F},
        {"smeared, downward", ramp, true, false, 1.5f, 0x370584},
        {"smeared at a limit", ramp, true, false, 1, 0x6400FF},
        {"smeared, last band", ramp, true, false, 2.5f, 0x0A0A0A},
        {"smeared, a band without end", open, true, false, -5, kRed},
        {"equal range, below", point, false, true, -7, kGreen},
        {"equal range, on it", point, true, true, 5, kGreen},
    };
    ngl_set_blending_value(0x5A);
    for (const auto& row : rows) {
        RenderColorScale scale;
        scale.SetColorBands(row.bands);
        scale.SetSmearedMode(row.smeared);
        if (row.ownEnds) {
            scale.SetOutOfRangeMinColor(kLow);
            scale.SetOutOfRangeMaxColor(kHigh);
        }
        EXPECT_EQ(scale.GetColor(row.value), row.color | 0x5A000000) << row.name;
    }
}

TEST(RenderColorScale, FindsEveryBandOfEveryCount) {
    ngl_set_blending_value(0);
    for (int count = 1; count <= 64; ++count) {
        RenderColorScale scale;
        scale.SetColorBands(uniformBands(count));
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(scale.GetColor(i + 0.5f), NgColorLong(count == 1 ? 0 : i)) << count << " bands";
    }
}

TEST(RenderColorScale, RefusesMoreThan64Bands) {
    MessageTrap trap;
    RenderColorScale scale;
    scale.SetOutOfRangeMinColor(kLow);
    scale.SetColorBands(uniformBands(64));
    EXPECT_TRUE(trap.messages.empty());
    scale.SetColorBands(uniformBands(65));
    EXPECT_EQ(trap.messages, kTooMany);
    EXPECT_EQ(scale.GetColorBands().size(), 64u);
    EXPECT_EQ(scale.GetMaxValue(), 64.0f);
    EXPECT_EQ(scale.GetOutOfRangeMinColor(), kLow);
}

TEST(RenderColorScale, InitialAndEmptyLimits) {
    RenderColorScale scale;
    const auto expectInitial = [&] {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(scale.GetMinValue()), 0x7F7FFFFFu);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(scale.GetMaxValue()), 0x00800000u);
        EXPECT_EQ(scale.GetOutOfRangeMinColor(), kUnset);
        EXPECT_EQ(scale.GetOutOfRangeMaxColor(), kUnset);
        EXPECT_EQ(scale.GetColor(0), kUnset);
    };
    expectInitial();
    scale.SetColorBands({{1, 2, kRed}});
    scale.SetOutOfRangeMaxColor(kHigh);
    scale.SetOutOfRangeMinColor(kLow);
    scale.Reset();
    expectInitial();
    scale.SetColorBands({});
    EXPECT_EQ(scale.GetMinValue(), FLT_MAX);
    EXPECT_EQ(scale.GetMaxValue(), -FLT_MAX);
}

TEST(RenderTextureAttributes, KeepsTheHostsLayout) {
    const std::size_t word = sizeof(void*);
    const RenderTextureAttributes a;
    const void* fields[] = {&a.texture,
                            &a.hostData,
                            &a.hostWord1,
                            &a.hostWord2,
                            &a.minValue,
                            &a.maxValue,
                            &a.smeared,
                            &a.hostWord3,
                            &a.outOfRangeMode,
                            &a.outOfRangeMinColor,
                            &a.outOfRangeMaxColor,
                            &a.hostWord4,
                            &a.hostWord5,
                            &a.colorScale};
    const std::size_t after = 2 * word; // the texture name, filled up to a pointer, then the pointer
    const std::size_t expected[] = {0,          word,       after,      after + 4,  after + 8,
                                    after + 12, after + 16, after + 20, after + 24, after + 28,
                                    after + 32, after + 36, after + 40, after + 48};
    for (std::size_t i = 0; i < std::size(fields); ++i)
        EXPECT_EQ(static_cast<const char*>(fields[i]) - reinterpret_cast<const char*>(&a),
                  static_cast<std::ptrdiff_t>(expected[i]))
            << "field " << i;
    // A table pointer and the bands, then two limits, two colours and the flag.
    EXPECT_EQ(sizeof(RenderColorScale), word + sizeof(Bands) + 5 * 4 + 4);
}

TEST(RenderTextureAttributes, UpdatesItsScale) {
    const float limits[66] = {0, 1, 2};
    const NgColorLong colors[65] = {kRed, kGreen};
    const struct {
        const char* name;
        int count, mode;
        std::size_t bands;
        bool smeared;
        NgColorLong low, high;
        std::size_t messages;
    } rows[] = {
        {"no out-of-range colours", 2, 0, 2, true, kUnset, kUnset, 0},
        {"the scale's own", 2, 1, 2, true, 7, 8, 0},
        {"the attributes'", 2, 2, 2, true, kLow, kHigh, 0},
        {"nothing to do", 0, 2, 1, false, 7, 8, 0},
        {"too many still sets the rest", 65, 2, 1, true, kLow, kHigh, 1},
    };
    ngl_set_blending_value(0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        MessageTrap trap;
        RenderTextureAttributes a;
        a.colorScale.SetColorBands({{0, 2, 0x000010}});
        a.colorScale.SetOutOfRangeMinColor(7);
        a.colorScale.SetOutOfRangeMaxColor(8);
        a.smeared = -1;
        a.outOfRangeMode = row.mode;
        a.outOfRangeMinColor = kLow;
        a.outOfRangeMaxColor = kHigh;
        a.UpdateColorScale(row.count, limits, colors);
        ASSERT_EQ(a.colorScale.GetColorBands().size(), row.bands);
        EXPECT_EQ(a.colorScale.GetOutOfRangeMinColor(), row.low);
        EXPECT_EQ(a.colorScale.GetOutOfRangeMaxColor(), row.high);
        EXPECT_EQ(trap.messages.size(), row.messages);
        if (row.bands == 2) {
            EXPECT_EQ(a.colorScale.GetColor(0.5f), row.smeared ? 0x007F7Fu : kRed);
            EXPECT_EQ(a.colorScale.GetColor(1.5f), kGreen);
        }
    }
}

TEST(RenderTextureAttributes, IsReadByTheGlLayer) {
    RenderTextureAttributes a;
    a.texture = 9;
    a.minValue = -2;
    a.maxValue = 3;
    const RenderTextureAttributes moved(std::move(a));
    const ContourTexture read = readContourTexture(moved);
    EXPECT_EQ(read.texture, 9u);
    EXPECT_EQ(read.minValue, -2.0f);
    EXPECT_EQ(read.maxValue, 3.0f);
    a = moved;
    a.hostWord5 = 4;
    a.Reset();
    EXPECT_EQ(a.texture, 0u);
    EXPECT_EQ(a.hostWord5, 0);
}
