// The cut of a plane through the solid elements of a model: geometry alone.
#pragma once

#include "viewer/model/model.h"
#include "viewer/model/vectors.h"

namespace nruview {

/// What lies on the side to which the unit normal points is cut away, and so is what lies in the plane.
struct Plane {
    Point normal{0.0, 0.0, 1.0};
    double offset = 0.0; ///< along the normal
    double distance(const Point& point) const { return dot(normal, point) - offset; }
};

/// What is so near to a plane counts as in it, in the unit that models are drawn in: coordinates in files
/// have seven digits or more.
constexpr double kInPlane = 1e-6;
inline bool isBeyond(const Plane& plane, const Point& point) {
    return plane.distance(point) > kInPlane;
}

/// Polygons that close the cut, one or more for each solid element that the plane meets. Points are the
/// model's nodes followed by the centres.
struct Cut {
    /// Between two points; at `from` where both are the same.
    struct Vertex {
        std::uint32_t from = 0, to = 0;
        double part = 0.0;           ///< of the way to `to`
        bool outlineFollows = false; ///< the way to the polygon's next vertex lies on a face of the element
    };
    /// Turns about the plane's normal. Neighbours have bitwise the same positions along their common border.
    struct Polygon {
        std::uint32_t cell = 0, first = 0, count = 0; ///< of vertices
    };
    /// Of a face or an element without a node there: mean of nodes, by the shape functions.
    struct Centre {
        std::uint32_t count = 0;
        std::array<std::uint32_t, 20> nodes{};
        std::array<double, 20> weights{};
    };
    std::vector<Vertex> vertices;
    std::vector<Polygon> polygons;
    std::vector<Centre> centres;
};

/// Cuts the shown solids (a flag for each cell; none: all are). `places` are where the nodes stand; those
/// nearer to the plane than the tolerance count as in it. Linear elements are cut through their faces as the
/// surface splits them, quadratic ones in the sub-elements between their mid-side nodes. The model must have
/// passed checkModel.
Cut cutSolids(const Model& model, std::span<const Point> places, const Plane& plane, double tolerance,
              const std::vector<bool>& shown = {});

/// A quantity at a point of a cut, from that at the nodes; zero is that of the quantity.
template <typename Value, typename Get>
Value atCutPoint(const Cut& cut, std::size_t nodeCount, std::uint32_t point, const Value& zero, Get get) {
    if (point < nodeCount)
        return get(point);
    const Cut::Centre& centre = cut.centres[point - nodeCount];
    Value sum = zero;
    for (std::uint32_t i = 0; i < centre.count; ++i)
        sum = sum + centre.weights[i] * get(centre.nodes[i]);
    return sum;
}

/// The same at a vertex.
template <typename Value, typename Get>
Value atCutVertex(const Cut& cut, std::size_t nodeCount, const Cut::Vertex& vertex, const Value& zero,
                  Get get) {
    const Value from = atCutPoint(cut, nodeCount, vertex.from, zero, get);
    if (vertex.from == vertex.to)
        return from;
    const Value to = atCutPoint(cut, nodeCount, vertex.to, zero, get);
    return (1.0 - vertex.part) * from + vertex.part * to;
}

} // namespace nruview
