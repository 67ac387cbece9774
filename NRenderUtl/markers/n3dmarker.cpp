// What all 3D marker shapes share: the life of their geometry, and drawing it with the marker program or by
// fixed function.
#include <cmath>
#include <cstddef>
#include <optional>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/markers/markercolors.h"
#include "NRenderUtl/markers/markersection.h"
#include "NRenderUtl/markers/nmarkers.h"

namespace {

constexpr int kBytesEach = 12; // of a vertex and of a triangle
constexpr float kShortestLength = 1e-5f;
constexpr float kDefaultWidthRatio = 1.0f / 6.0f;
constexpr float kHighlightRow = 0.5f, kSelectionRow = 0.25f; // of the contour texture

} // namespace

/// How one marker looks.
struct N3DMarker::Look {
    float* rgba;
    bool contoured;
    float texCoord1, texCoord2;
    int selected, highlighted;
};

namespace {

template <class T>
T* allocateArray(int count) {
    return static_cast<T*>(NHOST_ALLOCATE(static_cast<std::size_t>(count) * sizeof(T)));
}

template <class T>
void freeArray(T*& array) {
    NHostFree(array);
    array = nullptr;
}

void multiplyBySinglePrecision(const NgMatrix transform) {
    float single[4][4];
    NgMatrix matrix;
    NglToFloat(transform, single);
    NglToDouble(single, matrix); // both paths place a marker alike
    ngl_mult_3d_matrix(matrix);
}

/// Smooth shading and normals of unit length.
class SmoothNormalsGuard {
public:
    SmoothNormalsGuard() : m_normalized(glIsEnabled(GL_NORMALIZE)) {
        glGetIntegerv(GL_SHADE_MODEL, &m_shadeModel);
        glShadeModel(GL_SMOOTH);
        if (!m_normalized)
            glEnable(GL_NORMALIZE);
    }
    ~SmoothNormalsGuard() {
        glShadeModel(static_cast<GLenum>(m_shadeModel));
        if (!m_normalized)
            glDisable(GL_NORMALIZE);
    }
    SmoothNormalsGuard(const SmoothNormalsGuard&) = delete;
    SmoothNormalsGuard& operator=(const SmoothNormalsGuard&) = delete;

private:
    GLint m_shadeModel;
    const bool m_normalized;
};

} // namespace

bool axialTransform(const _NgFPoint3Str& a, const _NgFPoint3Str& b, float lengthScale, float widthRatio,
                    NgMatrix out) {
    const _NgFPoint3Str end = {a.x + b.x, a.y + b.y, a.z + b.z};
    const float distance = MathFltPoint3Distance(a, end);
    if (distance < kShortestLength || !std::isfinite(distance))
        return false;
    const float length = lengthScale > 0 ? distance * lengthScale : distance;
    const float radius = length * (widthRatio == 0 ? kDefaultWidthRatio : widthRatio) * 0.5f;
    NgMatrix align, scale;
    NglAlignZAxisToLine({a.x, a.y, a.z}, {end.x, end.y, end.z}, 0, align);
    NglSetScale(scale, radius, radius, length);
    NglMultiply(align, scale, out);
    return true;
}

// --- life --------------------------------------------------------------------------------------------------

N3DMarker::N3DMarker(_Render3DMarkerType type)
    : m_type(type), m_vertexCount(0), m_vertices(nullptr), m_triangleCount(0), m_indices(nullptr),
      m_sliceCount(0) {}

N3DMarker::N3DMarker(const N3DMarker&) = default;
N3DMarker& N3DMarker::operator=(const N3DMarker&) = default;

N3DMarker::~N3DMarker() {
    Initialize();
}

_Render3DMarkerType N3DMarker::GetType() const {
    return m_type;
}

int N3DMarker::GetSliceCount(_Render3DMarkerShape shape) const {
    switch (shape) {
    case RENDER_3D_MARKER_SHAPE_SMOOTH:
        return 16;
    case RENDER_3D_MARKER_SHAPE_NORMAL:
        return 8;
    case RENDER_3D_MARKER_SHAPE_COARSE:
        return 4;
    default:
        return 0;
    }
}

void N3DMarker::Initialize() {
    m_vertexBuffer.Destroy(true);
    m_indexBuffer.Destroy(true);
    freeArray(m_vertices);
    m_vertexCount = 0;
    freeArray(m_indices);
    m_triangleCount = 0;
}

bool N3DMarker::startInstance(int sliceCount, int vertexCount, int triangleCount) {
    if (sliceCount == m_sliceCount)
        return false;
    Initialize();
    m_vertices = allocateArray<float>(3 * vertexCount);
    if (triangleCount > 0)
        m_indices = allocateArray<std::uint32_t>(3 * triangleCount);
    if (!m_vertices || (triangleCount > 0 && !m_indices)) {
        Initialize();
        m_sliceCount = 0; // to be tried again
        return false;
    }
    m_sliceCount = sliceCount;
    m_vertexCount = vertexCount;
    m_triangleCount = triangleCount;
    return true;
}

void N3DMarker::CreateVBOs() {
    std::optional<ClientArraysGuard> bindings; // creation unbinds what the host has bound
    if (glContextIsCurrent())
        bindings.emplace();
    if (m_vertexCount > 0)
        m_vertexBuffer.Create(GL_ARRAY_BUFFER, m_vertexCount * kBytesEach, m_vertices, GL_STATIC_DRAW);
    if (m_triangleCount > 0)
        m_indexBuffer.Create(GL_ELEMENT_ARRAY_BUFFER, m_triangleCount * kBytesEach, m_indices,
                             GL_STATIC_DRAW);
}

// --- sections ----------------------------------------------------------------------------------------------

void N3DMarker::Begin(NShaderProgram* program, _Render3DMarkerShape shape) {
    CreateUnitInstance(shape);
    if (!program)
        return;
    // Without buffers both arrays are client memory, which a buffer of the host's would hide.
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_vertexBuffer.Bind(program->GetVertexAttributeLocation(RenderAttribPosition), 3, m_vertices);
    m_indexBuffer.Bind();
    program->SetUniformValue("g_halfvertcnt", m_vertexCount / 2);
}

void N3DMarker::End(NShaderProgram* program) {
    if (!program)
        return;
    m_indexBuffer.Unbind();
    m_vertexBuffer.Unbind();
}

// --- drawing -----------------------------------------------------------------------------------------------

void N3DMarker::Draw(NShaderProgram* program, _NgFPoint3Str* a, _NgFPoint3Str* b, float lengthScale,
                     float widthRatio, float* rgba, bool contoured, float texCoord1, float texCoord2,
                     int selected, int highlighted) {
    NgMatrix transform;
    if (m_vertexCount == 0 || !a || !b || !axialTransform(*a, *b, lengthScale, widthRatio, transform))
        return;
    const Look look{rgba, contoured, texCoord1, texCoord2, selected, highlighted};
    if (program)
        return drawByProgram(*program, transform, look);
    const SmoothNormalsGuard normals;
    const MatrixModeGuard mode;
    ngl_push_3d_matrix();
    multiplyBySinglePrecision(transform);
    drawByFixedFunction(look);
    ngl_pop_3d_matrix();
}

void N3DSphere::Draw(NShaderProgram* program, _NgFPoint3Str* a, _NgFPoint3Str* b, float, float, float* rgba,
                     bool contoured, float texCoord1, float texCoord2, int selected, int highlighted) {
    if (m_vertexCount == 0 || !a || !b)
        return;
    const Look look{rgba, contoured, texCoord1, texCoord2, selected, highlighted};
    if (program) {
        NgMatrix transform;
        NglSetTranslation(transform, {a->x, a->y, a->z});
        NglScale(transform, b->x, b->y, b->z);
        return drawByProgram(*program, transform, look);
    }
    // Deliberate: shade model and GL_NORMALIZE stay the host's, which draws spheres of its own beside these.
    const MatrixModeGuard mode;
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslatef(a->x, a->y, a->z);
    glScalef(b->x, b->y, b->z);
    drawByFixedFunction(look);
    glPopMatrix();
}

void N3DMarker::drawByProgram(NShaderProgram& program, const NgMatrix& transform, const Look& look) const {
    float matrix[4][4];
    NglToFloat(transform, matrix);
    program.SetUniform4x4Matrix(RenderUniformTransform, &matrix[0][0]);
    const bool values = look.contoured && !look.selected && !look.highlighted;
    if (!drawsColorsAlone(program))
        program.SetUniformValue(RenderUniformContour, values);
    if (values) {
        program.SetUniformValue("g_texcoord1", look.texCoord1);
        program.SetUniformValue("g_texcoord2", look.texCoord2);
    } else {
        float* marked = look.highlighted ? markerColors().highlight : markerColors().selection;
        if (float* color = look.contoured ? marked : look.rgba)
            program.SetVec4UniformValue(RenderUniformColorWithAlpha, color);
    }
    glDrawElements(GL_TRIANGLES, 3 * m_triangleCount, GL_UNSIGNED_INT,
                   m_indexBuffer.IsValid() ? nullptr : m_indices);
}

void N3DMarker::drawByFixedFunction(const Look& look) const {
    if (look.contoured && look.highlighted)
        glTexCoord2f(0, kHighlightRow);
    else if (look.contoured && look.selected)
        glTexCoord2f(0, kSelectionRow);
    else if (look.contoured)
        glTexCoord2f(look.texCoord1, 0);
    const ClientArraysGuard hostArrays;
    const NoProgramGuard program;
    const PlainIndicesGuard indices;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, m_vertices);
    glNormalPointer(GL_FLOAT, 0, m_vertices);
    glDrawElements(GL_TRIANGLES, 3 * m_triangleCount, GL_UNSIGNED_INT, m_indices);
}
