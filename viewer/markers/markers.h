// Markers of a model: loads, spheres, connectors, tensors and supports, as they are to be drawn.
#pragma once

#include <string>

#include "viewer/scene/shownmodel.h"

namespace nruview {

/// One marker; positions and lengths are those that are drawn.
struct Marker {
    std::array<std::uint32_t, 2> ids{}; ///< its node or nodes; of an ellipsoid its element
    Point at{};                         ///< start, or centre
    std::array<Point, 3> axes{};        ///< the first: vector to the end; of an ellipsoid all three semi-axes
    std::array<double, 2> values{};     ///< at start and end
};

/// Markers of one kind, coloured by values.
struct MarkerLayer {
    std::string label;    ///< of the values; empty: there are none
    bool ofFaces = false; ///< the values are those that colour the faces too
    std::vector<Marker> markers;
};

struct Support {
    std::uint32_t node = 0;
    SupportKind kind = SupportKind::Clamp;
    int axis = 0;
    Point at{}, ground{}; ///< its other end, if it has one
};

/// Diameters of the shafts of arrows and connectors, as parts of their length.
constexpr double kArrowWidth = 0.1, kConnectorWidth = 1.0 / 6.0;

struct Markers {
    MarkerLayer arrows, spheres, connectors, ellipsoids;
    std::vector<Support> supports;
    ConnectorShape connectorShape = ConnectorShape::Rivet;
    double sphereSize = 0.0; ///< diameter
    double widest = 0.0;     ///< connectors are no wider
};

/// Throws ViewerError naming the option.
std::vector<std::uint32_t> chosenNodes(const Model& model, const NodeChoice& choice, const char* option);

/// Throws ViewerError for fields, nodes and node sets that the model does not have or that do not fit.
Markers makeMarkers(const ShownModel& shown, const MarkerSettings& settings, std::optional<int> step);

/// A box with all markers in it.
Bounds boundsWith(const Bounds& bounds, const Markers& markers);

} // namespace nruview
