// Sections of the library's 3D markers, lit alike on both routes.
#pragma once

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

/// Fixed function adds its light where the programs weigh it: with half ambient and half diffuse light both
/// show a colour alike. For the length of a block.
class FixedLight {
public:
    FixedLight();
    ~FixedLight();
    FixedLight(const FixedLight&) = delete;
    FixedLight& operator=(const FixedLight&) = delete;
};

/// A section of the library's 3D markers.
class MarkerSection {
public:
    explicit MarkerSection(_Render3DMarkerType type) {
        RenderBegin3DMarkerDraw(type, RENDER_3D_MARKER_SHAPE_SMOOTH, false);
    }
    ~MarkerSection() { RenderEnd3DMarkerDraw(); }
    MarkerSection(const MarkerSection&) = delete;
    MarkerSection& operator=(const MarkerSection&) = delete;

private:
    const FixedLight m_light;
};

} // namespace nruview
