#include "NRenderUtl/mesh/meshrendererprograms.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

bool isNegative(float value) {
    return !(value >= 0.0f);
}

/// Whether the model gives an alpha of 1 everywhere: emission has it already, and no light takes from it.
bool isLitOpaque(const _NglInfoStr& info) {
    if (info.frontMaterial.emission[3] + info.backMaterial.emission[3] < 1.0f ||
        isNegative(info.frontMaterial.specular[3]) || isNegative(info.backMaterial.specular[3]))
        return false;
    return std::none_of(std::begin(info.lights), std::end(info.lights), [](const NglLightParams& light) {
        return light.enabled == 1 &&
               (isNegative(light.ambient[3]) || isNegative(light.diffuse[3]) ||
                isNegative(light.specular[3]) || isNegative(light.constantAttenuation) ||
                isNegative(light.linearAttenuation) || isNegative(light.quadraticAttenuation));
    });
}

/// Of unit length, as the program takes them, in the order of the rig.
MeshRendererBlock::Texels lightDirections(const NglLightParams (&lights)[8]) {
    MeshRendererBlock::Texels texels{};
    for (std::size_t i = 0; i < std::size(lights); ++i) {
        NgFVector3 direction{lights[i].position[0], lights[i].position[1], lights[i].position[2]};
        direction.normalise();
        texels[i] = {direction.x, direction.y, direction.z, 0};
    }
    return texels;
}

/// A byte each for red, green and blue.
int codeOf(const float* rgb) {
    const auto byte = [](float channel) { return static_cast<int>(channel * 255 + 0.5f); };
    return byte(rgb[0]) | byte(rgb[1]) << 8 | byte(rgb[2]) << 16;
}

MeshRendererBlock::Texels classicTexels(const BlockLighting& lighting) {
    MeshRendererBlock::Texels texels;
    putLighting(lighting, kindsOfLights(lighting), texels);
    return texels;
}

} // namespace

bool reflectsEnvironment() {
    return IsEnvironmentReflectionEnabled() && NImageBasedLightHandler::IsValid();
}

MeshRendererPrograms::MeshRendererPrograms() {
    if (GLeeEnabled(GLeeVertexShader) && GLeeEnabled(GLeeFragmentShader))
        buildMeshRenderer();
}

MeshRendererPrograms::Binding::Binding(MeshRendererPrograms& programs) {
    if (!programs.m_readsBlock)
        return;
    m_unit.emplace();
    programs.m_block.bind();
}

template <class Build>
NShaderProgram& MeshRendererPrograms::built(Variant& variant, const Build& build) {
    if (!variant.tried)
        build(variant.program);
    variant.tried = true;
    return variant.program.IsProgramValid() ? variant.program : static_cast<NShaderProgram&>(*this);
}

NShaderProgram& MeshRendererPrograms::physical(Variant& variant, const char* define) {
    return built(variant, [=](ComposedProgram& program) { program.buildMeshPhysical({{define}, {}}); });
}

/// Lights and materials from the block, whose model has no alpha of its own.
NShaderProgram& MeshRendererPrograms::classic() {
    const _NglInfoStr& info = *NglGetNglInfo();
    const BlockLighting lighting{info.lights, info.frontMaterial, info.backMaterial};
    if (!isLitOpaque(info) || !m_block.isUsable())
        return *this;
    const bool highlights = hasHighlights(lighting);
    const LightKinds lights = kindsOfLights(lighting);
    NShaderProgram& program = built(m_classic[{lights, highlights}], [=](ComposedProgram& variant) {
        SourceChanges changes{{}, {{"g_usepbrmat", 0}, {"g_lightsOff", 0}}, true};
        if (!highlights)
            changes.defines.push_back("NO_HIGHLIGHTS");
        defineLights(changes.defines, lights);
        variant.buildMeshRenderer(changes);
    });
    if (&program == this)
        return program;
    m_block.set(classicTexels(lighting));
    m_readsBlock = true;
    return program;
}

NShaderProgram& MeshRendererPrograms::lightRig() {
    if (!m_block.isUsable())
        return *this;
    NShaderProgram& program = physical(m_rig, "LIGHT_RIG");
    m_readsBlock = &program != this;
    return program;
}

NShaderProgram& MeshRendererPrograms::choose() {
    if (!IsPhysicallyBasedRenderingEnabled())
        return classic();
    if (reflectsEnvironment())
        return physical(m_environment, "ENVIRONMENT");
    return lightRig();
}

void MeshRendererPrograms::select() {
    m_readsBlock = false;
    try {
        m_selected = &choose();
    } catch (const std::bad_alloc&) {
        m_selected = this;
    }
    m_selected->UseProgram(true);
    setAppearance(m_appearance);
    setAlpha(m_alpha);
}

void MeshRendererPrograms::setPbrLights(NglLightParams (&lights)[8]) {
    m_selected->SetPBRLightUniforms(static_cast<int>(std::size(lights)), lights);
    if (m_readsBlock)
        m_block.set(lightDirections(lights));
}

void MeshRendererPrograms::setAppearance(const _RenderMaterialApperance& appearance) {
    m_appearance = appearance;
    m_selected->SetUniformValue(RenderUniformMetalness, appearance.metalness);
    m_selected->SetUniformValue(RenderUniformRoughness, appearance.roughness);
    m_selected->SetUniformValue(RenderUniformReflectivity, appearance.reflectivity);
    m_selected->SetUniformValue(RenderUniformAmbientOcclusion, appearance.ambientOcclusion);
}

void MeshRendererPrograms::setAlpha(float alpha) {
    m_alpha = alpha;
    m_selected->SetUniformValue(RenderUniformAlpha, alpha);
}

void MeshRendererPrograms::setSides(const float* front, const float* back) {
    int codes[] = {codeOf(front), codeOf(back)};
    if (m_readsBlock)
        m_selected->SetUniformValue(kSidesUniform, 2, codes);
}
