// Arrows, spheres and connectors are the library's 3D markers; ellipsoids are one of its glyphs, stretched.
#include "viewer/markers/markerscene.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <new>

#include "viewer/markers/markersection.h"
#include "viewer/markers/supports.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/contour.h"

namespace nruview {

namespace {

constexpr NgColorLong kPlain = 0xFF3C5078; ///< connectors without values: brown
constexpr double kThinnestArrow = 0.02;    ///< by the length of the longest: short ones remain to be seen
constexpr double kWidestRatio = 0.4;

/// Segments about a ball: many are small in the picture.
int ballResolution(std::size_t balls) {
    return balls > 20'000 ? 8 : balls > 2'000 ? 12 : 24;
}

std::vector<double> valuesOf(const MarkerLayer& layer) {
    std::vector<double> values;
    for (const Marker& marker : layer.markers)
        values.insert(values.end(), marker.values.begin(), marker.values.end());
    return values;
}

std::optional<ColorBands> bandsOf(const MarkerLayer& layer, const SceneSettings& settings,
                                  const std::optional<ColorBands>& faceBands) {
    if (layer.label.empty() || layer.markers.empty())
        return {};
    std::optional<ColorBands> bands =
        layer.ofFaces && faceBands
            ? *faceBands
            : ColorBands(settings.bands, finiteRange(valuesOf(layer)).value_or(std::array{0.0, 0.0}),
                         settings.smeared);
    bands->createTexture(GL_TEXTURE_2D);
    return bands;
}

_NgFPoint3Str singlePoint(const Point& p) {
    return {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
}

bool hasValues(const Marker& marker) {
    return !std::isnan(marker.values[0]) && !std::isnan(marker.values[1]);
}

} // namespace

MarkerScene::MarkerScene(const Markers& markers, const SceneSettings& settings,
                         const std::optional<ColorBands>& faceBands)
    : m_markers(markers) {
    const auto prepare = [&](ColoredLayer& colored, const MarkerLayer& layer) {
        colored.layer = &layer;
        colored.bands = bandsOf(layer, settings, faceBands);
    };
    prepare(m_arrows, markers.arrows);
    prepare(m_spheres, markers.spheres);
    prepare(m_connectors, markers.connectors);
    prepare(m_ellipsoids, markers.ellipsoids);
    cut({});
    if (markers.ellipsoids.markers.empty())
        return;
    m_ball.reset(ngl_hyper_ellipsoid(1.0, 1.0, 1.0, 2, ballResolution(markers.ellipsoids.markers.size())));
    if (!m_ball)
        throw std::bad_alloc();
}

void MarkerScene::cut(const std::optional<Plane>& plane) {
    m_plane = plane;
    double longest = 0.0;
    for (const Marker& arrow : m_markers.arrows.markers)
        longest = std::max(longest, length(arrow.axes[0]));
    fillArrays(m_arrows, {kArrowWidth, kThinnestArrow * longest, HUGE_VAL});
    fillArrays(m_spheres, {});
    fillArrays(m_connectors, {kConnectorWidth, 0.0, m_markers.widest});
    m_supports.clear();
    std::copy_if(m_markers.supports.begin(), m_markers.supports.end(), std::back_inserter(m_supports),
                 [this](const Support& support) { return isShown(support.at); });
}

bool MarkerScene::isShown(const Point& at) const {
    return !m_plane || !isBeyond(*m_plane, at);
}

/// Markers with values apart from the others.
void MarkerScene::fillArrays(ColoredLayer& colored, const LineWidth& width) const {
    colored.contoured = colored.plain = {};
    for (const Marker& marker : colored.layer->markers) {
        if (!isShown(marker.at))
            continue;
        const bool hasColors = colored.bands && hasValues(marker);
        LineArrays& lines = hasColors ? colored.contoured : colored.plain;
        const double size = length(marker.axes[0]);
        const double ratio = std::min(std::max(width.ratio, width.thinnest / size),
                                      std::min(width.widest / size, kWidestRatio));
        lines.starts.push_back(singlePoint(marker.at));
        lines.vectors.push_back(singlePoint(marker.axes[0]));
        lines.widthRatios.push_back(static_cast<float>(ratio));
        lines.fromCoordinates.push_back(hasColors ? colored.bands->coordinate(marker.values[0]) : 0.0f);
        lines.toCoordinates.push_back(hasColors ? colored.bands->coordinate(marker.values[1]) : 0.0f);
    }
}

MarkerScene::~MarkerScene() {
    for (ColoredLayer* layer : {&m_arrows, &m_spheres, &m_connectors, &m_ellipsoids})
        if (layer->bands)
            glDeleteTextures(1, &layer->bands->attributes().texture);
}

void MarkerScene::drawSolids() {
    drawLines(m_arrows, RENDER_3D_MARKER_ARROW_ONE_WAY);
    drawSpheres();
    drawLines(m_connectors, m_markers.connectorShape == ConnectorShape::Rivet ? RENDER_3D_MARKER_RIVET
                                                                              : RENDER_3D_MARKER_CYLINDER);
    drawEllipsoids();
}

void MarkerScene::drawSymbols() const {
    drawSupports(m_supports);
}

void MarkerScene::addLegends(std::vector<LegendContent>& legends) const {
    for (const ColoredLayer* colored : {&m_arrows, &m_spheres, &m_connectors, &m_ellipsoids})
        if (colored->bands && !colored->layer->ofFaces)
            legends.push_back({*colored->bands, colored->layer->label, false});
}

/// Markers with values in contour colours, then the others.
void MarkerScene::drawLines(ColoredLayer& colored, _Render3DMarkerType type) {
    const auto draw = [type](const LineArrays& lines, bool contoured) {
        Render3DMarkerArray markers;
        markers.count = lines.starts.size();
        markers.starts = lines.starts.data();
        markers.vectors = lines.vectors.data();
        markers.widthRatios = lines.widthRatios.data();
        markers.contoured = contoured;
        markers.texCoords1 = lines.fromCoordinates.data();
        markers.texCoords2 = lines.toCoordinates.data();
        const MarkerSection section(type);
        RenderDraw3DMarkers(&markers);
    };
    if (!colored.contoured.starts.empty()) {
        const ContourInForce contour(*colored.bands, GL_TEXTURE_2D);
        draw(colored.contoured, true);
    }
    if (!colored.plain.starts.empty()) {
        ngl_set_color_long(kPlain);
        draw(colored.plain, false);
    }
}

void MarkerScene::drawSpheres() {
    const LineArrays& lines = m_spheres.contoured;
    if (lines.starts.empty())
        return;
    const double size = m_markers.sphereSize;
    Render3DSphereArray spheres;
    spheres.count = lines.starts.size();
    spheres.centres = lines.starts.data();
    spheres.diameter = singlePoint({size, size, size});
    spheres.contoured = true;
    spheres.texCoords = lines.fromCoordinates.data();
    const ContourInForce contour(*m_spheres.bands, GL_TEXTURE_2D);
    const MarkerSection section(RENDER_3D_MARKER_SPHERE);
    RenderDraw3DSpheres(&spheres);
}

/// The ball's axes become the semi-axes. Normals turn with the inverse of that and are made unit again.
void MarkerScene::drawEllipsoids() {
    if (!m_ellipsoids.bands)
        return;
    const FixedLight light;
    const RenderColorScale& scale = m_ellipsoids.bands->scale();
    for (const Marker& ellipsoid : m_ellipsoids.layer->markers) {
        if (!isShown(ellipsoid.at))
            continue;
        double transform[4][4] = {};
        for (int k = 0; k < 3; ++k)
            std::copy(ellipsoid.axes[k].begin(), ellipsoid.axes[k].end(), transform[k]);
        std::copy(ellipsoid.at.begin(), ellipsoid.at.end(), transform[3]);
        transform[3][3] = 1.0;
        ngl_push_3d_matrix();
        ngl_mult_3d_matrix(transform);
        ngl_set_color_long(scale.GetColor(m_ellipsoids.bands->coordinate(ellipsoid.values[0])));
        ngl_mesh(m_ball.get(), NglMeshFaces);
        ngl_pop_3d_matrix();
    }
}

} // namespace nruview
