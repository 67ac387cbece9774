// Spheres and cylinders drawn as outlines in which rays find them.
#pragma once

#include <cstdint>
#include <vector>

#include "NRenderUtl/markers/markerstream.h"
#include "NRenderUtl/markers/markerwindow.h"

/// Collects markers and draws them together, two triangles each.
class MarkerRays {
public:
    /// The program in use is that of the kind of the shape.
    MarkerRays(const NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape);
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
    };
    static std::span<const VertexPart> parts();

    const MarkerWindow& m_window;
    const MarkerShape& m_shape;
    const float m_deficit; ///< by which the radius of the triangles' outline is smaller, at most, as a share
    MarkerStream m_stream;
    std::vector<Vertex> m_vertices;
    std::vector<std::uint16_t> m_indices;
};
