// A section of the shown model: the plane that cuts it and the polygons that close the cut.
#pragma once

#include <optional>

#include "viewer/scene/scenesettings.h"
#include "viewer/section/cut.h"

namespace nruview {

struct Shape;
struct ShownModel;

struct Section {
    Point at{};  ///< of the plane, in the model's coordinates
    Plane plane; ///< among what is drawn
    Cut cut;
    std::vector<Point> corners; ///< where the cut's vertices are drawn
};

/// Cuts the shown elements (a flag for each; none: all are) of a model in the shape that is drawn; nothing
/// without a plane.
std::optional<Section> sectionOf(const Model& model, const Shape& shape, const std::vector<bool>& shown,
                                 const std::optional<SectionPlane>& plane);

/// Whether a drawn position lies beyond the plane. What lies in it does not.
bool isCutAway(const ShownModel& shown, const Point& position);

/// The value at a vertex of the cut; NaN where there is none.
double valueAtVertex(const ShownModel& shown, const Cut::Vertex& vertex, std::uint32_t cell);

/// Position of a vertex of the cut in the undeformed model.
Point modelPosition(const ShownModel& shown, const Cut::Vertex& vertex);

/// Where a polygon's middle is drawn.
Point middleOf(const Section& section, const Cut::Polygon& polygon);

} // namespace nruview
