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

Point undeformedPosition(const Model& model, const Surface& surface, std::uint32_t point) {
    if (point < model.nodes.size())
        return model.nodes[point];
    return interpolated(surface.centres[point - model.nodes.size()], Point{},
                        [&](std::uint32_t node) { return model.nodes[node]; });
}

std::vector<Point> undeformedPoints(const Model& model, const Surface& surface) {
    std::vector<Point> points(model.nodes.size() + surface.centres.size());
    for (std::uint32_t i = 0; i < points.size(); ++i)
        points[i] = undeformedPosition(model, surface, i);
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
std::vector<Point> deformed(std::vector<Point> points, const Surface& surface, const Field& displacement,
                            double factor) {
    const std::size_t nodeCount = points.size() - surface.centres.size();
    for (std::uint32_t node = 0; node < nodeCount; ++node) {
        const Point moved = points[node] + factor * displacementOf(displacement, node);
        if (std::isfinite(length(moved)))
            points[node] = moved;
    }
    for (std::size_t i = 0; i < surface.centres.size(); ++i)
        points[nodeCount + i] =
            interpolated(surface.centres[i], Point{}, [&](std::uint32_t node) { return points[node]; });
    return points;
}

Bounds joined(Bounds bounds, const Bounds& other) {
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
void placeAboutOrigin(Shape& shape, const Bounds& bounds) {
    shape.middle = 0.5 * bounds.low + 0.5 * bounds.high;
    const Point half = 0.5 * bounds.high - 0.5 * bounds.low;
    const double size = std::max({half[0], half[1], half[2]});
    shape.unit = size > 0.0 ? std::ldexp(1.0, std::ilogb(size)) : 1.0;
    for (Point& point : shape.points)
        point = isWithin(bounds, point) ? shape.drawn(point) : Point{};
    shape.bounds = {shape.drawn(bounds.low), shape.drawn(bounds.high)};
}

/// Deforms the points and returns what they span. Every point swings along a line: the bounds at both ends
/// hold all of it.
Bounds deform(Shape& shape, const Model& model, const Surface& surface, const ShownSettings& settings) {
    const Field& displacement = displacementField(model, settings);
    shape.deformFactor =
        settings.deformFactor.value_or(factorFor(displacement, surfaceBounds(surface, shape.points)));
    const auto at = [&](double swing) {
        return deformed(shape.points, surface, displacement, swing * shape.deformFactor);
    };
    Bounds bounds;
    if (settings.phase_rad)
        bounds = joined(surfaceBounds(surface, at(1.0)), surfaceBounds(surface, at(-1.0)));
    shape.points = at(std::cos(settings.phase_rad.value_or(0.0)));
    return settings.phase_rad ? bounds : surfaceBounds(surface, shape.points);
}

Shape shapeOf(const Model& model, const Surface& surface, const ShownSettings& settings) {
    Shape shape;
    shape.creaseDeg = settings.creaseDeg.value_or(shape.creaseDeg);
    shape.hasFileNormals = !model.cornerNormals.empty() && !settings.creaseDeg && !settings.deformed;
    shape.points = undeformedPoints(model, surface);
    const Bounds bounds =
        settings.deformed ? deform(shape, model, surface, settings) : surfaceBounds(surface, shape.points);
    if (bounds.empty())
        throw ViewerError("model", "has no elements that can be drawn");
    placeAboutOrigin(shape, bounds);
    return shape;
}

bool colorsByField(const ShownSettings& settings) {
    return settings.colorBy == ColorBy::Field && !settings.field.empty();
}

std::optional<Scalars> scalarsOf(const Model& model, const ShownSettings& settings) {
    if (!colorsByField(settings))
        return {};
    return selectScalars(model, settings.field, settings.step);
}

bool isOtherShape(const Model& model, const ShownSettings& before, const ShownSettings& after) {
    if (after.deformed != before.deformed || after.creaseDeg != before.creaseDeg)
        return true;
    return after.deformed &&
           (after.deformFactor != before.deformFactor || after.phase_rad != before.phase_rad ||
            &displacementField(model, after) != &displacementField(model, before));
}

bool areOtherScalars(const Model& model, const ShownSettings& before, const ShownSettings& after) {
    if (after.field != before.field || colorsByField(after) != colorsByField(before))
        return true;
    return colorsByField(after) && after.step != before.step &&
           &selectedField(model, after.field, after.step) != &selectedField(model, before.field, before.step);
}

ColorBy checkedColorBy(const Model& model, const ShownSettings& settings) {
    if (settings.colorBy == ColorBy::Block && model.parts.empty())
        throw ViewerError("--color-by", "the model has no blocks");
    return settings.colorBy;
}

} // namespace

Point Shape::drawn(const Point& position) const {
    const Point offset = position - middle;
    return {offset[0] / unit, offset[1] / unit, offset[2] / unit}; // 1 / unit could overflow
}

ShownModel showModel(Model model, const ShownSettings& settings) {
    ShownModel shown;
    if (settings.step)
        checkStep(model, *settings.step);
    shown.elements = elementFacts(model, settings.elements, settings.step);
    shown.surface = extractSurface(model, shown.elements.shown);
    shown.scalars = scalarsOf(model, settings);
    shown.colorBy = checkedColorBy(model, settings);
    static_cast<Shape&>(shown) = shapeOf(model, shown.surface, settings);
    shown.section = sectionOf(model, shown, shown.elements.shown, settings.section);
    shown.model = std::move(model);
    return shown;
}

void ShownUpdate::swapInto(ShownModel& shown) noexcept {
    if (elements)
        std::swap(*elements, shown.elements);
    if (surface)
        std::swap(*surface, shown.surface);
    if (shape)
        std::swap(*shape, static_cast<Shape&>(shown));
    if (scalars)
        std::swap(*scalars, shown.scalars);
    if (colorBy)
        std::swap(*colorBy, shown.colorBy);
    if (section)
        std::swap(*section, shown.section);
}

ShownUpdate updateOf(const ShownModel& shown, const ShownSettings& before, const ShownSettings& after) {
    const Model& model = shown.model;
    ShownUpdate update;
    if (after.step)
        checkStep(model, *after.step);
    if (after.elements != before.elements || (after.elements.failLevel && after.step != before.step))
        update.elements = elementFacts(model, after.elements, after.step);
    update.showsOthers = update.elements && update.elements->shown != shown.elements.shown;
    if (update.showsOthers)
        update.surface = extractSurface(model, update.elements->shown);
    if (areOtherScalars(model, before, after))
        update.scalars = scalarsOf(model, after);
    if (update.surface || isOtherShape(model, before, after))
        update.shape = shapeOf(model, update.surface ? *update.surface : shown.surface, after);
    if (after.colorBy != before.colorBy)
        update.colorBy = checkedColorBy(model, after);
    if (after.section != before.section || (after.section && (update.shape || update.showsOthers)))
        update.section =
            sectionOf(model, update.shape ? *update.shape : static_cast<const Shape&>(shown),
                      (update.elements ? *update.elements : shown.elements).shown, after.section);
    return update;
}

double automaticFactor(const ShownModel& shown, const ShownSettings& settings) {
    return factorFor(displacementField(shown.model, settings),
                     surfaceBounds(shown.surface, undeformedPoints(shown.model, shown.surface)));
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
    return undeformedPosition(shown.model, shown.surface, point);
}

} // namespace nruview
