// The catalogue of programs: which sources make which, and the start-up that decides on optimized rendering.
#include "NRenderUtl/shaders/shadercatalogue.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/shaders/blocklayout.h"
#include "NRenderUtl/shaders/gllabel.h"
#include "NRenderUtl/shaders/programinuse.h"
#include "NRenderUtl/shaders/renderswitches.h"
#include "NRenderUtl/shaders/samplerunits.h"
#include "NRenderUtl/shaders/shadersources.h"
#include "NRenderUtl/shaders/startuphook.h"
#include "NRenderUtl/shaders/texturebufferprobe.h"

using Sources = std::vector<const char*>; ///< main source first

struct ProgramComposition {
    const char* label;
    Sources vertex, geometry, fragment;
    int geometryInputKind;
};

namespace {

const ProgramComposition& compositionOf(_RenderingShaderType type) {
    static const Sources meshGeometryFragment = {kMeshGeometryFragmentMain, kLightingLibrary,
                                                 kColorBandLibrary};
    static const std::array<ProgramComposition, 4> compositions = {{
        {"NRenderUtl mesh",
         {kMeshVertexMain},
         {},
         {kMeshFragmentMain, kLightingLibrary, kColorBandLibrary, kElementVisibilityLibrary,
          kVisibilityListLibrary},
         0},
        {"NRenderUtl mesh triangles",
         {kMeshVertexMain},
         {kMeshTriangleGeometryMain, kConnectivityLibrary, kLightingLibrary, kElementVisibilityLibrary,
          kVisibilityListLibrary},
         meshGeometryFragment,
         3},
        {"NRenderUtl mesh quads",
         {kMeshVertexMain},
         {kMeshQuadGeometryMain, kConnectivityLibrary, kLightingLibrary, kElementVisibilityLibrary,
          kVisibilityListLibrary},
         meshGeometryFragment,
         4},
        {"NRenderUtl points",
         {kPointVertexMain},
         {},
         {kPointFragmentMain, kLightingLibrary, kColorBandLibrary, kElementVisibilityLibrary},
         0},
    }};
    return compositions[type - RenderShaderMesh];
}

/// The libraries that read from a block for those that read uniforms.
Sources withBlock(Sources sources) {
    std::replace(sources.begin(), sources.end(), kLightingLibrary, kBlockLightingLibrary);
    std::replace(sources.begin(), sources.end(), kColorBandLibrary, kBlockBandLibrary);
    return sources;
}

/// The library for one light in place of that for all, in the vertex stage too.
void takePlainLight(ProgramComposition& composition) {
    std::replace(composition.fragment.begin(), composition.fragment.end(), kLightingLibrary,
                 kPlainLightLibrary);
    composition.vertex.push_back(kPlainLightLibrary);
}

std::vector<std::string> blockDefines() {
    const auto define = [](const char* name, int value) {
        return std::string(name) + " " + std::to_string(value);
    };
    return {"PARAMETER_BLOCK",
            define("BLOCK_EMISSION", BlockEmission),
            define("BLOCK_FRONT", BlockFront),
            define("BLOCK_BACK", BlockBack),
            define("BLOCK_LIGHTS", BlockLights),
            define("BLOCK_CELL_MAP", BlockCellMap),
            define("BLOCK_CELLS", BlockCells),
            define("BLOCK_LAST_CELL", BlockCells + kBlockCells - 1),
            define("BLOCK_ENTRIES", BlockEntries),
            define("BLOCK_PLAIN", BlockPlain),
            define("BLOCK_PLAIN_LIGHTS", BlockPlainLights),
            define("BLOCK_PLAIN_SPECULAR", BlockPlainSpecular)};
}

void fixSwitch(std::string& source, const FixedSwitch& fixed) {
    const std::string uniform = "uniform int " + fixed.name + ";";
    const std::size_t at = source.find(uniform);
    if (at != std::string::npos)
        source.replace(at, uniform.size(),
                       "const int " + fixed.name + " = " + std::to_string(fixed.value) + ";");
}

/// The strings of one stage, the main one first.
class StageSources {
public:
    StageSources(const Sources& sources, const SourceChanges& changes)
        : m_texts(sources.begin(), sources.end()) {
        for (std::string& text : m_texts)
            for (const FixedSwitch& fixed : changes.switches)
                fixSwitch(text, fixed);
        for (const std::string& define : changes.defines)
            if (!m_texts.empty())
                m_texts.front().insert(m_texts.front().find('\n') + 1, "#define " + define + "\n");
        for (const std::string& text : m_texts)
            m_pointers.push_back(text.c_str());
    }
    int count() const { return static_cast<int>(m_pointers.size()); }
    /// All in one string.
    std::string joined() const { return std::accumulate(m_texts.begin(), m_texts.end(), std::string()); }
    const char** data() { return m_pointers.data(); }

private:
    std::vector<std::string> m_texts;
    Sources m_pointers;
};

struct Catalogue {
    bool initialised = false;
    std::array<ComposedProgram, 4> programs;

    ComposedProgram& program(_RenderingShaderType type) { return programs[type - RenderShaderMesh]; }
    bool build(_RenderingShaderType type) { return program(type).build(type); }
};

Catalogue& catalogue() {
    static Catalogue catalogue;
    return catalogue;
}

void switchOff(int kind, const char* message) {
    renderSwitches().fastRenderer = 0;
    renderSwitches().geometryShaderRendering = 0;
    hostMessage(kind, message);
}

void switchGeometryStagesOff(int kind, const char* message) {
    renderSwitches().geometryShaderRendering = 0;
    hostMessage(kind, message);
}

void buildGeometryPrograms() {
    const bool triangles = catalogue().build(RenderShaderMeshTriangles);
    const bool quads = catalogue().build(RenderShaderMeshQuads);
    if (!triangles || !quads)
        switchGeometryStagesOff(NHostMessageStatus, "\nOptimized smooth shaded rendering is disabled\n");
}

void buildPointProgram() {
    if (catalogue().build(RenderShaderPoints)) {
        hostMessage(NHostMessageStatus, "\nOptimized rendering is enabled\n");
        return;
    }
    // Deliberate: the fast renderer stays on, as the mesh programs can be used.
    renderSwitches().sphereShaderRendering = 0;
    renderSwitches().optimizedSph = 0;
    hostMessage(NHostMessageStatus, "\nOptimized rendering is disabled\n");
}

void buildCatalogue() {
    if (!catalogue().build(RenderShaderMesh)) {
        switchOff(NHostMessageStatus, "\nOptimized rendering is disabled\n");
        return;
    }
    if (renderSwitches().geometryShaderRendering == 1)
        buildGeometryPrograms();
    buildPointProgram();
}

void startUp() {
    if (!NglIsShaderSupported()) {
        switchOff(NHostMessageAdvice,
                  "\nPlease update your graphic card to benefit from our optimized rendering\n");
        return;
    }
    if (renderSwitches().geometryShaderRendering == 1 && !GLeeEnabled(GLeeGeometryStage) &&
        !GLeeEnabled(GLeeGeometryStageExt))
        switchGeometryStagesOff(
            NHostMessageAdvice,
            "\nPlease update your graphic card to benefit from our optimized smooth shaded rendering\n");
    TextureBufferProbe probe;
    if (!probe.run()) {
        switchOff(NHostMessageAdvice,
                  "\nPlease update your graphic card driver to benefit from our optimized rendering\n");
        return;
    }
    buildCatalogue();
}

} // namespace

bool ComposedProgram::build(_RenderingShaderType type, SourceChanges changes) {
    return compose(compositionOf(type), std::move(changes));
}

bool ComposedProgram::buildBatch(SourceChanges changes) {
    return compose({"NRenderUtl batch", {kBatchVertexMain}, {}, {kBatchFragmentMain, kColorBandLibrary}, 0},
                   std::move(changes));
}

bool ComposedProgram::buildMeshRenderer(SourceChanges changes) {
    return compose({"NRenderUtl mesh renderer",
                    {kMeshRendererVertexMain},
                    {},
                    {kMeshRendererFragmentMain, kLightingLibrary},
                    0},
                   std::move(changes));
}

bool ComposedProgram::buildMeshPhysical(SourceChanges changes) {
    return compose(
        {"NRenderUtl mesh renderer", {kMeshPhysicalVertexMain}, {}, {kMeshPhysicalFragmentMain}, 0},
        std::move(changes));
}

bool ComposedProgram::buildMarkers(SourceChanges changes) {
    return compose(
        {"NRenderUtl markers", {kMarkerVertexMain}, {}, {kMarkerFragmentMain, kLightingLibrary}, 0},
        std::move(changes));
}

bool ComposedProgram::buildMarkerTriangles(SourceChanges changes) {
    return compose({"NRenderUtl marker triangles",
                    {kMarkerTrianglesVertexMain},
                    {},
                    {kMarkerFragmentMain, kLightingLibrary},
                    0},
                   std::move(changes));
}

bool ComposedProgram::buildMarkerRays(SourceChanges changes) {
    return compose({"NRenderUtl marker rays",
                    {kMarkerRaysVertexMain},
                    {},
                    {kMarkerRaysFragmentMain, kLightingLibrary},
                    0},
                   std::move(changes));
}

bool ComposedProgram::buildMarkerDiscs(SourceChanges changes) {
    return compose({"NRenderUtl marker discs",
                    {kMarkerDiscsVertexMain},
                    {},
                    {kMarkerDiscsFragmentMain, kLightingLibrary},
                    0},
                   std::move(changes));
}

bool ComposedProgram::compose(ProgramComposition composition, SourceChanges changes) {
    if (changes.block) {
        composition.fragment = withBlock(composition.fragment);
        const std::vector<std::string> defines = blockDefines();
        changes.defines.insert(changes.defines.end(), defines.begin(), defines.end());
    }
    if (changes.plainLight) {
        takePlainLight(composition);
        changes.defines.push_back("PLAIN_LIGHT");
    }
    const std::string vertex = StageSources(composition.vertex, changes).joined();
    StageSources geometry(composition.geometry, changes);
    StageSources fragment(composition.fragment, changes);
    if (!CompileProgram(vertex.c_str(), fragment.count(), fragment.data(), geometry.count(), geometry.data(),
                        composition.geometryInputKind))
        return false;
    labelGlObject(GL_PROGRAM, static_cast<GLuint>(m_program), composition.label);
    assignSamplerUnits(*this);
    return true;
}

int RenderingInitShaders() {
    runStartUpHook();
    if (!catalogue().initialised) {
        catalogue().initialised = true;
        startUp();
    }
    return 0;
}

NShaderProgram* RenderingGetShaderProgram(_RenderingShaderType type) {
    if (type < RenderShaderMesh || type > RenderShaderPoints)
        return nullptr;
    NShaderProgram& program = catalogue().program(type);
    program.SetShaderTypeAttached(type);
    return &program;
}
