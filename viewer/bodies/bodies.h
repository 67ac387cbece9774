// A model without a field as bodies: lit surfaces of one colour a part, opaque ones first.
#pragma once

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/bodies/bodymesh.h"
#include "viewer/scene/scenesettings.h"

namespace nruview {

/// Whether the model is to be drawn as bodies: its file says so, or the settings do, and nothing is asked for
/// that only an element mesh shows.
bool areBodies(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body);

/// The colour of a part: the settings', its file's, the material's, else a neutral one.
NgColorLong partColor(const ModelPart& part, const BodySettings& settings);
NgColorLong frontColor(const BodySettings& settings);
NgColorLong backColor(const BodySettings& settings);

class Bodies {
public:
    /// Throws ViewerError for an unknown material.
    Bodies(const ShownModel& shown, const BodySettings& settings, double opacity);

    /// Cuts them by the model's section, or makes them whole.
    void cut(const ShownModel& shown);
    /// Whether the library's programs run here. Needs the frame's context; an environment is built now.
    bool canDraw();
    void drawOpaque();
    /// The farther bodies first. What is behind must have been drawn.
    void drawTransparent();

private:
    struct Body {
        BodyMesh whole;
        std::optional<BodyMesh> cut; ///< to be drawn in its place
        Point middle;
        NgColorLong color;
        ngl::_RenderAttributes attributes;
    };
    void draw(const std::vector<const Body*>& bodies, ngl::NglMeshRenderer::RenderPass pass);

    std::vector<Body> m_bodies;
    std::vector<NgColorLong> m_palette; ///< what the renderer reads its colours from
    ngl::NglMeshRenderer m_renderer;
};

} // namespace nruview
