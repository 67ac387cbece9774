// The mesh renderer: its pixels against the shading rules, its passes and messages.
#define GLM_ENABLE_EXPERIMENTAL
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtx/rotate_vector.hpp>

#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "NRenderUtl/shaders/samplerunits.h"
#include "tests/shaders/shadertwins.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/librarytest.h"
#include "tests/support/subprocess.h"

using namespace nrutest;
using glm::mat4;
using glm::vec3;
using ngl::NglMeshRenderer;

namespace {

constexpr auto kOpaque = NglMeshRenderer::RenderPassOpaque;
constexpr auto kTransparent = NglMeshRenderer::RenderPassTransparent;
const char* const kNotBegun = "-1 Invalid call to NglMeshRenderer::Render, please check if "
                              "NglMeshRenderer::RenderBegin is called upfront and is successful!\n";

/// A quad as two triangles or as one, in model space.
struct Body {
    std::vector<vec3> positions, normals;
    std::vector<unsigned> triangles, quads;
};

Body quadOf(std::array<vec3, 4> corners, vec3 normal, bool asQuad = false) {
    Body body{{corners.begin(), corners.end()}, std::vector<vec3>(4, normal), {}, {}};
    (asQuad ? body.quads : body.triangles) =
        asQuad ? std::vector<unsigned>{0, 1, 2, 3} : std::vector<unsigned>{0, 1, 2, 0, 2, 3};
    return body;
}

/// In window pixels, facing the viewer or with the corners the other way round.
Body tile(float left, float right, float z = 0, bool front = true, bool asQuad = false) {
    const std::array<vec3, 4> ccw = {{{left, 8, z}, {right, 8, z}, {right, 56, z}, {left, 56, z}}};
    return quadOf(front ? ccw : std::array{ccw[0], ccw[3], ccw[2], ccw[1]}, {0, 0, 1}, asQuad);
}

class MeshRenderer : public LibraryTest {
protected:
    void SetUp() override {
        LibraryTest::SetUp();
        captureHostLog();
        look(mat4(1));
        for (int i = 0; i < 256; ++i)
            palette[i] = 0xFF000000u | unsigned(i * 0x010307 + 0x204060);
        NglSetWindowBackGroundColor(0); // no entry is near it
        NglUpdateColor(256, palette);
        record.frontMaterial.emission[3] = 1; // as GL's own
        // Ambient alone, of a strength that shows a colour as it is.
        record.lights[0] = {1, {1 / 1.74f, 1 / 1.74f, 1 / 1.74f, 1 / 1.74f}, {}, {}, {0, 0, 50, 1}, 1, 0, 0};
    }
    /// A unit of eye space is a pixel.
    void look(const mat4& modelView) {
        glMatrixMode(GL_PROJECTION);
        const mat4 projection = glm::ortho(0.0f, 64.0f, 0.0f, 64.0f, -100.0f, 100.0f);
        glLoadMatrixf(glm::value_ptr(projection));
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixf(glm::value_ptr(modelView));
    }
    void render(const Body& body) {
        renderer.Render(&body.positions[0].x, &body.normals[0].x, unsigned(body.triangles.size() / 3),
                        body.triangles.data(), unsigned(body.quads.size() / 4), body.quads.data());
    }
    Picture draw(const Body& body, NglMeshRenderer::RenderPass pass = kOpaque) {
        clear();
        EXPECT_TRUE(renderer.RenderBegin(pass));
        render(body);
        renderer.RenderEnd();
        return read();
    }
    std::uint32_t rgb(int index) const { return palette[index] & 0xFFFFFF; }

    NglMeshRenderer renderer;
    NgColorLong palette[256];
    _NglInfoStr& record = *NglGetNglInfo();
};

std::uint32_t centre(const Picture& picture) {
    return picture.at(32, 32);
}

int channel(std::uint32_t pixel, int c) {
    return int(pixel >> 8 * c & 0xFF);
}

// --- shading -----------------------------------------------------------------------------------------------

decltype(epoxy_glLinkProgram) realLink;
int linksLeft;

/// A triangle over the whole window, whose position and normal are linear in the pixel. With the parameter,
/// the program that does all draws where a faster one would.
class MeshShading : public MeshRenderer, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        MeshRenderer::SetUp();
        modelView = glm::rotate(glm::translate(mat4(1), {5, 9, -3}), 0.7f, vec3(1, 2, 3)) *
                    glm::scale(mat4(1), {1, 1.5f, 0.5f});
        look(modelView);
        for (int i = 0; i < 3; ++i)
            body.positions.push_back(vec3(inverse(modelView) * glm::vec4(eyeCorners[i], 1)));
        body.normals = {{0.9f, 0.2f, 0.4f}, {-0.8f, 0.5f, -0.1f}, {0.1f, -0.7f, 0.9f}};
        body.triangles = {0, 1, 2};
        for (int i = 0; i < 8; ++i)
            record.lights[i] = {i % 3 == 1 ? 0 : 1,
                                {0.1f, 0.05f * i, 0.2f, 1},
                                {0.3f, 0.4f, 0.1f * i, 1},
                                {0.5f, 0.3f, 0.2f, 1},
                                {i * 11.0f, 64 - i * 9.0f, 10 + i * 7.0f, 1},
                                0.9f,
                                0.004f * i,
                                0.0002f};
        record.frontMaterial = {{0.02f, 0.01f, 0, 1}, {}, {}, {0.4f, 0.5f, 0.6f, 1}, 9};
        record.backMaterial = {{0, 0.03f, 0.01f, 1}, {}, {}, {0.6f, 0.2f, 0.3f, 1}, 4};
        record.cameraPosition = {20, -70, 90};
        const mat4 turn = glm::rotate(mat4(1), 0.9f, vec3(3, 1, -2));
        const auto axis = [&](vec3 v) {
            const dvec3 a(glm::mat3(turn) * v);
            return _NgPoint3Str{a.x, a.y, a.z};
        };
        record.viewX = axis({1, 0, 0});
        record.viewY = axis({0, 1, 0});
        record.view = axis({0, 0, -1});
        NRenderMaterialApperanceHandler::Add("Satin", {0.4f, 0.45f, 1, 0.6f});
        renderer.SetRenderMaterial(L"Satin");
        renderer.SetColor(70);
    }
    /// From the first draw on no other program can be built, but for those that it needs beside.
    void refuseFastPrograms(int others = 0) {
        if (!GetParam())
            return;
        linksLeft = 1 + others;
        realLink = epoxy_glLinkProgram;
        epoxy_glLinkProgram = [](GLuint program) {
            if (linksLeft-- > 0)
                realLink(program);
        };
    }
    /// Whether the program that does all is in use.
    static bool doesAll() {
        return glGetUniformLocation(GLuint(integer(GL_CURRENT_PROGRAM)), "g_usepbrmat") >= 0;
    }
    /// The rules' colour at a pixel.
    dvec4 expected(const Lighting& rules, int x, int y) const {
        const double s = (x + 0.5) / 128, t = (y + 0.5) / 128;
        const auto mix = [&](auto corner) { return (1 - s - t) * corner(0) + s * corner(1) + t * corner(2); };
        const dmat4 normalMatrix = transpose(inverse(dmat4(modelView)));
        const bool object = rules.physicallyBased;
        const dvec3 N = normalize(mix([&](int i) {
            const dvec3 n(body.normals[i]);
            return normalize(object ? n : dvec3(normalMatrix * dvec4(n, 1)));
        }));
        const dvec3 position = mix([&](int i) { return dvec3(object ? body.positions[i] : eyeCorners[i]); });
        return rules.shade({dvec3(channels(palette[70])), 1}, N, position);
    }
    void expectRules(const Lighting& rules) {
        const Picture picture = draw(body);
        double worst = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x)
                for (int c = 0; c < 4; ++c)
                    worst = std::max(worst, std::abs(channel(picture.at(x, y), c) -
                                                     255 * std::min(1.0, expected(rules, x, y)[c])));
        EXPECT_LT(worst, 0.75) << "of 255; half of it is rounding to bytes";
        EXPECT_NE(picture.at(5, 5), picture.at(60, 60)) << "as lights and normals change";
        renderer.RenderBegin(kOpaque);
        // The fast ones have no alpha of the model's.
        EXPECT_EQ(doesAll(), GetParam() || record.frontMaterial.emission[3] == 0);
        renderer.RenderEnd();
    }
    Lighting classic() const {
        Lighting rules;
        std::copy_n(record.lights, 8, rules.lights.begin());
        rules.front = record.frontMaterial;
        rules.back = record.backMaterial;
        return rules;
    }
    const vec3 eyeCorners[3] = {{0, 0, 4}, {128, 0, -20}, {0, 128, 11}};
    mat4 modelView;
    Body body;
};

TEST_P(MeshShading, ClassicPixelsFollowTheRules) {
    refuseFastPrograms();
    expectRules(classic());
    record.lights[0].enabled = 0; // and what the program has of it stays dark
    expectRules(classic());
    for (NglLightParams& light : record.lights)
        light.specular[0] = light.specular[1] = light.specular[2] = 0;
    expectRules(classic());
    record.frontMaterial.emission[3] = record.backMaterial.emission[3] = 0;
    for (NglLightParams& light : record.lights)
        light.ambient[3] = light.diffuse[3] = light.specular[3] = 0.1f;
    expectRules(classic());
}

TEST_P(MeshShading, PhysicallyBasedPixelsFollowTheRulesUnderTheRig) {
    refuseFastPrograms();
    EnablePhysicallyBasedRendering(true);
    EnableEnvironmentReflection(true); // whose maps cannot be built
    epoxy_glCheckFramebufferStatus = [](GLenum) -> GLenum { return GL_FRAMEBUFFER_UNSUPPORTED; };
    Lighting rules;
    rules.physicallyBased = 1;
    rules.camera = {20, -70, 90};
    rules.metalness = 0.4f, rules.roughness = 0.45f, rules.reflectivity = 0.6f;
    const auto vector = [](const _NgPoint3Str& v) { return dvec3(v.x, v.y, v.z); };
    const dvec3 D = vector(record.view), P = rules.camera;
    std::vector<dvec3> positions = {D};
    for (const dvec3 axis : {vector(record.viewX), vector(record.viewY)})
        for (const double angle : {45, -45}) {
            dmat4 about = glm::translate(dmat4(1), P);
            about = glm::translate(glm::rotate(about, glm::radians(angle), axis), -P);
            positions.push_back(-(dvec3(about * dvec4(P + D, 1)) - P));
        }
    for (std::size_t i = 0; i < positions.size(); ++i) {
        rules.pbrLights[i].enabled = 1;
        std::copy_n(glm::value_ptr(glm::vec4(positions[i], 1)), 4, rules.pbrLights[i].position);
    }
    expectRules(rules);
    EnablePhysicallyBasedRendering(false);
    expectRules(classic());
}

TEST_P(MeshShading, UnknownMaterialsLookAsTheLastKnownOne) {
    refuseFastPrograms();
    EnablePhysicallyBasedRendering(true);
    renderer.SetRenderMaterial(L"unknown");
    const Picture initial = draw(body);
    NRenderMaterialApperanceHandler::Add("Default", {0.3f, 0.2f, 1.0f, 0.92f});
    renderer.SetRenderMaterial(L"Default");
    EXPECT_TRUE(samePicture(draw(body), initial));
    renderer.SetRenderMaterial(L"Satin");
    const Picture satin = draw(body);
    EXPECT_FALSE(samePicture(satin, initial));
    for (const wchar_t* name : {L"unknown", L""}) {
        renderer.SetRenderMaterial(name);
        EXPECT_TRUE(samePicture(draw(body), satin));
    }
}

/// Fills the handler's maps with those of the rules.
void replaceMaps() {
    using Handler = NImageBasedLightHandler;
    const auto fill = [](GLuint cube, int level, int size) {
        glBindTexture(GL_TEXTURE_CUBE_MAP, cube);
        glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR);
        glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        for (int face = 0; face < 6; ++face) {
            const vec3 color(Lighting::faceColor(face, level));
            glClearTexSubImage(cube, level, 0, 0, face, size, size, 1, GL_RGB, GL_FLOAT, &color.x);
        }
    };
    fill(Handler::GetIrradianceMapTextureID(), 0, 32);
    for (int level = 0; level < 5; ++level)
        fill(Handler::GetPrefilterMapTextureID(), level, 256 >> level);
    glBindTexture(GL_TEXTURE_CUBE_MAP, 0);
    std::vector<glm::vec2> table;
    const float margin = 0.5f / Lighting::kTableSize;
    for (int i = 0; i < 512 * 512; ++i)
        table.push_back(clamp(glm::vec2(i % 512 + 0.5f, i / 512 + 0.5f) / 512.0f, margin, 1 - margin));
    glBindTexture(GL_TEXTURE_2D, Handler::GetBRDFLUTTextureID());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 512, 512, GL_RG, GL_FLOAT, table.data());
    glBindTexture(GL_TEXTURE_2D, 0);
}

TEST_P(MeshShading, EnvironmentLightsThroughItsMaps) {
    refuseFastPrograms(4); // the maps' own
    EnablePhysicallyBasedRendering(true);
    EnableEnvironmentReflection(true);
    const auto drawArrays = epoxy_glDrawArrays;
    epoxy_glDrawArrays = [](GLenum, GLint, GLsizei) {}; // maps of any content
    ASSERT_TRUE(renderer.RenderBegin(kOpaque));
    epoxy_glDrawArrays = drawArrays;
    replaceMaps();
    GLuint sampler; // a host's, which would choose another level
    glGenSamplers(1, &sampler);
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glBindSampler(2, sampler);
    glActiveTexture(GL_TEXTURE5);
    Lighting rules;
    rules.physicallyBased = rules.environment = 1;
    rules.camera = {20, -70, 90};
    for (const vec3& material : {vec3(1, 0.5f, 0.6f), vec3(0.25f, 0.75f, 0.5f)}) {
        NRenderMaterialApperanceHandler::Add("Satin", {material.x, material.y, 1, material.z});
        rules.metalness = material.x, rules.roughness = material.y, rules.reflectivity = material.z;
        expectRules(rules);
    }
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE0);
    glActiveTexture(GL_TEXTURE2);
    EXPECT_EQ(integer(GL_SAMPLER_BINDING), GLint(sampler));
    EnableEnvironmentReflection(false);
    const Picture withoutReflection = draw(body);
    NImageBasedLightHandler::CleanUpBuffers();
    EXPECT_TRUE(samePicture(draw(body), withoutReflection));
}

INSTANTIATE_TEST_SUITE_P(Programs, MeshShading, ::testing::Bool());

// --- what is drawn -----------------------------------------------------------------------------------------

TEST_F(MeshRenderer, ColoursAreOfThePaletteBySide) {
    renderer.SetColor(70);
    for (const bool asQuad : {false, true})
        for (const bool front : {true, false}) {
            renderer.EnableFrontAndBackRender(false);
            EXPECT_EQ(centre(draw(tile(8, 56, 0, front, asQuad))) & 0xFFFFFF, rgb(70));
            renderer.EnableFrontAndBackRender(true);
            EXPECT_EQ(centre(draw(tile(8, 56, 0, front, asQuad))) & 0xFFFFFF, rgb(front ? 8 : 61));
        }
    // One that the window's colour hides is shown as the complement table has it.
    renderer.EnableFrontAndBackRender(false);
    NglSetWindowBackGroundColor(palette[70]);
    NglUpdateColor(256, palette);
    EXPECT_EQ(centre(draw(tile(8, 56))) & 0xFFFFFF, rgb(70) ^ 0xFFFFFF);
}

TEST_F(MeshRenderer, TransparentBodiesShowBackFacesThroughFrontFaces) {
    Body body = tile(8, 56, 20); // the front comes first
    const Body back = tile(8, 56, 0, false, true);
    body.positions.insert(body.positions.end(), back.positions.begin(), back.positions.end());
    body.normals.insert(body.normals.end(), back.normals.begin(), back.normals.end());
    body.quads = {4, 5, 6, 7};
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glCullFace(GL_FRONT_AND_BACK);
    renderer.EnableFrontAndBackRender(true);
    renderer.EnableTransparency(true);
    renderer.SetAlpha(51); // 0.8 opaque
    const std::uint32_t pixel = centre(draw(body, kTransparent));
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(channel(pixel, c),
                    0.8 * channel(palette[8], c) + 0.16 * channel(palette[61], c) + 0.04 * channel(kClear, c),
                    1.5);
    EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
    EXPECT_EQ(integer(GL_CULL_FACE_MODE), GL_FRONT_AND_BACK);
}

TEST_F(MeshRenderer, AlphaIsWrittenInTheTransparentPassAlone) {
    renderer.EnableTransparency(true);
    for (const auto& [transparency, alpha] : {std::pair{0, 255}, {255, 0}, {51, 204}}) {
        renderer.SetAlpha(transparency);
        EXPECT_EQ(channel(centre(draw(tile(8, 56), kTransparent)), 3), alpha);
        for (const int pass : {0, 2, -1})
            EXPECT_EQ(channel(centre(draw(tile(8, 56), NglMeshRenderer::RenderPass(pass))), 3), 255);
    }
    renderer.EnableTransparency(false); // the value stays
    renderer.SetAlpha(0);
    for (const bool physical : {false, true}) {
        EnablePhysicallyBasedRendering(physical);
        EXPECT_EQ(channel(centre(draw(tile(8, 56), kTransparent)), 3), 204);
    }
}

TEST_F(MeshRenderer, DrawsUnderTheMatrixAndAttributesOfEachCall) {
    ngl::_RenderAttributes attributes;
    attributes.color = 90;
    renderer.SetColor(70);
    const Body body = tile(0, 16);
    clear();
    ASSERT_TRUE(renderer.RenderBegin(kOpaque));
    render(body);
    glTranslatef(32, 0, 0);
    renderer.Render(&body.positions[0].x, &body.normals[0].x, 2, body.triangles.data(), 0, nullptr,
                    attributes);
    renderer.RenderEnd();
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
    const Picture picture = read();
    EXPECT_EQ(picture.at(8, 32) & 0xFFFFFF, rgb(70));
    EXPECT_EQ(picture.at(40, 32) & 0xFFFFFF, rgb(90));
    EXPECT_EQ(picture.at(24, 32), kClear);
}

TEST_F(MeshRenderer, LeavesTheTextureBufferOfItsUnit) {
    GLuint texture, buffer;
    glGenTextures(1, &texture);
    glGenBuffers(1, &buffer);
    glActiveTexture(GL_TEXTURE0 + kBlockUnit);
    glBindTexture(GL_TEXTURE_BUFFER, texture);
    glBindBuffer(GL_TEXTURE_BUFFER, buffer);
    glActiveTexture(GL_TEXTURE3);
    const GlSnapshot before = GlSnapshot::take();
    draw(tile(8, 56));
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
}

// --- failures ----------------------------------------------------------------------------------------------

TEST_F(MeshRenderer, DrawsNothingOutsideBeginAndEnd) {
    const Body body = tile(8, 56);
    render({{vec3(0)}, {vec3(0)}, {}, {}}); // empty: silent
    EXPECT_EQ(hostLog().find("Invalid"), std::string::npos);
    hostLog().clear();
    render(body);
    EXPECT_EQ(hostLog(), kNotBegun);
    draw(body);
    clear();
    render(body);
    EXPECT_EQ(hostLog(), std::string(kNotBegun) + kNotBegun);
    ASSERT_TRUE(renderer.RenderBegin(kOpaque));
    renderer.Render(nullptr, &body.normals[0].x, 2, body.triangles.data(), 0, nullptr);
    renderer.Render(&body.positions[0].x, &body.normals[0].x, 2, nullptr, 1, nullptr);
    renderer.RenderEnd();
    EXPECT_EQ(read().countOtherThan(kClear), 0);
}

TEST_F(MeshRenderer, TriesAgainAfterAProgramThatFailed) {
    hostLog().clear();
    const auto link = epoxy_glLinkProgram;
    epoxy_glLinkProgram = [](GLuint) {};
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(renderer.RenderBegin(kOpaque));
    render(tile(8, 56));
    renderer.RenderEnd();
    const std::string failed = "-1 NglMeshRenderer::RenderBegin - Failed to create shader\n";
    EXPECT_EQ(hostLog(), failed + failed + kNotBegun);
    epoxy_glLinkProgram = link;
    EXPECT_EQ(centre(draw(tile(8, 56))) & 0xFFFFFF, rgb(0));
}

TEST(MeshRendererWithoutShaders, FailsWithAMessage) {
    if (ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_shader -GL_ARB_fragment_shader"},
                         {"MESA_GL_VERSION_OVERRIDE", "1.4"}}))
        return;
    captureHostLog();
    nruview::OffscreenContext context;
    for (const bool withContext : {false, true}) {
        const std::string error = withContext ? context.create(64, 64) : "";
        ASSERT_EQ(error, "");
        NglInitGLExtensions();
        hostLog().clear();
        NglMeshRenderer renderer;
        EXPECT_FALSE(renderer.RenderBegin(kOpaque));
        renderer.RenderEnd();
        EXPECT_EQ(hostLog(), "-1 NglMeshRenderer::RenderBegin - Failed to create shader\n");
    }
}

} // namespace
