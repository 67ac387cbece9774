#include "NRenderUtl/mesh/elementplan.h"

#include "NRenderUtl/mesh/elementindexing.h"
#include "NRenderUtl/shaders/nshaders.h"

namespace {

using namespace ngl;

ElementLook lookOf(const ElementScene& scene) {
    if (!scene.attributes.lit)
        return ElementLook::Unlit;
    if (scene.attributes.shading == NglElementSmooth)
        return ElementLook::Smooth;
    const bool ofFaces = scene.attributes.shading == NglElementNormals && scene.surface.quadCount > 0;
    return ofFaces ? ElementLook::Faces : ElementLook::Facets;
}

/// The mode that reads only what is there: levels that are all unset fail nowhere.
int failureMode(const ElementFacts& facts, int mode) {
    if (mode < 1 || mode > 3)
        return 0;
    const bool lower = mode != 2 && !facts.lower.isInitial(), upper = mode != 1 && !facts.upper.isInitial();
    return (lower ? 1 : 0) + (upper ? 2 : 0);
}

/// Whether the geometry stages give the picture: they paint faces by facing over their elements' colours.
bool suitsGeometryStages(const ElementPlan& plan, const ElementScene& scene) {
    return IsGeometryShaderRenderingEnabled() != 0 &&
           RenderingGetShaderProgram(RenderShaderMeshTriangles)->IsProgramValid() &&
           RenderingGetShaderProgram(RenderShaderMeshQuads)->IsProgramValid() &&
           !(scene.attributes.frontAndBack && (plan.selected || plan.colored));
}

/// Whether attributes hold every number, and the block the bands.
bool suitsAttributes(const ElementPlan& plan, const ElementScene& scene) {
    if (plan.contour && !scene.values.entries)
        return false;
    if (plan.look == ElementLook::Faces)
        return scene.surface.faceCount() <= kMostNumbers;
    return !plan.needsElements() || scene.surface.elementCount <= kMostNumbers;
}

ElementWay wayOf(const ElementPlan& plan, const ElementScene& scene) {
    const NglElementRoute route = scene.attributes.route;
    if (route == NglElementRouteGeometry && suitsGeometryStages(plan, scene))
        return ElementWay::Geometry;
    return route == NglElementRouteAutomatic && suitsAttributes(plan, scene) ? ElementWay::Attribute
                                                                             : ElementWay::Mesh;
}

/// Where fragments need not know their elements for anything else, what is not shown is left out before: both
/// the numbers and the vertices that carry them cost.
void leaveOutByIndices(ElementPlan& plan, int failureLevel) {
    if (plan.way != ElementWay::Attribute || plan.selected || plan.colored || plan.ofElements ||
        plan.look == ElementLook::Faces)
        return;
    plan.leavingOut = {plan.clipFlag, plan.failureMode, plan.failureMode != 0 ? failureLevel : 0};
    plan.hidden = false;
    plan.clipFlag = plan.failureMode = 0;
}

} // namespace

std::optional<ElementPlan> planElements(const ElementScene& scene) {
    const auto& [surface, facts, values, how, revision] = scene;
    const bool coded = !facts.clipCode.isInitial();
    if (surface.faceCount() == 0 || (how.clipFlag == 3 && !coded)) // a code of 0 is clipped by flag 3
        return {};
    ElementPlan plan{};
    plan.look = lookOf(scene);
    plan.contour = how.contour && values.colored();
    plan.ofElements = plan.contour && values.kind == ElementValues::OfElements;
    plan.smeared = plan.contour && !plan.ofElements && values.smeared;
    plan.celled = plan.contour && !plan.smeared && values.cells;
    plan.facing = how.frontAndBack;
    plan.hidden = !facts.visible.isInitial();
    plan.selected = !facts.selection.isInitial();
    plan.colored = !facts.color.isInitial();
    plan.clipFlag = coded && (how.clipFlag == 1 || how.clipFlag == 3) ? how.clipFlag : 0;
    plan.failureMode = failureMode(facts, how.failureMode);
    plan.way = wayOf(plan, scene);
    leaveOutByIndices(plan, how.failureLevel);
    return plan;
}
