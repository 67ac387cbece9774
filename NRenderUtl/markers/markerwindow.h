// What of an array of markers the window shows: planes that cut, sides of triangles, and pixels.
#pragma once

#include <array>

#include "NRenderUtl/markers/markerarray.h"

using Plane4 = std::array<float, 4>; ///< a x + b y + c z + d >= 0 stays, eye space

enum class MarkerExtent {
    Outside, ///< nothing of the marker shows
    Inside,  ///< no plane in front, behind or of the user cuts it
    Cut,
};

/// The view and GL state of one call.
class MarkerWindow {
public:
    MarkerWindow();

    const Matrix4& modelView() const { return m_modelView; }
    const Matrix4& projection() const { return m_projection; }
    /// Of eye space, homogeneous: the inverse of the projection.
    const Matrix4& unprojection() const { return m_unprojection; }
    /// Window position by normalized device coordinates times scale plus offset, in pixels.
    std::array<float, 2> scale() const { return m_scale; }
    std::array<float, 2> offset() const { return m_offset; }

    /// Closed shapes show their fronts alone: nothing shines through, and the nearest wins.
    bool onlyFrontsShow() const { return m_onlyFronts; }
    /// Triangles that cover no centre of a pixel draw nothing.
    bool onlyCentresCount() const { return m_onlyCentres; }
    /// 1 where triangles of which the corners run counterclockwise in eye space, seen by the viewer, do so in
    /// the window.
    float handedness() const { return m_handedness; }
    /// Where the viewer is, or with w = 0 the direction to the viewer.
    const Plane4& viewpoint() const { return m_viewpoint; }
    /// Whether rays find what triangles show: the shapes of model space are those of eye space.
    bool raysWork() const { return m_rays; }
    /// Whether all that has one depth has one scale, too, and rays spread from the middle of eye space.
    bool scalesByDepth() const { return m_byDepth; }

    /// Whether that scale is one for all depths: the view is parallel.
    bool scalesAlike() const;
    /// Whether no plane cuts a ball in eye space and its middle is in the window.
    bool holdsBall(const std::array<float, 3>& middle, float radius) const;

    /// eye places the shape in eye space.
    MarkerExtent extent(const MarkerShape& shape, const Matrix4& eye) const;
    /// Pixels of a length in eye space at a marker, at most.
    float pixels(const MarkerShape& shape, const Matrix4& eye, float length) const;

private:
    void readPlanes(bool clipped);
    void readState();
    void readViewpoint();

    Matrix4 m_modelView, m_projection, m_unprojection;
    std::array<float, 2> m_scale, m_offset;
    std::array<Plane4, 2 + 32> m_cutting;     ///< near, far, and those of the user
    std::array<float, 2 + 32> m_cuttingSteps; ///< lengths of their normals
    std::size_t m_cuttingCount = 0;
    std::array<Plane4, 4> m_sides;
    bool m_onlyFronts = false, m_onlyCentres = false, m_rays = false, m_byDepth = false;
    float m_handedness = 1;
    Plane4 m_viewpoint{};
};
