// Which colour a value has: the contour pixels of the mesh program against the shaders' rules.
#include <cfloat>
#include <cmath>
#include <limits>

#include "tests/shaders/shaderscene.h"

using namespace nrutest;

namespace {

using Bands = std::vector<RenderColorScale::ColorBand>;
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr NgColorLong kLow = 0x0A141E, kHigh = 0xC8D2DC, kUnset = 0xFFFFFFFF;

/// Bands between limits, each with a colour of its own.
Bands bandsBetween(const std::vector<float>& limits) {
    Bands bands;
    for (unsigned i = 0; i + 1 < limits.size(); ++i)
        bands.push_back(
            {limits[i], limits[i + 1], (i * 37 + 5) % 251 | (i * 91 % 241) << 8 | (i * 53 % 239) << 16});
    return bands;
}

struct ScaleCase {
    const char* name;
    Bands bands;
};

std::vector<ScaleCase> scaleCases() {
    std::vector<float> even, uneven;
    for (int i = 0; i <= 64; ++i) {
        even.push_back(i * 0.1f - 3);
        uneven.push_back(std::sinh(i * 0.4f - 12));
    }
    return {{"one band", bandsBetween({-2, 3})},
            {"two bands", {{0, 1, 0x6400FF}, {1, 2, 0x0A0A0A}}},
            {"uneven bands", bandsBetween({-1e6f, -1, -1e-3f, 2e-3f, 7, 1e30f})},
            {"64 even bands", bandsBetween(even)},
            {"64 uneven bands", bandsBetween(uneven)},
            {"a gap", {{0, 1, 0x0000FF}, {2, 3, 0x00FF00}, {3, 4, 0xFF0000}, {6.5f, 7, 0x123456}}},
            {"a constant field", {{5, 5, 0x0000FF}}},
            {"a constant field in three bands", {{5, 5, 0x0000FF}, {5, 5, 0x00FF00}, {5, 5, 0xFF0000}}},
            {"a constant field at 0 in two bands", {{0, 0, 0x0000FF}, {0, 0, 0x00FF00}}},
            {"the whole float range", bandsBetween({-FLT_MAX, 0, FLT_MAX})},
            {"neighbouring floats",
             bandsBetween({1, std::nextafter(1.0f, 2.0f), std::nextafter(1.0f, 2.0f) + FLT_EPSILON})}};
}

RenderColorScale makeScale(const Bands& bands, bool ownEnds, bool smeared) {
    RenderColorScale scale;
    scale.SetColorBands(bands);
    scale.SetOutOfRangeMinColor(ownEnds ? kLow : kUnset);
    scale.SetOutOfRangeMaxColor(ownEnds ? kHigh : kUnset);
    scale.SetSmearedMode(smeared);
    return scale;
}

/// On, just below and just above every limit, inside every band and gap, far out, and no number.
std::vector<float> valuesOf(const Bands& bands) {
    std::vector<float> values = {kNan, -kNan, kInf, -kInf, FLT_MAX, -FLT_MAX, 0.0f, -0.0f};
    float last = bands.front().min_val;
    for (const auto& band : bands) {
        for (float limit : {band.min_val, band.max_val})
            for (float value : {limit, std::nextafter(limit, -kInf), std::nextafter(limit, kInf)})
                values.push_back(value);
        for (double t : {0.1, 0.5, 0.75})
            values.push_back(float(band.min_val * (1 - t) + band.max_val * t));
        values.push_back(last / 2 + band.min_val / 2);
        last = band.max_val;
    }
    for (float distance : {0.5f, 1e9f}) {
        values.push_back(bands.front().min_val - distance);
        values.push_back(last + distance);
    }
    return values;
}

class BandAudit : public ShaderTest {
protected:
    void SetUp() override {
        ShaderTest::SetUp();
        useCatalogue(RenderShaderMesh);
        settings.bct = settings.use_clr_scale = 1;
        set("g_lightsOff", 1); // the contour colour alone shows
    }
    /// The pixels of one point for each value, by the attribute or, in type 2, by the element.
    std::vector<glm::vec4> drawValues(Contour contour, int type, const std::vector<glm::vec4>& coordinates) {
        Vertices points;
        contour.elementValues.clear();
        for (int i = 0; i < int(coordinates.size()); ++i) {
            points.position.push_back(pixelCentre(i));
            points.element.push_back(float(i));
            points.texture.push_back(type == 2 ? glm::vec4(77) : coordinates[i]);
            contour.elementValues.push_back(coordinates[i].s);
        }
        settings.ct = type;
        set(settings);
        set(contour);
        return draw(GL_POINTS, points);
    }
    std::vector<glm::vec4> drawValues(const RenderColorScale& scale, int type,
                                      const std::vector<float>& values) {
        Contour contour;
        contour.scale = scale;
        return drawValues(contour, type, std::vector<glm::vec4>(values.begin(), values.end()));
    }
    MeshSettings settings;
};

/// The rules' colour of a value; a driver may take a denormal for zero.
dvec4 expectedColor(const RenderColorScale& scale, bool smeared, float value, glm::vec4 pixel) {
    const dvec4 color(shaderBandColor(scale, smeared, value), 1);
    if (std::fpclassify(value) == FP_SUBNORMAL && distance(color, dvec4(pixel)) > 1e-6)
        return {shaderBandColor(scale, smeared, std::copysign(0.0f, value)), 1};
    return color;
}

} // namespace

class BandAuditByProgram : public BandAudit, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        BandAudit::SetUp();
        if (GetParam() != std::string("Uniforms"))
            use(elementMeshProgram({.block = true}));
        set("g_lightsOff", 1);
    }
    /// Whether the scale has cells for the type, which the program in use then looks up.
    bool useCells(const RenderColorScale& scale, int type, int& count) {
        const auto entries = makeScaleEntries(scale);
        if (type == 1 || !entries || !makeScaleCells(*entries))
            return false;
        ++count;
        use(elementMeshProgram({.block = true, .cells = true}));
        set("g_lightsOff", 1);
        return true;
    }
};
INSTANTIATE_TEST_SUITE_P(, BandAuditByProgram, testing::Values("Uniforms", "Block", "Cells"),
                         [](const auto& info) { return info.param; });

TEST_P(BandAuditByProgram, PixelsFollowTheShadersRules) {
    Audit exact, mixed;
    int cells = 0; // how many draws found colours by cells
    for (const auto& [name, bands] : scaleCases())
        for (bool ownEnds : {false, true})
            for (int type : {1, 2, 3}) {
                const RenderColorScale scale = makeScale(bands, ownEnds, false);
                if (GetParam() == std::string("Cells") && !useCells(scale, type, cells))
                    continue;
                const std::vector<float> values = valuesOf(bands);
                const auto pixels = drawValues(scale, type, values);
                for (std::size_t i = 0; i < values.size(); ++i)
                    (type == 1 ? mixed : exact)
                        .add(expectedColor(scale, type == 1, values[i], pixels[i]), pixels[i],
                             [&, name = name] {
                                 return name + std::string(" type ") + std::to_string(type) + " value " +
                                        std::to_string(values[i]);
                             });
            }
    EXPECT_GT(exact.compared, GetParam() == std::string("Cells") ? 2000 : 5000);
    // A block's bytes are multiplied with a reciprocal.
    EXPECT_LE(exact.largest, GetParam() == std::string("Uniforms") ? 0 : 6e-8) << exact.worst;
    EXPECT_EQ(cells, GetParam() == std::string("Cells") ? 18 : 0);
    // A mix may be rounded once or twice, and its factor by the driver's division.
    EXPECT_LE(mixed.largest, 4e-7) << mixed.worst;
}

TEST_F(BandAudit, BandsThatOverlapOrDescendAreSearchedAsOnTheCpu) {
    const Bands overlapping = {{0, 2, 1}, {1, 3, 2}, {2, 4, 3}, {3, 5, 4}},
                descending = {{4, 5, 1}, {3, 4, 2}, {2, 3, 3}, {0, 2, 4}};
    for (const Bands& bands : {overlapping, descending}) {
        const RenderColorScale scale = makeScale(bands, true, false);
        const std::vector<float> values = {0, 0.5f, 1.5f, 2.5f, 3, 3.5f, 4.5f};
        const auto pixels = drawValues(scale, 3, values);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const NgColorLong cpu = scale.GetColor(values[i]) & 0xFFFFFF;
            EXPECT_EQ(glm::vec3(pixels[i]), channels(cpu == 0xFFFFFF ? kLow : cpu)) << values[i];
        }
    }
}

TEST_F(BandAudit, TextureColorsFollowTheRules) {
    Contour contour;
    contour.offset = 3;
    contour.factor = 0.125f;
    // s = r / 8 - 3 / 8, t = s / 4 + q, as the view's texture matrix and one that mixes the coordinates.
    const dmat4 range{0.125, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -0.375, 0, 0, 1};
    const dmat4 mixing{0.125, 0.03125, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0, 0.25, -0.125, 0, 1};
    std::vector<glm::vec4> coordinates;
    for (int quarter = -12; quarter < 76; ++quarter) // between the texels' limits, and beyond the texture
        coordinates.push_back({3 + quarter / 8.0f + 0.0625f, quarter % 5 * 0.5f + 0.1f, 0, 1});
    settings.use_clr_scale = 0;
    Audit audit;
    for (const dmat4& matrix : {range, mixing})
        for (int type : {1, 2, 3})
            for (int scaled : {0, 1}) {
                contour.textureMatrix = matrix;
                contour.scaled = scaled;
                const auto pixels = drawValues(contour, type, coordinates);
                contour.elementValues.assign(coordinates.size(), 0);
                for (int i = 0; i < int(coordinates.size()); ++i) {
                    contour.elementValues[i] = coordinates[i].s;
                    audit.add(contour.color(false, type, i, coordinates[i]), pixels[i], [&] {
                        return "type " + std::to_string(type) + " scaled " + std::to_string(scaled) +
                               " value " + std::to_string(coordinates[i].s);
                    });
                }
            }
    EXPECT_EQ(audit.largest, 0) << audit.worst;
}
