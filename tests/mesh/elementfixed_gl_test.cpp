// Element meshes through fixed function, by their pixels.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/mesh/elementfixed.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/support/gltest.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr std::uint32_t kRed = 0xFF0000FF, kGreen = 0xFF00FF00, kBlue = 0xFFFF0000;
constexpr std::uint32_t kGray = 0xFF808080, kYellow = 0xFF00FFFF, kPink = 0xFFCBC0FF;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

using Vector = ElementSurface::Vector;

/// Quads of 8 x 8 pixels, in rows of eight from the bottom up, with no vertex in common.
ElementSurface tiles(std::uint32_t count) {
    ElementSurface surface;
    surface.quadCount = surface.elementCount = count;
    surface.nodeCount = 4 * count;
    for (std::uint32_t i = 0; i < count; ++i)
        for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
            surface.corners.push_back(static_cast<std::uint32_t>(surface.positions.size()));
            surface.positions.push_back({(i % 8 + x) / 4.0f - 1, (i / 8 + y) / 4.0f - 1, 0});
            surface.normals.push_back({0, 0, 1});
        }
    return surface;
}

/// One quad of the corners 0 1 2 3, facing +z, over the whole window.
ElementSurface sheet() {
    ElementSurface surface = tiles(1);
    surface.positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
    return surface;
}

/// A white light.
NglLightParams light(Vector position, float ambient, float diffuse, float specular,
                     Vector attenuation = {1, 0, 0}) {
    return {1,
            {ambient, ambient, ambient, 1},
            {diffuse, diffuse, diffuse, 1},
            {specular, specular, specular, 1},
            {position[0], position[1], position[2], 0},
            attenuation[0],
            attenuation[1],
            attenuation[2]};
}

NglMatParams material(const Vector& values) {
    const auto [emission, specular, shininess] = values;
    return {{emission, emission, emission}, {}, {}, {specular, specular, specular}, shininess};
}

/// The square -1..1 fills the window; the colours of the record's palette are those of a selection.
class ElementFixed : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        glEnable(GL_DEPTH_TEST);
        NglSetSelectionColor(kYellow);
        NglSetHighlightColor(kPink);
        how.color = kGray;
        how.lit = false;
    }
    /// Draws what may have changed since the last time.
    Picture draw(const double* modelView = kIdentity) {
        ++revision;
        return draw(route, modelView);
    }
    Picture draw(ElementFixedRoute& with, const double* modelView = kIdentity) {
        clear();
        with.draw({surface, facts, values, how, revision}, modelView);
        return read();
    }
    void setNodeValues(const std::vector<float>& nodes) {
        values.kind = ElementValues::OfNodes;
        values.values = nodes;
    }
    template <class Value>
    void set(ElementFact<Value>& fact, std::uint32_t element, Value value) {
        fact.writable(surface.elementCount)[element] = value;
    }

    ElementSurface surface = sheet();
    ElementFacts facts;
    ElementValues values;
    ngl::NglElementAttributes how;
    std::uint64_t revision = 0;
    ElementFixedRoute route;
};

} // namespace

TEST_F(ElementFixed, BandsFollowTheRulesOfThePrograms) {
    const auto below = [](float value) { return std::nextafter(value, -kInfinity); };
    const auto above = [](float value) { return std::nextafter(value, kInfinity); };
    const std::map<char, std::uint32_t> colors = {
        {'R', kRed}, {'G', kGreen}, {'B', kBlue}, {'Y', kYellow}, {'P', kPink}};
    std::vector<RenderColorScale::ColorBand> narrow;
    for (int i = 0; i < 64; ++i)
        narrow.push_back({1 + i / 64.0f, 1 + (i + 1) / 64.0f, i % 2 ? kRed : kBlue});
    const decltype(narrow) two = {{0, 1, kRed}, {1, 2, kGreen}}, gap = {{0, 1, kRed}, {2, 3, kGreen}},
                           point = {{1, 1, kRed}, {1, 1, kGreen}},
                           thin = {{0, 1, kRed}, {1, 30011, kGreen}, {30011, 30012.5f, kBlue}},
                           open = {{-kInfinity, 0, kRed}, {0, 1, kGreen}, {1, kInfinity, kBlue}};
    const struct {
        const char* name;
        std::vector<RenderColorScale::ColorBand> bands;
        bool marksOutside; ///< yellow below and pink above the range
        std::vector<float> values;
        const char* seen; ///< first letters of their colours
    } rows[] = {{"even", two, true, {0, -1e-30f, -5, below(1), 1, above(1), 2}, "RYYRGGG"},
                {"far", two, true, {above(2), 1e30f, kInfinity, -kInfinity, kNan}, "PPPYY"},
                {"unmarked", two, false, {-1, 3, kNan}, "RGR"},
                {"one value", point, true, {1, below(1), above(1)}, "GYP"},
                {"a gap", gap, true, {below(1), 1, 1.5f, 2}, "RYYG"},
                {"thin", thin, true, {0, 6, 30000, 30012.5f, 30013, -1}, "RGGBPY"},
                {"open", open, true, {-1e20f, 0, below(1), 1, 1e20f}, "RGGBB"},
                {"many", narrow, true, {1.5f, 1.515625f, below(1.515625f), 2}, "BRBR"}};
    // Turned about y and seen in perspective, which rounds what is interpolated.
    const double turned[16] = {0.8, 0, -0.6, 0, 0, 1, 0, 0, 0.6, 0, 0.8, 0, 0, 0, 0, 1};
    const double perspective[16] = {0.75, 0, 0, 0, 0, 0.75, 0, 0, 0, 0, 0.1, -0.4, 0, 0, 0, 1};
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(perspective);
    for (const auto& row : rows)
        for (const int perElement : {1, 4}) { // values of elements, or of nodes
            surface = tiles(static_cast<std::uint32_t>(row.values.size()));
            values.scale.SetColorBands(row.bands);
            values.scale.SetOutOfRangeMinColor(row.marksOutside ? kYellow : 0xFFFFFFFF);
            values.scale.SetOutOfRangeMaxColor(row.marksOutside ? kPink : 0xFFFFFFFF);
            values.kind = perElement == 1 ? ElementValues::OfElements : ElementValues::OfNodes;
            values.smeared = perElement == 1; // which only values of nodes are
            values.values.clear();
            for (const float value : row.values)
                values.values.insert(values.values.end(), perElement, value);
            const Picture p = draw(turned);
            for (std::size_t i = 0; i < row.values.size(); ++i) {
                const double x = (i + 0.5) / 4 - 1, y = 0.125 - 1, w = 1 + 0.4 * 0.6 * x;
                const int px = static_cast<int>((0.6 * x / w + 1) * 32),
                          py = static_cast<int>((0.75 * y / w + 1) * 32);
                for (const int d : {-1, 0, 1})
                    EXPECT_EQ(hex(p.at(px + d, py + d)), hex(colors.at(row.seen[i])))
                        << row.name << ", value " << row.values[i] << ", " << perElement << " per element";
            }
        }
}

TEST_F(ElementFixed, BandLimitsLieWhereTheValuesAre) {
    // Values 0..64 from left to right, so that pixels lie half a column from whole numbers.
    const float limits[] = {0, 4, 9.3f, 9.9f, 25, 31.7f, 60};
    const float levels[] = {250, 20, 80, 190, 60, 220, 120}; // below the range, of the bands, above it
    std::vector<RenderColorScale::ColorBand> bands;
    for (int i = 1; i < 6; ++i)
        bands.push_back({limits[i], limits[i + 1], static_cast<NgColorLong>(levels[i])});
    values.scale.SetColorBands(bands);
    values.scale.SetOutOfRangeMinColor(250);
    values.scale.SetOutOfRangeMaxColor(120);
    setNodeValues({0, 64, 64, 0});
    for (const bool smeared : {false, true}) {
        values.smeared = smeared;
        const Picture p = draw();
        for (int x = 0; x < kSize; ++x) {
            const float value = x + 0.5f;
            const auto band = std::upper_bound(limits, limits + 7, value) - limits - 1;
            float expected = levels[band];
            if (smeared && band > 0 && band < 5)
                expected += (levels[band + 1] - levels[band]) * (value - limits[band]) /
                            (limits[band + 1] - limits[band]);
            // Smeared, a texel of the narrowest band is a step of 1.4 levels.
            EXPECT_NEAR(p.at(x, 32) & 0xFF, expected, smeared ? 1.2 : 0) << "column " << x << ", " << smeared;
        }
    }
}

TEST_F(ElementFixed, ValuesThatAreNotFiniteTakeTheirTriangles) {
    values.scale.SetColorBands({{0, 1, kRed}});
    values.scale.SetOutOfRangeMinColor(kYellow);
    values.scale.SetOutOfRangeMaxColor(kPink);
    const std::pair<float, std::uint32_t> rows[] = {
        {kNan, kYellow}, {kInfinity, kPink}, {-kInfinity, kYellow}};
    for (const auto& [value, color] : rows) {
        setNodeValues({0.5f, value, 0.5f, 0.5f});
        const Picture p = draw();
        EXPECT_EQ(hex(p.at(60, 2)), hex(color));
        EXPECT_EQ(hex(p.at(34, 30)), hex(color));
        EXPECT_EQ(hex(p.at(2, 60)), hex(kRed)) << "the triangle without that corner";
    }
}

TEST_F(ElementFixed, LightsByTheClassicModel) {
    // Of a light to the side the cosine is 0.8, the squared cosine of the half vector 0.9.
    const NglLightParams aside = light({0.6f, 0, 0.8f}, 0.1f, 0.8f, 0.5f);
    const NglLightParams behind = light({0, 0, -2}, 0.05f, 1, 0.4f);
    const NglLightParams fading = light({3, 0, 4}, 0.1f, 1.5f, 0, {0.5f, 0.2f, 0.1f}); // brightness 0.25
    NglLightParams off = aside;
    off.enabled = 0;
    const double ofAside = 1.74 * 0.1 + 0.5 * 0.8 * 0.8, ofBehind = 1.74 * 0.05 + 0.5 * 1;
    const double ofFading = 0.25 * (1.74 * 0.1 + 0.5 * 1.5 * 0.8);
    const struct {
        const char* name;
        std::vector<NglLightParams> lights;
        float normal;        ///< its z
        Vector front, back;  ///< emission, specular, shininess
        double share, extra; ///< of the base colour, and on top of it
    } rows[] = {{"no light", {}, 1, {0.1f, 0, 1}, {0.2f, 0, 1}, 0, 0.3},
                {"front highlight", {aside}, 1, {0, 0.6f, 2}, {0, 1, 1}, ofAside, 0.27},
                {"back highlight", {aside}, -1, {0, 1, 1}, {0, 0.6f, 4}, ofAside, 0.243},
                {"shininess 0", {aside}, 1, {0, 0.6f, 0}, {}, ofAside, 0.3},
                {"several", {off, behind, off, fading, off}, 1, {}, {}, ofBehind + ofFading, 0},
                {"too bright", {aside, aside, aside, aside, aside}, 1, {}, {}, 2, 0}};
    how.lit = true;
    // The face is so small that its corners are lit alike, and its view mirrored and not of unit scale.
    const double view[16] = {-1e-3, 0, 0, 0, 0, 2e-3, 0, 0, 0, 0, 1e-2, 0, 0, 0, 0, 1};
    glMatrixMode(GL_PROJECTION);
    glScaled(1e3, 1e3, 1);
    values.scale.SetColorBands({{0, 1, 0x808080}});
    setNodeValues({0, 0, 0, 0});
    for (const auto& row : rows) {
        std::fill_n(nglRecord().live.lights, 8, NglLightParams{});
        std::copy(row.lights.begin(), row.lights.end(), nglRecord().live.lights);
        nglRecord().live.frontMaterial = material(row.front);
        nglRecord().live.backMaterial = material(row.back);
        surface.normals.assign(4, {0, 0, row.normal});
        const double gray = 0x80;
        how.contour = false;
        EXPECT_NEAR(draw(view).at(32, 32) & 0xFF, std::min(row.share * gray + row.extra * 255, 255.0), 0.51)
            << row.name;
        // A contour's colour multiplies what is lit in white, which is rounded to 8 bits before.
        how.contour = true;
        EXPECT_NEAR(draw(view).at(32, 32) & 0xFF, std::min(row.share + row.extra, 1.0) * gray, 1) << row.name;
    }
}

TEST_F(ElementFixed, ColorsByFacingAndBlendsBackFacesFirst) {
    // Two sheets; the nearer one covers the lower half, and faces away.
    surface = tiles(2);
    surface.positions = {{-1, -1, 0.5f},  {1, -1, 0.5f},  {1, 1, 0.5f},  {-1, 1, 0.5f},
                         {-1, -1, -0.5f}, {-1, 0, -0.5f}, {1, 0, -0.5f}, {1, -1, -0.5f}};
    how.frontColor = 0xFF0000;
    how.backColor = 0x0000FF;
    const auto over = [](std::uint32_t color, std::uint32_t below) {
        std::uint32_t blended = 0;
        for (int shift = 0; shift < 24; shift += 8)
            blended |= static_cast<std::uint32_t>(0.4 * (color >> shift & 0xFF) +
                                                  0.6 * (below >> shift & 0xFF) + 0.5)
                       << shift;
        return blended;
    };
    const std::uint32_t blueOver = over(kBlue, kClear), bothOver = over(kBlue, over(kRed, kClear));
    const struct {
        const char* name;
        bool byFacing;
        float opacity;
        GLenum culled; ///< by the caller; 0: nothing
        std::uint32_t upper, lower;
    } rows[] = {{"one colour", false, 1, 0, kGray, kGray},
                {"two colours", true, 1, 0, kBlue, kRed},
                {"back faces culled", true, 1, GL_BACK, kBlue, kBlue},
                {"front faces culled", true, 1, GL_FRONT, kClear, kRed},
                {"all culled", true, 1, GL_FRONT_AND_BACK, kClear, kClear},
                {"transparent", true, 0.4f, 0, blueOver, bothOver},
                {"transparent, front faces culled", true, 0.4f, GL_FRONT, blueOver, bothOver},
                {"nothing left", true, 0, 0, kClear, kClear}};
    for (const auto& row : rows) {
        how.frontAndBack = row.byFacing;
        how.opacity = row.opacity;
        row.culled ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
        glCullFace(row.culled ? row.culled : GL_BACK);
        const Picture p = draw();
        for (int shift = 0; shift < 24; shift += 8) { // blending rounds twice
            EXPECT_NEAR(p.at(32, 48) >> shift & 0xFF, row.upper >> shift & 0xFF, 1) << row.name;
            EXPECT_NEAR(p.at(32, 16) >> shift & 0xFF, row.lower >> shift & 0xFF, 1) << row.name;
        }
    }
}

TEST_F(ElementFixed, NeedsNoRoomOnTheMatrixStack) {
    const double moved[16] = {0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0, 0.25, 0, 0.5, 1};
    const Picture plain = draw(moved);
    while (takeGlErrors() == 0)
        glPushMatrix();
    EXPECT_TRUE(samePicture(draw(moved), plain));
    EXPECT_LT(plain.countOtherThan(kClear), kSize * kSize / 2);
}

TEST_F(ElementFixed, KeepsItsArraysUntilSomethingChanges) {
    surface = tiles(4);
    set(facts.selection, 1, std::uint8_t{ngl::NglElementSelected});
    set(facts.selection, 2, std::uint8_t{ngl::NglElementHighlighted});
    set(facts.clipCode, 3, std::uint8_t{2});
    set(facts.lower, 3, 1);
    setNodeValues(std::vector<float>(16, 0.5f));
    values.scale.SetColorBands({{0, 1, kBlue}});
    how.contour = false;
    nglRecord().live.lights[0] = light({0, 0, 2}, 0.1f, 1, 0.5f);
    const double moved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.25, 0, 0, 1};
    const double* view = kIdentity;
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"contour", [&] { how.contour = true; }},
        {"values",
         [&] {
             values.values.assign(16, 7), ++revision;
             values.scale.SetOutOfRangeMaxColor(kRed);
         }},
        {"clipping", [&] { how.clipFlag = 1; }},
        {"no clipping", [&] { how.clipFlag = 0; }},
        {"failure", [&] { how.failureMode = 1, how.failureLevel = 1; }},
        {"level", [&] { how.failureLevel = 0; }},
        {"selection colour", [&] { NglSetSelectionColor(kGreen); }},
        {"highlight colour", [&] { NglSetHighlightColor(kRed); }},
        {"plain", [&] { how.contour = false; }},
        {"colour", [&] { how.color = 0xFFFF00; }},
        {"lit", [&] { how.lit = true; }},
        {"light", [&] { nglRecord().live.lights[0].position[0] = 2; }},
        {"material", [&] { nglRecord().live.frontMaterial.emission[2] = 0.5f; }},
        {"two colours", [&] { how.frontAndBack = true; }},
        {"view", [&] { view = moved; }}};
    Picture last = draw(route);
    for (const auto& [name, change] : changes) {
        change();
        const Picture now = draw(route, view);
        ElementFixedRoute fresh;
        EXPECT_TRUE(samePicture(now, draw(fresh, view))) << name;
        EXPECT_FALSE(samePicture(now, last)) << name << " changed nothing";
        last = now;
    }
    surface = sheet();
    route.clear();
    EXPECT_FALSE(samePicture(draw(route, view), last));
}
