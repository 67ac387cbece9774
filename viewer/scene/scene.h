// The picture of a model: library meshes made once, drawn in every frame.
#pragma once

#include <functional>
#include <optional>

#include "viewer/bodies/bodies.h"
#include "viewer/bodies/environment.h"
#include "viewer/markers/markerscene.h"
#include "viewer/scene/colorbands.h"
#include "viewer/scene/meshbuilder.h"
#include "viewer/scene/shownmodel.h"
#include "viewer/section/capscene.h"
#include "viewer/section/handle.h"

namespace nruview {

/// Needs a current context from its making on, and for drawing the view that beginFrame sets.
class Scene {
public:
    /// Null markers: none. They are read for as long as the scene is drawn.
    Scene(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body = {},
          const Markers* markers = nullptr);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Takes over what is new of the shown model, which has it already; the update holds what was there.
    /// False where the scene must be made anew.
    bool update(const ShownModel& shown, const ShownUpdate& update);
    /// Takes over the section of the shown model, and leaves the rest as it is.
    void cut(const ShownModel& shown);
    /// The scale is that of line widths, for screens with small pixels.
    void draw(double scale = 1.0);
    /// What the colours of the faces and of the markers mean, for as long as the scene is there.
    std::vector<LegendContent> legends(const ShownModel& shown) const;
    /// Beams or single points: those with values, and the others by their colour.
    struct Part {
        ContourMesh colored;
        std::vector<std::pair<NgColorLong, MeshPtr>> plain;
    };

private:
    bool canUpdate(const ShownModel& shown, const ShownUpdate& update) const;
    void makeBands(const ShownModel& shown);
    void makeFaces(const ShownModel& shown);
    void setFacts(const ShownModel& shown, ngl::NglElementMesh& mesh) const;
    void renewValues(const ShownModel& shown);
    void makeLoose(const ShownModel& shown);
    void drawOpaqueFaces(double scale);
    void drawTransparentFaces(double scale);
    void drawFaces();
    void drawCutFaces();
    void drawBeams(double scale);
    void drawPoints(double scale);
    void drawEdges(double scale);
    template <typename Draw>
    void drawPart(Part& part, Draw draw);

    SceneSettings m_settings;
    BodySettings m_body;
    bool m_areBodies;
    std::optional<ColorBands> m_bands;
    EdgeMode m_edgeMode;
    std::function<void()> m_drawFlatFaces; ///< in place of the faces' meshes, where wanted
    double m_edgeReach_px;
    std::optional<Environment> m_environment; ///< of bodies with physically based shading
    std::optional<Bodies> m_bodies;           ///< in place of the faces' meshes
    ngl::NglElementMesh m_coloredFaces, m_plainFaces;
    Part m_beams, m_points;
    MeshPtr m_edges;
    std::optional<Plane> m_plane; ///< of the section
    std::optional<CapScene> m_cap;
    std::optional<SectionHandle> m_handle;
    std::optional<MarkerScene> m_markers;
};

} // namespace nruview
