// Draws of many 3D markers in one call: which way each is drawn.
#include <cstring>
#include <limits>
#include <map>
#include <numeric>
#include <vector>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/markers/markerdiscs.h"
#include "NRenderUtl/markers/markerinstances.h"
#include "NRenderUtl/markers/markerprograms.h"
#include "NRenderUtl/markers/markerrays.h"
#include "NRenderUtl/markers/markersection.h"
#include "NRenderUtl/markers/markertriangles.h"
#include "NRenderUtl/shaders/programinuse.h"

namespace {

/// Whether triangles cost the processor; then it is worth leaving out those that do not show.
bool drawsInSoftware() {
    const auto* name = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    if (!name)
        return false;
    for (const char* known : {"llvmpipe", "softpipe", "swrast", "Software Rasterizer", "GDI Generic"})
        if (std::strstr(name, known))
            return true;
    return false;
}

/// Whether a triangle is seen from outside when its corners run counterclockwise. Sides and domes look away
/// from the axis, and flat faces to the end that they close.
bool looksOutward(const MarkerShape& shape, const std::array<std::uint16_t, 3>& corners) {
    std::array<float, 3> p[3], normal, middle;
    for (std::size_t k = 0; k < 3; ++k)
        p[k] = {shape.x[corners[k]], shape.y[corners[k]], shape.z[corners[k]]};
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t i = (k + 1) % 3, j = (k + 2) % 3;
        normal[k] = (p[1][i] - p[0][i]) * (p[2][j] - p[0][j]) - (p[1][j] - p[0][j]) * (p[2][i] - p[0][i]);
        middle[k] = p[0][k] + p[1][k] + p[2][k];
    }
    const float radial = normal[0] * middle[0] + normal[1] * middle[1];
    if (shape.isSphere())
        return radial + normal[2] * middle[2] > 0;
    if (p[0][2] != p[1][2] || p[0][2] != p[2][2])
        return radial > 0;
    const float z = p[0][2];
    const bool rivet = shape.type == RENDER_3D_MARKER_RIVET,
               cylinder = shape.type == RENDER_3D_MARKER_CYLINDER;
    const bool towardEnd = rivet ? (z > 0.05f && z < 0.5f) || z > 0.95f : cylinder && z > 0.5f;
    return (normal[2] > 0) == towardEnd;
}

} // namespace

/// What arrays may know of a section and its shape.
class MarkerArrayDraw {
public:
    MarkerArrayDraw(N3DMarkerRenderer& renderer, const MarkerArray& markers)
        : m_renderer(renderer), m_markers(markers) {}

    int draw() {
        const NShaderProgram* section = m_renderer.m_bShaderActive ? m_renderer.m_pShader : nullptr;
        if (m_markers.count == 0 || !m_renderer.m_pMarker)
            return 0;
        // Buffers are made only in a context that the host declares.
        if (section && marker().m_triangleCount > 0 && IsRenderingContextActive() && drawTogether())
            return static_cast<int>(m_markers.count);
        return drawSingly();
    }

private:
    const N3DMarker& marker() const { return *m_renderer.m_pMarker; }

    int drawSingly() {
        int drawn = 0;
        for (std::size_t i = 0; i < m_markers.count; ++i)
            drawn += m_renderer.Draw(&m_markers.starts[i], &m_markers.vectors[i], m_markers.lengthScales[i],
                                     m_markers.widthRatios[i],
                                     m_markers.colors.values ? &m_markers.colors[i] : nullptr,
                                     m_markers.contoured, m_markers.texCoords1[i], m_markers.texCoords2[i],
                                     m_markers.selected[i], m_markers.highlighted[i]);
        return drawn;
    }

    /// False, with nothing drawn, where the driver lacks what it takes.
    bool drawTogether() {
        const ProgramInUseGuard sectionProgram;
        if (!m_markers.colors.values)
            glGetFloatv(GL_CURRENT_COLOR, m_markers.currentColor.data());
        const MarkerShape& shape = knownShape();
        const MarkerWindow window;
        const bool software = drawsInSoftware();
        const bool hasRays = shape.isSphere() || shape.type == RENDER_3D_MARKER_CYLINDER;
        const bool rays = hasRays && !m_markers.exact && window.raysWork();
        if (!software && !rays)
            return drawInstances(shape);
        return drawPlaced(shape, window, rays);
    }

    bool drawInstances(const MarkerShape& shape) {
        NShaderProgram* program = canDrawInstances()
                                      ? useMarkerProgram(MarkerProgramKind::Instances, m_markers.contoured)
                                      : nullptr;
        if (!program)
            return false;
        program->SetUniformValue("g_halfvertcnt", marker().m_vertexCount / 2);
        const auto name = [](const RenderGLBuffer& buffer) {
            return buffer.IsValid() ? buffer.GetBufferID() : 0;
        };
        drawMarkerInstances(*program,
                            {name(marker().m_vertexBuffer), name(marker().m_indexBuffer), marker().m_vertices,
                             marker().m_indices, marker().m_vertexCount, 3 * marker().m_triangleCount},
                            shape, m_markers);
        return true;
    }

    /// As points, as outlines and as triangles, each what the ones before leave over: the nearest wins in any
    /// order.
    bool drawPlaced(const MarkerShape& shape, const MarkerWindow& window, bool rays) {
        static std::vector<std::size_t> left; // memory that is kept from call to call
        left.resize(m_markers.count);
        std::iota(left.begin(), left.end(), std::size_t{0});
        if (rays && MarkerDiscs::areFor(shape, window, m_markers) && !drawDiscs(shape, window, left))
            return false;
        if (left.empty())
            return true;
        if (rays && window.scalesByDepth() && !drawRays(shape, window, true, left))
            return false;
        if (rays && !left.empty() && !drawRays(shape, window, false, left))
            return false;
        return left.empty() || drawTriangles(shape, window, left);
    }

    /// Leaves the numbers of the spheres that are to be drawn in other ways.
    bool drawDiscs(const MarkerShape& shape, const MarkerWindow& window, std::vector<std::size_t>& left) {
        NShaderProgram* program = useMarkerProgram(MarkerProgramKind::SphereDiscs, false);
        if (!program)
            return false;
        MarkerDiscs drawn(*program, window, shape, m_markers);
        std::erase_if(left, [&](std::size_t i) { return drawn.add(i); });
        return true;
    }

    /// Leaves the numbers of the markers that are to be drawn in other ways.
    bool drawRays(const MarkerShape& shape, const MarkerWindow& window, bool points,
                  std::vector<std::size_t>& left) {
        using enum MarkerProgramKind;
        const bool byDepth = window.scalesByDepth();
        const MarkerProgramKind kind = shape.isSphere() ? byDepth ? SphereRaysByDepth : SphereRays
                                       : byDepth        ? CylinderRaysByDepth
                                                        : CylinderRays;
        NShaderProgram* program = useMarkerProgram(kind, m_markers.contoured);
        if (!program)
            return false;
        Plane4 viewpoint = window.viewpoint();
        program->SetVec4UniformValue("g_viewpoint", viewpoint.data());
        MarkerRays drawn(*program, window, shape, points);
        std::erase_if(left, [&](std::size_t i) {
            Matrix4 matrix;
            if (!shape.place(m_markers, i, matrix))
                return true;
            const Matrix4 eye = multiply(window.modelView(), matrix);
            const MarkerExtent extent = window.extent(shape, eye);
            if (extent == MarkerExtent::Inside && drawn.fits(eye))
                drawn.add(eye, m_markers.look(i));
            else if (extent != MarkerExtent::Outside)
                return false;
            return true;
        });
        return true;
    }

    bool drawTriangles(const MarkerShape& shape, const MarkerWindow& window,
                       const std::vector<std::size_t>& left) {
        NShaderProgram* program = useMarkerProgram(MarkerProgramKind::Triangles, m_markers.contoured);
        if (!program)
            return false;
        MarkerTriangles triangles(*program, window, shape);
        for (const std::size_t i : left) {
            Matrix4 matrix;
            if (!shape.place(m_markers, i, matrix))
                continue;
            const Matrix4 eye = multiply(window.modelView(), matrix);
            const MarkerExtent extent = window.extent(shape, eye);
            if (extent != MarkerExtent::Outside)
                triangles.add(eye, extent, m_markers.look(i));
        }
        return true;
    }

    /// The shape as read when its resolution was last another one.
    const MarkerShape& knownShape() const {
        static std::map<_Render3DMarkerType, MarkerShape> shapes;
        MarkerShape& shape = shapes[marker().m_type];
        if (shape.sliceCount != marker().m_sliceCount || shape.x.empty())
            shape = readShape();
        return shape;
    }

    MarkerShape readShape() const {
        MarkerShape shape{marker().m_type, marker().m_sliceCount, {}, {}, {}, {}, {}, {}};
        std::array<std::vector<float>*, 3> axes = {&shape.x, &shape.y, &shape.z};
        for (std::size_t k = 0; k < 3; ++k) {
            float low = std::numeric_limits<float>::max(), high = -low;
            for (int i = 0; i < marker().m_vertexCount; ++i) {
                const float value = marker().m_vertices[3 * static_cast<std::size_t>(i) + k];
                axes[k]->push_back(value);
                low = std::min(low, value);
                high = std::max(high, value);
            }
            shape.centre[k] = (low + high) / 2;
            shape.halfSize[k] = (high - low) / 2;
        }
        for (int t = 0; t < marker().m_triangleCount; ++t) {
            std::array<std::uint16_t, 3> corners;
            for (std::size_t k = 0; k < 3; ++k)
                corners[k] =
                    static_cast<std::uint16_t>(marker().m_indices[3 * static_cast<std::size_t>(t) + k]);
            shape.triangles.push_back({corners, looksOutward(shape, corners) ? 1.0f : -1.0f});
        }
        return shape;
    }

    N3DMarkerRenderer& m_renderer;
    MarkerArray m_markers;
};

namespace {

constexpr std::uint8_t kUnmarked = 0;

int drawArray(bool spheres, const MarkerArray& markers) {
    N3DMarkerRenderer* renderer = openMarkerRenderer(spheres);
    if (!renderer || !markers.starts.values || !markers.vectors.values)
        return 0;
    return MarkerArrayDraw(*renderer, markers).draw();
}

} // namespace

int RenderDraw3DMarkers(const Render3DMarkerArray* markers) {
    const Render3DMarkerArray m = markers ? *markers : Render3DMarkerArray{};
    return drawArray(false, {m.count,
                             {m.starts, 1},
                             {m.vectors, 1},
                             PerMarker<float>::of(m.lengthScales, m.lengthScale),
                             PerMarker<float>::of(m.widthRatios, m.widthRatio),
                             {m.colors ? m.colors : m.color, m.colors ? 1u : 0u},
                             m.contoured,
                             PerMarker<float>::of(m.texCoords1, m.texCoord1),
                             PerMarker<float>::of(m.texCoords2, m.texCoord2),
                             PerMarker<std::uint8_t>::of(m.selected, kUnmarked),
                             PerMarker<std::uint8_t>::of(m.highlighted, kUnmarked),
                             m.exact,
                             {}});
}

int RenderDraw3DSpheres(const Render3DSphereArray* spheres) {
    const Render3DSphereArray s = spheres ? *spheres : Render3DSphereArray{};
    constexpr float kNone = 0;
    const PerMarker<float> values = PerMarker<float>::of(s.texCoords, s.texCoord);
    return drawArray(true, {s.count,
                            {s.centres, 1},
                            PerMarker<_NgFPoint3Str>::of(s.diameters, s.diameter),
                            {&kNone, 0},
                            {&kNone, 0},
                            PerMarker<NgColorLong>::of(s.colors, s.color),
                            s.contoured,
                            values,
                            values,
                            PerMarker<std::uint8_t>::of(s.selected, kUnmarked),
                            PerMarker<std::uint8_t>::of(s.highlighted, kUnmarked),
                            s.exact,
                            {}});
}
