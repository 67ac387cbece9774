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

/// Position in the picture, in pixels from its lower left corner, and depth 0..1.
Point project(const Camera& camera, const Bounds& bounds, const PictureArea& area, const Point& point) {
    const ViewMatrices view = viewMatrices(camera, bounds, area.aspect());
    const GLint viewport[4] = {0, 0, area.width, area.height};
    Point window{};
    gluProject(point[0], point[1], point[2], view.modelView.data(), view.projection.data(), viewport,
               &window[0], &window[1], &window[2]);
    return window;
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

// A box, which nearly fills what labels leave of the picture, a point, a flat box and a tiny line.
TEST(Camera, FitsBoxesInEveryViewAndBothProjections) {
    const Bounds boxes[] = {
        kBox, {{1, 2, 3}, {1, 2, 3}}, {{0, 0, 7}, {4, 2, 7}}, {{1e-9, 0, 0}, {3e-9, 0, 0}}};
    for (const PictureArea& area : {PictureArea{150, 100}, {800, 600, 200, 40}, {300, 500, 100, 90}})
        for (const Bounds& box : boxes)
            for (const char* name : {"xy", "yx", "xz", "zx", "yz", "zy", "iso", "-3,1,2", "0,1,0"})
                for (const bool perspective : {false, true}) {
                    SCOPED_TRACE(std::string(name) + (perspective ? " perspective" : ""));
                    const Camera camera = fitCamera(parseView(name), box, area, perspective);
                    Bounds drawn; // pixels and depths of the corners
                    for (unsigned i = 0; i < 8; ++i) {
                        Point corner{};
                        for (unsigned k = 0; k < 3; ++k)
                            corner[k] = (i >> k & 1 ? box.high : box.low)[k];
                        drawn.add(project(camera, box, area, corner));
                    }
                    const auto& [low, high] = drawn;
                    EXPECT_TRUE(low[2] > 0.0 && high[2] < 1.0);
                    EXPECT_TRUE(low[0] > area.left && high[0] < area.width);
                    EXPECT_TRUE(low[1] > 0 && high[1] < area.height - area.top);
                    if (!perspective) {
                        EXPECT_NEAR(low[0] + high[0], area.left + area.width, 1e-6) << "in the middle";
                        EXPECT_NEAR(low[1] + high[1], area.height - area.top, 1e-6);
                    }
                    const double fill = std::max((high[0] - low[0]) / (area.width - area.left),
                                                 (high[1] - low[1]) / (area.height - area.top));
                    EXPECT_TRUE(&box != boxes || fill > (perspective ? 0.75 : 0.9)) << fill;
                }
}

TEST(Camera, ADragMovesTheNearSideAlong) {
    Camera camera = fitCamera(parseView("iso"), kBox, 1.5, false);
    const Point front = camera.target + camera.axes.toward;
    const auto place = [&] { return project(camera, kBox, {150, 100}, front) - Point{75, 50, 0}; };
    turnCamera(camera, 0.1, 0.0);
    EXPECT_GT(place()[0], 1.0);
    EXPECT_NEAR(place()[1], 0.0, 1e-9);
    turnCamera(camera, -0.1, 0.1);
    EXPECT_NEAR(place()[0], 0.0, 1e-9);
    EXPECT_GT(place()[1], 1.0);
}
