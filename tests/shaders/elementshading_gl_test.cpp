// Which elements are drawn, in which colour and with which normal: every program that shades elements against
// the rules, one pixel for each of 653 elements, over settings taken evenly from all combinations.

#include "tests/shaders/shaderscene.h"

using namespace nrutest;

namespace {

/// One of the 4e7 combinations of settings, the first setting fastest.
MeshSettings settingsAt(std::uint64_t index) {
    MeshSettings settings;
    for (const MeshSetting& setting : kMeshSettings) {
        settings.*setting.field = setting.values[index % setting.values.size()];
        index /= setting.values.size();
    }
    return settings;
}

std::string describe(const MeshSettings& settings) {
    std::string text;
    for (const MeshSetting& setting : kMeshSettings)
        text += std::string(setting.name) + " " + std::to_string(settings.*setting.field) + ", ";
    return text;
}

constexpr int kElements = 3 * 3 * 3 * 2 * 4 * 3 + 5; // every combination of the facts below, and a few again

const glm::mat4 kModelView = glm::rotate(glm::translate(glm::mat4(1), {5, 9, -3}), 0.7f, {0, 0, 1}),
                kToModel = glm::inverse(kModelView);

/// Every combination of clip codes, levels, visibility, selection and colour; permutations that tell a
/// primitive, its element and its original apart.
MeshFacts makeFacts() {
    MeshFacts facts;
    for (int i = 0; i < kElements; ++i) {
        ElementFacts e;
        int rest = i;
        const auto pick = [&](std::initializer_list<int> values) {
            const int value = values.begin()[rest % values.size()];
            rest /= int(values.size());
            return value;
        };
        e.clipCode = pick({1, 2, 3});
        e.failsAt = pick({-1, 2, 5});
        e.failsBelow = pick({-1, 2, 5});
        e.visible = pick({0, 1});
        e.picked = pick({0, 1, 2, 3});
        e.color = {i * 7 % 256, i * 11 % 256, i * 13 % 256, pick({0, 1, 2})};
        facts.elements.push_back(e);
        facts.failingElement.push_back((i * 11 + 5) % kElements);
        facts.derivedElement.push_back((i * 7 + 3) % kElements);
        facts.originalPrimitive.push_back((i * 13 + 1) % kElements);
        facts.normals.push_back(normalize(dvec3(std::sin(i), std::cos(i * 1.7), i % 2 - 0.4)));
    }
    facts.contour = Contour(kElements);
    facts.normalMatrix = dmat4(glm::dmat3(kModelView));
    return facts;
}

/// One light at the front with every term, and none of them neutral.
Lighting makeLighting() {
    Lighting lighting;
    lighting.lights[1] = {1,
                          {0.125f, 0.25f, 0.125f, 0.5f},
                          {0.75f, 0.5f, 0.625f, 0.75f},
                          {0.25f, 0.5f, 0.375f, 0.25f},
                          {40, 20, 60, 1},
                          0.5f,
                          0.0078125f,
                          0.00006103515625f};
    lighting.front = {{0.0625f, 0, 0.03125f, 0.125f}, {}, {}, {0.5f, 0.25f, 0.75f, 0.5f}, 3};
    lighting.back = {{0, 0.0625f, 0, 0}, {}, {}, {0.125f, 0.5f, 0.25f, 0.25f}, 5};
    lighting.pbrLights[2] = {1, {}, {}, {}, {0.3f, -0.2f, 0.8f, 1}, 1, 0, 0};
    return lighting;
}

/// Elements of three or four corners, each over the middle of one pixel, tilted, every other one seen from
/// behind, and the fragment of each, in eye space and in the model's.
struct Elements {
    Vertices vertices;
    std::vector<Fragment> fragments, inModel;
};
Elements makeElements(int corners) {
    static const glm::vec2 triangle[] = {{-0.45f, -0.45f}, {0.55f, -0.4f}, {-0.4f, 0.55f}},
                           quad[] = {{-0.45f, -0.4f}, {0.4f, -0.45f}, {0.45f, 0.35f}, {-0.35f, 0.45f}};
    Elements elements;
    for (int i = 0; i < kElements; ++i) {
        const glm::vec2 slope(i % 5 * 0.5f - 1, i % 7 * 0.25f - 0.75f);
        const bool front = i % 2 == 0;
        const glm::vec4 vertexNormal(glm::normalize(glm::vec3(i % 3 - 1.1f, i % 4 - 1.5f, i % 5 - 1.6f)),
                                     i % 3 == 0);
        const glm::vec3 normal = glm::normalize(glm::vec3(0.5f - i % 4, 1.25f, i % 3 - 0.75f));
        const glm::vec4 texture((i * 19 % 48 + 0.5f) / 48, i % 2, 0, 1);
        std::vector<glm::vec3> p;
        for (int c = 0; c < corners; ++c) {
            const int corner = front ? c : corners - 1 - c;
            const glm::vec2 at = corners == 3 ? triangle[corner] : quad[corner];
            p.push_back(kToModel * glm::vec4(pixelCentre(i) + glm::vec3(at, dot(slope, at) + i % 11), 1));
        }
        elements.vertices.position.insert(elements.vertices.position.end(), p.begin(), p.end());
        elements.vertices.vertexNormal.insert(elements.vertices.vertexNormal.end(), corners, vertexNormal);
        elements.vertices.normal.insert(elements.vertices.normal.end(), corners, normal);
        elements.vertices.texture.insert(elements.vertices.texture.end(), corners, texture);
        elements.vertices.element.insert(elements.vertices.element.end(), corners - 1, float(kElements - i));
        elements.vertices.element.push_back(float(i)); // of the provoking vertex
        const dvec3 facet = normalize(cross(dvec3(p[1] - p[0]), dvec3(p[2] - p[0])));
        const auto fragmentIn = [&](const glm::mat4& space) {
            const glm::dmat3 turn(space);
            const dvec3 position(space * kToModel * glm::vec4(pixelCentre(i, i % 11), 1));
            const dvec3 vertex = turn * dvec3(vertexNormal), withoutSharp = turn * dvec3(normal);
            const bool sharp = vertexNormal.w != 0;
            return Fragment{i, front, position, turn * facet, vertex, withoutSharp, sharp, texture};
        };
        elements.fragments.push_back(fragmentIn(kModelView));
        elements.inModel.push_back(fragmentIn(glm::mat4(1)));
    }
    return elements;
}

using Rule = decltype(meshFragment);

class ElementShading : public ShaderTest {
protected:
    /// Draws the elements under settings spread evenly over their product and compares every pixel.
    void audit(GLenum mode, int corners, Rule& rule) {
        const MeshFacts facts = makeFacts();
        const Elements elements = makeElements(corners);
        Lighting lighting = makeLighting();
        set(facts);
        Audit lit, physical, unlit;
        long drawn = 0;
        for (std::uint64_t i = 0; i < 600; ++i) {
            const MeshSettings settings = settingsAt(i * 1000003);
            set(settings);
            lighting.physicallyBased = i >= 450;
            if (i % 450 == 0)
                set(lighting);
            const auto pixels = draw(mode, elements.vertices);
            for (const Fragment& f : lighting.physicallyBased ? elements.inModel : elements.fragments) {
                const auto expected = rule(settings, facts, lighting, f);
                drawn += expected.has_value();
                Audit& audited = settings.bw != 0 ? unlit : i < 450 ? lit : physical;
                audited.add(expected, pixels[f.primitive],
                            [&] { return describe(settings) + "primitive " + std::to_string(f.primitive); });
            }
        }
        EXPECT_GT(drawn, 100000);
        EXPECT_GT(lit.compared + physical.compared + unlit.compared - drawn, 100000) << "left out";
        // Slopes are differences of positions interpolated in float over a target of 64 pixels.
        EXPECT_LE(lit.largest, 1e-4) << lit.worst;
        EXPECT_LE(physical.largest, 1e-4) << physical.worst;
        EXPECT_LE(unlit.largest, 1e-6) << unlit.worst; // 8-bit colours divided by 255, and mixes of two
    }
};

} // namespace

TEST_F(ElementShading, MeshProgram) {
    for (NShaderProgram* program : {RenderingGetShaderProgram(RenderShaderMesh), &elementMeshProgram()}) {
        use(*program, kModelView);
        audit(GL_TRIANGLES, 3, meshFragment);
    }
}

TEST_F(ElementShading, ProgramsWithAGeometryStage) {
    use(*RenderingGetShaderProgram(RenderShaderMeshTriangles), kModelView);
    audit(GL_TRIANGLES, 3, geometryFragment);
    use(*RenderingGetShaderProgram(RenderShaderMeshQuads), kModelView);
    audit(GL_LINES_ADJACENCY, 4, geometryFragment);
}

TEST_F(ElementShading, ClipPlanesCutOnlyWhenAskedTo) {
    const double plane[] = {-1, 0, 0, 32}; // keeps x < 32
    glEnable(GL_CLIP_PLANE0);
    glClipPlane(GL_CLIP_PLANE0, plane);
    const std::pair<_RenderingShaderType, GLenum> programs[] = {{RenderShaderMesh, GL_TRIANGLES},
                                                                {RenderShaderMeshTriangles, GL_TRIANGLES},
                                                                {RenderShaderMeshQuads, GL_LINES_ADJACENCY},
                                                                {RenderShaderPoints, GL_POINTS}};
    for (const auto& [type, mode] : programs)
        for (int clipped : {0, 1}) {
            useCatalogue(type);
            set(MeshSettings{});
            set("g_lightsOff", 1);
            set("g_clipped", clipped);
            Vertices v;
            v.position = {{0, 0, 0}, {64, 0, 0}, {64, 64, 0}, {0, 64, 0}};
            if (mode == GL_TRIANGLES)
                v.position[2] = {64, 128, 0}, v.position.pop_back();
            if (mode == GL_POINTS)
                v.position = {{16, 8, 0}, {48, 8, 0}}, v.diameter = {16, 16};
            const auto pixels = draw(mode, v);
            EXPECT_NE(pixels[8 * 64 + 15].r, kNothing) << type;
            EXPECT_EQ(pixels[8 * 64 + 45].r != kNothing, clipped == 0) << type;
        }
}
