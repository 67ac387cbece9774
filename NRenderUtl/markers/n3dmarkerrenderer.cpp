// The renderer of 3D marker sections: what is constant for a section is sent once, in Begin.
#include <algorithm>
#include <iterator>
#include <new>
#include <optional>
#include <utility>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/markers/markercolors.h"
#include "NRenderUtl/markers/markerprograms.h"
#include "NRenderUtl/markers/markersection.h"
#include "NRenderUtl/markers/nmarkers.h"
#include "NRenderUtl/shaders/shadercatalogue.h"
#include "NRenderUtl/shaders/vertexattribute.h"

N3DMarkerRenderer* N3DMarkerRenderer::m_pInstance = nullptr;

namespace {

constexpr int kSelectionIndex = 33, kHighlightIndex = 32;

/// What of the host's state a section by the program sets aside.
struct HostState {
    GLuint vertexArray = 0;
    bool restarts = false;
    bool provokesFirst = false;
    std::optional<SavedAttribute> position;
};

struct RendererState {
    MarkerColors colors{};
    MarkerSection section{};
    bool canDraw = false; ///< a context was current when the section began
    HostState host;
    NShaderProgram* program = nullptr;        ///< that draws the markers of the open section one by one
    std::optional<NShaderProgram*> forColors; ///< a faster one for those in colours; null for none
    NShaderProgram* inUse = nullptr;          ///< one of the two
};

RendererState& state() {
    static RendererState state;
    return state;
}

NShaderProgram* createProgram() {
    auto* program = new (std::nothrow) ComposedProgram;
    if (program && GLeeEnabled(GLeeVertexShader) && GLeeEnabled(GLeeFragmentShader))
        program->buildMarkers();
    if (!program || program->IsProgramValid())
        return program;
    delete program;
    return nullptr;
}

bool provokesFirst() {
    GLint provoking = GL_LAST_VERTEX_CONVENTION;
    if (glVersion() >= 32)
        glGetIntegerv(GL_PROVOKING_VERTEX, &provoking);
    return provoking == GL_FIRST_VERTEX_CONVENTION;
}

/// The attribute is to belong to no object of the host's, and every index is to be one of the shape.
void setHostStateAside() {
    HostState& host = state().host;
    const int version = glVersion();
    GLint object = 0;
    if (version >= 30)
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &object);
    if (object != 0) {
        host.vertexArray = static_cast<GLuint>(object);
        glBindVertexArray(0);
    }
    if (version >= 31 && glIsEnabled(GL_PRIMITIVE_RESTART)) {
        host.restarts = true;
        glDisable(GL_PRIMITIVE_RESTART);
    }
    if (provokesFirst()) {
        host.provokesFirst = true;
        glProvokingVertex(GL_LAST_VERTEX_CONVENTION);
    }
}

void setAttributeAside(int position) {
    if (!state().host.position) // else the section before did not end
        state().host.position.emplace(position);
    advanceByVertex(position);
}

void giveHostStateBack() {
    const HostState host = std::exchange(state().host, {});
    if (host.position)
        host.position->restore();
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (host.vertexArray != 0)
        glBindVertexArray(host.vertexArray);
    if (host.restarts)
        glEnable(GL_PRIMITIVE_RESTART);
    if (host.provokesFirst)
        glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
}

void readPaletteColor(int index, float (&rgba)[4]) {
    ngl_get_rgb_floats(index, rgba[0], rgba[1], rgba[2]);
    rgba[3] = 1.0f;
}

/// What the section takes from the host, as it is now.
void readSection(bool clipped) {
    MarkerSection& section = state().section;
    const _NglInfoStr& info = *NglGetNglInfo();
    glGetFloatv(GL_MODELVIEW_MATRIX, section.modelView);
    glGetFloatv(GL_PROJECTION_MATRIX, section.projection);
    std::copy_n(&info.textureMatrix[0][0], std::size(section.textureMatrix), section.textureMatrix);
    section.frontMaterial = info.frontMaterial;
    section.backMaterial = info.backMaterial;
    std::copy(std::begin(info.lights), std::end(info.lights), section.lights);
    section.clipped = clipped;
    ++section.number;
}

/// The program for colours, in use, that takes the shape as it is bound.
NShaderProgram* useColorProgram() {
    NShaderProgram* program = useMarkerProgram(MarkerProgramKind::SingleColor, false);
    if (!program)
        return nullptr;
    state().inUse = program;
    const auto location = [](const NShaderProgram& p) {
        return p.GetVertexAttributeLocation(RenderAttribPosition);
    };
    return location(*program) == location(*state().program) ? program : nullptr;
}

/// The program that draws a marker of the open section, in use.
NShaderProgram& programOfMarker(bool inOpaqueColor) {
    RendererState& s = state();
    if (inOpaqueColor && !s.forColors)
        s.forColors = useColorProgram();
    NShaderProgram* wanted = inOpaqueColor && *s.forColors ? *s.forColors : s.program;
    if (std::exchange(s.inUse, wanted) != wanted)
        wanted->UseProgram(true);
    return *wanted;
}

} // namespace

const MarkerSection& markerSection() {
    return state().section;
}

bool drawsColorsAlone(const NShaderProgram& program) {
    return state().forColors && &program == *state().forColors;
}

void setSectionView(NShaderProgram& program) {
    MarkerSection& section = state().section;
    program.SetMVPMatrices(section.projection, section.modelView, false);
    program.SetUniform4x4Matrix(RenderUniformTextureMatrix, section.textureMatrix);
    program.SetUniformValue(RenderUniformClipped, section.clipped);
}

void setSectionUniforms(NShaderProgram& program) {
    MarkerSection& section = state().section;
    setSectionView(program);
    program.SetUniformValue(RenderUniformContourTexture, 0);
    program.SetMateiralUniforms(&section.frontMaterial, &section.backMaterial);
    program.SetLightUniforms(static_cast<int>(std::size(section.lights)), section.lights);
}

void setBlendingUniforms(NShaderProgram& program, bool blended) {
    program.SetUniformValue(RenderUniformTransparent, blended);
    if (blended)
        program.SetUniformValue(RenderUniformAlpha,
                                static_cast<float>((ngl_get_blending_value() >> 24 & 0xFF) / 255.0));
}

MarkerColors& markerColors() {
    return state().colors;
}

// --- life --------------------------------------------------------------------------------------------------

N3DMarkerRenderer::N3DMarkerRenderer()
    : m_pShader(IsFastRendererEnabled() ? createProgram() : nullptr), m_pParkedShader(nullptr),
      m_bShaderActive(0), m_pMarker(nullptr), m_bClip(false) {}

N3DMarkerRenderer::N3DMarkerRenderer(const N3DMarkerRenderer&) = default;
N3DMarkerRenderer& N3DMarkerRenderer::operator=(const N3DMarkerRenderer&) = default;

N3DMarkerRenderer::~N3DMarkerRenderer() {
    delete m_pShader;
}

N3DMarkerRenderer* N3DMarkerRenderer::GetInstance() {
    if (!m_pInstance)
        m_pInstance = new (std::nothrow) N3DMarkerRenderer;
    return m_pInstance;
}

N3DMarker* N3DMarkerRenderer::GetMarkerInstance(_Render3DMarkerType type) {
    switch (type) {
    case RENDER_3D_MARKER_CYLINDER:
        return N3DCylinder::GetInstance();
    case RENDER_3D_MARKER_RIVET:
        return N3DRivet::GetInstance();
    case RENDER_3D_MARKER_CONE:
        return N3DCone::GetInstance();
    case RENDER_3D_MARKER_SPHERE:
        return N3DSphere::GetInstance();
    case RENDER_3D_MARKER_ARROW_ONE_WAY:
        return N3DArrowOneWay::GetInstance();
    default:
        return nullptr;
    }
}

N3DMarker* N3DMarkerRenderer::GetMarker() const {
    return m_pMarker;
}

void N3DMarkerRenderer::SetClipFlag(bool clip) {
    m_bClip = clip;
}

// --- sections ----------------------------------------------------------------------------------------------

void N3DMarkerRenderer::Begin(_Render3DMarkerType type, _Render3DMarkerShape shape, bool forceFixedFunction) {
    state().canDraw = glContextIsCurrent();
    leaveShape();
    m_pMarker = GetMarkerInstance(type);
    if (!m_pMarker)
        return;
    if (forceFixedFunction && m_pShader) {
        m_pParkedShader = m_pShader;
        m_pShader = nullptr;
    }
    const bool byProgram = m_pShader && m_pShader->IsProgramValid() && state().canDraw;
    if (byProgram)
        beginProgram();
    m_pMarker->Begin(byProgram ? state().program : nullptr, shape);
}

void N3DMarkerRenderer::beginProgram() {
    readPaletteColor(kSelectionIndex, markerColors().selection);
    readPaletteColor(kHighlightIndex, markerColors().highlight);
    setHostStateAside();
    m_bShaderActive = 1;
    readSection(m_bClip);
    state().program = useMarkerProgram(MarkerProgramKind::Single, false);
    if (!state().program) {
        state().program = m_pShader; // for any lights
        m_pShader->UseProgram(true);
        setSectionUniforms(*m_pShader);
    }
    state().inUse = state().program;
    state().forColors.reset();
    setAttributeAside(state().program->GetVertexAttributeLocation(RenderAttribPosition));
}

/// Unbinds the shape, whose enabled attribute would otherwise reach what is drawn next.
void N3DMarkerRenderer::leaveShape() {
    if (m_bShaderActive && m_pShader && m_pMarker && state().canDraw)
        m_pMarker->End(state().program);
}

int N3DMarkerRenderer::Draw(const _NgFPoint3Str* start, const _NgFPoint3Str* vector, float lengthScale,
                            float widthRatio, const NgColorLong* color, bool contoured, float texCoord1,
                            float texCoord2, int selected, int highlighted) {
    if (!m_pMarker || !state().canDraw)
        return 0;
    float rgba[4] = {0, 0, 0, 1};
    if (color)
        ngl_get_floats_from_color_long(*color, rgba[0], rgba[1], rgba[2]);
    else
        glGetFloatv(GL_CURRENT_COLOR, rgba);
    NShaderProgram* program = nullptr;
    if (m_bShaderActive && m_pShader) { // not parked
        const bool blended = glIsEnabled(GL_BLEND);
        program = &programOfMarker(!contoured && !blended);
        if (!drawsColorsAlone(*program))
            setBlendingUniforms(*program, blended);
    }
    // The shapes' interface takes pointers to what they only read.
    m_pMarker->Draw(program, const_cast<_NgFPoint3Str*>(start), const_cast<_NgFPoint3Str*>(vector),
                    lengthScale, widthRatio, rgba, contoured, texCoord1, texCoord2, selected, highlighted);
    return 1;
}

void N3DMarkerRenderer::End() {
    state().canDraw = glContextIsCurrent();
    leaveShape();
    if (m_bShaderActive && state().canDraw) {
        glUseProgram(0);
        giveHostStateBack();
    }
    m_bShaderActive = 0;
    m_pMarker = nullptr;
    if (m_pParkedShader) {
        m_pShader = m_pParkedShader;
        m_pParkedShader = nullptr;
    }
}
