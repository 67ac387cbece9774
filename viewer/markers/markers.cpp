// From fields and lists of nodes to markers.
#include "viewer/markers/markers.h"

#include <algorithm>
#include <cmath>

#include "viewer/error.h"
#include "viewer/markers/principal.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

using Index = std::uint32_t;

// Lengths as parts of the model's size.
constexpr double kLongestArrow = 0.1, kSphere = 0.015, kWidestConnector = 0.03, kGround = 0.07;
/// The semi-axis of the largest value, as a part of the mean distance from the element's middle to its nodes;
/// and the thinnest one of an ellipsoid, as a part of its longest.
constexpr double kLongestAxis = 0.55, kThinnestAxis = 0.25;

double sizeOf(const ShownModel& shown) {
    return length(shown.bounds.high - shown.bounds.low);
}

/// Where a node is drawn. Nodes without an element, as those that forces and springs hang on, have no place
/// among the model's points.
Point placeOf(const ShownModel& shown, Index node) {
    const Point& point = shown.points[node];
    return point == Point{} ? shown.drawn(shown.model.nodes[node]) : point;
}

std::vector<Index> indicesOf(const Model& model, const ElementList& numbers, const char* option) {
    std::vector<Index> indices;
    for (const ElementRange& range : nodeIndices(model, numbers, option))
        for (std::uint64_t i = range.first; i <= range.last; ++i)
            indices.push_back(static_cast<Index>(i));
    return indices;
}

} // namespace

std::vector<Index> chosenNodes(const Model& model, const NodeChoice& choice, const char* option) {
    if (choice.set.empty())
        return indicesOf(model, choice.nodes, option);
    std::string names;
    for (const NodeSet& set : model.nodeSets) {
        if (set.name == choice.set)
            return set.nodes;
        names += (names.empty() ? "" : ", ") + set.name;
    }
    throw ViewerError(option, "there is no node set " + choice.set + "; the model has " +
                                  (names.empty() ? "none" : names));
}

namespace {

/// Nodes of what is drawn.
std::vector<Index> shownNodes(const ShownModel& shown) {
    std::vector<bool> isShown(shown.model.nodes.size());
    const auto add = [&](std::span<const Index> corners, Index cell) {
        for (const Index point : corners)
            if (point < isShown.size() && shown.elements.isShown(cell)) // no centre of a split face
                isShown[point] = true;
    };
    const Surface& surface = shown.surface;
    forEachFace(surface, add);
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        add(surface.lines[i], surface.lineCells[i]);
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        add({&surface.points[i], 1}, surface.pointCells[i]);
    std::vector<Index> nodes;
    for (std::size_t node = 0; node < isShown.size(); ++node)
        if (isShown[node])
            nodes.push_back(static_cast<Index>(node));
    return nodes;
}

std::vector<Index> markerNodes(const ShownModel& shown, const MarkerSettings& settings) {
    return settings.nodes ? chosenNodes(shown.model, *settings.nodes, "--marker-nodes") : shownNodes(shown);
}

/// A layer whose values are a field's.
MarkerLayer layerOf(const ShownModel& shown, const Scalars& scalars) {
    MarkerLayer layer;
    layer.label = scalars.label;
    layer.ofFaces =
        shown.scalars && shown.scalars->label == scalars.label && shown.scalars->location == scalars.location;
    return layer;
}

void requireNodes(const Field& field, const char* what) {
    if (field.location != FieldLocation::Node)
        throw ViewerError("field " + field.name, std::string("has values of elements; ") + what);
}

MarkerLayer makeArrows(const ShownModel& shown, const MarkerSettings& settings, std::optional<int> step) {
    const Field& field = findField(shown.model, settings.arrows, step);
    requireNodes(field, "arrows stand at nodes");
    if (field.components != 3)
        throw ViewerError("field " + field.name, "has " + std::to_string(field.components) +
                                                     " components; the vector of an arrow has 3");
    const Scalars sizes = defaultScalars(field);
    MarkerLayer layer = layerOf(shown, sizes);
    double longest = 0.0;
    for (const Index node : markerNodes(shown, settings)) {
        const double* v = field.values.data() + 3 * std::size_t{node};
        const double size = sizes.values[node];
        if (!std::isfinite(size) || size == 0.0)
            continue;
        layer.markers.push_back({{node, node}, placeOf(shown, node), {{{v[0], v[1], v[2]}}}, {size, size}});
        longest = std::max(longest, size);
    }
    const double automatic = longest > 0.0 ? kLongestArrow * sizeOf(shown) / longest : 0.0;
    const double scale = settings.arrowScale ? *settings.arrowScale / shown.unit : automatic;
    for (Marker& arrow : layer.markers)
        arrow.axes[0] = scale * arrow.axes[0];
    return layer;
}

MarkerLayer makeSpheres(const ShownModel& shown, const MarkerSettings& settings, std::optional<int> step) {
    const Scalars scalars = selectScalars(shown.model, settings.spheres, step);
    requireNodes(selectedField(shown.model, settings.spheres, step), "spheres stand at nodes");
    MarkerLayer layer = layerOf(shown, scalars);
    for (const Index node : markerNodes(shown, settings))
        if (const double value = scalars.values[node]; std::isfinite(value))
            layer.markers.push_back({{node, node}, placeOf(shown, node), {}, {value, value}});
    return layer;
}

MarkerLayer makeConnectors(const ShownModel& shown, const MarkerSettings& settings) {
    MarkerLayer layer;
    const bool hasValues = shown.scalars && shown.scalars->location == FieldLocation::Node;
    if (hasValues)
        layer = layerOf(shown, *shown.scalars);
    const auto indexOf = [&shown](Index number) {
        return nodeIndices(shown.model, {{number, number}}, "--connectors").front().first;
    };
    for (const auto& ends : settings.connectors) {
        const Index from = indexOf(ends[0]), to = indexOf(ends[1]);
        const Point start = placeOf(shown, from);
        Marker marker{{from, to}, start, {{placeOf(shown, to) - start}}, {}};
        if (hasValues)
            marker.values = {shown.scalars->values[from], shown.scalars->values[to]};
        layer.markers.push_back(marker);
    }
    return layer;
}

// --- tensors -----------------------------------------------------------------------------------------------

/// The symmetric part of a field's tensor i: xx yy zz xy yz xz.
std::array<double, 6> tensorAt(const Field& field, std::size_t i) {
    const double* t = field.values.data() + i * static_cast<std::size_t>(field.components);
    if (field.components == 6)
        return {t[0], t[1], t[2], t[3], t[4], t[5]};
    return {t[0], t[4], t[8], (t[1] + t[3]) / 2, (t[5] + t[7]) / 2, (t[2] + t[6]) / 2};
}

/// Of an element, or the mean of its nodes.
std::array<double, 6> tensorOf(const Field& field, const Model& model, Index cell) {
    if (field.location == FieldLocation::Cell)
        return tensorAt(field, cell);
    std::array<double, 6> mean{};
    const std::span<const Index> nodes = model.cellNodes(cell);
    for (const Index node : nodes) {
        const std::array<double, 6> tensor = tensorAt(field, node);
        for (std::size_t k = 0; k < 6; ++k)
            mean[k] += tensor[k] / static_cast<double>(nodes.size());
    }
    return mean;
}

Point middleOf(const ShownModel& shown, Index cell) {
    Point sum{};
    const std::span<const Index> nodes = shown.model.cellNodes(cell);
    for (const Index node : nodes)
        sum = sum + (1.0 / static_cast<double>(nodes.size())) * shown.points[node];
    return sum;
}

/// Mean distance from the middle of an element to its nodes.
double reachOf(const ShownModel& shown, Index cell, const Point& middle) {
    double sum = 0.0;
    const std::span<const Index> nodes = shown.model.cellNodes(cell);
    for (const Index node : nodes)
        sum += length(shown.points[node] - middle) / static_cast<double>(nodes.size());
    return sum;
}

double largestOf(const PrincipalValues& principal) {
    return std::max(std::abs(principal.values[0]), std::abs(principal.values[2]));
}

/// The principal value of largest magnitude, with its sign.
double signedLargest(const PrincipalValues& principal) {
    const auto& values = principal.values;
    return std::abs(values[0]) >= std::abs(values[2]) ? values[0] : values[2];
}

MarkerLayer makeEllipsoids(const ShownModel& shown, const MarkerSettings& settings, std::optional<int> step) {
    const Field& field = findField(shown.model, settings.tensors, step);
    if (field.components != 6 && field.components != 9)
        throw ViewerError("field " + field.name, "has " + std::to_string(field.components) +
                                                     (field.components == 1 ? " component" : " components") +
                                                     "; a tensor has 6 or 9");
    MarkerLayer layer;
    layer.label = field.name + ":principal";
    double largest = 0.0;
    for (Index cell = 0; cell < shown.model.cellCount(); ++cell) {
        const std::array<double, 6> tensor = tensorOf(field, shown.model, cell);
        if (!shown.elements.isShown(cell) || shown.model.cellNodes(cell).empty() ||
            !std::all_of(tensor.begin(), tensor.end(), [](double x) { return std::isfinite(x); }))
            continue;
        const PrincipalValues principal = principalValues(tensor);
        const double value = signedLargest(principal), thinnest = kThinnestAxis * largestOf(principal);
        const double size = kLongestAxis * reachOf(shown, cell, middleOf(shown, cell));
        Marker marker{{cell, cell}, middleOf(shown, cell), principal.directions, {value, value}};
        for (std::size_t k = 0; k < 3; ++k)
            marker.axes[k] = size * std::max(std::abs(principal.values[k]), thinnest) * marker.axes[k];
        largest = std::max(largest, largestOf(principal));
        if (value != 0.0)
            layer.markers.push_back(marker);
    }
    for (Marker& marker : layer.markers)
        for (Point& axis : marker.axes)
            axis = (1.0 / largest) * axis;
    return layer;
}

// --- supports ----------------------------------------------------------------------------------------------

/// Along the axis and away from the model's middle.
Point groundOf(const ShownModel& shown, const Point& at, int axis) {
    Point ground = at;
    const double middle = 0.5 * (shown.bounds.low[axis] + shown.bounds.high[axis]);
    ground[axis] += (at[axis] > middle ? kGround : -kGround) * sizeOf(shown);
    return ground;
}

std::vector<Support> makeSupports(const ShownModel& shown, const MarkerSettings& settings) {
    std::vector<Support> supports;
    for (const SupportedNodes& supported : settings.supports)
        for (const Index node : chosenNodes(shown.model, supported.nodes, "--supports")) {
            const Point at = placeOf(shown, node);
            const bool reachesGround = supported.kind >= SupportKind::Spring;
            supports.push_back({node, supported.kind, supported.axis, at,
                                reachesGround ? groundOf(shown, at, supported.axis) : at});
        }
    return supports;
}

} // namespace

Markers makeMarkers(const ShownModel& shown, const MarkerSettings& settings, std::optional<int> step) {
    Markers markers;
    if (!settings.arrows.empty() && settings.solids)
        markers.arrows = makeArrows(shown, settings, step);
    if (!settings.spheres.empty() && settings.solids)
        markers.spheres = makeSpheres(shown, settings, step);
    if (!settings.tensors.empty() && settings.solids)
        markers.ellipsoids = makeEllipsoids(shown, settings, step);
    if (settings.solids)
        markers.connectors = makeConnectors(shown, settings);
    markers.connectorShape = settings.connectorShape;
    if (settings.symbols)
        markers.supports = makeSupports(shown, settings);
    markers.sphereSize = settings.sphereSize ? *settings.sphereSize / shown.unit : kSphere * sizeOf(shown);
    markers.widest = kWidestConnector * sizeOf(shown);
    return markers;
}

Bounds boundsWith(const Bounds& bounds, const Markers& markers) {
    Bounds all = bounds;
    const auto addAbout = [&all](const Point& at, double reach) {
        all.add(at - Point{reach, reach, reach});
        all.add(at + Point{reach, reach, reach});
    };
    for (const MarkerLayer* lines : {&markers.arrows, &markers.connectors})
        for (const Marker& marker : lines->markers) {
            const double reach = lines == &markers.arrows ? 0.1 * length(marker.axes[0]) : markers.widest;
            addAbout(marker.at, reach);
            addAbout(marker.at + marker.axes[0], reach);
        }
    for (const Marker& sphere : markers.spheres.markers)
        addAbout(sphere.at, 0.5 * markers.sphereSize);
    for (const Marker& ellipsoid : markers.ellipsoids.markers)
        addAbout(ellipsoid.at, length(ellipsoid.axes[0]) + length(ellipsoid.axes[2]));
    for (const Support& support : markers.supports)
        all.add(support.ground);
    return all;
}

} // namespace nruview
