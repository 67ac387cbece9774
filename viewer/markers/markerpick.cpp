// Symbols by the library's pick functions; solids by the ray through the pixel.
#include "viewer/markers/markerpick.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "viewer/markers/supports.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/pick.h"
#include "viewer/scene/sight.h"

namespace nruview {

namespace {

constexpr double kReach_px = 3.0;

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string nodeText(const ShownModel& shown, std::uint32_t node) {
    const Point& at = shown.model.nodes[node];
    return "node " + std::to_string(nodeNumber(shown.model, node)) + " at " + number(at[0]) + " " +
           number(at[1]) + " " + number(at[2]);
}

std::string valueText(const MarkerLayer& layer, double value) {
    if (layer.label.empty())
        return "";
    return ": " + layer.label + (std::isnan(value) ? " has no value" : " = " + number(value));
}

std::string supportText(const ShownModel& shown, const Markers& markers, std::size_t i) {
    const Support& support = markers.supports[i];
    std::string kind(kSupportKinds[static_cast<std::size_t>(support.kind)]);
    if (liesAlongAxis(support.kind))
        kind += std::string("-") + "xyz"[support.axis];
    return "support " + std::to_string(i) + " (" + kind + ") at " + nodeText(shown, support.node);
}

std::string connectorText(const ShownModel& shown, const MarkerLayer& layer, const Marker& marker) {
    std::string text = "connector of node " + std::to_string(nodeNumber(shown.model, marker.ids[0])) +
                       " and node " + std::to_string(nodeNumber(shown.model, marker.ids[1]));
    if (!layer.label.empty())
        text += valueText(layer, marker.values[0]) + " and " + number(marker.values[1]);
    return text;
}

/// Where a ray comes within reach of a marker's line; nothing where it does not.
std::optional<double> distanceToLine(const Ray& ray, const Marker& marker, double radius) {
    const Point end = marker.at + marker.axes[0];
    const Point near = marker.at + nearestPart(ray, marker.at, end) * marker.axes[0];
    const double along = dot(near - ray.origin, ray.direction);
    const double beside = length(near - ray.origin - along * ray.direction);
    return beside <= std::max(radius, kReach_px * pixelLength(near)) ? std::optional(along - radius)
                                                                     : std::nullopt;
}

/// Where a ray enters an ellipsoid: in units of its orthogonal semi-axes that is a ball.
std::optional<double> distanceToEllipsoid(const Ray& ray, const Point& centre,
                                          const std::array<Point, 3>& axes) {
    Point origin, direction;
    for (std::size_t k = 0; k < 3; ++k) {
        const double size = dot(axes[k], axes[k]);
        origin[k] = dot(ray.origin - centre, axes[k]) / size;
        direction[k] = dot(ray.direction, axes[k]) / size;
    }
    const double a = dot(direction, direction), b = dot(origin, direction);
    const double root = b * b - a * (dot(origin, origin) - 1.0);
    return root >= 0.0 ? std::optional((-b - std::sqrt(root)) / a) : std::nullopt;
}

/// Keeps the nearest of what is offered.
class Nearest {
public:
    explicit Nearest(double hidden) : m_hidden(hidden) {}
    template <typename Text>
    void offer(std::optional<double> distance, Text text) {
        if (distance && *distance < (found ? found->distance : m_hidden))
            found = PickedMarker{text(), *distance};
    }
    std::optional<PickedMarker> found;

private:
    double m_hidden;
};

void offerSolids(Nearest& nearest, const ShownModel& shown, const Markers& markers, const Ray& ray) {
    const auto forEachShown = [&shown](const MarkerLayer& layer, auto visit) {
        for (const Marker& marker : layer.markers)
            if (!isCutAway(shown, marker.at))
                visit(marker);
    };
    forEachShown(markers.arrows, [&](const Marker& marker) {
        nearest.offer(distanceToLine(ray, marker, 0.5 * kArrowWidth * length(marker.axes[0])), [&] {
            return "arrow at " + nodeText(shown, marker.ids[0]) + valueText(markers.arrows, marker.values[0]);
        });
    });
    forEachShown(markers.connectors, [&](const Marker& marker) {
        nearest.offer(
            distanceToLine(ray, marker,
                           0.5 * std::min(markers.widest, kConnectorWidth * length(marker.axes[0]))),
            [&] { return connectorText(shown, markers.connectors, marker); });
    });
    forEachShown(markers.spheres, [&](const Marker& marker) {
        const double radius = std::max(0.5 * markers.sphereSize, kReach_px * pixelLength(marker.at));
        nearest.offer(distanceToEllipsoid(ray, marker.at, {{{radius, 0, 0}, {0, radius, 0}, {0, 0, radius}}}),
                      [&] {
                          return "sphere at " + nodeText(shown, marker.ids[0]) +
                                 valueText(markers.spheres, marker.values[0]);
                      });
    });
    forEachShown(markers.ellipsoids, [&](const Marker& marker) {
        nearest.offer(distanceToEllipsoid(ray, marker.at, marker.axes), [&] {
            return "ellipsoid of element " + std::to_string(cellNumber(shown.model, marker.ids[0])) +
                   valueText(markers.ellipsoids, marker.values[0]);
        });
    });
}

} // namespace

std::optional<PickedMarker> pickMarker(const ShownModel& shown, const Markers& markers, int x, int y,
                                       double hidden) {
    const Ray ray = rayThrough(x, y);
    Nearest symbol(hidden), solid(hidden);
    for (std::size_t i = 0; i < markers.supports.size(); ++i)
        if (!isCutAway(shown, markers.supports[i].at) && isSupportAt(markers.supports[i], x, y))
            symbol.offer(dot(symbolPlace(markers.supports[i]) - ray.origin, ray.direction),
                         [&] { return supportText(shown, markers, i); });
    if (symbol.found)
        return symbol.found;
    offerSolids(solid, shown, markers, ray);
    return solid.found;
}

std::string describePixel(const ShownModel& shown, Picker& picker, const Markers& markers, bool opaque, int x,
                          int y) {
    const Picked picked = picker.pick(x, y);
    const double hidden = opaque ? picked.distance : std::numeric_limits<double>::infinity();
    const auto marker = pickMarker(shown, markers, x, y, hidden);
    return marker ? marker->text : describe(shown, picked);
}

} // namespace nruview
