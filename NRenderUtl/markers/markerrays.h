// Spheres and cylinders drawn as outlines in which rays find them.
#pragma once

#include <cstdint>
#include <vector>

#include "NRenderUtl/markers/markerstream.h"
#include "NRenderUtl/markers/markerwindow.h"

constexpr float kOutlineTolerance = 0.5f;   // pixels
constexpr float kOutlineMargin = 1.0f / 16; // pixels about an outline, for the rounding of its corners
constexpr float kLargestPointSphere = 60;   // pixels: the least size of points that drivers allow

/// How far the outline of the triangles is within that of the round shape, at most, by its radius.
float deficitOf(const MarkerShape& shape);

/// Points are as they are: no circles, of the sizes of the program.
class PointGuard {
public:
    PointGuard();
    ~PointGuard();
    PointGuard(const PointGuard&) = delete;
    PointGuard& operator=(const PointGuard&) = delete;

private:
    bool m_sized, m_sprites, m_smooth;
};

/// Collects markers and draws them together, each as one point or as two triangles.
class MarkerRays {
public:
    /// The program in use is that of the kind of the shape.
    MarkerRays(const NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape,
               bool points);
    /// Draws what is left.
    ~MarkerRays();
    MarkerRays(const MarkerRays&) = delete;
    MarkerRays& operator=(const MarkerRays&) = delete;

    /// Whether a marker would look within the tolerance like its triangles; it is inside, and eye places it.
    bool fits(const Matrix4& eye) const;
    void add(const Matrix4& eye, const MarkerLook& look);
    /// Draws what was added.
    void flush();

private:
    struct Vertex {
        std::array<float, 3> position; ///< eye space
        std::array<float, 4> place, axis, rgba;
        std::array<float, 3> values;
        std::array<float, 4> point;
        float size;
    };
    static std::span<const VertexPart> parts();
    void addTriangles(Vertex vertex, const Matrix4& eye);

    const MarkerWindow& m_window;
    const MarkerShape& m_shape;
    const bool m_points;
    const PointGuard m_pointState;
    const float m_deficit; ///< by which the radius of the triangles' outline is smaller, at most, as a share
    MarkerStream m_stream;
    std::vector<Vertex>& m_vertices;
    std::vector<std::uint16_t>& m_indices;

    /// Memory that is kept from call to call.
    struct Lists {
        std::vector<Vertex> vertices;
        std::vector<std::uint16_t> indices;
    };
    static Lists& lists();
};
