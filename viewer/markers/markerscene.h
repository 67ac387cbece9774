// Markers in the picture: solids with values in contour colours, and symbols.
#pragma once

#include <optional>
#include <vector>

#include "viewer/labels/legend.h"
#include "viewer/markers/markers.h"
#include "viewer/scene/colorbands.h"
#include "viewer/scene/meshbuilder.h"
#include "viewer/section/cut.h"

namespace nruview {

/// Needs the current context from its making on. The markers must outlive it.
class MarkerScene {
public:
    /// Values that colour the faces too take their bands.
    MarkerScene(const Markers& markers, const SceneSettings& settings,
                const std::optional<ColorBands>& faceBands);
    ~MarkerScene();
    MarkerScene(const MarkerScene&) = delete;
    MarkerScene& operator=(const MarkerScene&) = delete;

    /// Leaves out what stands beyond a plane; nothing: all is there.
    void cut(const std::optional<Plane>& plane);
    /// Arrows, spheres, connectors and ellipsoids.
    void drawSolids();
    void drawSymbols() const;
    /// Adds what the colours mean, where the faces do not tell it.
    void addLegends(std::vector<LegendContent>& legends) const;

private:
    /// Arrows, connectors or spheres as the library takes them.
    struct LineArrays {
        std::vector<_NgFPoint3Str> starts, vectors;
        std::vector<float> widthRatios, fromCoordinates, toCoordinates;
    };
    struct ColoredLayer {
        const MarkerLayer* layer = nullptr;
        std::optional<ColorBands> bands; ///< nothing without values
        LineArrays contoured, plain;
    };
    /// Of lines: a part of their length, between two widths.
    struct LineWidth {
        double ratio = 0.0, thinnest = 0.0, widest = 0.0;
    };
    bool isShown(const Point& at) const;
    void fillArrays(ColoredLayer& colored, const LineWidth& width) const;
    void drawLines(ColoredLayer& layer, _Render3DMarkerType type);
    void drawSpheres();
    void drawEllipsoids();

    const Markers& m_markers;
    std::optional<Plane> m_plane;
    std::vector<Support> m_supports; ///< those shown
    ColoredLayer m_arrows, m_spheres, m_connectors, m_ellipsoids;
    MeshPtr m_ball; ///< of radius 1
};

} // namespace nruview
