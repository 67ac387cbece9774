// Lighting by its fragments: both models against the rules, from uniforms and from a block, and the points,
// which are lit as spheres.
#include <algorithm>
#include <random>

#include "tests/shaders/shaderscene.h"

using namespace nrutest;

namespace {

constexpr int kPixels = 64 * 64;

/// A number of -1..1 that is the same on every machine.
double spread(std::mt19937& random) {
    return random() / 2147483648.0 - 1;
}

dvec3 direction(std::mt19937& random) {
    for (;;) {
        const dvec3 v(spread(random), spread(random), spread(random));
        if (const double length = glm::length(v); length > 0.1 && length < 1)
            return v / length;
    }
}

/// Eight lights around the target, all different, of which the bits of a mask are on.
Lighting makeLighting(unsigned mask, double strength = 0.25) {
    std::mt19937 random(7);
    Lighting lighting;
    const auto fill = [&](float(&color)[4], double scale) {
        for (float& c : color)
            c = float(scale * (spread(random) * 0.5 + 0.5));
    };
    for (int i = 0; i < 8; ++i) {
        NglLightParams& light = lighting.lights[i];
        light.enabled = mask >> i & 1;
        fill(light.ambient, strength * 0.5);
        fill(light.diffuse, strength * 2);
        fill(light.specular, strength * 4);
        const dvec3 at = dvec3(32, 32, 0) + 60.0 * direction(random);
        std::copy_n(glm::value_ptr(glm::vec4(at, 1)), 4, light.position);
        light.constantAttenuation = 0.75f;
        light.linearAttenuation = 0.005f * i;
        light.quadraticAttenuation = 0.0001f * (i % 3);
        lighting.pbrLights[i] = light;
        std::copy_n(glm::value_ptr(glm::vec4(direction(random), 1)), 4, lighting.pbrLights[i].position);
    }
    for (NglMatParams* side : {&lighting.front, &lighting.back}) {
        fill(side->emission, 0.2);
        fill(side->specular, 1);
        side->shininess = side == &lighting.front ? 12 : 3;
    }
    return lighting;
}

const dvec4 kBytes = dvec4(102, 51, 204, 255) / 255.0; ///< as programs with a block take colours

/// Grey and not attenuated, on sides that do not emit and shine alike.
Lighting makePlain(Lighting lighting, bool highlights) {
    for (NglLightParams& light : lighting.lights) {
        for (float* color : {light.ambient, light.diffuse, light.specular})
            color[1] = color[2] = color[0];
        light.constantAttenuation = 1;
        light.linearAttenuation = light.quadraticAttenuation = 0;
    }
    for (NglMatParams* side : {&lighting.front, &lighting.back}) {
        std::fill_n(side->emission, 3, 0.0f);
        std::fill_n(side->specular, 3, highlights ? 0.75f : 0.0f);
        side->shininess = 9;
    }
    return lighting;
}

class ShaderLighting : public ShaderTest {
protected:
    void SetUp() override {
        ShaderTest::SetUp();
        program = RenderingGetShaderProgram(RenderShaderMesh);
        settings.useelemnormbuff = 1;
        std::mt19937 random(3);
        for (int i = 0; i < kPixels; ++i) {
            points.position.push_back(pixelCentre(i, float(20 * spread(random))));
            points.element.push_back(float(i));
            facts.normals.push_back(direction(random));
        }
    }
    /// One point a pixel, each with a normal of its own.
    std::vector<glm::vec4> drawPoints(const Lighting& lighting, glm::mat4 model = glm::mat4(1)) {
        use(*program);
        glm::mat4 view = model;
        glm::mat4 projection = glm::ortho(0.0f, 64.0f, 0.0f, 64.0f, -100.0f, 100.0f) * glm::inverse(model);
        program->SetMVPMatrices(glm::value_ptr(projection), glm::value_ptr(view), true);
        set(facts);
        set(settings);
        set(lighting);
        return draw(GL_POINTS, points);
    }
    void expectRules(const char* name, const Lighting& lighting, double tolerance,
                     glm::mat4 model = glm::mat4(1)) {
        SCOPED_TRACE(name);
        const auto pixels = drawPoints(lighting, model);
        const dmat4 modelView(model), normalMatrix = transpose(inverse(modelView));
        Audit audit;
        for (int i = 0; i < kPixels; ++i) {
            const dvec3 N = normalize(dvec3(normalMatrix * dvec4(facts.normals[i], 0)));
            dvec3 position(points.position[i]);
            if (!lighting.physicallyBased)
                position = dvec3(modelView * dvec4(position, 1));
            dvec4 color = lighting.shade(facts.vertexColor, N, position);
            if (settings.transparent == 1)
                color.a = facts.alpha;
            audit.add(color, pixels[i], [i] { return "pixel " + std::to_string(i); });
        }
        EXPECT_LE(audit.largest, tolerance) << audit.worst;
    }
    NShaderProgram* program = nullptr;
    MeshFacts facts;
    MeshSettings settings;
    Vertices points;
};

/// The largest difference of two pictures.
double apart(const std::vector<glm::vec4>& a, const std::vector<glm::vec4>& b) {
    Audit audit;
    for (std::size_t i = 0; i < a.size(); ++i)
        audit.add(dvec4(a[i]), b[i], [] { return std::string(); });
    return audit.largest;
}

} // namespace

TEST_F(ShaderLighting, ClassicModelFollowsTheRules) {
    // Sums of eight lights in float, and the driver's power.
    constexpr double kTolerance = 2e-5;
    expectRules("no light", makeLighting(0), kTolerance);
    expectRules("light 5 alone", makeLighting(1 << 5), kTolerance);
    expectRules("lights 0, 3, 6 and 7", makeLighting(0xC9), kTolerance);
    expectRules("all lights", makeLighting(0xFF), kTolerance);
    expectRules("lights too bright", makeLighting(0xFF, 4), kTolerance);
    const glm::mat4 model = glm::rotate(
        glm::scale(glm::translate(glm::mat4(1), {9, -4, 3}), {0.5f, 0.75f, 1.5f}), 0.7f, {1, 2, 3});
    expectRules("a turned and stretched model", makeLighting(0xFF), kTolerance, model);
    Lighting lighting = makeLighting(0xFF);
    lighting.off = 1;
    expectRules("lights off", lighting, 0);
    const auto off = drawPoints(lighting);
    lighting.physicallyBased = 1;
    EXPECT_EQ(apart(drawPoints(lighting), off), 0) << "lights off holds for both models";
}

TEST_F(ShaderLighting, ClassicModelFromABlockFollowsTheRules) {
    constexpr double kTolerance = 2e-5; // as above
    settings.transparent = 1;           // the block lights no alpha
    facts.vertexColor = kBytes;
    for (const auto& [highlights, known] :
         {std::pair{true, false}, {false, false}, {true, true}, {false, true}})
        for (const unsigned mask : {0u, 1u << 5, 0xC9u, 0xFFu})
            for (const double strength : {0.25, 4.0}) {
                Lighting lighting = makeLighting(mask, strength);
                if (known && mask == 0xC9u) // not attenuated
                    for (NglLightParams& light : lighting.lights)
                        light.constantAttenuation = 1,
                        light.linearAttenuation = light.quadraticAttenuation = 0;
                if (!highlights)
                    for (NglMatParams* side : {&lighting.front, &lighting.back})
                        std::fill_n(side->specular, 3, 0.0f);
                const BlockLighting block{lighting.lights, lighting.front, lighting.back};
                EXPECT_EQ(hasHighlights(block), highlights && mask != 0);
                const LightKinds kinds = known ? kindsOfLights(block) : LightKinds{};
                EXPECT_EQ(kinds.attenuated, !known || (mask != 0 && mask != 0xC9u));
                program = &elementMeshProgram({.block = true, .highlights = highlights, .lights = kinds});
                expectRules("block", lighting, kTolerance);
            }
}

TEST_F(ShaderLighting, PlainLightsFromABlockFollowTheRules) {
    settings.transparent = 1;
    facts.vertexColor = kBytes;
    for (const dvec3& normal : facts.normals)
        points.vertexNormal.emplace_back(glm::vec3(normal), 0);
    for (const bool highlights : {false, true})
        for (const bool smooth : {false, true})
            for (const unsigned mask : {0u, 1u << 5, 0x18u, 0x7Fu}) {
                Lighting lighting = makePlain(makeLighting(mask), highlights);
                settings.smooth = smooth;
                const LightKinds kinds = kindsOfLights({lighting.lights, lighting.front, lighting.back});
                EXPECT_TRUE(kinds.plain);
                set(kinds);
                program = &elementMeshProgram({.block = true, .highlights = highlights, .lights = kinds});
                expectRules(("plain " + std::to_string(mask)).c_str(), lighting, 2e-5);
                lighting.back.emission[1] = 0.25f;
                EXPECT_FALSE(kindsOfLights({lighting.lights, lighting.front, lighting.back}).plain);
            }
}

TEST_F(ShaderLighting, PhysicallyBasedModelFollowsTheRules) {
    for (const dvec3& material : // metalness, roughness, reflectivity
         {dvec3(0, 1, 0.04), dvec3(0.3, 0.2, 0.92), dvec3(1, 0.5, 0), dvec3(0.5, 0.3, 0.5)})
        for (const dvec3 camera : {dvec3(32, 32, 100), dvec3(-50, 10, 20)})
            for (unsigned mask : {0u, 0x20u, 0xB7u, 0xFFu}) {
                Lighting lighting = makeLighting(mask);
                lighting.physicallyBased = 1;
                lighting.metalness = material.x;
                lighting.roughness = material.y;
                lighting.reflectivity = material.z;
                lighting.camera = camera;
                // The distribution's peak loses digits: its denominator is roughness^4 beside terms of 1;
                // then the driver's powers.
                expectRules("physically based", lighting, 1e-4);
            }
}

TEST_F(ShaderLighting, PointsFollowTheRules) {
    // Points of 8 x 8 pixels, one for each combination of the elements' facts.
    constexpr int kPoints = 64, kDiameter = 8;
    facts.normals.clear();
    points = {};
    for (int i = 0; i < kPoints; ++i) {
        ElementFacts e;
        e.visible = i & 1;
        e.picked = i >> 1 & 3;
        e.color = {i * 3, 255 - i * 2, i * 4, i >> 3 & 1};
        facts.elements.push_back(e);
        points.position.push_back({i % 8 * kDiameter + 4, i / 8 * kDiameter + 4, i % 5});
        points.texture.push_back({(i * 5 % 24 + 0.5f) / 24, i % 2, 0, 1});
        points.diameter.push_back(kDiameter / 2);
        points.size.push_back(kDiameter);
    }
    facts.contour = Contour(kPoints);
    const Lighting lighting = makeLighting(0x2D);
    useCatalogue(RenderShaderPoints);
    set(facts);
    set(lighting);
    Audit audit;
    for (int i = 0; i < 1 << 8; ++i)
        for (int type : {1, 2, 3}) {
            MeshSettings s{.ct = type};
            for (int bit = 0; const auto field : {&S::advdisp, &S::advparamset, &S::bao, &S::behs, &S::bem,
                                                  &S::bct, &S::use_clr_scale, &S::transparent})
                s.*field = i >> bit++ & 1;
            set(s);
            // Without a size for each point its diameter counts; the scale makes 8 pixels of both.
            set("g_ptsize_scale", s.advdisp == 1 && s.advparamset == 1 ? 1.0f : 2.0f);
            const auto pixels = draw(GL_POINTS, points);
            for (int p = 0; p < kPixels; ++p) {
                const int x = p % 64, y = p / 64, primitive = y / kDiameter * 8 + x / kDiameter;
                const dvec2 place((x % kDiameter + 0.5) / 4 - 1, 1 - (y % kDiameter + 0.5) / 4);
                Fragment f{};
                f.primitive = primitive;
                f.position = points.position[primitive];
                f.texture = points.texture[primitive];
                audit.add(pointFragment(s, facts, lighting, f, place), pixels[p], [&] {
                    return "combination " + std::to_string(i) + " type " + std::to_string(type) + " point " +
                           std::to_string(primitive) + " at " + std::to_string(place.x) + ", " +
                           std::to_string(place.y);
                });
            }
        }
    EXPECT_LE(audit.largest, 2e-5) << audit.worst; // sums of lights in float, and the driver's power
}
