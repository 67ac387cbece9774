#include "NRenderUtl/mesh/meshrendererprograms.h"

#include "NRenderUtl/host/hostgl.h"

bool reflectsEnvironment() {
    return IsEnvironmentReflectionEnabled() && NImageBasedLightHandler::IsValid();
}

MeshRendererPrograms::MeshRendererPrograms() {
    if (GLeeEnabled(GLeeVertexShader) && GLeeEnabled(GLeeFragmentShader))
        buildMeshRenderer();
}

NShaderProgram& MeshRendererPrograms::built(Variant& variant, const char* define) {
    if (!variant.tried)
        variant.program.buildMeshPhysical({{define}, {}});
    variant.tried = true;
    return variant.program.IsProgramValid() ? variant.program : static_cast<NShaderProgram&>(*this);
}

NShaderProgram& MeshRendererPrograms::choose() {
    if (!IsPhysicallyBasedRenderingEnabled())
        return *this;
    if (reflectsEnvironment())
        return built(m_environment, "ENVIRONMENT");
    return built(m_rig, "LIGHT_RIG");
}

void MeshRendererPrograms::select() {
    m_selected = &choose();
    m_selected->UseProgram(true);
    setAppearance(m_appearance);
    setAlpha(m_alpha);
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
