// The camera's matrices against GLU's projection.
#include <epoxy/gl.h>

#include <GL/glu.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "viewer/error.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/camera.h"

using namespace nruview;

namespace {

constexpr Bounds kBox{{10.0, -2.0, 5.0}, {14.0, 1.0, 5.5}};
constexpr double kAspect = 1.5;

/// Position in the picture, from -0.5 to 0.5 in both directions, and depth 0..1.
Point project(const Camera& camera, const Bounds& bounds, const Point& point) {
    const ViewMatrices view = viewMatrices(camera, bounds, kAspect);
    const GLint viewport[4] = {0, 0, 1, 1};
    Point window{};
    gluProject(point[0], point[1], point[2], view.modelView.data(), view.projection.data(), viewport,
               &window[0], &window[1], &window[2]);
    return window - Point{0.5, 0.5, 0.0};
}

} // namespace

TEST(Camera, NamedViewsHaveTheirAxes) {
    const double half = 1.0 / std::sqrt(2.0), sixth = 1.0 / std::sqrt(6.0);
    const std::tuple<const char*, Point, Point> rows[] = {
        {"yx", {0, 1, 0}, {1, 0, 0}},     {"zy", {0, 0, 1}, {0, 1, 0}},
        {"0,5,0", {1, 0, 0}, {0, 0, -1}}, {"0,-5,0", {1, 0, 0}, {0, 0, 1}},
        {"-1,0,0", {0, 0, 1}, {0, 1, 0}}, {"iso", {half, 0, -half}, {-sixth, 2 * sixth, -sixth}},
    };
    for (const auto& [name, right, up] : rows) {
        const ViewAxes axes = parseView(name);
        EXPECT_LT(length(axes.right - right), 1e-12) << name;
        EXPECT_LT(length(axes.up - up), 1e-12) << name;
        EXPECT_LT(length(axes.toward - cross(right, up)), 1e-12) << name;
    }
    for (const char* text : {"xx", "", "1,2", "1,2,", "1,2,3,4", "0,0,0", "1,b,3", "nan,0,1", "xyz"})
        EXPECT_THROW(parseView(text), ViewerError) << text;
}

TEST(Camera, FitsBoxesInEveryViewAndBothProjections) {
    // A box, which nearly fills the picture, a point, a flat box and a tiny line.
    const Bounds boxes[] = {
        kBox, {{1, 2, 3}, {1, 2, 3}}, {{0, 0, 7}, {4, 2, 7}}, {{1e-9, 0, 0}, {3e-9, 0, 0}}};
    for (const Bounds& box : boxes)
        for (const char* name : {"xy", "yx", "xz", "zx", "yz", "zy", "iso", "-3,1,2", "0,1,0"})
            for (bool perspective : {false, true}) {
                SCOPED_TRACE(std::string(name) + (perspective ? " perspective" : ""));
                const Camera camera = fitCamera(parseView(name), box, kAspect, perspective);
                double reach = &box == boxes ? 0.0 : 0.45;
                for (double x : {box.low[0], box.high[0]})
                    for (double y : {box.low[1], box.high[1]})
                        for (double z : {box.low[2], box.high[2]}) {
                            const Point w = project(camera, box, {x, y, z});
                            reach = std::max({reach, std::abs(w[0]), std::abs(w[1])});
                            EXPECT_TRUE(w[2] > 0.0 && w[2] < 1.0) << w[2];
                        }
                EXPECT_TRUE(reach >= 0.45 && reach < 0.5) << reach;
            }
}

TEST(Camera, ADragMovesTheNearSideAlong) {
    Camera camera = fitCamera(parseView("iso"), kBox, kAspect, false);
    const Point front = camera.target + camera.axes.toward;
    turnCamera(camera, 0.1, 0.0);
    EXPECT_GT(project(camera, kBox, front)[0], 0.01);
    EXPECT_NEAR(project(camera, kBox, front)[1], 0.0, 1e-12);
    turnCamera(camera, -0.1, 0.1);
    EXPECT_NEAR(project(camera, kBox, front)[0], 0.0, 1e-12);
    EXPECT_GT(project(camera, kBox, front)[1], 0.01);
}
