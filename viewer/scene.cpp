// Faces with contour colours under a light, beams and single points in plain colours, edges on top.
#include "viewer/scene.h"

#include <epoxy/gl.h>

#include <cmath>

#include "viewer/facenormals.h"

namespace nruview {

namespace {

constexpr double kCreaseDeg = 30.0;
constexpr NgColorLong kWhite = 0xFFFFFFFF;
constexpr NgColorLong kNeutral = 0xFFCDB9A8; ///< a model without a field: light steel blue
constexpr NgColorLong kNoValue = 0xFFA0A0A0; ///< NaN: grey, which is no contour colour
constexpr NgColorLong kEdgeColor = 0xFF303030;
constexpr float kBeamWidth_px = 3.0f;
constexpr float kPointSize_px = 6.0f;

RenderTextureAttributes* activeAttributes = nullptr;

/// The library asks here for the contour texture.
RenderTextureAttributes* provideAttributes(unsigned int, float, float) {
    return activeAttributes;
}

std::optional<ColorBands> makeBands(const ShownModel& shown, const SceneSettings& settings) {
    if (!shown.scalars)
        return {};
    const auto found = finiteRange(shown.scalars->values);
    const std::array<double, 2> range = settings.range.value_or(found.value_or(std::array{0.0, 0.0}));
    return ColorBands(settings.bands, range, settings.smeared);
}

/// Texture coordinates of the corners of an element, four at most; nothing when one has no value.
std::optional<std::array<float, 4>> coordinates(const ShownModel& shown,
                                                const std::optional<ColorBands>& bands,
                                                std::span<const std::uint32_t> corners, std::uint32_t cell) {
    if (!bands)
        return {};
    std::array<float, 4> values{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const double value = valueAt(shown, corners[i], cell);
        if (std::isnan(value))
            return {};
        values[i] = bands->coordinate(value);
    }
    return values;
}

/// The faces as two meshes. A point becomes one vertex for all the corners that agree in normal and value.
class FaceMeshes {
public:
    FaceMeshes(const ShownModel& shown, const std::optional<ColorBands>& bands)
        : m_shown(shown), m_meeting(pointCorners(shown.surface, shown.points.size())),
          m_normals(cornerNormals(shown.surface, shown.points, m_meeting, kCreaseDeg)) {
        m_made.resize(m_normals.size());
        std::uint32_t corner = 0;
        forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
            const auto values = coordinates(shown, bands, face, cell);
            std::array<std::uint32_t, 4> vertices{};
            for (std::size_t i = 0; i < face.size(); ++i, ++corner)
                vertices[i] = vertexFor(corner, face[i], values.has_value(), values ? (*values)[i] : 0.0f);
            (values ? colored : plain).addFace(std::span(vertices).first(face.size()));
        });
    }

    MeshBuilder colored, plain;

private:
    struct Vertex {
        std::uint32_t index = 0;
        bool made = false, colored = false;
        float value = 0.0f;
    };

    std::uint32_t vertexFor(std::uint32_t corner, std::uint32_t point, bool hasValue, float value) {
        for (std::uint32_t other : m_meeting.of(point)) {
            const Vertex& vertex = m_made[other];
            if (vertex.made && vertex.colored == hasValue && vertex.value == value &&
                m_normals[other] == m_normals[corner])
                return (m_made[corner] = vertex).index;
        }
        MeshBuilder& builder = hasValue ? colored : plain;
        m_made[corner] = {builder.addVertex(m_shown.points[point], m_normals[corner], value), true, hasValue,
                          value};
        return m_made[corner].index;
    }

    const ShownModel& m_shown;
    PointCorners m_meeting;
    std::vector<Point> m_normals; ///< of each corner
    std::vector<Vertex> m_made;   ///< of each corner
};

/// Adds a beam, or with one corner a single point, to the builder that its value calls for.
void addLoose(MeshBuilder& colored, MeshBuilder& plain, const ShownModel& shown,
              const std::optional<ColorBands>& bands, std::span<const std::uint32_t> corners,
              std::uint32_t cell) {
    const auto values = coordinates(shown, bands, corners, cell);
    MeshBuilder& builder = values ? colored : plain;
    std::vector<std::uint32_t> vertices;
    for (std::size_t i = 0; i < corners.size(); ++i)
        vertices.push_back(builder.addVertex(shown.points[corners[i]], values ? (*values)[i] : 0.0f));
    if (vertices.size() == 2)
        builder.addEdge(vertices[0], vertices[1]);
}

/// The model's points with the outlines of its element faces.
MeshPtr outlineMesh(const ShownModel& shown) {
    MeshBuilder builder;
    for (const Point& point : shown.points)
        builder.addVertex(point);
    for (const auto& [from, to] : shown.surface.edges)
        builder.addEdge(from, to);
    return builder.finish().mesh;
}

/// The model's points with its faces as they hang together; the library finds its feature edges.
MeshPtr featureMesh(const ShownModel& shown) {
    MeshBuilder builder;
    for (const Point& point : shown.points)
        builder.addVertex(point);
    forEachFace(shown.surface,
                [&](std::span<const std::uint32_t> face, std::uint32_t) { builder.addFace(face); });
    MeshPtr mesh = builder.finish().mesh;
    ngl_process_mesh_edges(mesh.get());
    return mesh;
}

bool hasFaces(const Surface& surface) {
    return !surface.triangles.empty() || !surface.quads.empty();
}

/// Values are the contour's; null draws in the current colour.
void drawMesh(_NgMeshStr* mesh, float* values, unsigned int what) {
    if (values != nullptr)
        ngl_mesh_contour_draw(mesh, what, values);
    else
        ngl_mesh(mesh, what);
}

/// How far beside an edge its pixels or samples lie, where a sloping face may be nearer: faces step back by
/// that. Without multisampling a line's pixels lie within half a pixel in the direction of its minor axis.
float edgeReach_px() {
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    return samples > 1 ? 1.0f : 0.6f;
}

void drawMeshPoints(const _NgMeshStr* mesh, const float* values) {
    glBegin(GL_POINTS);
    for (std::int32_t i = 0; i < mesh->vertexCount; ++i) {
        if (values != nullptr)
            glTexCoord1f(values[i]);
        glVertex3dv(mesh->coords + 3 * i);
    }
    glEnd();
}

} // namespace

Scene::Scene(const ShownModel& shown, const SceneSettings& settings)
    : m_bands(makeBands(shown, settings)), m_plainColor(m_bands ? kNoValue : kNeutral),
      m_edgeMode(settings.edges), m_edgeReach_px(edgeReach_px()) {
    { // what the faces were made from is freed before the edges are made
        FaceMeshes faces(shown, m_bands);
        m_faces = {faces.colored.finish(), faces.plain.finish()};
    }
    const Surface& surface = shown.surface;
    MeshBuilder coloredBeams, plainBeams, coloredPoints, plainPoints;
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        addLoose(coloredBeams, plainBeams, shown, m_bands, surface.lines[i], surface.lineCells[i]);
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        addLoose(coloredPoints, plainPoints, shown, m_bands, {&surface.points[i], 1}, surface.pointCells[i]);
    m_beams = {coloredBeams.finish(), plainBeams.finish()};
    m_points = {coloredPoints.finish(), plainPoints.finish()};
    if (m_edgeMode == EdgeMode::All && !surface.edges.empty())
        m_edges = outlineMesh(shown);
    if (m_edgeMode == EdgeMode::Feature && hasFaces(surface))
        m_edges = featureMesh(shown);
    if (m_bands)
        m_bands->createTexture();
    activeAttributes = m_bands ? &m_bands->attributes() : nullptr;
    NglRegisterGetActiveTextureAttribProc(provideAttributes);
}

Scene::~Scene() {
    if (m_bands) {
        if (activeAttributes == &m_bands->attributes())
            activeAttributes = nullptr;
        glDeleteTextures(1, &m_bands->attributes().texture);
    }
}

void Scene::draw() {
    drawFaces();
    drawBeams();
    drawPoints();
    drawEdges();
}

/// Contour colours are white light through the texture: lighting shades them, their hue stays.
void Scene::beginContour() {
    NglSetActiveTextureInfo(0, 0.0f, 0.0f);
    NglEnableTexture(GL_TEXTURE_1D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    ngl_set_color_long(kWhite);
}

void Scene::endContour() {
    NglDisableTexture(GL_TEXTURE_1D);
    glMatrixMode(GL_TEXTURE); // NglEnableTexture has put the value range there
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
}

template <typename Draw>
void Scene::drawPart(Part& part, Draw draw) {
    if (part.colored.mesh) {
        beginContour();
        draw(part.colored.mesh.get(), part.colored.values.data());
        endContour();
    }
    if (part.plain.mesh) {
        ngl_set_color_long(m_plainColor);
        draw(part.plain.mesh.get(), nullptr);
    }
}

void Scene::drawFaces() {
    glPolygonOffset(m_edgeReach_px, 1.0f);
    glEnable(GL_POLYGON_OFFSET_FILL);
    drawPart(m_faces, [](auto* mesh, float* values) { drawMesh(mesh, values, NglMeshFaces); });
    glDisable(GL_POLYGON_OFFSET_FILL);
}

void Scene::drawBeams() {
    glLineWidth(kBeamWidth_px);
    drawPart(m_beams, [](auto* mesh, float* values) { drawMesh(mesh, values, NglMeshEdges); });
    glLineWidth(1.0f);
}

void Scene::drawPoints() {
    glPointSize(kPointSize_px);
    drawPart(m_points, drawMeshPoints);
    glPointSize(1.0f);
}

void Scene::drawEdges() {
    if (!m_edges)
        return;
    ngl_set_color_long(kEdgeColor);
    ngl_mesh(m_edges.get(), m_edgeMode == EdgeMode::All ? NglMeshEdges : NglMeshSilhouette);
}

} // namespace nruview
