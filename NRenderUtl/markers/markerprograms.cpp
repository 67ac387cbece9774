// The programs of markers, each sent a section once.
#include "NRenderUtl/markers/markerprograms.h"

#include <compare>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/markers/markersection.h"
#include "NRenderUtl/shaders/shadercatalogue.h"

namespace {

struct Entry {
    bool tried = false;
    unsigned section = 0; ///< number of the one sent
    ComposedProgram program;
};

struct Variant {
    MarkerProgramKind kind;
    bool contoured;
    int onlyLight; ///< -1 for none or several
    bool highlights;
    bool plain;   ///< the only light neither fades nor shines, on opaque colours
    bool blended; ///< what Single takes by a uniform, as values
    auto operator<=>(const Variant&) const = default;
};

/// Drivers in software loop over lights at the price of shading.
int onlyLight() {
    int only = -1, count = 0;
    for (int i = 0; i < static_cast<int>(std::size(markerSection().lights)); ++i)
        if (markerSection().lights[i].enabled == 1 && ++count == 1)
            only = i;
    return count == 1 ? only : -1;
}

/// Whether there is any; alpha, which they would raise, is 1 without them where the materials say so.
bool hasHighlights() {
    const MarkerSection& section = markerSection();
    const auto isBlack = [](const float(&color)[4]) {
        return color[0] == 0 && color[1] == 0 && color[2] == 0;
    };
    const bool isOpaque = section.frontMaterial.emission[3] + section.backMaterial.emission[3] >= 1;
    return !isOpaque || !isBlack(section.frontMaterial.specular) || !isBlack(section.backMaterial.specular);
}

bool isPlain(const NglLightParams& light) {
    return light.constantAttenuation == 1 && light.linearAttenuation == 0 &&
           light.quadraticAttenuation == 0 && light.ambient[3] >= 0 && light.diffuse[3] >= 0;
}

Variant variantOf(MarkerProgramKind kind, bool contoured) {
    const bool isSingle = kind == MarkerProgramKind::Single || kind == MarkerProgramKind::SingleColor;
    const bool blended = !isSingle && glIsEnabled(GL_BLEND);
    const Variant variant{kind, contoured, onlyLight(), hasHighlights(), false, blended};
    if (variant.onlyLight >= 0 && !variant.highlights && isPlain(markerSection().lights[variant.onlyLight]))
        return {kind, contoured, -1, false, true, blended};
    return variant;
}

void sendPlainly(NShaderProgram& program) {
    setSectionView(program);
    program.SetUniformValue(RenderUniformContourTexture, 0);
    MarkerSection section = markerSection(); // programs take pointers to what they only read
    NglLightParams& light = section.lights[onlyLight()];
    float emission[4];
    for (std::size_t k = 0; k < 4; ++k)
        emission[k] = section.frontMaterial.emission[k] + section.backMaterial.emission[k];
    program.SetVec4UniformValue("g_lightposition", light.position);
    program.SetVec4UniformValue("g_lightambient", light.ambient);
    program.SetVec4UniformValue("g_lightdiffuse", light.diffuse);
    program.SetVec4UniformValue("g_emission", emission);
}

void build(ComposedProgram& program, const Variant& variant) {
    SourceChanges changes;
    changes.plainLight = variant.plain;
    if (variant.onlyLight >= 0)
        changes.defines.push_back("ONLY_LIGHT " + std::to_string(variant.onlyLight));
    if (!variant.highlights && !variant.plain)
        changes.defines.push_back("NO_HIGHLIGHTS");
    if (variant.contoured)
        changes.defines.push_back("VALUES_BY_MARKER");
    else if (variant.kind != MarkerProgramKind::Single)
        changes.switches.push_back({"g_bct", 0});
    if (variant.kind != MarkerProgramKind::Single && !variant.blended)
        changes.switches.push_back({"g_transparent", 0});
    switch (variant.kind) {
    case MarkerProgramKind::Single:
    case MarkerProgramKind::SingleColor:
        program.buildMarkers(changes);
        break;
    case MarkerProgramKind::Instances:
        changes.defines.push_back("INSTANCES");
        program.buildMarkers(changes);
        break;
    case MarkerProgramKind::Triangles:
        program.buildMarkerTriangles(changes);
        break;
    case MarkerProgramKind::SphereDiscs:
        program.buildMarkerDiscs(changes);
        break;
    default:
        if (variant.kind == MarkerProgramKind::SphereRays ||
            variant.kind == MarkerProgramKind::SphereRaysByDepth)
            changes.defines.push_back("SPHERES");
        if (variant.kind == MarkerProgramKind::CylinderRaysByDepth ||
            variant.kind == MarkerProgramKind::SphereRaysByDepth)
            changes.defines.push_back("BY_DEPTH");
        program.buildMarkerRays(changes);
    }
}

} // namespace

NShaderProgram* useMarkerProgram(MarkerProgramKind kind, bool contoured) {
    static std::map<Variant, Entry> entries;
    const Variant variant = variantOf(kind, contoured);
    if (kind == MarkerProgramKind::SingleColor && !variant.plain)
        return nullptr;
    Entry& entry = entries[variant];
    if (!std::exchange(entry.tried, true))
        build(entry.program, variant);
    if (!entry.program.IsProgramValid())
        return nullptr;
    entry.program.UseProgram(true);
    if (std::exchange(entry.section, markerSection().number) != markerSection().number) {
        variant.plain ? sendPlainly(entry.program) : setSectionUniforms(entry.program);
    }
    if (kind == MarkerProgramKind::Single || variant.blended)
        setBlendingUniforms(entry.program, glIsEnabled(GL_BLEND));
    return &entry.program;
}
