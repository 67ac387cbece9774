// Faces with contour colours under a light, beams and single points in plain colours, edges on top.
#include "viewer/scene/scene.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <new>

#include "viewer/app/messages.h"
#include "viewer/scene/blockcolors.h"
#include "viewer/scene/contour.h"
#include "viewer/scene/facemesh.h"
#include "viewer/scene/flatfaces.h"
#include "viewer/section/clipplane.h"

namespace nruview {

namespace {

constexpr NgColorLong kNeutral = 0xFFCDB9A8; ///< a model without a field: light steel blue
constexpr NgColorLong kEdgeColor = 0xFF303030;
constexpr double kBeamWidth_px = 3.0;
constexpr double kPointSize_px = 6.0;
/// Of depth's smallest steps: faces and edges reach the depth buffer by ways that round differently, which
/// shows where a thin model is seen face-on and its depths fill the buffer's range.
constexpr float kOffsetUnits = 64.0f;

std::optional<ColorBands> bandsOf(const ShownModel& shown, const SceneSettings& settings) {
    if (!shown.scalars)
        return {};
    const auto found = finiteRange(shown.scalars->values);
    const std::array<double, 2> range = settings.range.value_or(found.value_or(std::array{0.0, 0.0}));
    return ColorBands(settings.bands, range, settings.smeared);
}

NgColorLong plainColor(const std::optional<ColorBands>& bands) {
    return bands ? kNoValueColor : kNeutral;
}

/// Contour coordinates of the corners of an element, four at most; nothing when one has no value or the
/// element has a colour of its own.
std::optional<std::array<float, 4>> coordinates(const ShownModel& shown,
                                                const std::optional<ColorBands>& bands,
                                                std::span<const std::uint32_t> corners, std::uint32_t cell) {
    if (!bands || shown.elements.isColored(cell))
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

/// Whether every face has values of the contour.
bool areAllColored(const ShownModel& shown, const std::optional<ColorBands>& bands) {
    bool areAll = true;
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> corners, std::uint32_t cell) {
        areAll = areAll && coordinates(shown, bands, corners, cell);
    });
    return areAll;
}

/// The contour's values of all nodes or elements; a face that lacks one is not in the mesh. The library
/// blends colours within a face alone: where an element has one value, its blended colour is made here.
void setValues(ngl::NglElementMesh& mesh, const ShownModel& shown, const ColorBands& bands) {
    const bool ofElements = shown.scalars->location == FieldLocation::Cell;
    const std::size_t count = ofElements ? shown.model.cellCount() : shown.points.size();
    std::vector<float> values(count);
    for (std::uint32_t i = 0; i < count; ++i)
        values[i] = bands.coordinate(ofElements ? valueAt(shown, 0, i) : valueAt(shown, i, 0));
    mesh.SetColorScale(&bands.scale());
    int result = 0;
    if (ofElements && bands.smeared()) {
        std::vector<NgColorLong> colors(count);
        std::transform(values.begin(), values.end(), colors.begin(),
                       [&](float value) { return bands.scale().GetColor(value); });
        result = mesh.SetColors(ngl::NglElements::Range(0, mesh.ElementCount()), colors.data());
    } else {
        result = ofElements ? mesh.SetElementValues(values.data()) : mesh.SetNodeValues(values.data());
    }
    if (result != 0)
        throw std::bad_alloc();
}

/// The triangles of a surface model say nothing about it.
EdgeMode edgesOf(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body) {
    const bool isSurface = shown.model.isSurface || areBodies(shown, settings, body);
    return settings.edges.value_or(isSurface ? EdgeMode::None : EdgeMode::All);
}

/// What parts and settings of bodies say, as far as an element mesh can show it.
void setBodyColors(ngl::NglElementMesh& mesh, const ShownModel& shown, const BodySettings& settings) {
    for (const ModelPart& part : shown.model.parts)
        if (!settings.hasSides() && mesh.ElementCount() != 0 &&
            mesh.SetColor(ngl::NglElements::Range(part.firstCell, part.cellCount),
                          partColor(part, settings)) != 0)
            throw std::bad_alloc();
    ngl::NglElementAttributes attributes = mesh.Attributes();
    attributes.color = partColor({}, settings);
    attributes.frontAndBack = settings.hasSides();
    attributes.frontColor = frontColor(settings);
    attributes.backColor = backColor(settings);
    mesh.SetAttributes(attributes);
}

ngl::NglElementShading shadingOf(Shading shading) {
    return shading == Shading::Flat      ? ngl::NglElementFlat
           : shading == Shading::Element ? ngl::NglElementNormals
                                         : ngl::NglElementSmooth;
}

/// The faces in contour colours, or those in one colour or their own.
ngl::NglElementMesh faceMesh(const ShownModel& shown, const std::optional<ColorBands>& bands,
                             const SceneSettings& settings, const BodySettings& body, bool contour) {
    ngl::NglElementMesh mesh =
        makeFaceMesh(shown, [&](std::span<const std::uint32_t> corners, std::uint32_t cell) {
            return coordinates(shown, bands, corners, cell).has_value() == contour;
        });
    ngl::NglElementAttributes attributes = mesh.Attributes();
    attributes.shading = shadingOf(settings.shading);
    attributes.color = plainColor(bands);
    attributes.opacity = static_cast<float>(settings.opacity);
    mesh.SetAttributes(attributes);
    if (areBodies(shown, settings, body))
        setBodyColors(mesh, shown, body);
    setBlockColors(shown, mesh);
    if (contour && mesh.ElementCount() != 0)
        setValues(mesh, shown, *bands);
    return mesh;
}

/// Beams or single points on their way into meshes.
struct PartBuilder {
    MeshBuilder colored;
    std::map<NgColorLong, MeshBuilder> plain;
};

/// Adds the beams, or the points, of the elements shown: in their own colour, else by their values.
class LooseBuilder {
public:
    LooseBuilder(const ShownModel& shown, const std::optional<ColorBands>& bands)
        : m_shown(shown), m_bands(bands), m_colors(ownColors(shown)) {}

    void add(PartBuilder& part, std::span<const std::uint32_t> corners, std::uint32_t cell) {
        if (!m_shown.elements.isShown(cell))
            return;
        const NgColorLong own = m_colors.empty() ? 0 : m_colors[cell];
        const auto values = own == 0 ? coordinates(m_shown, m_bands, corners, cell) : std::nullopt;
        MeshBuilder& builder = values ? part.colored : part.plain[own != 0 ? own : plainColor(m_bands)];
        std::vector<std::uint32_t> vertices;
        for (std::size_t i = 0; i < corners.size(); ++i)
            vertices.push_back(builder.addVertex(m_shown.points[corners[i]], values ? (*values)[i] : 0.0f));
        if (vertices.size() == 2)
            builder.addEdge(vertices[0], vertices[1]);
    }

private:
    const ShownModel& m_shown;
    const std::optional<ColorBands>& m_bands;
    std::vector<NgColorLong> m_colors;
};

Scene::Part finish(PartBuilder& builder) {
    Scene::Part part{builder.colored.finish(), {}};
    for (auto& [color, plain] : builder.plain)
        part.plain.emplace_back(color, plain.finish().mesh);
    return part;
}

/// The model's points with the outlines of its shown element faces.
MeshPtr outlineMesh(const ShownModel& shown) {
    MeshBuilder builder;
    for (const Point& point : shown.points)
        builder.addVertex(point);
    for (const auto& [from, to] : shown.surface.edges)
        builder.addEdge(from, to);
    return builder.finish().mesh;
}

/// The model's points with its shown faces as they hang together; the library finds their feature edges.
MeshPtr featureMesh(const ShownModel& shown) {
    MeshBuilder builder;
    for (const Point& point : shown.points)
        builder.addVertex(point);
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
        if (shown.elements.isShown(cell))
            builder.addFace(face);
    });
    MeshPtr mesh = builder.finish().mesh;
    ngl_process_mesh_edges(mesh.get());
    return mesh;
}

bool hasFaces(const Surface& surface) {
    return !surface.triangles.empty() || !surface.quads.empty();
}

/// Values are the contour's; null draws in the current colour.
void drawLines(_NgMeshStr* mesh, float* values) {
    if (values != nullptr)
        ngl_mesh_contour_draw(mesh, NglMeshEdges, values);
    else
        ngl_mesh(mesh, NglMeshEdges);
}

/// How far beside an edge its pixels or samples lie, where a sloping face may be nearer: faces step back by
/// that. Without multisampling a line's pixels lie within half a pixel in the direction of its minor axis.
double edgeReach_px() {
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    return samples > 1 ? 1.0 : 0.6;
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

Scene::Scene(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body,
             const Markers* markers)
    : m_settings(settings), m_body(body), m_areBodies(areBodies(shown, settings, body)),
      m_edgeMode(edgesOf(shown, settings, body)), m_edgeReach_px(edgeReach_px()) {
    makeBands(shown);
    makeFaces(shown);
    makeLoose(shown);
    const Surface& surface = shown.surface;
    if (m_edgeMode == EdgeMode::All && !surface.edges.empty())
        m_edges = outlineMesh(shown);
    if (m_edgeMode == EdgeMode::Feature && hasFaces(surface))
        m_edges = featureMesh(shown);
    if (markers)
        m_markers.emplace(*markers, settings, m_bands);
    cut(shown);
}

Scene::~Scene() {
    if (m_bands)
        glDeleteTextures(1, &m_bands->attributes().texture);
}

bool Scene::canUpdate(const ShownModel& shown, const ShownUpdate& update) const {
    if (update.surface || update.shape || update.showsOthers || update.colorBy ||
        areBodies(shown, m_settings, m_body) != m_areBodies)
        return false;
    if (update.elements && update.elements->colored != shown.elements.colored)
        return false;
    if (!update.scalars)
        return true;
    const std::optional<Scalars>& before = *update.scalars;
    return before && shown.scalars && before->location == shown.scalars->location &&
           !(m_settings.smeared && before->location == FieldLocation::Cell);
}

bool Scene::update(const ShownModel& shown, const ShownUpdate& update) {
    if (!canUpdate(shown, update))
        return false;
    if (update.scalars)
        renewValues(shown);
    if (update.elements && !m_bodies)
        for (ngl::NglElementMesh* mesh : {&m_coloredFaces, &m_plainFaces})
            setFacts(shown, *mesh);
    if (update.scalars || update.elements)
        makeLoose(shown);
    if (update.section || shown.section)
        cut(shown);
    return true;
}

/// Selected and coloured elements of before are forgotten first. Other facts stay.
void Scene::setFacts(const ShownModel& shown, ngl::NglElementMesh& mesh) const {
    if (mesh.ElementCount() == 0)
        return;
    const auto all = ngl::NglElements::Range(0, mesh.ElementCount());
    if (mesh.SetVisible(all, true) != 0 || mesh.SetSelection(all, ngl::NglElementNotSelected) != 0)
        throw std::bad_alloc();
    applyFacts(shown.elements, mesh);
}

void Scene::renewValues(const ShownModel& shown) {
    makeBands(shown);
    const bool areComplete = areAllColored(shown, m_bands);
    if (areComplete && m_plainFaces.ElementCount() == 0 && m_coloredFaces.ElementCount() != 0)
        setValues(m_coloredFaces, shown, *m_bands);
    else
        makeFaces(shown);
}

/// Transparent faces come last: they tint what is behind them.
void Scene::draw(double scale) {
    if (m_environment) {
        m_environment->use();
        m_environment->drawBackground();
    }
    drawOpaqueFaces(scale);
    drawBeams(scale);
    drawPoints(scale);
    drawEdges(scale);
    if (m_markers)
        m_markers->drawSolids();
    drawTransparentFaces(scale);
    if (m_markers)
        m_markers->drawSymbols();
    if (m_handle)
        drawHandle(*m_handle, scale);
}

std::vector<LegendContent> Scene::legends(const ShownModel& shown) const {
    std::vector<LegendContent> legends;
    if (m_bands)
        legends.push_back({*m_bands, shown.scalars->label,
                           std::any_of(shown.scalars->values.begin(), shown.scalars->values.end(),
                                       [](double value) { return std::isnan(value); })});
    if (m_markers)
        m_markers->addLegends(legends);
    return legends;
}

void Scene::makeBands(const ShownModel& shown) {
    if (m_bands)
        glDeleteTextures(1, &m_bands->attributes().texture);
    m_bands = bandsOf(shown, m_settings);
    if (m_bands)
        m_bands->createTexture(GL_TEXTURE_1D);
}

void Scene::makeFaces(const ShownModel& shown) {
    if (m_settings.legacy) {
        m_drawFlatFaces = [&shown, this] { drawFlatFaces(shown, m_body); };
        return;
    }
    if (m_areBodies) {
        if (m_body.physical)
            m_environment.emplace(m_body);
        m_bodies.emplace(shown, m_body, m_settings.opacity);
        if (m_bodies->canDraw())
            return;
        m_bodies.reset();
        m_environment.reset();
        tell("no programs for bodies: they are drawn as an element mesh, with one light and one opacity");
    }
    m_plainFaces = faceMesh(shown, m_bands, m_settings, m_body, false);
    if (m_bands)
        m_coloredFaces = faceMesh(shown, m_bands, m_settings, m_body, true);
}

void Scene::cut(const ShownModel& shown) {
    m_cap.reset();
    m_plane.reset();
    m_handle.reset();
    if (shown.section)
        m_plane = shown.section->plane;
    if (m_bodies)
        m_bodies->cut(shown);
    if (m_markers)
        m_markers->cut(m_plane);
    if (!shown.section)
        return;
    if (m_settings.sectionHandle)
        m_handle = handleOf(shown);
    const bool isBody = m_settings.legacy || m_areBodies;
    const std::vector<NgColorLong> own = ownColors(shown);
    CapLook look;
    look.bands = m_bands ? &*m_bands : nullptr;
    look.hasOwnColor = [&](const Cut::Polygon& polygon) { return !own.empty() && own[polygon.cell] != 0; };
    look.color = [&](const Cut::Polygon& polygon) {
        if (look.hasOwnColor(polygon))
            return own[polygon.cell];
        if (!isBody)
            return plainColor(m_bands);
        return m_body.hasSides() ? frontColor(m_body) : partColor(partOf(shown.model, polygon.cell), m_body);
    };
    look.opacity = m_settings.opacity;
    look.edges = m_edgeMode;
    m_cap.emplace(shown, look);
}

void Scene::makeLoose(const ShownModel& shown) {
    const Surface& surface = shown.surface;
    LooseBuilder builder(shown, m_bands);
    PartBuilder beams, points;
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        builder.add(beams, surface.lines[i], surface.lineCells[i]);
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        builder.add(points, {&surface.points[i], 1}, surface.pointCells[i]);
    m_beams = finish(beams);
    m_points = finish(points);
}

template <typename Draw>
void Scene::drawPart(Part& part, Draw draw) {
    if (part.colored.mesh) {
        const ContourInForce contour(*m_bands, GL_TEXTURE_1D);
        draw(part.colored.mesh.get(), part.colored.values.data());
    }
    for (const auto& [color, mesh] : part.plain) {
        ngl_set_color_long(color);
        draw(mesh.get(), nullptr);
    }
}

void Scene::drawOpaqueFaces(double scale) {
    glPolygonOffset(static_cast<float>(m_edgeReach_px + 0.5 * (scale - 1.0)), kOffsetUnits);
    glEnable(GL_POLYGON_OFFSET_FILL);
    if (m_bodies)
        m_bodies->drawOpaque();
    else if (m_drawFlatFaces || m_settings.opacity >= 1.0)
        drawCutFaces();
    glDisable(GL_POLYGON_OFFSET_FILL);
}

void Scene::drawTransparentFaces(double scale) {
    glPolygonOffset(static_cast<float>(m_edgeReach_px + 0.5 * (scale - 1.0)), kOffsetUnits);
    glEnable(GL_POLYGON_OFFSET_FILL);
    if (m_bodies)
        m_bodies->drawTransparent();
    else if (!m_drawFlatFaces && m_settings.opacity < 1.0)
        drawCutFaces();
    glDisable(GL_POLYGON_OFFSET_FILL);
}

void Scene::drawCutFaces() {
    {
        const PlaneInForce plane(m_plane);
        if (m_drawFlatFaces)
            m_drawFlatFaces();
        else
            drawFaces();
    }
    if (m_cap)
        m_cap->drawFaces();
}

void Scene::drawFaces() {
    m_coloredFaces.Draw();
    m_plainFaces.Draw();
}

void Scene::drawBeams(double scale) {
    const PlaneInForce plane(m_plane);
    glLineWidth(static_cast<float>(scale * kBeamWidth_px));
    drawPart(m_beams, drawLines);
    glLineWidth(1.0f);
}

void Scene::drawPoints(double scale) {
    const PlaneInForce plane(m_plane);
    glPointSize(static_cast<float>(scale * kPointSize_px));
    drawPart(m_points, drawMeshPoints);
    glPointSize(1.0f);
}

void Scene::drawEdges(double scale) {
    ngl_set_color_long(kEdgeColor);
    glLineWidth(static_cast<float>(scale));
    if (m_edges) {
        const PlaneInForce plane(m_plane);
        ngl_mesh(m_edges.get(), m_edgeMode == EdgeMode::All ? NglMeshEdges : NglMeshSilhouette);
    }
    if (m_cap)
        m_cap->drawEdges();
    glLineWidth(1.0f);
}

} // namespace nruview
