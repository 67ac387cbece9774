#include "NRenderUtl/mesh/pbrlightrig.h"

#include <algorithm>
#include <iterator>

#include "NRenderUtl/host/hostmath.h"

namespace {

constexpr double kSpreadDeg = 45;

_NgPoint3Str rotated(const _NgPoint3Str& v, const _NgPoint3Str& axis, double angleDeg) {
    NgMatrix rotation;
    NglSetRotation(rotation, angleDeg, axis);
    _NgPoint3Str result;
    NglTransform33p(v, rotation, result);
    return result;
}

NglLightParams lightAt(const _NgPoint3Str& position) {
    NglLightParams light{};
    light.enabled = 1;
    light.position[0] = static_cast<float>(position.x);
    light.position[1] = static_cast<float>(position.y);
    light.position[2] = static_cast<float>(position.z);
    light.position[3] = 1.0f;
    return light;
}

} // namespace

void makePbrLights(const _NglInfoStr& view, NglLightParams (&lights)[8]) {
    std::fill(std::begin(lights), std::end(lights), NglLightParams{});
    // Deliberate: the first light comes from behind what is seen and brightens its outlines, the others, of
    // the opposite sign, from the viewer's side.
    lights[0] = lightAt(view.view);
    int light = 1;
    for (const _NgPoint3Str& axis : {view.viewX, view.viewY})
        for (const double angleDeg : {kSpreadDeg, -kSpreadDeg})
            lights[light++] = lightAt(MathScaled(rotated(view.view, axis, angleDeg), -1));
}
