// The program object: what reaches which uniform, how building fails, how programs are shared and deleted.
#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr const char* kVertex = "#version 150 compatibility\nvoid main() { gl_Position = gl_Vertex; }\n";
constexpr const char* kFragment = "#version 150 compatibility\nvoid main() { gl_FragColor = vec4(1.0); }\n";
constexpr const char* kGeometry =
    "#version 150 compatibility\nlayout(triangles) in; layout(triangle_strip, max_vertices = 3) out;\n"
    "void main() { for (int i = 0; i < 3; ++i) { gl_Position = gl_in[i].gl_Position; EmitVertex(); } }\n";

/// Reads every uniform that the tests set, so that none is inactive.
constexpr const char* kAllUniforms = R"(#version 150 compatibility
in vec2 g_pos_attrib; in vec4 g_tex_attrib;
struct Light { int status; vec4 position, ambient, diffuse, specular; float constattn, linattn, quadattn; };
struct PbrLight { int status; vec4 position; };
struct Material { vec4 emission, ambient, diffuse, specular; float shininess; };
uniform Light g_lights[8]; uniform PbrLight g_pbrlights[8]; uniform Material g_frontmat, g_backmat;
uniform vec3 g_color, g_cameraposition;
uniform int g_num_clr_bands, g_ct, g_nvlf, g_mcbuff[3], g_osbuff[3];
uniform float g_band_min_val, g_alphavalue, g_tsf, g_vlbuff[3];
uniform vec4 g_fcolor, g_bcolor; uniform mat4 g_mvmat, g_projmat, g_normalmat, g_texmat, g_transmat;
vec4 of(Light l) {
    return l.position + l.ambient + l.diffuse + l.specular + l.constattn + l.linattn + l.quadattn + l.status;
}
vec4 of(PbrLight l) { return l.position + l.status; }
vec4 of(Material m) { return m.emission + m.ambient + m.diffuse + m.specular + m.shininess; }
void main() {
    vec4 sum = g_tex_attrib + of(g_frontmat) + of(g_backmat) + g_fcolor + g_bcolor;
    for (int i = 0; i < g_num_clr_bands; ++i)
        sum += of(g_lights[i]) + of(g_pbrlights[i]) + g_mcbuff[i] + g_osbuff[i] + g_vlbuff[i];
    sum.xyz += g_color + g_cameraposition;
    sum += g_ct + g_nvlf + g_band_min_val + g_alphavalue + g_tsf;
    gl_Position = (g_mvmat + g_projmat + g_normalmat + g_texmat + g_transmat) * sum;
    gl_Position += vec4(g_pos_attrib, 0.0, 1.0);
}
)";

class ShaderProgram : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        captureHostLog();
    }
    void useAllUniforms() {
        ASSERT_TRUE(program.build(kAllUniforms, kFragment));
        program.UseProgram(true);
    }
    /// The values of uniforms, whose names follow each other after blanks, as text.
    std::string uniforms(const std::string& names, const std::string& record = "") const {
        std::string text;
        std::istringstream words(names);
        for (std::string name; words >> name;) {
            std::vector<float> values(17, NAN);
            const GLint location = glGetUniformLocation(program.name(), (record + name).c_str());
            glGetUniformfv(program.name(), location, values.data());
            for (int i = 0; !std::isnan(values[i]); ++i)
                text += hostFormat(i ? " %g" : "%g", values[i]);
            text += "|";
        }
        return text;
    }
    TestProgram program;
};

int locationQueries;

/// Counts the location queries from here on.
void countLocationQueries(const TestProgram& program) {
    glGetUniformLocation(program.name(), "g_ct"); // the loader now has the driver's function
    static const auto real = epoxy_glGetUniformLocation;
    epoxy_glGetUniformLocation = [](GLuint name, const GLchar* uniform) {
        ++locationQueries;
        return real(name, uniform);
    };
}

TEST_F(ShaderProgram, SettersReachTheirUniforms) {
    useAllUniforms();
    int ints[3] = {3, -4, 5};
    float floats[4] = {1, 2, -2.5f, 4}, matrix[16] = {0, 1, 4, 9, 16, 25, 36, 49, 64, 81, 100};
    program.SetUniformValue("g_ct", 7);
    program.SetUniformValue(RenderUniformFailureMode, -7);
    program.SetUniformValue("g_alphavalue", 0.25f);
    program.SetUniformValue(RenderUniformTextureScale, 0.75f);
    program.SetUniformValue("g_mcbuff", 3, ints);
    program.SetUniformValue(RenderUniformVisibilityBuffer, 2, ints);
    program.SetUniformValue(RenderUniformFailureLevelBuffer, 3, floats);
    program.SetVec3UniformValue("g_color", floats);
    program.SetVec3UniformValue(RenderUniformCameraPosition, floats + 1);
    program.SetVec4UniformValue("g_fcolor", floats);
    program.SetVec4UniformValue(RenderUniformBackColor, matrix + 2);
    program.SetUniform4x4Matrix("g_texmat", matrix);
    program.SetUniform4x4Matrix(RenderUniformTransform, matrix);
    program.SetUniformValue(static_cast<const char*>(nullptr), 1);
    program.SetUniformValue(RenderUniformCount, 1);
    EXPECT_EQ(uniforms("g_ct g_nvlf g_alphavalue g_tsf"), "7|-7|0.25|0.75|");
    EXPECT_EQ(uniforms("g_mcbuff[0] g_mcbuff[2] g_osbuff[1] g_osbuff[2] g_vlbuff[2]"), "3|5|-4|0|-2.5|");
    EXPECT_EQ(uniforms("g_color g_cameraposition g_fcolor"), "1 2 -2.5|2 -2.5 4|1 2 -2.5 4|");
    EXPECT_EQ(uniforms("g_bcolor g_texmat"), "4 9 16 25|0 1 4 9 16 25 36 49 64 81 100 0 0 0 0 0|");
    EXPECT_EQ(uniforms("g_transmat"), uniforms("g_texmat"));
}

TEST_F(ShaderProgram, LocationsByEnumerationAreAskedOnce) {
    useAllUniforms();
    float values[16] = {};
    countLocationQueries(program);
    for (const int expected : {3 + 2, 2, 2}) {
        program.SetMVPMatrices(values, values, true);
        program.SetUniformValue(RenderUniformPointSize, 1.0f); // which the program lacks
        program.SetVec4UniformValue("g_fcolor", values);
        EXPECT_EQ(std::exchange(locationQueries, 0), expected);
    }
}

TEST_F(ShaderProgram, NormalMatrixIsTheInverseTranspose) {
    useAllUniforms();
    // Scaled by (2, 4, 8), then moved by (1, 2, 3): the inverse moves by (-1/2, -2/4, -3/8) in its own axes.
    float modelView[16] = {2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 8, 0, 1, 2, 3, 1};
    float projection[16] = {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, -1, -2, -3, -4, -5, -6};
    program.SetMVPMatrices(projection, modelView, false);
    program.SetMVPMatrices(nullptr, modelView, false);
    EXPECT_EQ(uniforms("g_mvmat"), "2 0 0 0 0 4 0 0 0 0 8 0 1 2 3 1|");
    EXPECT_EQ(uniforms("g_projmat"), "9 8 7 6 5 4 3 2 1 0 -1 -2 -3 -4 -5 -6|");
    EXPECT_EQ(uniforms("g_normalmat"), "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0|");
    program.SetMVPMatrices(nullptr, modelView, true);
    EXPECT_EQ(uniforms("g_normalmat"), "0.5 0 0 -0.5 0 0.25 0 -0.5 0 0 0.125 -0.375 0 0 0 1|");
}

TEST_F(ShaderProgram, EightLightsAtMostAreSetAndOfThoseOffTheStatus) {
    useAllUniforms();
    std::vector<NglLightParams> lights(12, {1, {1}, {2}, {3}, {4, 5, 6, 7}, 7, 8, 9});
    lights[3].enabled = 0;
    program.SetUniformValue("g_lights[3].status", 5);
    countLocationQueries(program);
    program.SetLightUniforms(12, lights.data());
    program.SetLightUniforms(-1, lights.data());
    EXPECT_EQ(std::exchange(locationQueries, 0), 7 * 8 + 1);
    program.SetPBRLightUniforms(12, lights.data());
    EXPECT_EQ(locationQueries, 8 * 2);
    EXPECT_EQ(uniforms("status position", "g_lights[3]."), "0|0 0 0 0|");
}

TEST_F(ShaderProgram, EmptyColorScalesHaveNoBands) {
    useAllUniforms();
    RenderColorScale scale;
    program.SetUniformValue("g_num_clr_bands", 9);
    program.SetColorScaleUniforms(nullptr);
    EXPECT_EQ(uniforms("g_num_clr_bands"), "9|");
    program.SetColorScaleUniforms(&scale);
    EXPECT_EQ(uniforms("g_num_clr_bands g_band_min_val"), "0|0|");
}

TEST_F(ShaderProgram, AttributesDrawWhileTheyAreEnabled) {
    EXPECT_EQ(program.GetVertexAttributeLocation(RenderAttribPosition), -1);
    useAllUniforms();
    EXPECT_EQ(program.GetVertexAttributeLocation(RenderAttribCount), -1);
    const int position = program.GetVertexAttributeLocation(RenderAttribPosition);
    float corners[] = {-1, -1, 0, -1, 0, 1, -1, 1}; // the left half
    program.SetVertexAttribute(position, 2, corners);
    program.SetVertexAttribute(-1, 2, corners);
    glDrawArrays(GL_QUADS, 0, 4);
    program.EnableDisableVertexAttribute(position, false);
    program.EnableDisableVertexAttribute(-1, false);
    corners[2] = corners[4] = 1; // not read any more
    glDrawArrays(GL_QUADS, 0, 4);
    EXPECT_EQ(read().countOtherThan(kClear), kSize * kSize / 2);
}

GLenum refusedType;
decltype(epoxy_glCreateShader) realCreateShader;

// Each row refuses one step; shaders made before it stay, programs do not, and nothing is said.
TEST_F(ShaderProgram, BuildingFailsStepByStep) {
    ASSERT_TRUE(program.build(kVertex, kFragment, kGeometry, 3));
    ASSERT_EQ(living(glIsShader), 0);
    glAttachShader(program.name(), glCreateShader(GL_VERTEX_SHADER));
    program.DeleteProgram();
    ASSERT_EQ(living(glIsShader) + living(glIsProgram), 0);
    realCreateShader = epoxy_glCreateShader;
    const auto realCreateProgram = epoxy_glCreateProgram;
    const GLenum rows[] = {GL_VERTEX_SHADER, GL_GEOMETRY_SHADER, GL_FRAGMENT_SHADER, GL_PROGRAM, GL_NONE};
    int left = 0;
    for (const GLenum refused : rows) {
        SCOPED_TRACE(refused);
        refusedType = refused;
        epoxy_glCreateShader = [](GLenum type) { return type == refusedType ? 0 : realCreateShader(type); };
        if (refused == GL_PROGRAM)
            epoxy_glCreateProgram = [] { return GLuint{0}; };
        EXPECT_FALSE(program.build(kVertex, refused == GL_NONE ? "broken" : kFragment, kGeometry, 3));
        EXPECT_FALSE(program.IsProgramValid());
        EXPECT_EQ(living(glIsProgram), 0);
        EXPECT_EQ(living(glIsShader), left);
        left = std::min(left + 1, 3);
        for (GLuint shader = 1; shader < 64; ++shader)
            glIsShader(shader) ? glDeleteShader(shader) : void();
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        epoxy_glCreateProgram = realCreateProgram;
    }
    takeGlErrors(); // the compiler's own
    EXPECT_EQ(hostLog(), "");
}

TEST_F(ShaderProgram, CopiesShareOneProgram) {
    useAllUniforms();
    const GLuint name = program.name();
    program.SetUniformValue(RenderUniformContourType, 1);
    program.SetShaderTypeAttached(RenderShaderPoints);
    countLocationQueries(program);
    TestProgram assigned;
    assigned = program;
    {
        TestProgram copy(program);
        EXPECT_EQ(copy.GetShaderTypeAttached(), RenderShaderPoints);
        copy.SetUniformValue(RenderUniformContourType, 2);
        assigned.SetUniformValue(RenderUniformContourType, 3);
        EXPECT_EQ(locationQueries, 0) << "the locations were not copied";
        EXPECT_EQ(uniforms("g_ct"), "3|");
        copy.UseProgram(false);
    }
    EXPECT_FALSE(glIsProgram(name)) << "the first one destroyed deletes it";
    EXPECT_TRUE(program.IsProgramValid() && assigned.IsProgramValid());
}

// --- geometry stages ---------------------------------------------------------------------------------------

TEST_F(ShaderProgram, LayoutsServeDriversThatOnlyClaimTheExtension) {
    if (ranInSubprocess({{"MESA_EXTENSION_OVERRIDE", "+GL_EXT_geometry_shader4"}}))
        return;
    ASSERT_TRUE(epoxy_has_gl_extension("GL_EXT_geometry_shader4"));
    ASSERT_TRUE(program.build(kVertex, kFragment, kGeometry, 3));
}

std::string parameters;

// A driver with the extension alone. This one refuses the stage, so another type stands in for it.
TEST_F(ShaderProgram, ParametersServeDriversWithTheExtensionAlone) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "3.1COMPAT"},
                         {"MESA_EXTENSION_OVERRIDE", "+GL_EXT_geometry_shader4"}}))
        return;
    const char *vertex = "void main() { gl_Position = vec4(0.0); }", *fragment = "void main() {}";
    ASSERT_TRUE(program.build(vertex, fragment));
    realCreateShader = epoxy_glCreateShader;
    epoxy_glCreateShader = [](GLenum type) {
        return realCreateShader(type == GL_GEOMETRY_SHADER ? GL_VERTEX_SHADER : type);
    };
    epoxy_glProgramParameteri = [](GLuint, GLenum name, GLint value) {
        parameters += hostFormat("%X=%X ", name, value);
    };
    const std::pair<int, const char*> rows[] = {
        {3, "8DDB=4 8DDC=5 8DDA=3 "}, {4, "8DDB=A 8DDC=5 8DDA=4 "}, {2, "8DDB=A 8DDC=3 8DDA=5 "}, {7, ""}};
    for (const auto& [kind, expected] : rows) {
        parameters.clear();
        EXPECT_TRUE(TestProgram().build(vertex, fragment, "float unused() { return 1.0; }", kind)) << kind;
        EXPECT_EQ(parameters, expected) << kind;
    }
}

TEST_F(ShaderProgram, WithoutGeometryStagesBuildingFailsQuietly) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "3.1COMPAT"}}))
        return;
    EXPECT_FALSE(program.build("void main() {}\n", "void main() {}\n", kGeometry, 3));
}

} // namespace
