// The names that programs and C++ share: that each is read, and on which unit each sampler reads.
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

} // namespace
