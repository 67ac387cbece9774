// Face shading by the two programs: colours against the lighting of one face in C++, which corners are drawn,
// and drivers that lack or refuse something.
#include <epoxy/egl.h>

#include <cmath>
#include <functional>
#include <regex>
#include <utility>
#include <vector>

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "NRenderUtl/gl/nglmeshshader.h"
#include "NRenderUtl/host/hostutl.h"
#include "tests/gl/testgl.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr int kTriangles = 4, kQuads = 10;
using Corners = std::vector<glm::vec3>;

struct Light {
    glm::vec4 position, ambient, diffuse, specular;
    float constant, linear, quadratic;
};
// The second has the form of a direction, and counts as a point; the third must not count.
const Light kLights[] = {
    {{1, 2, 3, 1}, {.1, .04, .2, .3}, {.9, .5, .7, .2}, {.4, .8, .3, .1}, .5f, .2f, .05f},
    {{-2, .5, 2, 0}, {.05, .1, 0, .1}, {.2, .6, .4, .1}, {.5, .2, .9, .2}, 1, .1f, 0},
    {{0, 0, 5, 1}, {1, 1, 1, 1}, {1, 1, 1, 1}, {1, 1, 1, 1}, 1, 0, 0}};
const glm::vec4 kSceneAmbient{.1, .3, .2, .2}, kEmission{.05, .02, .1, .05}, kSpecular{.3, .5, .4, .1},
    kColor{.7, .5, .9, .6};

glm::vec4 colorOfFace(const Corners& p, const glm::vec3& lit_eye, float shininess) {
    const glm::vec3 n = glm::normalize(glm::cross(p[1] - p[0], p[2] - p[0]));
    glm::vec4 ambient(0), diffuse(0), specular(0);
    for (const Light* light : {&kLights[0], &kLights[1]}) {
        const glm::vec3 way = glm::vec3(light->position) - lit_eye;
        const float r = glm::length(way);
        const float a = 1 / (light->constant + light->linear * r + light->quadratic * r * r);
        ambient += light->ambient * a;
        const glm::vec3 h = glm::vec3(0, 0, 1) + way / r;
        if (glm::dot(n, way) <= 0)
            continue;
        diffuse += light->diffuse * a * glm::dot(n, way / r);
        specular += light->specular * a * std::pow(std::max(glm::dot(n, glm::normalize(h)), 0.0f), shininess);
    }
    return (kSceneAmbient + ambient + diffuse) * kColor + kEmission + specular * kSpecular;
}

void setLight(GLenum name, const Light& light) {
    for (const auto& [what, value] : {std::pair{GL_POSITION, light.position},
                                      {GL_AMBIENT, light.ambient},
                                      {GL_DIFFUSE, light.diffuse},
                                      {GL_SPECULAR, light.specular}})
        glLightfv(name, what, glm::value_ptr(value));
    glLightf(name, GL_CONSTANT_ATTENUATION, light.constant);
    glLightf(name, GL_LINEAR_ATTENUATION, light.linear);
    glLightf(name, GL_QUADRATIC_ATTENUATION, light.quadratic);
}

std::function<std::string(const std::string&)> edit; ///< what sources become on their way to the driver
std::string parameters;                              ///< of geometry stages, as they were set
int links;

/// From here on sources pass through edit, and links and parameters are noted.
void watchTheDriver() {
    epoxy_glShaderSource = [](GLuint shader, GLsizei, const GLchar* const* parts, const GLint*) {
        const std::string source = edit ? edit(parts[0]) : parts[0];
        const GLchar* text = source.c_str();
        reinterpret_cast<PFNGLSHADERSOURCEPROC>(eglGetProcAddress("glShaderSource"))(shader, 1, &text,
                                                                                     nullptr);
    };
    epoxy_glLinkProgram = [](GLuint program) {
        ++links;
        reinterpret_cast<PFNGLLINKPROGRAMPROC>(eglGetProcAddress("glLinkProgram"))(program);
    };
    epoxy_glProgramParameteri = [](GLuint, GLenum name, GLint value) {
        parameters += hostFormat("%X=%X ", name, value);
    };
}

class MeshShader : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        NglInitGLExtensions();
        captureHostLog();
        loadOrtho(-1, 1, -1, 1, -9, 9);
        for (int i = 0; i < 3; ++i)
            setLight(GL_LIGHT0 + i, kLights[i]);
        glEnable(GL_LIGHT2);
        glLightModelfv(GL_LIGHT_MODEL_AMBIENT, glm::value_ptr(kSceneAmbient));
        glMaterialfv(GL_FRONT, GL_EMISSION, glm::value_ptr(kEmission));
        glMaterialfv(GL_FRONT, GL_SPECULAR, glm::value_ptr(kSpecular));
    }
    /// With other colours at the corners but the first.
    static void send(int kind, const Corners& corners) {
        glBegin(static_cast<GLenum>(kind));
        for (std::size_t i = 0; i < corners.size(); ++i) {
            i == 0 ? glColor4fv(glm::value_ptr(kColor)) : glColor4f(.2f, .3f, .1f, .4f);
            glVertex3fv(glm::value_ptr(corners[i]));
        }
        glEnd();
    }
    Picture draw(int kind, const Corners& corners) {
        clear();
        EXPECT_EQ(NglInitMeshRenderShader(kind), 0);
        send(kind, corners);
        EXPECT_EQ(NglEndMeshRenderShader(), 0);
        return read();
    }
    static std::string takeLog() { return std::exchange(hostLog(), ""); }
};

const Corners kFlat{{-.9, -.9, 0}, {.9, -.8, 0}, {.7, .9, 0}, {-.8, .8, 0}},
    kBent{{-.9, -.9, 0}, {.9, -.8, .3}, {.7, .9, -.5}, {-.8, .8, .9}},
    kAway{{-.9, -.9, 0}, {-.8, .8, .5}, {.7, .9, .4}, {.9, -.8, -.2}};

TEST_F(MeshShader, LightsAFaceAsInCpp) {
    struct Row {
        const char* name;
        const Corners& corners;
        float shininess;
        double turn, lift; ///< about an axis that is not the view's; along the view
    };
    const Row rows[] = {{"flat", kFlat, 20, 0, 0},
                        {"not plane", kBent, 8.5, 0, 0},
                        {"turned", kBent, 3, 40, 0},
                        {"turned away", kFlat, 2, 170, 0},
                        {"away from the light", kAway, 5, 0, 0},
                        {"light from behind", kAway, 5, 0, 4},
                        {"0 to the power of 0 is 1", kAway, 0, 0, 4}};
    for (const auto& [name, quad, shininess, turn, lift] : rows)
        for (const int kind : {kTriangles, kQuads}) {
            SCOPED_TRACE(name + std::to_string(kind));
            const Corners corners(quad.begin(), quad.begin() + (kind == kQuads ? 4 : 3));
            glMaterialf(GL_FRONT, GL_SHININESS, shininess);
            glLoadIdentity();
            glTranslated(0, 0, lift);
            glRotated(turn, 1, 3, .5);
            glm::mat4 view;
            glGetFloatv(GL_MODELVIEW_MATRIX, glm::value_ptr(view));
            const glm::vec4 lit = view * glm::vec4(corners[kind == kQuads ? 0 : 1], 1);
            const glm::vec4 expected = colorOfFace(corners, glm::vec3(lit), shininess);
            const Picture drawn = draw(kind, corners);
            ASSERT_GT(drawn.countOtherThan(kClear), 200);
            for (int i = 0; i < kSize * kSize; ++i)
                for (int channel = 0; drawn.at(i % kSize, i / kSize) != kClear && channel < 4; ++channel)
                    ASSERT_NEAR(drawn.at(i % kSize, i / kSize) >> (8 * channel) & 0xFF,
                                255 * std::min(expected[channel], 1.0f), 1)
                        << i % kSize << ", " << i / kSize << " channel " << channel;
        }
}

// A dart is drawn right only along the diagonal through its first and third corner. Planes clip it as others.
TEST_F(MeshShader, QuadsAreTwoTrianglesAboutCorners0And2) {
    const Corners dart{{-.8, -.8, 0}, {.8, -.6, 0}, {-.2, -.2, 0}, {-.6, .8, 0}};
    const double plane[] = {-1, 0.5, 0, 0.4};
    glClipPlane(GL_CLIP_PLANE0, plane);
    glEnable(GL_CLIP_PLANE0);
    loadOrtho(-1.5, 1.2, -1.1, 1, -9, 9);
    glRotated(10, 0, 0, 1);
    const Picture quad = draw(kQuads, dart);
    clear();
    send(kTriangles, {dart[0], dart[1], dart[2]});
    send(kTriangles, {dart[0], dart[2], dart[3]});
    EXPECT_GT(quad.countOtherThan(kClear), 300);
    const Picture triangles = read();
    for (int i = 0; i < kSize * kSize; ++i)
        ASSERT_EQ(quad.at(i % kSize, i / kSize) == kClear, triangles.at(i % kSize, i / kSize) == kClear);
}

TEST_F(MeshShader, AlphaIsLitOrOfBlending) {
    glBlendFunc(GL_ONE, GL_ZERO);
    const unsigned lit = draw(kQuads, kFlat).at(32, 32) >> 24;
    EXPECT_NE(lit, 127u);
    for (const unsigned value : {127u, 200u, 0u}) {
        if (value != 127)
            ngl_set_blending_value(static_cast<int>(value));
        glEnable(GL_BLEND);
        EXPECT_EQ(draw(kQuads, kFlat).at(32, 32) >> 24, value);
        glDisable(GL_BLEND);
        EXPECT_EQ(draw(kQuads, kFlat).at(32, 32) >> 24, lit);
    }
}

TEST_F(MeshShader, EachProgramIsBuiltOnceAndLeftByOtherKinds) {
    watchTheDriver();
    for (int round = 0; round < 2; ++round)
        for (const int kind : {kTriangles, kQuads}) {
            EXPECT_EQ(NglInitMeshRenderShader(kind), 0);
            const GLint program = integer(GL_CURRENT_PROGRAM);
            EXPECT_NE(program, 0);
            EXPECT_EQ(NglInitMeshRenderShader(5), -1);
            EXPECT_EQ(integer(GL_CURRENT_PROGRAM), program);
        }
    NglEndMeshRenderShader();
    EXPECT_EQ(std::pair(links, takeLog()), std::pair(2, std::string()));
    EXPECT_EQ(parameters, "") << "the sources say it";
}

TEST_F(MeshShader, EveryCallIsRefusedWithoutGeometryStages) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "3.1COMPAT"}}))
        return;
    for (const int kind : {kTriangles, kQuads, 5})
        EXPECT_EQ(NglInitMeshRenderShader(kind), -1);
    NglEndMeshRenderShader();
    const std::string refusal = "0 Optimized Rendering not supported!\n";
    EXPECT_EQ(takeLog(), refusal + refusal + refusal);
}

// The driver that claims the extension knows nothing of its language: it is given that of the core.
TEST_F(MeshShader, DriversWithTheExtensionGetItsLanguage) {
    if (ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "+GL_EXT_geometry_shader4"}}))
        return;
    watchTheDriver();
    edit = [](const std::string& source) {
        const std::string old = "#version 120\n#extension GL_EXT_geometry_shader4 : enable\n";
        const bool isGeometry = source.starts_with(old);
        EXPECT_TRUE(isGeometry || source.find("#version") == source.npos);
        return "#version 150 compatibility\n" + source.substr(isGeometry ? old.size() : 0);
    };
    EXPECT_EQ(NglInitMeshRenderShader(kTriangles), 0);
    EXPECT_EQ(std::exchange(parameters, ""), "8DDB=4 8DDA=3 8DDC=5 ");
    EXPECT_EQ(NglInitMeshRenderShader(kQuads), 0);
    EXPECT_EQ(parameters, "8DDB=A 8DDA=4 8DDC=5 ");
    EXPECT_EQ(takeLog(), "");
}

TEST_F(MeshShader, WhatDoesNotBuildIsTold) {
    watchTheDriver();
    EXPECT_EQ(NglInitMeshRenderShader(kTriangles), 0);
    const GLint other = integer(GL_CURRENT_PROGRAM);
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"gl_Vertex", "nothing(", "0 Compile Error: Vertex Shader: 0:"},
        {R"(emitCorner\(3)", "nothing(", "0 Compile Error: Geom Shader: 0:"},
        {R"(bTransparent\))", "nothing(", "0 Compile Error: Fragment Shader: 0:"},
        {"in vec4 Color;([^]*)= Color;", "in vec3 Color;$1= Color.xyzz;",
         "0 Failed to link program:\nerror: "}};
    for (const auto& [part, instead, message] : rows) {
        EXPECT_EQ(takeLog(), "");
        edit = [part = std::regex(part), instead = instead](const std::string& source) {
            return std::regex_replace(source, part, instead);
        };
        EXPECT_EQ(NglInitMeshRenderShader(kQuads), -1); // tried again after each, as it does not compile
        EXPECT_TRUE(hostLog().starts_with(message)) << hostLog();
        takeLog();
    }
    EXPECT_EQ(takeGlErrors(), 3) << "complaints of the compiler";
    edit = nullptr;
    glUseProgram(static_cast<GLuint>(other));
    EXPECT_EQ(NglInitMeshRenderShader(kQuads), 0); // not linked again: it keeps its name
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), other);
    EXPECT_EQ(std::pair(links, takeLog()), std::pair(2, std::string()));
}

} // namespace
