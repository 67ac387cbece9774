// The camera's matrices against GLU's projection.
#include <epoxy/gl.h>

#include <GL/glu.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "viewer/camera.h"
#include "viewer/error.h"
#include "viewer/vectors.h"

using namespace nruview;

namespace {

constexpr Bounds kBox{{10.0, -2.0, 5.0}, {14.0, 1.0, 5.5}};
constexpr double kAspect = 1.5;

/// Position in a window of 1.5 x 1 with depth 0..1.
Point project(const ViewMatrices& view, const Point& point) {
    const GLint viewport[4] = {0, 0, 3000, 2000};
    Point window{};
    gluProject(point[0], point[1], point[2], view.modelView.data(), view.projection.data(), viewport,
               &window[0], &window[1], &window[2]);
    return {window[0] / 3000.0, window[1] / 2000.0, window[2]};
}

std::array<Point, 8> corners(const Bounds& b) {
    std::array<Point, 8> list;
    for (int i = 0; i < 8; ++i)
        list[i] = {(i & 1 ? b.high : b.low)[0], (i & 2 ? b.high : b.low)[1], (i & 4 ? b.high : b.low)[2]};
    return list;
}

void expectPoint(const Point& found, const Point& expected) {
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(found[k], expected[k], 1e-12) << "component " << k;
}

} // namespace

TEST(Camera, NamedViewsHaveTheirAxes) {
    const double third = 1.0 / std::sqrt(3.0), half = 1.0 / std::sqrt(2.0), sixth = 1.0 / std::sqrt(6.0);
    const struct {
        const char* name;
        ViewAxes axes;
    } rows[] = {
        {"xy", {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
        {"yx", {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}}},
        {"xz", {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}},
        {"zx", {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}},
        {"yz", {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}},
        {"zy", {{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}}},
        {"0,0,2", {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
        {"0,5,0", {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}},
        {"0,-5,0", {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}},
        {"-1,0,0", {{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}}},
        {"iso", {{half, 0, -half}, {-sixth, 2 * sixth, -sixth}, {third, third, third}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const ViewAxes axes = parseView(row.name);
        expectPoint(axes.right, row.axes.right);
        expectPoint(axes.up, row.axes.up);
        expectPoint(axes.toward, row.axes.toward);
        expectPoint(cross(axes.right, axes.up), axes.toward);
    }
}

TEST(Camera, RefusesWhatIsNoView) {
    for (const char* text : {"xx", "", "top", "1,2", "1,2,", "1,2,3,4", "0,0,0", "1,b,3", "nan,0,1", "xyz"})
        EXPECT_THROW(parseView(text), ViewerError) << text;
}

TEST(Camera, FitsTheBoxInEveryViewAndBothProjections) {
    for (const char* name : {"xy", "yx", "xz", "zx", "yz", "zy", "iso", "-3,1,2", "0,1,0"})
        for (bool perspective : {false, true}) {
            SCOPED_TRACE(std::string(name) + (perspective ? " perspective" : ""));
            const Camera camera = fitCamera(parseView(name), kBox, kAspect, perspective);
            const ViewMatrices view = viewMatrices(camera, kBox, kAspect);
            double reach = 0.0;
            for (const Point& corner : corners(kBox)) {
                const Point w = project(view, corner);
                reach = std::max({reach, std::abs(w[0] - 0.5), std::abs(w[1] - 0.5)});
                EXPECT_GT(w[2], 0.0);
                EXPECT_LT(w[2], 1.0);
            }
            EXPECT_LT(reach, 0.5);
            EXPECT_GT(reach, 0.45) << "the picture is filled";
        }
}

TEST(Camera, PicturesAreNotMirrored) {
    for (bool perspective : {false, true}) {
        const Camera camera = fitCamera(parseView("xy"), kBox, kAspect, perspective);
        const ViewMatrices view = viewMatrices(camera, kBox, kAspect);
        const Point middle = project(view, camera.target);
        EXPECT_NEAR(middle[0], 0.5, 1e-12);
        EXPECT_NEAR(middle[1], 0.5, 1e-12);
        EXPECT_GT(project(view, camera.target + Point{1, 0, 0})[0], 0.6) << "x to the right";
        EXPECT_GT(project(view, camera.target + Point{0, 1, 0})[1], 0.6) << "y upward";
        EXPECT_LT(project(view, camera.target + Point{0, 0, 0.2})[2], middle[2]) << "z toward the viewer";
    }
}

TEST(Camera, FitsBoxesWithoutASizeToo) {
    for (const Bounds& flat :
         {Bounds{{1, 2, 3}, {1, 2, 3}}, Bounds{{0, 0, 7}, {4, 2, 7}}, Bounds{{1e-9, 0, 0}, {3e-9, 0, 0}}})
        for (bool perspective : {false, true}) {
            const ViewMatrices view =
                viewMatrices(fitCamera(parseView("xy"), flat, kAspect, perspective), flat, kAspect);
            const Point w = project(view, flat.high);
            EXPECT_TRUE(w[0] > 0.0 && w[0] < 1.0 && w[1] > 0.0 && w[1] < 1.0 && w[2] > 0.0 && w[2] < 1.0)
                << w[0] << " " << w[1] << " " << w[2];
            EXPECT_GT(view.depthRange, 0.0);
        }
}

TEST(Camera, ADragMovesTheNearSideAlong) {
    Camera camera = fitCamera(parseView("iso"), kBox, kAspect, false);
    const Point front = camera.target + camera.axes.toward;
    turnCamera(camera, 0.1, 0.0);
    Point w = project(viewMatrices(camera, kBox, kAspect), front);
    EXPECT_GT(w[0], 0.51);
    EXPECT_NEAR(w[1], 0.5, 1e-12);
    turnCamera(camera, -0.1, 0.1);
    w = project(viewMatrices(camera, kBox, kAspect), front);
    EXPECT_NEAR(w[0], 0.5, 1e-12);
    EXPECT_GT(w[1], 0.51);
    expectPoint(cross(camera.axes.right, camera.axes.up), camera.axes.toward);
}
