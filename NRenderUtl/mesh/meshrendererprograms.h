// The programs of the mesh renderer: one that does all that its uniforms say, and faster ones of the same
// picture that do a part.
#pragma once

#include <map>
#include <optional>
#include <utility>

#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/mesh/meshrendererblock.h"
#include "NRenderUtl/shaders/shadercatalogue.h"

/// The program that does all, with the others beside it.
class MeshRendererPrograms : public ComposedProgram {
public:
    /// Builds the program that does all; not valid where the driver lacks shaders or refuses it.
    MeshRendererPrograms();

    /// Takes the fastest program into use that gives the picture, with what an earlier one was told of
    /// material and alpha.
    void select();
    /// The one that was selected last.
    NShaderProgram& selected() { return *m_selected; }

    /// Binds what the selected program reads beside its uniforms and maps, for the length of a block.
    class Binding {
    public:
        explicit Binding(MeshRendererPrograms& programs);

    private:
        std::optional<BlockUnitGuard> m_unit;
    };

    /// Lights of the rig.
    void setPbrLights(NglLightParams (&lights)[8]);
    void setAppearance(const _RenderMaterialApperance& appearance);
    void setAlpha(float alpha);
    /// For the classic programs that read the block, which have this in place of the other colours. Channels
    /// are those of bytes.
    void setSides(const float* front, const float* back);

    /// The appearance before any is set.
    static constexpr _RenderMaterialApperance kDefaultAppearance = {
        .metalness = 0.3f, .roughness = 0.2f, .ambientOcclusion = 1.0f, .reflectivity = 0.92f};

private:
    struct Variant {
        ComposedProgram program;
        bool tried = false;
    };
    /// The program that does all where the variant cannot be built.
    template <class Build>
    NShaderProgram& built(Variant& variant, const Build& build);
    NShaderProgram& physical(Variant& variant, const char* define);
    NShaderProgram& classic();
    NShaderProgram& lightRig();
    NShaderProgram& choose();

    Variant m_rig, m_environment;
    std::map<std::pair<LightKinds, bool>, Variant>
        m_classic; ///< by the lights, and whether they make highlights
    MeshRendererBlock m_block;
    bool m_readsBlock = false;
    NShaderProgram* m_selected = this;
    _RenderMaterialApperance m_appearance = kDefaultAppearance;
    float m_alpha = 0.0f;
};

/// Whether meshes are lit by the maps of the environment.
bool reflectsEnvironment();
