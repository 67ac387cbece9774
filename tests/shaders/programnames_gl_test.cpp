// The names that programs and C++ share: that each is read, on which unit each sampler reads, and what a
// variant holds as constants.
#include <iterator>
#include <regex>
#include <set>

#include "NRenderUtl/mesh/batchprogram.h"
#include "NRenderUtl/shaders/samplerunits.h"
#include "NRenderUtl/shaders/shadercatalogue.h"
#include "NRenderUtl/shaders/shadernames.h"
#include "tests/shaders/shaderscene.h"

using namespace nrutest;

namespace {

using Names = std::set<std::string>;

/// Of the vocabulary, what no program reads; a driver may keep it with the rest of its structure.
const Names kForHosts{"g_frontmat.ambient", "g_frontmat.diffuse", "g_backmat.ambient", "g_backmat.diffuse",
                      "g_pbrMat.amb_occlusion"};

std::vector<std::pair<const char*, NShaderProgram*>> programRows() {
    const auto ofType = RenderingGetShaderProgram;
    NglBatchBegin(1, 0); // builds the programs
    static ComposedProgram markers;
    markers.buildMarkers();
    return {{"NRenderUtl mesh", ofType(RenderShaderMesh)},
            {"NRenderUtl mesh triangles", ofType(RenderShaderMeshTriangles)},
            {"NRenderUtl mesh quads", ofType(RenderShaderMeshQuads)},
            {"NRenderUtl points", ofType(RenderShaderPoints)},
            {"NRenderUtl markers", &markers},
            {"NRenderUtl batch", &batchProgram(true)},
            {"NRenderUtl batch", &batchProgram(false)},
            {"NRenderUtl mesh", &elementMeshProgram()}};
}

class ProgramNames : public ShaderTest {
protected:
    /// Takes a program into use and returns its GL name.
    GLuint use(NShaderProgram& program) {
        ShaderTest::use(program);
        GLint name = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &name);
        return GLuint(name);
    }
};

TEST_F(ProgramNames, EachIsReadByAProgramOrForHosts) {
    Names unread(std::begin(kUniformNames), std::end(kUniformNames));
    for (const auto& [label, program] : programRows()) {
        const GLuint name = use(*program);
        GLint count = 0, size;
        GLenum type;
        char text[256];
        glGetProgramiv(name, GL_ACTIVE_UNIFORMS, &count);
        for (GLint i = 0; i < count; ++i) {
            glGetActiveUniform(name, GLuint(i), sizeof text, nullptr, &size, &type, text);
            unread.erase(std::regex_replace(text, std::regex("\\[\\d+\\]"), "[]"));
        }
        glGetObjectLabel(GL_PROGRAM, name, sizeof text, nullptr, text);
        EXPECT_STREQ(text, label);
    }
    for (const std::string& name : unread)
        EXPECT_TRUE(kForHosts.contains(name)) << name;
}

// A sampler left on another's unit stops every draw, also where it is not read.
TEST_F(ProgramNames, SamplersAreApartRightAfterStartUp) {
    for (const auto& [label, used] : programRows()) {
        SCOPED_TRACE(label);
        const GLuint program = use(*used);
        for (const RenderingShaderUniform sampler : kSamplerOfUnit) {
            const int location = glGetUniformLocation(program, kUniformNames[sampler]);
            GLint unit = -1;
            if (location >= 0)
                glGetUniformiv(program, location, &unit);
            EXPECT_EQ(unit, location >= 0 ? samplerUnit(sampler) : -1) << kUniformNames[sampler];
        }
        glValidateProgram(program);
        GLint valid = 0;
        glGetProgramiv(program, GL_VALIDATE_STATUS, &valid);
        EXPECT_EQ(valid, GL_TRUE);
    }
}

TEST_F(ProgramNames, VariantsDrawTheSamePictureWithoutTheirUniforms) {
    const std::vector<FixedSwitch> switches = {{"g_smooth", 1},        {"g_bct", 1}, {"g_ct", 1},
                                               {"g_use_clr_scale", 1}, {"g_bao", 1}, {"g_usepbrmat", 0}};
    MeshFacts facts;
    facts.contour = Contour(2);
    Lighting lighting;
    lighting.lights[1] = {1, {0.1f, 0.2f, 0.3f, 1}, {0.3f, 0.2f, 0.1f, 1}, {}, {60, 20, 30, 1}, 1, 0.001f, 0};
    Vertices v;
    v.position = {{0, 0, 0}, {64, 0, 5}, {0, 64, 9}, {64, 64, 0}};
    v.vertexNormal = {{0, 0, 1, 0}, {1, 0, 1, 0}, {0, 1, 1, 0}, {1, 1, 1, 0}};
    v.texture = {{-0.5f, 0, 0, 1}, {1, 0, 0, 1}, {2, 0, 0, 1}, {3.5f, 0, 0, 1}};
    const auto drawBy = [&](NShaderProgram& program) {
        ShaderTest::use(program);
        set(lighting);
        set(facts);
        for (const FixedSwitch& on : switches)
            set(on.name.c_str(), on.value);
        return draw(GL_TRIANGLE_STRIP, v);
    };
    const auto generic = drawBy(elementMeshProgram());
    NShaderProgram& fixed = elementMeshProgram({switches});
    EXPECT_EQ(&elementMeshProgram({switches}), &fixed);
    EXPECT_EQ(drawBy(fixed), generic);
    EXPECT_NE(generic[5], generic[64 * 60 + 5]) << "nothing to see";
    GLint program = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    for (const FixedSwitch& gone : switches)
        EXPECT_EQ(glGetUniformLocation(GLuint(program), gone.name.c_str()), -1) << gone.name;
}

} // namespace
