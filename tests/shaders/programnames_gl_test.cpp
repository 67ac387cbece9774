// The names that programs and C++ share: which uniforms and attributes each program has, on which unit each
// sampler reads, and what a variant holds as constants.
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "NRenderUtl/mesh/batchprogram.h"
#include "NRenderUtl/shaders/samplerunits.h"
#include "NRenderUtl/shaders/shadercatalogue.h"
#include "NRenderUtl/shaders/shadernames.h"
#include "tests/shaders/shaderscene.h"

using namespace nrutest;

namespace {

using Names = std::set<std::string>;

Names names(const char* text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

Names join(std::initializer_list<Names> groups) {
    Names all;
    for (const Names& group : groups)
        all.insert(group.begin(), group.end());
    return all;
}

const Names kTransform = names("g_mvmat g_projmat g_texmat g_color g_clipped g_use_clr_scale");
const Names kMeshVertex = names("g_normalmat g_smooth g_norm_excl_sharpedge g_ct g_usepbrmat");
const Names kClassicLighting =
    names("g_lights[].status g_lights[].ambient g_lights[].diffuse g_lights[].specular "
          "g_lights[].position g_lights[].constattn g_lights[].linattn g_lights[].quadattn "
          "g_frontmat.emission g_frontmat.specular g_frontmat.shininess g_backmat.emission "
          "g_backmat.specular g_backmat.shininess");
const Names kLighting =
    join({kClassicLighting,
          names("g_pbrlights[].status g_pbrlights[].position g_pbrMat.metalness g_pbrMat.roughness "
                "g_pbrMat.reflectivity g_lightsOff g_usepbrmat g_hdrreflection g_cameraposition "
                "g_irradianceMap g_prefilterMap g_brdfLUT")});
const Names kContour =
    names("g_clr_bands[].min_val g_clr_bands[].max_val g_clr_bands[].color g_num_clr_bands "
          "g_band_min_val g_band_max_val g_oor_min_clr g_oor_max_clr g_bts g_ttf g_tsf g_tbuff "
          "g_ctt g_bct g_ct");
const Names kVisibility =
    names("g_bem g_bao g_behs g_nvlp g_bd g_osbuff g_shcbuff g_mcbuff g_es_col g_eh_col");
const Names kElements =
    names("g_nfconn g_fpbuff g_dbuff g_clip_flag g_clipelembuff g_bvlf g_nvlf g_ncvl g_vlbuff "
          "g_vlabuff");
const Names kOutput = names("g_transparent g_alphavalue");
const Names kSides = names("g_bw g_bsw g_bfbcol g_fcolor g_bcolor");
const Names kElementNormals = names("g_useelemnormbuff g_elnormbuff g_fporgconnbuff");
const Names kBatch = names("g_mvmat g_projmat g_clipped g_ptsize");
const Names kPoints = names("g_ptsize_scale g_advdisp g_advparamset");
const Names kMarkers = names("g_mvmat g_projmat g_texmat g_clipped g_transmat g_colorwithalpha g_bct g_ctt "
                             "g_halfvertcnt g_texcoord1 g_texcoord2");
/// Of the vocabulary, what no program reads; a driver may keep it with the rest of its structure.
const Names kForHosts = names("g_frontmat.ambient g_frontmat.diffuse "
                              "g_backmat.ambient g_backmat.diffuse g_pbrMat.amb_occlusion");

struct ProgramRow {
    const char* name;
    NShaderProgram* program;
    Names uniforms, attributes;
};

std::vector<ProgramRow> programRows() {
    const Names mesh =
        join({kTransform, kMeshVertex, kLighting, kContour, kVisibility, kElements, kOutput, kSides});
    const Names fragment = join({mesh, kElementNormals});
    const Names points = join({kTransform, kLighting, kContour, kVisibility, kOutput, kPoints});
    const Names attributes = {"g_pos_attrib", "g_tex_attrib", "g_vnorm_attrib", "g_norm_attrib"};
    const auto ofType = RenderingGetShaderProgram;
    NglBatchBegin(1, 0); // builds the programs
    static ComposedProgram markers;
    markers.buildMarkers();
    return {{"NRenderUtl mesh", ofType(RenderShaderMesh), fragment, attributes},
            {"NRenderUtl mesh triangles", ofType(RenderShaderMeshTriangles), mesh, attributes},
            {"NRenderUtl mesh quads", ofType(RenderShaderMeshQuads), mesh, attributes},
            {"NRenderUtl points",
             ofType(RenderShaderPoints),
             points,
             {"g_pos_attrib", "g_tex_attrib", "g_param_size_attrib", "g_diameter_attrib"}},
            {"NRenderUtl markers", &markers, join({kMarkers, kClassicLighting, kOutput}), {"g_pos_attrib"}},
            {"NRenderUtl batch",
             &batchProgram(true),
             join({kBatch, kContour, names("g_texmat g_use_clr_scale g_es_col g_eh_col")}),
             {"g_pos_attrib", "g_tex_attrib", "g_col_attrib"}},
            {"NRenderUtl batch", &batchProgram(false), kBatch, {"g_pos_attrib", "g_col_attrib"}},
            {"NRenderUtl mesh", &elementMeshProgram(), fragment, join({attributes, {kElementAttribute}})}};
}

class ProgramNames : public ShaderTest {
protected:
    /// Takes the row's program into use and returns its GL name.
    GLuint use(const ProgramRow& row) {
        ShaderTest::use(*row.program);
        GLint program = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        return GLuint(program);
    }
};

/// Active names, without the indices of arrays and what is GLSL's own.
template <class GetActive>
Names activeNames(GLuint program, GLenum countQuery, GetActive getActive) {
    Names names;
    GLint count = 0, size;
    GLenum type;
    char name[256];
    glGetProgramiv(program, countQuery, &count);
    for (GLint i = 0; i < count; ++i) {
        getActive(program, GLuint(i), sizeof name, nullptr, &size, &type, name);
        if (std::string(name).rfind("gl_", 0) != 0)
            names.insert(std::regex_replace(name, std::regex("\\[\\d+\\]"), "[]"));
    }
    return names;
}

std::string onlyIn(const Names& a, const Names& b) {
    std::string text;
    for (const std::string& name : a)
        text += b.count(name) ? "" : name + " ";
    return text;
}

TEST_F(ProgramNames, AreTheExpectedOnes) {
    Names read;
    for (const ProgramRow& row : programRows()) {
        SCOPED_TRACE(row.name);
        const GLuint program = use(row);
        const Names uniforms = activeNames(program, GL_ACTIVE_UNIFORMS, glGetActiveUniform);
        EXPECT_EQ(onlyIn(uniforms, join({row.uniforms, kForHosts})), "") << "not expected";
        EXPECT_EQ(onlyIn(row.uniforms, uniforms), "") << "missing";
        EXPECT_EQ(activeNames(program, GL_ACTIVE_ATTRIBUTES, glGetActiveAttrib), row.attributes);
        read.insert(uniforms.begin(), uniforms.end());
        char label[64] = {};
        glGetObjectLabel(GL_PROGRAM, program, sizeof label, nullptr, label);
        EXPECT_STREQ(label, row.name);
    }
    const Names vocabulary(std::begin(kUniformNames), std::end(kUniformNames));
    EXPECT_EQ(onlyIn(vocabulary, join({read, kForHosts})), "") << "read by no program";
}

// A sampler left on another's unit stops every draw, also where it is not read.
TEST_F(ProgramNames, SamplersAreApartRightAfterStartUp) {
    for (const ProgramRow& row : programRows()) {
        SCOPED_TRACE(row.name);
        const GLuint program = use(row);
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
    EXPECT_EQ(samplerUnit(RenderUniformBrdfTable), 3);
    EXPECT_EQ(samplerUnit(RenderUniformElementValues), 4) << "texture buffers follow the pictures";
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
