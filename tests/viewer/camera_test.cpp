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

/// Position in a window of 1.5 x 1 with depth 0..1, from -0.5 to 0.5 in both directions.
Point project(const Camera& camera, const Bounds& bounds, const Point& point) {
    const ViewMatrices view = viewMatrices(camera, bounds, kAspect);
    const GLint viewport[4] = {0, 0, 3000, 2000};
    Point window{};
    gluProject(point[0], point[1], point[2], view.modelView.data(), view.projection.data(), viewport,
               &window[0], &window[1], &window[2]);
    return {window[0] / 3000.0 - 0.5, window[1] / 2000.0 - 0.5, window[2]};
}

void expectPoint(const Point& found, const Point& expected) {
    EXPECT_LT(length(found - expected), 1e-12) << found[0] << " " << found[1] << " " << found[2];
}

} // namespace

TEST(Camera, NamedViewsHaveTheirAxes) {
    const double half = 1.0 / std::sqrt(2.0), sixth = 1.0 / std::sqrt(6.0);
    const struct {
        const char* name;
        Point right, up;
    } rows[] = {
        {"xy", {1, 0, 0}, {0, 1, 0}},
        {"yx", {0, 1, 0}, {1, 0, 0}},
        {"xz", {1, 0, 0}, {0, 0, 1}},
        {"zy", {0, 0, 1}, {0, 1, 0}},
        {"0,0,2", {1, 0, 0}, {0, 1, 0}},
        {"0,5,0", {1, 0, 0}, {0, 0, -1}},
        {"0,-5,0", {1, 0, 0}, {0, 0, 1}},
        {"-1,0,0", {0, 0, 1}, {0, 1, 0}},
        {"iso", {half, 0, -half}, {-sixth, 2 * sixth, -sixth}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const ViewAxes axes = parseView(row.name);
        expectPoint(axes.right, row.right);
        expectPoint(axes.up, row.up);
        expectPoint(axes.toward, cross(row.right, row.up));
    }
}

TEST(Camera, RefusesWhatIsNoView) {
    for (const char* text : {"xx", "", "top", "1,2", "1,2,", "1,2,3,4", "0,0,0", "1,b,3", "nan,0,1", "xyz"})
        EXPECT_THROW(parseView(text), ViewerError) << text;
}

TEST(Camera, FitsBoxesInEveryViewAndBothProjections) {
    const struct {
        Bounds box;
        double reach; ///< at least this much of the picture is filled
    } rows[] = {{kBox, 0.45},
                {{{1, 2, 3}, {1, 2, 3}}, 0.0},
                {{{0, 0, 7}, {4, 2, 7}}, 0.0},
                {{{1e-9, 0, 0}, {3e-9, 0, 0}}, 0.0}};
    for (const auto& [box, least] : rows)
        for (const char* name : {"xy", "yx", "xz", "zx", "yz", "zy", "iso", "-3,1,2", "0,1,0"})
            for (bool perspective : {false, true}) {
                SCOPED_TRACE(std::string(name) + (perspective ? " perspective" : ""));
                const Camera camera = fitCamera(parseView(name), box, kAspect, perspective);
                double reach = 0.0;
                for (int i = 0; i < 8; ++i) {
                    const Point w = project(camera, box,
                                            {(i & 1 ? box.high : box.low)[0], (i & 2 ? box.high : box.low)[1],
                                             (i & 4 ? box.high : box.low)[2]});
                    reach = std::max({reach, std::abs(w[0]), std::abs(w[1])});
                    EXPECT_TRUE(w[2] > 0.0 && w[2] < 1.0) << w[2];
                }
                EXPECT_TRUE(reach >= least && reach < 0.5) << reach;
            }
}

TEST(Camera, ADragMovesTheNearSideAlong) {
    Camera camera = fitCamera(parseView("iso"), kBox, kAspect, false);
    const Point front = camera.target + camera.axes.toward;
    turnCamera(camera, 0.1, 0.0);
    Point w = project(camera, kBox, front);
    EXPECT_GT(w[0], 0.01);
    EXPECT_NEAR(w[1], 0.0, 1e-12);
    turnCamera(camera, -0.1, 0.1);
    w = project(camera, kBox, front);
    EXPECT_NEAR(w[0], 0.0, 1e-12);
    EXPECT_GT(w[1], 0.01);
}
