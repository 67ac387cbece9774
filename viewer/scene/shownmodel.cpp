// Selects the field, deforms the nodes and finds what they span.
#include "viewer/scene/shownmodel.h"

#include <algorithm>
#include <limits>

#include "viewer/error.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

constexpr double kAutoDeform = 0.1; ///< largest displacement shown, as a part of the model's size

/// Weighted mean over the nodes of a centre.
template <typename Value, typename Get>
Value interpolated(const Surface::Centre& centre, Value sum, Get get) {
    for (std::size_t i = 0; i < centre.nodes.size(); ++i)
        if (centre.weights[i] != 0.0)
            sum = sum + centre.weights[i] * get(centre.nodes[i]);
    return sum;
}

Point displacementOf(const Field& field, std::uint32_t node) {
    const double* u = field.values.data() + std::size_t{node} * 3;
    return {u[0], u[1], u[2]};
}

bool isNodeVector(const Field& field) {
    return field.location == FieldLocation::Node && field.components == 3;
}

/// The field to deform by: the one named, else one named like a displacement, else the vector that is drawn.
const Field& displacementField(const Model& model, const ShownSettings& settings) {
    if (!settings.deformBy.empty()) {
        const Field& field = findField(model, settings.deformBy, settings.step);
        if (!isNodeVector(field))
            throw ViewerError("field " + field.name,
                              "is no vector of the nodes, so it cannot deform the model");
        return field;
    }
    if (const Field* field = findDisplacement(model, settings.step))
        return *field;
    if (!settings.field.empty()) {
        const Field& drawn = selectedField(model, settings.field, settings.step);
        if (isNodeVector(drawn))
            return drawn;
    }
    throw ViewerError("--deform", "there is no displacement field; --deform-by names one");
}

/// Bounds of all elements; nodes without one do not widen them.
Bounds surfaceBounds(const Surface& surface, const std::vector<Point>& points) {
    Bounds bounds;
    const auto add = [&](const auto& elements) {
        for (const auto& element : elements)
            for (std::uint32_t point : element)
                bounds.add(points[point]);
    };
    add(surface.triangles);
    add(surface.quads);
    add(surface.lines);
    for (std::uint32_t point : surface.points)
        bounds.add(points[point]);
    return bounds;
}

std::vector<Point> undeformedPoints(const ShownModel& shown) {
    std::vector<Point> points(shown.model.nodes.size() + shown.surface.centres.size());
    for (std::uint32_t i = 0; i < points.size(); ++i)
        points[i] = modelPosition(shown, i);
    return points;
}

double factorFor(const Field& displacement, const Bounds& bounds) {
    double largest = 0.0;
    for (std::size_t node = 0; node < displacement.values.size() / 3; ++node) {
        const double size = length(displacementOf(displacement, static_cast<std::uint32_t>(node)));
        largest = std::isfinite(size) ? std::max(largest, size) : largest;
    }
    return largest > 0.0 ? kAutoDeform * length(bounds.high - bounds.low) / largest : 0.0;
}

/// Nodes without a finite displacement stay where they are.
void deform(ShownModel& shown, const Field& displacement, double factor) {
    for (std::uint32_t node = 0; node < shown.model.nodes.size(); ++node) {
        const Point moved = shown.points[node] + factor * displacementOf(displacement, node);
        if (std::isfinite(length(moved)))
            shown.points[node] = moved;
    }
    for (std::size_t i = 0; i < shown.surface.centres.size(); ++i)
        shown.points[shown.model.nodes.size() + i] = interpolated(
            shown.surface.centres[i], Point{}, [&](std::uint32_t node) { return shown.points[node]; });
}

/// Bounds of both ends of a swing. Every point moves along a line, so they hold all of it.
Bounds swing(ShownModel shown, const Field& displacement) {
    deform(shown, displacement, shown.deformFactor);
    Bounds bounds = surfaceBounds(shown.surface, shown.points);
    deform(shown, displacement, -2.0 * shown.deformFactor);
    const Bounds other = surfaceBounds(shown.surface, shown.points);
    bounds.add(other.low);
    bounds.add(other.high);
    return bounds;
}

bool isWithin(const Bounds& bounds, const Point& point) {
    for (int k = 0; k < 3; ++k)
        if (point[k] < bounds.low[k] || point[k] > bounds.high[k])
            return false;
    return true;
}

/// From model coordinates to drawn ones. Nodes outside of all elements are drawn nowhere and may stand
/// anywhere: not far off, which would cost the others their digits.
void placeAboutOrigin(ShownModel& shown, const Bounds& bounds) {
    shown.middle = 0.5 * bounds.low + 0.5 * bounds.high;
    const Point half = 0.5 * bounds.high - 0.5 * bounds.low;
    const double size = std::max({half[0], half[1], half[2]});
    shown.unit = size > 0.0 ? std::ldexp(1.0, std::ilogb(size)) : 1.0;
    for (Point& point : shown.points)
        point = isWithin(bounds, point) ? shown.drawn(point) : Point{};
    shown.bounds = {shown.drawn(bounds.low), shown.drawn(bounds.high)};
}

} // namespace

Point ShownModel::drawn(const Point& position) const {
    const Point offset = position - middle;
    return {offset[0] / unit, offset[1] / unit, offset[2] / unit}; // 1 / unit could overflow
}

ShownModel showModel(Model model, const ShownSettings& settings) {
    ShownModel shown;
    shown.model = std::move(model);
    shown.creaseDeg = settings.creaseDeg.value_or(shown.creaseDeg);
    shown.hasFileNormals = !shown.model.cornerNormals.empty() && !settings.creaseDeg && !settings.deformed;
    if (settings.step)
        checkStep(shown.model, *settings.step);
    shown.elements = elementFacts(shown.model, settings.elements, settings.step);
    shown.surface = extractSurface(shown.model, shown.elements.shown);
    shown.points = undeformedPoints(shown);
    if (!settings.field.empty())
        shown.scalars = selectScalars(shown.model, settings.field, settings.step);
    std::optional<Bounds> swung;
    if (settings.deformed) {
        const Field& displacement = displacementField(shown.model, settings);
        const Bounds undeformed = surfaceBounds(shown.surface, shown.points);
        shown.deformFactor = settings.deformFactor.value_or(factorFor(displacement, undeformed));
        if (settings.phase_rad)
            swung = swing(shown, displacement);
        deform(shown, displacement, shown.deformFactor * std::cos(settings.phase_rad.value_or(0.0)));
    }
    Bounds bounds = surfaceBounds(shown.surface, shown.points);
    if (swung)
        for (const Point& corner : {swung->low, swung->high})
            bounds.add(corner);
    if (bounds.empty())
        throw ViewerError("model", "has no elements that can be drawn");
    placeAboutOrigin(shown, bounds);
    return shown;
}

double automaticFactor(const ShownModel& shown, const ShownSettings& settings) {
    return factorFor(displacementField(shown.model, settings),
                     surfaceBounds(shown.surface, undeformedPoints(shown)));
}

double valueAt(const ShownModel& shown, std::uint32_t point, std::uint32_t cell) {
    if (!shown.scalars)
        return std::numeric_limits<double>::quiet_NaN();
    const std::vector<double>& values = shown.scalars->values;
    if (shown.scalars->location == FieldLocation::Cell)
        return values[cell];
    if (point < shown.model.nodes.size())
        return values[point];
    return interpolated(shown.surface.centres[point - shown.model.nodes.size()], 0.0,
                        [&](std::uint32_t node) { return values[node]; });
}

Point modelPosition(const ShownModel& shown, std::uint32_t point) {
    const std::vector<Point>& nodes = shown.model.nodes;
    if (point < nodes.size())
        return nodes[point];
    return interpolated(shown.surface.centres[point - nodes.size()], Point{},
                        [&](std::uint32_t node) { return nodes[node]; });
}

} // namespace nruview
