#include "NRenderUtl/mesh/elementuniforms.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>

#include "NRenderUtl/shaders/shadernames.h"

namespace {

constexpr int kSelectionIndex = 33, kHighlightIndex = 32; // of the record's palette
// Contour types of the programs.
constexpr int kNoContour = 0, kSmearedContour = 1, kElementContour = 2, kBandedContour = 3;

std::array<float, 4> floatsOf(NgColorLong color) {
    std::array<float, 4> rgba{0.0f, 0.0f, 0.0f, 1.0f};
    ngl_get_floats_from_color_long(color, rgba[0], rgba[1], rgba[2]);
    return rgba;
}

/// As colorOfCode of blocklighting.glsl takes it.
int codeOf(NgColorLong color) {
    return static_cast<int>(color & 0xFFFFFF);
}

template <class T>
bool sameBytes(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

int contourType(const ElementPlan& plan) {
    if (!plan.contour)
        return kNoContour;
    if (plan.ofElements)
        return kElementContour;
    return plan.smeared ? kSmearedContour : kBandedContour;
}

/// What tells the own programs apart, which a frame looks up without making a variant.
struct ProgramKey {
    std::array<int, std::tuple_size_v<ElementSwitches>> switches;
    bool highlights = false;
    LightKinds lights{};
    bool cells = false, flatShade = false;
    auto operator<=>(const ProgramKey&) const = default;
};

ProgramKey keyOf(const ElementPlan& plan, const ElementSwitches& switches) {
    ProgramKey key;
    std::ranges::transform(switches, key.switches.begin(), &ElementSwitch::value);
    key.cells = plan.celled;
    key.flatShade = plan.needsElements() && !plan.contour;
    if (plan.look != ElementLook::Unlit) {
        key.highlights = hasHighlights(blockLighting());
        key.lights = kindsOfLights(blockLighting());
    }
    return key;
}

MeshProgramVariant variantOf(const ElementSwitches& switches, const ProgramKey& key) {
    MeshProgramVariant variant;
    for (const ElementSwitch& fixed : switches)
        variant.switches.push_back({kUniformNames[fixed.uniform], fixed.value});
    variant.switches.push_back({"g_use_clr_scale", 1});
    variant.block = true;
    variant.highlights = key.highlights;
    variant.lights = key.lights;
    variant.cells = key.cells;
    variant.flatShade = key.flatShade;
    variant.windingNormals = true;
    return variant;
}

} // namespace

BlockLighting blockLighting() {
    const _NglInfoStr& record = *NglGetNglInfo();
    return {record.lights, record.frontMaterial, record.backMaterial};
}

bool fetchesNormals(const ElementPlan& plan) {
    return (plan.way != ElementWay::Geometry && plan.look == ElementLook::Faces) ||
           (plan.way == ElementWay::Mesh && plan.look == ElementLook::Facets);
}

ElementSwitches switchesOf(const ElementPlan& plan, bool derived) {
    return {{{RenderUniformSmooth, plan.look == ElementLook::Smooth},
             {RenderUniformNormalWithoutSharp, 1},
             {RenderUniformUseElementNormals, fetchesNormals(plan)},
             {RenderUniformLightsOff, plan.look == ElementLook::Unlit},
             {RenderUniformUnlit, 0}, // that switch would paint elements over front and back colours
             {RenderUniformPhysicallyBased, 0},
             {RenderUniformClipped, 1},
             {RenderUniformFrontBackColors, plan.facing},
             // Opaque faces too: the alpha of an element's own colour is not one.
             {RenderUniformTransparent, 1},
             {RenderUniformContour, plan.contour},
             {RenderUniformContourType, contourType(plan)},
             {RenderUniformAllVisible, !plan.hidden},
             {RenderUniformSelection, plan.selected},
             {RenderUniformElementColors, plan.colored},
             {RenderUniformClipFlag, plan.clipFlag},
             {RenderUniformFailureTest, plan.failureMode != 0},
             {RenderUniformFailureMode, plan.failureMode},
             {RenderUniformFailingConnectivity, 0},
             {RenderUniformDerivedConnectivity, derived},
             {RenderUniformDerivedVisibility, 0}}};
}

ElementProgram& ownProgram(const ElementPlan& plan, bool derived) {
    static std::map<ProgramKey, ElementProgram> known;
    const ElementSwitches switches = switchesOf(plan, derived);
    const ProgramKey key = keyOf(plan, switches);
    if (const auto found = known.find(key); found != known.end())
        return found->second;
    NShaderProgram& program = elementMeshProgram(variantOf(switches, key));
    ElementProgram& made = known.try_emplace(key, ElementProgram{program}).first->second;
    if (program.IsProgramValid())
        made.numberLocation = program.GetVertexAttributeLocation(kElementAttribute);
    return made;
}

// --- setting -----------------------------------------------------------------------------------------------

bool ElementUniforms::isNew(RenderingShaderUniform uniform, std::uint32_t bits) {
    if (!m_memory)
        return true;
    if (m_memory->plain[uniform] == bits)
        return false;
    m_memory->plain[uniform] = bits;
    return true;
}

void ElementUniforms::set(RenderingShaderUniform uniform, int value) {
    if (isNew(uniform, static_cast<std::uint32_t>(value)))
        m_program.SetUniformValue(uniform, value);
}

void ElementUniforms::set(RenderingShaderUniform uniform, float value) {
    if (isNew(uniform, std::bit_cast<std::uint32_t>(value)))
        m_program.SetUniformValue(uniform, value);
}

void ElementUniforms::setColor3(RenderingShaderUniform uniform, NgColorLong color) {
    std::array<float, 4> rgb = floatsOf(color);
    if (isNew(uniform, color & 0xFFFFFF))
        m_program.SetVec3UniformValue(uniform, rgb.data());
}

void ElementUniforms::setColor4(RenderingShaderUniform uniform, NgColorLong color) {
    std::array<float, 4> rgba = floatsOf(color);
    if (isNew(uniform, color & 0xFFFFFF))
        m_program.SetVec4UniformValue(uniform, rgba.data());
}

void ElementUniforms::setMatrices(Matrix projection, Matrix modelView) {
    const std::array<Matrix, 2> both{projection, modelView};
    if (m_memory && m_memory->matrices && sameBytes(*m_memory->matrices, both))
        return;
    m_program.SetMVPMatrices(projection.data(), modelView.data(), true);
    if (m_memory)
        m_memory->matrices = both;
}

void ElementUniforms::setLighting() {
    _NglInfoStr& record = *NglGetNglInfo();
    m_program.SetLightUniforms(static_cast<int>(std::size(record.lights)), record.lights);
    m_program.SetMateiralUniforms(&record.frontMaterial, &record.backMaterial);
}

void ElementUniforms::setScale(const ElementValues& values) {
    if (!m_memory) {
        m_program.SetUniformValue("g_use_clr_scale", 1);
        m_program.SetColorScaleUniforms(&values.scale);
    } else if (m_memory->scaleNumber != values.scaleNumber) {
        const ScaleEntries& scale = *values.entries;
        float entries[3] = {static_cast<float>(scale.entries.size() - 1), scale.guessFactor,
                            scale.guessOffset};
        m_program.SetVec3UniformValue(kEntriesUniform, entries);
        m_memory->scaleNumber = values.scaleNumber;
    }
}

void ElementUniforms::setColors(const ElementPlan& plan, const ngl::NglElementAttributes& how) {
    setColor3(RenderUniformColor, how.color);
    if (plan.facing) {
        setColor4(RenderUniformFrontColor, how.frontColor);
        setColor4(RenderUniformBackColor, how.backColor);
    }
    if (plan.selected) {
        setColor3(RenderUniformSelectionColor, NglGetColorGivenIndex(kSelectionIndex));
        setColor3(RenderUniformHighlightColor, NglGetColorGivenIndex(kHighlightIndex));
    }
}

void ElementUniforms::setCodes(const ElementPlan& plan, const ngl::NglElementAttributes& how) {
    std::array<int, 4> codes{codeOf(plan.facing ? how.frontColor : how.color), codeOf(how.backColor),
                             codeOf(NglGetColorGivenIndex(kSelectionIndex)),
                             codeOf(NglGetColorGivenIndex(kHighlightIndex))};
    if (m_memory->codes == codes)
        return;
    m_program.SetUniformValue(kSidesUniform, static_cast<int>(codes.size()), codes.data());
    m_memory->codes = codes;
}

void ElementUniforms::setLook(const ElementPlan& plan, const ElementScene& scene) {
    const ngl::NglElementAttributes& how = scene.attributes;
    if (plan.look != ElementLook::Unlit && !m_memory)
        setLighting();
    if (m_memory)
        setCodes(plan, how);
    else
        setColors(plan, how);
    set(RenderUniformAlpha, how.opacity > 0.0f ? std::min(how.opacity, 1.0f) : 0.0f);
    if (plan.contour)
        setScale(scene.values);
    set(RenderUniformFailureLevel, how.failureLevel);
}
