// From the plane in model coordinates to the cut in drawn ones.
#include "viewer/section/section.h"

#include <limits>

#include "viewer/scene/shownmodel.h"

namespace nruview {

std::optional<Section> sectionOf(const Model& model, const Shape& shape, const std::vector<bool>& shown,
                                 const std::optional<SectionPlane>& plane) {
    if (!plane)
        return {};
    Section section;
    section.at = plane->at.value_or(shape.middle);
    section.plane.normal = unit(plane->normal);
    section.plane.offset = dot(section.plane.normal, shape.drawn(section.at));
    section.cut = cutSolids(model, shape.points, section.plane, kInPlane, shown);
    section.corners.reserve(section.cut.vertices.size());
    for (const Cut::Vertex& vertex : section.cut.vertices)
        section.corners.push_back(atCutVertex(section.cut, model.nodes.size(), vertex, Point{},
                                              [&](std::uint32_t node) { return shape.points[node]; }));
    return section;
}

bool isCutAway(const ShownModel& shown, const Point& position) {
    return shown.section && isBeyond(shown.section->plane, position);
}

double valueAtVertex(const ShownModel& shown, const Cut::Vertex& vertex, std::uint32_t cell) {
    if (!shown.scalars)
        return std::numeric_limits<double>::quiet_NaN();
    const std::vector<double>& values = shown.scalars->values;
    if (shown.scalars->location == FieldLocation::Cell)
        return values[cell];
    return atCutVertex(shown.section->cut, shown.model.nodes.size(), vertex, 0.0,
                       [&](std::uint32_t node) { return values[node]; });
}

Point modelPosition(const ShownModel& shown, const Cut::Vertex& vertex) {
    return atCutVertex(shown.section->cut, shown.model.nodes.size(), vertex, Point{},
                       [&](std::uint32_t node) { return shown.model.nodes[node]; });
}

Point middleOf(const Section& section, const Cut::Polygon& polygon) {
    Point sum{};
    for (std::uint32_t i = 0; i < polygon.count; ++i)
        sum = sum + section.corners[polygon.first + i];
    return (1.0 / polygon.count) * sum;
}

} // namespace nruview
