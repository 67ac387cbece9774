// The picture of a cut: its polygons as the faces of the elements that they cut, with their outlines.
#pragma once

#include <functional>

#include "viewer/scene/colorbands.h"
#include "viewer/scene/meshbuilder.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// How a cut looks.
struct CapLook {
    const ColorBands* bands = nullptr; ///< null: no contour
    /// Of a polygon that shows no values; where the second is true it shows none though it has some.
    std::function<NgColorLong(const Cut::Polygon&)> color;
    std::function<bool(const Cut::Polygon&)> hasOwnColor = [](const Cut::Polygon&) { return false; };
    double opacity = 1.0;
    EdgeMode edges = EdgeMode::None;
    bool lit = true;
};

class CapScene {
public:
    CapScene(const ShownModel& shown, const CapLook& look);

    void drawFaces();
    /// In the current colour.
    void drawEdges() const;

private:
    ngl::NglElementMesh m_colored, m_plain;
    MeshPtr m_edges;
};

} // namespace nruview
