// The picture of a model: library meshes made once, drawn in every frame.
#pragma once

#include <optional>

#include "viewer/bodies.h"
#include "viewer/colorbands.h"
#include "viewer/environment.h"
#include "viewer/meshbuilder.h"
#include "viewer/shownmodel.h"

namespace nruview {

/// Needs a current context from its making on, and for drawing the view that beginFrame sets. One scene at a
/// time is the library's source of the active contour texture: the one that was made last.
class Scene {
public:
    Scene(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body = {});
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    void draw();
    /// The contour colours; nothing without a field.
    const std::optional<ColorBands>& bands() const { return m_bands; }

    /// Beams or single points: those with values, and the others by their colour.
    struct Part {
        ContourMesh colored;
        std::vector<std::pair<NgColorLong, MeshPtr>> plain;
    };

private:
    void makeFaces(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body);
    void makeLoose(const ShownModel& shown);
    void drawOpaqueFaces();
    void drawTransparentFaces();
    void drawFaces();
    void drawBeams();
    void drawPoints();
    void drawEdges();
    template <typename Draw>
    void drawPart(Part& part, Draw draw);
    void beginContour();
    void endContour();

    std::optional<ColorBands> m_bands;
    EdgeMode m_edgeMode;
    float m_edgeReach_px;
    bool m_transparent;
    std::optional<Environment> m_environment; ///< of bodies with physically based shading
    std::optional<Bodies> m_bodies;           ///< in place of the faces' meshes
    ngl::NglElementMesh m_coloredFaces, m_plainFaces;
    Part m_beams, m_points;
    MeshPtr m_edges;
};

} // namespace nruview
