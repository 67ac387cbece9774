#include "NRenderUtl/mesh/elementfixed.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"

namespace {

constexpr int kMostTexels = 8192; // more would not be seen
constexpr int kSelectionIndex = 33, kHighlightIndex = 32;
constexpr std::size_t kIndicesPerDraw = 3u << 28; // keeps index counts within GLsizei
constexpr double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr GLbitfield kChangedGroups = GL_ENABLE_BIT | GL_TEXTURE_BIT | GL_LIGHTING_BIT | GL_CURRENT_BIT |
                                      GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_POLYGON_BIT;

using Vector = ElementSurface::Vector;

/// What the paint of a vertex is seen in.
struct PaintLight {
    const std::optional<ElementLighting>& lighting; ///< nothing: unlit
    ElementEye eye;
    std::uint8_t alpha;
};

int largestTextureSize() {
    GLint size;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
    return std::min(size, kMostTexels);
}

std::uint8_t alphaOf(const ngl::NglElementAttributes& how) {
    const float opacity = how.opacity > 0.0f ? std::min(how.opacity, 1.0f) : 0.0f;
    return static_cast<std::uint8_t>(std::lround(opacity * 255.0f));
}

/// The contour texture on the active unit, as long as it is drawn with: a mesh so owns no name of GL's.
class BandTexture {
public:
    explicit BandTexture(const ContourTexture& bands) {
        glGenTextures(1, &m_name);
        glBindTexture(GL_TEXTURE_1D, m_name);
        glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        const UnpackGuard unpack;
        const PlainTransferGuard transfer;
        glTexImage1D(GL_TEXTURE_1D, 0, GL_RGB8, static_cast<GLsizei>(bands.texels().size()), 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, bands.texels().data());
    }
    ~BandTexture() { glDeleteTextures(1, &m_name); }
    BandTexture(const BandTexture&) = delete;
    BandTexture& operator=(const BandTexture&) = delete;

private:
    GLuint m_name;
};

void blend() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
}

void drawTriangles(const std::vector<std::uint32_t>& indices, std::uint32_t vertexCount) {
    for (std::size_t first = 0; first < indices.size(); first += kIndicesPerDraw)
        glDrawRangeElements(GL_TRIANGLES, 0, vertexCount - 1,
                            static_cast<GLsizei>(std::min(indices.size() - first, kIndicesPerDraw)),
                            GL_UNSIGNED_INT, indices.data() + first);
}

void drawPart(const ElementArrays::Part& part, const std::vector<Vector>& positions,
              const std::vector<ElementColor>& colors) {
    glVertexPointer(3, GL_FLOAT, 0, positions.data());
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colors.data());
    drawTriangles(part.plain, part.vertexCount());
    if (part.banded.empty())
        return;
    glEnable(GL_TEXTURE_1D);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(1, GL_FLOAT, 0, part.coordinates.data());
    drawTriangles(part.banded, part.vertexCount());
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisable(GL_TEXTURE_1D);
}

/// Colours of a part's vertices; `color` is that of the attributes.
std::vector<ElementColor> paintPart(const ElementArrays::Part& part, const std::vector<Vector>& positions,
                                    const std::vector<Vector>& normals, const PaintLight& light,
                                    NgColorLong color) {
    std::vector<ElementColor> colors(part.vertexCount());
    std::uint32_t first = 0;
    for (const ElementArrays::Run& run : part.runs) {
        const ElementPaint paint = run.paint.value_or(ElementPaint{color});
        const std::span out = std::span(colors).subspan(first, run.end - first);
        if (light.lighting)
            lightVertices(*light.lighting, light.eye, paint, light.alpha,
                          std::span(positions).subspan(first, out.size()),
                          std::span(normals).subspan(first, out.size()), out);
        else
            std::ranges::fill(out, unlitColor(paint, light.alpha));
        first = run.end;
    }
    return colors;
}

/// Whether the faces that face so are culled by the state that the caller left.
bool isCulled(GLenum face) {
    if (!glIsEnabled(GL_CULL_FACE))
        return false;
    GLint culled;
    glGetIntegerv(GL_CULL_FACE_MODE, &culled);
    return static_cast<GLenum>(culled) == face || culled == GL_FRONT_AND_BACK;
}

} // namespace

void ElementFixedRoute::clear() {
    *this = {};
}

void ElementFixedRoute::updateArrays(const ElementScene& scene) {
    const ngl::NglElementAttributes& how = scene.attributes;
    const bool contour = how.contour && scene.values.colored();
    const bool banded = contour && scene.values.kind == ElementValues::OfNodes;
    const ArraysKey key{scene.revision,
                        how.shading,
                        contour,
                        how.clipFlag,
                        how.failureMode,
                        how.failureLevel,
                        banded ? largestTextureSize() : 0,
                        NglGetColorGivenIndex(kSelectionIndex),
                        NglGetColorGivenIndex(kHighlightIndex)};
    if (m_arraysKey == key)
        return;
    clear();
    std::optional<ContourRule> rule;
    if (contour)
        rule.emplace(scene.values);
    if (banded)
        m_texture.emplace(*rule, key.textureSize);
    m_arrays = makeElementArrays(scene, rule ? &*rule : nullptr, m_texture ? &*m_texture : nullptr);
    m_arraysKey = key;
}

void ElementFixedRoute::updateColors(const ElementScene& scene, const double modelView[16]) {
    const ngl::NglElementAttributes& how = scene.attributes;
    ColorsKey key{{},
                  {},
                  how.frontAndBack ? how.frontColor : how.color,
                  how.frontAndBack ? how.backColor : how.color,
                  alphaOf(how)};
    if (how.lit) {
        key.lighting = recordLighting();
        std::copy_n(modelView, 16, key.modelView.begin());
    }
    if (m_colorsKey == key)
        return;
    m_colorsKey.reset();
    const PaintLight light{key.lighting, ElementEye(modelView), key.alpha};
    const ElementSurface& surface = scene.surface;
    const auto paint = [&](NgColorLong color) {
        return Colors{paintPart(m_arrays.shared, surface.positions, surface.normals, light, color),
                      paintPart(m_arrays.own, m_arrays.own.positions, m_arrays.own.normals, light, color)};
    };
    m_front = paint(key.front);
    m_back.reset();
    if (m_arrays.facing && key.front != key.back)
        m_back = paint(key.back);
    m_colorsKey = key;
}

void ElementFixedRoute::drawFaces(const ElementSurface& surface, const Colors& colors) const {
    drawPart(m_arrays.shared, surface.positions, colors.shared);
    drawPart(m_arrays.own, m_arrays.own.positions, colors.own);
}

/// Culling chooses the faces of a pass: by itself for two colours, and for transparency back faces first.
void ElementFixedRoute::drawPasses(const ElementScene& scene) const {
    const bool transparent = scene.attributes.opacity < 1.0f;
    if (!transparent && !m_back)
        return drawFaces(scene.surface, m_front);
    const bool showsBack = transparent || !isCulled(GL_BACK), showsFront = transparent || !isCulled(GL_FRONT);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT);
    if (showsBack)
        drawFaces(scene.surface, m_back ? *m_back : m_front);
    glCullFace(GL_BACK);
    if (showsFront)
        drawFaces(scene.surface, m_front);
}

void ElementFixedRoute::draw(const ElementScene& scene, const double modelView[16]) {
    updateArrays(scene);
    updateColors(scene, modelView);
    if (m_arrays.shared.runs.empty() && m_arrays.own.runs.empty())
        return;
    const AttributesGuard attributes(kChangedGroups);
    const ClientArraysGuard arrays;
    const PlainIndicesGuard indices;
    glDisable(GL_LIGHTING);
    glShadeModel(GL_SMOOTH);
    glActiveTexture(GL_TEXTURE0);
    const PlainFragmentsGuard fragments;
    const AddingGuard adds;
    const NoProgramGuard program;
    const NoSamplerGuard sampler;
    const MatrixGuard view(GL_MODELVIEW, modelView), texture(GL_TEXTURE, kIdentity);
    std::optional<BandTexture> bands;
    if (m_texture)
        bands.emplace(*m_texture);
    if (scene.attributes.opacity < 1.0f)
        blend();
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    drawPasses(scene);
}
