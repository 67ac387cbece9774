// Cuts through solid elements against closed formulas for areas and volumes, linear fields and the skin.
#include "viewer/section/cut.h"

#include <map>
#include <tuple>

#include "tests/viewer/elements.h"

using namespace nrutest;

namespace {

Plane planeThrough(const Point& at, const Point& normal) {
    return {unit(normal), dot(unit(normal), at)};
}

Cut cutAt(const Model& model, const Plane& plane) {
    return cutSolids(model, model.nodes, plane, 1e-9);
}

/// The corners of every polygon.
std::vector<std::vector<Point>> polygonsOf(const Model& model, const Cut& cut) {
    std::vector<std::vector<Point>> polygons;
    for (const Cut::Polygon& polygon : cut.polygons) {
        polygons.emplace_back();
        for (Index i = 0; i < polygon.count; ++i)
            polygons.back().push_back(atCutVertex(cut, model.nodes.size(), cut.vertices[polygon.first + i],
                                                  Point{}, [&](Index node) { return model.nodes[node]; }));
    }
    return polygons;
}

/// Negative where a polygon turns against the normal.
double areaOf(const Model& model, const Cut& cut, const Plane& plane) {
    double area = 0.0;
    for (const std::vector<Point>& corners : polygonsOf(model, cut))
        for (std::size_t i = 2; i < corners.size(); ++i)
            area += 0.5 * dot(plane.normal, cross(corners[i - 1] - corners[0], corners[i] - corners[0]));
    return area;
}

/// Between the heights of nodes and centres the area is quadratic: Simpson's rule gives the volume.
double sweptVolume(const Model& model, const Point& direction) {
    std::vector<double> heights;
    for (const Point& node : model.nodes)
        heights.push_back(dot(direction, node));
    const Plane middle{direction, 0.5 * (*std::min_element(heights.begin(), heights.end()) +
                                         *std::max_element(heights.begin(), heights.end()))};
    const Cut cut = cutAt(model, middle);
    for (Index i = 0; i < cut.centres.size(); ++i)
        heights.push_back(
            dot(direction, atCutPoint(cut, model.nodes.size(), static_cast<Index>(model.nodes.size()) + i,
                                      Point{}, [&](Index node) { return model.nodes[node]; })));
    std::sort(heights.begin(), heights.end());
    double volume = 0.0;
    for (std::size_t i = 1; i < heights.size(); ++i) {
        const double step = heights[i] - heights[i - 1];
        const auto area = [&](double part) {
            const Plane plane{direction, heights[i - 1] + part * step};
            return areaOf(model, cutAt(model, plane), plane);
        };
        if (step > 1e-6) // ends taken from within, by an open rule that is exact up to degree 3
            volume += step / 3 * (2 * area(0.25) - area(0.5) + 2 * area(0.75));
    }
    return volume;
}

TEST(Cut, SweepsTheVolumeOfEveryElementAndKeepsLinearFields) {
    std::vector<Solid> solids = kSolids;
    solids.push_back({12, "000 400 400 040 004 404 404 044", 0.5, {}}); // collapsed to a wedge
    const auto field = [](const Point& p) { return 3 * p[0] - 2 * p[1] + 0.5 * p[2] + 7; };
    for (const Solid& solid : solids)
        for (const Axes& axes : {kSkew, kMirrored}) {
            const Model model = elementAt(solid.vtkNumber, solid.places, axes);
            SCOPED_TRACE(cellTypeName(model.types[0]));
            const Point direction = unit({0.3, -0.7, 0.5});
            EXPECT_NEAR(sweptVolume(model, direction), solid.volume * determinant(axes), 1e-9);
            const Cut cut = cutAt(model, planeThrough(model.nodes[0] + 0.01 * direction, direction));
            ASSERT_FALSE(cut.polygons.empty());
            std::size_t vertex = 0;
            for (const std::vector<Point>& corners : polygonsOf(model, cut))
                for (const Point& corner : corners)
                    EXPECT_NEAR(atCutVertex(cut, model.nodes.size(), cut.vertices[vertex++], 0.0,
                                            [&](Index node) { return field(model.nodes[node]); }),
                                field(corner), 1e-12);
        }
}

TEST(Cut, NodesInThePlaneNeitherCrackNorDouble) {
    const Model model = hexahedra(4, 4, 4);
    const std::tuple<const char*, Point, Point, double, std::size_t> rows[] = {
        // name, a point, the normal, area of the cut, polygons
        {"between layers", {2, 0, 0}, {1, 0, 0}, 16, 16},
        {"the last face", {4, 0, 0}, {1, 0, 0}, 16, 16},
        {"the first face", {0, 0, 0}, {1, 0, 0}, 0, 0},
        {"just beside a layer", {2 + 1e-10, 0, 0}, {1, 0, 0}, 16, 16},
        {"through edges", {4, 0, 0}, {1, 1, 0}, 16 * std::sqrt(2.0), 16},
        {"through corners", {4, 0, 0}, {1, 1, 1}, 8 * std::sqrt(3.0), 16},
        {"backward", {2, 0, 0}, {-1, 0, 0}, 16, 16},
    };
    for (const auto& [name, at, normal, area, polygons] : rows) {
        SCOPED_TRACE(name);
        const Plane plane = planeThrough(at, normal);
        const Cut cut = cutAt(model, plane);
        EXPECT_NEAR(areaOf(model, cut, plane), area, 1e-8);
        EXPECT_EQ(cut.polygons.size(), polygons);
        for (const Cut::Polygon& polygon : cut.polygons) { // of the elements that are kept
            double lowest = 0.0;
            for (const Index node : model.cellNodes(polygon.cell))
                lowest = std::min(lowest, plane.distance(model.nodes[node]));
            EXPECT_LT(lowest, -0.5);
        }
    }
}

/// Distance from a triangle of a point that is near its plane.
double distanceTo(const Piece& triangle, const Point& p) {
    const Point normal = cross(triangle[1] - triangle[0], triangle[2] - triangle[0]);
    double outside = std::abs(dot(unit(normal), p - triangle[0]));
    for (int i = 0; i < 3; ++i) {
        const Point inward = unit(cross(normal, triangle[(i + 1) % 3] - triangle[i]));
        outside = std::max(outside, -dot(inward, p - triangle[i]));
    }
    return outside;
}

Point moved(const Point& p, double by) {
    return p + by * Point{std::sin(7 * p[1] + 3 * p[2]), std::sin(5 * p[2] + 2 * p[0]),
                          std::sin(6 * p[0] + 4 * p[1])};
}

/// Hexahedra whose nodes are moved about.
Model warped(double by) {
    Model model = hexahedra(4, 4, 4);
    for (Point& node : model.nodes)
        node = moved(node, by);
    return model;
}

/// The same with 20 nodes, those of the edges moved about too.
Model curved(const Model& linear, double by) {
    std::map<Point, Index> middles;
    Model model = modelOf(linear.nodes, {});
    for (std::size_t cell = 0; cell < linear.cellCount(); ++cell) {
        std::array<Index, 20> nodes{};
        std::copy_n(linear.cellNodes(cell).begin(), 8, nodes.begin());
        for (const FaceShape& face : cellShape(CellType::Hexa20).faces)
            for (std::size_t i = 0; i < 4; ++i) {
                const Point &a = linear.nodes[nodes[face.nodes[i]]],
                            &b = linear.nodes[nodes[face.nodes[(i + 1) % 4]]];
                const auto [found, isNew] =
                    middles.try_emplace(0.5 * (a + b), static_cast<Index>(model.nodes.size()));
                if (isNew)
                    model.nodes.push_back(moved(found->first, by));
                nodes[face.nodes[4 + i]] = found->second;
            }
        model.addCell(CellType::Hexa20, nodes);
    }
    return model;
}

/// The borders of all polygons: how often an edge is passed upward less how often downward.
std::map<std::pair<Point, Point>, int> bordersOf(const Model& model, const Cut& cut) {
    std::map<std::pair<Point, Point>, int> borders; // by positions, to the last bit
    for (const std::vector<Point>& corners : polygonsOf(model, cut))
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point &a = corners[i], &b = corners[(i + 1) % corners.size()];
            borders[a < b ? std::pair{a, b} : std::pair{b, a}] += a < b ? 1 : -1;
        }
    return borders;
}

TEST(Cut, OfWarpedElementsHasNoGapsAndEndsOnTheSkin) {
    const Plane plane = planeThrough({2.1, 1.9, 2.2}, {0.4, 0.3, 0.8});
    for (const Model& model : {warped(0.3), curved(warped(0.2), 0.05)}) {
        const std::vector<Piece> skin = piecesOf(model, extractSurface(model));
        std::size_t inner = 0, outer = 0;
        for (const auto& [edge, balance] : bordersOf(model, cutAt(model, plane))) {
            ++(balance == 0 ? inner : outer);
            if (balance != 0) {
                EXPECT_EQ(std::abs(balance), 1);
                double nearest = HUGE_VAL;
                for (const Piece& piece : skin)
                    nearest = std::min(nearest, distanceTo(piece, 0.5 * (edge.first + edge.second)));
                EXPECT_LT(nearest, 1e-12);
            }
        }
        EXPECT_GT(outer, 20u);
        EXPECT_GT(inner, outer);
    }
}

TEST(Cut, OutlinesFollowTheElementsAlone) {
    const Model model = elementAt(25, kHexa + kHexaMiddles, kSkew), linear = elementAt(12, kHexa, kSkew);
    const Plane plane = planeThrough(0.5 * (model.nodes[0] + model.nodes[6]), {0.1, 0.2, 0.9});
    const Cut cut = cutAt(model, plane), whole = cutAt(linear, plane);
    const auto outlineOf = [](const Model& of, const Cut& cut) {
        double outline = 0.0;
        std::size_t vertex = 0;
        for (const std::vector<Point>& corners : polygonsOf(of, cut))
            for (std::size_t i = 0; i < corners.size(); ++i)
                if (cut.vertices[vertex++].outlineFollows)
                    outline += length(corners[(i + 1) % corners.size()] - corners[i]);
        return outline;
    };
    EXPECT_GT(cut.polygons.size(), 3u);
    ASSERT_EQ(whole.polygons.size(), 1u);
    EXPECT_TRUE(std::all_of(whole.vertices.begin(), whole.vertices.end(),
                            [](const auto& v) { return v.outlineFollows; }));
    EXPECT_NEAR(outlineOf(model, cut), outlineOf(linear, whole), 1e-12);
}

} // namespace
