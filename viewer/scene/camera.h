// Where the viewer looks from: axes, fit to a model, matrices for OpenGL.
#pragma once

#include <string>

#include "viewer/model/model.h"

namespace nruview {

/// Axis-aligned box; low above high while it holds nothing.
struct Bounds {
    Point low{1.0, 1.0, 1.0};
    Point high{-1.0, -1.0, -1.0};
    bool empty() const { return low[0] > high[0]; }
    void add(const Point& point);
};
Bounds boundsOf(std::span<const Point> points);

/// Orthonormal, right-handed directions of the picture in model space; toward points at the viewer.
struct ViewAxes {
    Point right, up, toward;
    bool operator==(const ViewAxes&) const = default;
};

/// "iso", a pair such as "xy" (x to the right, y up), or "X,Y,Z", the direction in which the viewer stands as
/// seen from the model. Throws ViewerError for anything else.
ViewAxes parseView(const std::string& text);

struct Camera {
    ViewAxes axes;
    Point target{};          ///< model point in the middle of the picture
    double distance = 1.0;   ///< from the eye to the target
    double halfHeight = 1.0; ///< of the picture, in model length at the target
    bool perspective = false;
    std::array<double, 2> shift{}; ///< of the target from the picture's middle, in half pictures
};

/// A picture in pixels and what labels take of it from its left and its top.
struct PictureArea {
    int width = 1, height = 1;
    int left = 0, top = 0;
    double aspect() const { return static_cast<double>(width) / height; }
};

/// Frames a box: all of it lies within the picture, with a small margin. aspect is width / height.
Camera fitCamera(const ViewAxes& axes, const Bounds& bounds, double aspect, bool perspective);
/// The same within the part of a picture that labels leave.
Camera fitCamera(const ViewAxes& axes, const Bounds& bounds, const PictureArea& area, bool perspective);
/// Moves the target to the middle of what labels leave, also after the picture's size has changed.
void centreCamera(Camera& camera, const PictureArea& area);
/// Turns the camera about its target, as a drag by these angles (radians, to the right and upward) would.
void turnCamera(Camera& camera, double rightRad, double upRad);

/// Where a point stands in a picture, in pixels with y from the top. In perspective it must be before the
/// eye.
std::array<double, 2> placeInPicture(const Camera& camera, const Point& point, int width, int height);
/// What stands at a place of a picture as near to the viewer as another point.
Point pointInPicture(const Camera& camera, double x, double y, const Point& likeNear, int width, int height);
/// Moves the camera sideways until a point stands at a place of the picture.
void moveCamera(Camera& camera, const Point& point, double x, double y, int width, int height);

/// Matrices in OpenGL's column-major order. The clip planes enclose the box.
struct ViewMatrices {
    std::array<double, 16> modelView, projection;
    Point eye;
};
ViewMatrices viewMatrices(const Camera& camera, const Bounds& bounds, double aspect);

} // namespace nruview
