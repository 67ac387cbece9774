// The mesh renderer: client arrays drawn with one shared program, lit in the classic way or physically based.
#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <optional>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/mesh/meshrendererprograms.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "NRenderUtl/mesh/pbrlightrig.h"
#include "NRenderUtl/shaders/samplerunits.h"
#include "NRenderUtl/shaders/vertexattribute.h"

namespace ngl {

NShaderProgram* NglMeshRenderer::m_pShaderProg = nullptr;

namespace {

constexpr std::uint32_t kNoLocation = 0xFFFFFFFF;
constexpr int kFrontColorIndex = 8, kBackColorIndex = 61;
constexpr unsigned int kElementsPerDraw = 1u << 28; // keeps index counts within GLsizei

/// The shared program as what RenderBegin made it.
MeshRendererPrograms& programsOf(NShaderProgram& shared) {
    return static_cast<MeshRendererPrograms&>(shared);
}

void readColor(int index, float* rgb) {
    ngl_get_rgb_floats(index, rgb[0], rgb[1], rgb[2]);
}

void readOpaqueColor(int index, float (&rgba)[4]) {
    readColor(index, rgba);
    rgba[3] = 1.0f;
}

// --- environment -------------------------------------------------------------------------------------------

constexpr RenderingShaderUniform kMapSamplers[] = {RenderUniformIrradianceMap, RenderUniformPrefilterMap,
                                                   RenderUniformBrdfTable};

void bindMap(NShaderProgram& program, RenderingShaderUniform sampler, GLenum target, GLuint texture) {
    program.SetUniformValue(sampler, samplerUnit(sampler));
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(samplerUnit(sampler)));
    glBindTexture(target, texture);
}

void bindMaps(NShaderProgram& program) {
    using Handler = NImageBasedLightHandler;
    bindMap(program, RenderUniformIrradianceMap, GL_TEXTURE_CUBE_MAP, Handler::GetIrradianceMapTextureID());
    bindMap(program, RenderUniformPrefilterMap, GL_TEXTURE_CUBE_MAP, Handler::GetPrefilterMapTextureID());
    bindMap(program, RenderUniformBrdfTable, GL_TEXTURE_2D, Handler::GetBRDFLUTTextureID());
    glActiveTexture(GL_TEXTURE0);
}

/// The units of the maps without sampler objects, which would choose their own level.
class PlainMapsGuard {
public:
    PlainMapsGuard() {
        GLint unit;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        for (std::size_t i = 0; i < m_samplers.size(); ++i) {
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(samplerUnit(kMapSamplers[i])));
            m_samplers[i].emplace();
        }
        glActiveTexture(static_cast<GLenum>(unit));
    }

private:
    std::array<std::optional<NoSamplerGuard>, std::size(kMapSamplers)> m_samplers;
};

// --- drawing -----------------------------------------------------------------------------------------------

/// The elements of one draw, without what has no indices.
struct Elements {
    unsigned int triCount, quadCount;
    const unsigned int *triIndices, *quadIndices;

    void draw() const {
        drawList(GL_TRIANGLES, 3, triCount, triIndices);
        drawList(GL_QUADS, 4, quadCount, quadIndices);
    }

private:
    static void drawList(GLenum mode, unsigned int corners, unsigned int count, const unsigned int* indices) {
        while (count > 0 && indices) {
            const unsigned int run = std::min(count, kElementsPerDraw);
            glDrawElements(mode, static_cast<GLsizei>(run * corners), GL_UNSIGNED_INT, indices);
            indices += std::size_t{run} * corners;
            count -= run;
        }
    }
};

void drawBackFacesFirst(const Elements& elements) {
    const AttributesGuard attributes(GL_ENABLE_BIT | GL_POLYGON_BIT);
    glEnable(GL_CULL_FACE);
    for (const GLenum culled : {GL_FRONT, GL_BACK}) {
        glCullFace(culled);
        elements.draw();
    }
}

/// Generic attributes read from client memory for the length of a block. What of the arrays is the host's,
/// ClientArraysGuard keeps.
class AttributeArray {
public:
    AttributeArray(NShaderProgram& program, RenderingShaderAttributes attribute, const float* data)
        : m_program(program), m_location(program.GetVertexAttributeLocation(attribute)) {
        program.SetVertexAttribute(m_location, 3, data);
        advanceByVertex(m_location);
    }
    ~AttributeArray() { m_program.EnableDisableVertexAttribute(m_location, false); }
    AttributeArray(const AttributeArray&) = delete;
    AttributeArray& operator=(const AttributeArray&) = delete;

private:
    NShaderProgram& m_program;
    const int m_location;
};

} // namespace

// --- life and attributes -----------------------------------------------------------------------------------

NglMeshRenderer::NglMeshRenderer()
    : m_modelView{}, m_projection{}, m_lights{}, m_frontMaterial{}, m_backMaterial{}, m_cameraPosition{},
      m_pbrLights{}, m_frontColor{}, m_backColor{}, m_normalLocation(kNoLocation),
      m_positionLocation(kNoLocation) {}

NglMeshRenderer::NglMeshRenderer(const NglMeshRenderer&) = default;
NglMeshRenderer& NglMeshRenderer::operator=(const NglMeshRenderer&) = default;
NglMeshRenderer::~NglMeshRenderer() = default;

void NglMeshRenderer::SetRenderAttributes(const _RenderAttributes& attributes) {
    m_attributes = attributes;
}
void NglMeshRenderer::SetRenderMaterial(const wchar_t* name) {
    m_attributes.materialName = GuString(name);
}
void NglMeshRenderer::SetColor(int index) {
    m_attributes.color = index;
}
void NglMeshRenderer::SetAlpha(int transparency) {
    m_attributes.alpha = (255.0f - static_cast<float>(transparency)) / 255.0f;
}
void NglMeshRenderer::EnableTransparency(bool enable) {
    m_attributes.transparency = enable;
}
void NglMeshRenderer::EnableFrontAndBackRender(bool enable) {
    m_attributes.frontAndBackRender = enable;
}

// --- passes ------------------------------------------------------------------------------------------------

bool NglMeshRenderer::RenderBegin(RenderPass pass) {
    if (!m_pShaderProg)
        m_pShaderProg = new (std::nothrow) MeshRendererPrograms;
    if (!m_pShaderProg)
        return false;
    if (!m_pShaderProg->IsProgramValid()) {
        delete m_pShaderProg;
        m_pShaderProg = nullptr;
    }
    if (!m_pShaderProg || !glContextIsCurrent()) {
        hostDiagnostic(NHostDiagnosticMisuse, "NglMeshRenderer::RenderBegin - Failed to create shader");
        return false;
    }
    if (IsEnvironmentReflectionEnabled())
        NImageBasedLightHandler::Initialize();
    programsOf(*m_pShaderProg).select();
    const NShaderProgram& program = ShaderProgram();
    m_positionLocation = static_cast<std::uint32_t>(program.GetVertexAttributeLocation("g_pos_attrib"));
    m_normalLocation = static_cast<std::uint32_t>(program.GetVertexAttributeLocation("g_vnorm_attrib"));
    SetShaderUniforms(pass);
    SetPBRAndHDRUniforms();
    readOpaqueColor(kFrontColorIndex, m_frontColor);
    readOpaqueColor(kBackColorIndex, m_backColor);
    return true;
}

NShaderProgram& NglMeshRenderer::ShaderProgram() {
    return programsOf(*m_pShaderProg).selected();
}

void NglMeshRenderer::RenderEnd() {
    if (m_pShaderProg && glContextIsCurrent())
        m_pShaderProg->UseProgram(false);
    m_positionLocation = m_normalLocation = kNoLocation;
}

void NglMeshRenderer::SetShaderUniforms(RenderPass pass) {
    const _NglInfoStr& info = *NglGetNglInfo();
    NShaderProgram& program = ShaderProgram();
    glGetFloatv(GL_MODELVIEW_MATRIX, m_modelView);
    glGetFloatv(GL_PROJECTION_MATRIX, m_projection);
    for (std::size_t i = 0; i < std::size(m_lights); ++i) {
        if (info.lights[i].enabled == 1)
            m_lights[i] = info.lights[i];
        m_lights[i].enabled = info.lights[i].enabled;
    }
    m_frontMaterial = info.frontMaterial;
    m_backMaterial = info.backMaterial;
    m_cameraPosition[0] = static_cast<float>(info.cameraPosition.x);
    m_cameraPosition[1] = static_cast<float>(info.cameraPosition.y);
    m_cameraPosition[2] = static_cast<float>(info.cameraPosition.z);

    program.SetMVPMatrices(m_projection, m_modelView, true);
    if (&program == m_pShaderProg) { // the others have no such uniforms
        program.SetMateiralUniforms(&m_frontMaterial, &m_backMaterial);
        program.SetLightUniforms(static_cast<int>(std::size(m_lights)), m_lights);
    }
    program.SetUniformValue(RenderUniformLightsOff, 0);
    program.SetVec3UniformValue(RenderUniformCameraPosition, m_cameraPosition);
    program.SetUniformValue(RenderUniformTransparent, pass == RenderPassTransparent);
    program.SetUniformValue(RenderUniformClipped, 0);
}

void NglMeshRenderer::SetPBRAndHDRUniforms() {
    NShaderProgram& program = ShaderProgram();
    if (!IsPhysicallyBasedRenderingEnabled()) {
        program.SetUniformValue(RenderUniformPhysicallyBased, 0);
        return;
    }
    makePbrLights(*NglGetNglInfo(), m_pbrLights);
    programsOf(*m_pShaderProg).setPbrLights(m_pbrLights);
    program.SetUniformValue(RenderUniformEnvironmentReflection, 0);
    if (reflectsEnvironment()) {
        bindMaps(program);
        program.SetUniformValue(RenderUniformEnvironmentReflection, 1);
    }
    program.SetUniformValue(RenderUniformPhysicallyBased, 1);
}

// --- drawing -----------------------------------------------------------------------------------------------

void NglMeshRenderer::Render(const float* positions, const float* normals, unsigned int triCount,
                             const unsigned int* triIndices, unsigned int quadCount,
                             const unsigned int* quadIndices) {
    Render(positions, normals, triCount, triIndices, quadCount, quadIndices, m_attributes);
}

void NglMeshRenderer::Render(const float* positions, const float* normals, unsigned int triCount,
                             const unsigned int* triIndices, unsigned int quadCount,
                             const unsigned int* quadIndices, const _RenderAttributes& attributes) {
    if (triCount == 0 && quadCount == 0)
        return;
    if (!m_pShaderProg || m_positionLocation == kNoLocation || m_normalLocation == kNoLocation ||
        !glContextIsCurrent()) {
        hostDiagnostic(
            NHostDiagnosticMisuse,
            "Invalid call to NglMeshRenderer::Render, please check if NglMeshRenderer::RenderBegin "
            "is called upfront and is successful!");
        return;
    }
    if (!positions || !normals)
        return;
    SetDrawUniforms(attributes);
    NShaderProgram& program = ShaderProgram();
    const ClientArraysGuard hostArrays;
    const PlainIndicesGuard indices;
    std::optional<PlainMapsGuard> maps;
    if (IsPhysicallyBasedRenderingEnabled() && reflectsEnvironment())
        maps.emplace();
    const MeshRendererPrograms::Binding block(programsOf(*m_pShaderProg));
    // Asked of the program: another renderer may have begun with another one since.
    const AttributeArray positionArray(program, RenderAttribPosition, positions);
    const AttributeArray normalArray(program, RenderAttribVertexNormal, normals);
    const Elements elements{triCount, quadCount, triIndices, quadIndices};
    attributes.transparency ? drawBackFacesFirst(elements) : elements.draw();
}

void NglMeshRenderer::SetDrawUniforms(const _RenderAttributes& attributes) {
    // Deliberate: a name that the table does not hold leaves the program with the appearance of the draw
    // before.
    NShaderProgram& program = ShaderProgram();
    _RenderMaterialApperance appearance = MeshRendererPrograms::kDefaultAppearance;
    if (IsPhysicallyBasedRenderingEnabled() &&
        NRenderMaterialApperanceHandler::Get(attributes.materialName, appearance))
        programsOf(*m_pShaderProg).setAppearance(appearance);
    glGetFloatv(GL_MODELVIEW_MATRIX, m_modelView);
    program.SetMVPMatrices(nullptr, m_modelView, true);
    float color[3];
    readColor(attributes.color, color);
    if (attributes.frontAndBackRender)
        programsOf(*m_pShaderProg).setSides(m_frontColor, m_backColor);
    else
        programsOf(*m_pShaderProg).setSides(color, color);
    program.SetVec3UniformValue(RenderUniformColor, color);
    program.SetUniformValue(RenderUniformFrontBackColors, attributes.frontAndBackRender);
    if (attributes.frontAndBackRender) {
        program.SetVec4UniformValue(RenderUniformBackColor, m_backColor);
        program.SetVec4UniformValue(RenderUniformFrontColor, m_frontColor);
    }
    if (attributes.transparency)
        programsOf(*m_pShaderProg).setAlpha(attributes.alpha);
}

} // namespace ngl
