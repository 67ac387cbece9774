// Markers drawn by those of their triangles that can show, placed here.
#pragma once

#include <cstdint>
#include <vector>

#include "NRenderUtl/markers/markerstream.h"
#include "NRenderUtl/markers/markerwindow.h"

/// Collects triangles of many markers and draws them together. For drivers in software, where a triangle that
/// covers nothing costs as much as placing a dozen vertices here.
class MarkerTriangles {
public:
    /// The program in use is that of the kind Triangles.
    MarkerTriangles(const NShaderProgram& program, const MarkerWindow& window, const MarkerShape& shape);
    /// Draws what is left.
    ~MarkerTriangles();
    MarkerTriangles(const MarkerTriangles&) = delete;
    MarkerTriangles& operator=(const MarkerTriangles&) = delete;

    /// eye places the shape in eye space; not outside.
    void add(const Matrix4& eye, MarkerExtent extent, const MarkerLook& look);
    /// Draws what was added.
    void flush();

private:
    struct Vertex {
        std::array<float, 3> position, normal; ///< eye space
        std::array<float, 4> rgba;
        std::array<float, 2> value; ///< and 1 where it shows
    };
    static std::span<const VertexPart> parts();
    void placeVertices(const Matrix4& eye);
    void placeInWindow();
    bool showsNothing(const MarkerShape::Triangle& triangle, float handedness) const;
    std::uint16_t useVertex(std::size_t vertex, const MarkerLook& look);
    Vertex makeVertex(std::size_t vertex, const MarkerLook& look) const;

    const MarkerWindow& m_window;
    const MarkerShape& m_shape;
    MarkerStream m_stream;
    /// Memory that is kept from call to call.
    struct Lists {
        std::vector<Vertex> vertices;
        std::vector<std::uint16_t> indices;
        // Of the marker being added.
        std::vector<float> x, y, z;            ///< eye space
        std::vector<float> across, up;         ///< window, from the centre of pixel 0
        std::vector<std::int32_t> column, row; ///< of the centre before a vertex; near one, the vertex's own
        std::vector<std::int32_t> used;        ///< index of the vertex, -1 for none
    };
    static Lists& lists();

    std::vector<Vertex>& m_vertices = lists().vertices;
    std::vector<std::uint16_t>& m_indices = lists().indices;
    std::vector<float>&m_x = lists().x, &m_y = lists().y, &m_z = lists().z;
    std::vector<float>&m_across = lists().across, &m_up = lists().up;
    std::vector<std::int32_t>&m_column = lists().column, &m_row = lists().row, &m_used = lists().used;
    std::array<std::array<float, 3>, 3> m_normals; ///< the cofactors of the marker's matrix
};
