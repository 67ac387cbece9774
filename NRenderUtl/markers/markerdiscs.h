// Spheres in parallel views, drawn as discs whose fragments find how far they bulge.
#pragma once

#include <vector>

#include "NRenderUtl/markers/markerrays.h"

/// Collects spheres and draws them together, each as one point.
class MarkerDiscs {
public:
    /// Whether the view and the spheres are of the kind; single ones may still not be.
    static bool areFor(const MarkerShape& shape, const MarkerWindow& window, const MarkerArray& spheres);

    /// The program in use is that of the kind SphereDiscs.
    MarkerDiscs(NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape,
                const MarkerArray& spheres);
    /// Draws what is left.
    ~MarkerDiscs();
    MarkerDiscs(const MarkerDiscs&) = delete;
    MarkerDiscs& operator=(const MarkerDiscs&) = delete;

    /// False for a sphere that is to be drawn in another way.
    bool add(std::size_t i);

private:
    struct Vertex {
        std::array<float, 3> centre; ///< eye space
        float radius, size;
        std::array<float, 4> rgba;
    };
    static std::span<const VertexPart> parts();
    static std::vector<Vertex>& list();
    void sendView(NShaderProgram& program) const;
    void flush();

    const MarkerWindow& m_window;
    const MarkerArray& m_spheres;
    const float m_radius;  ///< drawn, eye space, of a diameter 1 in the model
    const float m_pixels;  ///< of a length 1 in eye space
    const float m_largest; ///< radius, pixels
    const PointGuard m_pointState;
    MarkerStream m_stream;
    std::vector<Vertex>& m_vertices;
};
