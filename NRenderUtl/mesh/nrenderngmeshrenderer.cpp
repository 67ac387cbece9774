// Boundary meshes of the host drawn with fixed function, from GPU buffers or client memory, and the shading
// state around them.
#include "NRenderUtl/mesh/nmesh.h"

#include <climits>
#include <new>
#include <optional>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/mesh/clientelements.h"
#include "NRenderUtl/mesh/hostarray.h"
#include "NRenderUtl/mesh/meshaccess.h"
#include "NRenderUtl/shaders/nshaders.h"

int NRenderNgMeshRenderer::m_iOrgTwoSidedColor = 0;
int NRenderNgMeshRenderer::m_iOrgShadeModel = GL_SMOOTH;
int NRenderNgMeshRenderer::m_iOrgLighting = 0;
bool NRenderNgMeshRenderer::m_bEnableTransparency = false;
int NRenderNgMeshRenderer::m_iOrgBlendingValue = 0;
int NRenderNgMeshRenderer::m_iOrgColor = 0;

namespace {

constexpr int kBytesEach = 12; // of a vertex, a normal and a triangle
constexpr std::uint32_t kMostBuffered = INT_MAX / kBytesEach;

// --- buffers -----------------------------------------------------------------------------------------------

/// Whether the mesh has all that the three buffers take.
bool canBeBuffered(const _NskBdryMeshStr& mesh) {
    const _NskBdryElemStr* block = mesh.elements;
    return mesh.vertices && mesh.normals && mesh.vertexCount > 0 &&
           static_cast<std::uint32_t>(mesh.vertexCount) <= kMostBuffered && block && block->indices &&
           block->elementCount > 0 && block->elementCount <= kMostBuffered;
}

bool isMissing(const RenderGLBuffer* buffer) {
    return !buffer || buffer->GetBufferID() == 0;
}

void createBuffer(RenderGLBuffer*& buffer, GLenum target, std::uint32_t count, const void* data) {
    if (!buffer)
        buffer = new (std::nothrow) RenderGLBuffer;
    if (buffer)
        buffer->Create(target, static_cast<int>(count) * kBytesEach, data, GL_STATIC_DRAW);
}

/// The first block as triangles. Nothing checks indices on the GPU: where one names no vertex the triangle
/// becomes one without area.
void createIndexBuffer(RenderGLBuffer*& buffer, const _NskBdryMeshStr& mesh) {
    const _NskBdryElemStr& block = *mesh.elements;
    const auto vertexCount = static_cast<std::uint32_t>(mesh.vertexCount);
    const int count = static_cast<int>(block.elementCount) * 3;
    if (areVertices(vertexCount, block.indices, count))
        return createBuffer(buffer, GL_ELEMENT_ARRAY_BUFFER, block.elementCount, block.indices);
    const HostArray<std::uint32_t> indices = hostArrayCopy(block.indices, static_cast<std::size_t>(count));
    if (!indices)
        return;
    for (int i = 0; i < count; i += 3)
        if (!areVertices(vertexCount, &indices[i], 3))
            std::fill_n(&indices[i], 3, 0u);
    createBuffer(buffer, GL_ELEMENT_ARRAY_BUFFER, block.elementCount, indices.get());
}

void bindIfValid(RenderGLBuffer* buffer, void (*point)()) {
    if (!buffer || !buffer->IsValid())
        return;
    buffer->Bind();
    point();
}

void unbind(RenderGLBuffer* buffer) {
    if (buffer)
        buffer->Unbind();
}

void destroy(RenderGLBuffer*& buffer) {
    delete buffer;
    buffer = nullptr;
}

bool isUnusable(const RenderGLBuffer* buffer) {
    return !buffer || !buffer->IsValid();
}

// --- drawing -----------------------------------------------------------------------------------------------

/// Hosts that draw with arrays of their own count on both being off after a boundary mesh.
struct VertexAndNormalArrayOff {
    VertexAndNormalArrayOff() {} // a const one may be made without a value
    VertexAndNormalArrayOff(const VertexAndNormalArrayOff&) = delete;
    VertexAndNormalArrayOff& operator=(const VertexAndNormalArrayOff&) = delete;
    ~VertexAndNormalArrayOff() {
        glDisableClientState(GL_NORMAL_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
    }
};

/// Fixed function from two arrays, whatever else the host has bound, enabled or in use.
class ArraysDrawing {
    const VertexAndNormalArrayOff m_last;
    const CurrentStateGuard m_current;
    const ClientArraysGuard m_arrays;
    const NoRestartGuard m_indices;
    const NoProgramGuard m_program;
};

/// Indices come from client memory.
class NoIndexBufferGuard {
public:
    NoIndexBufferGuard() {
        if (glVersion() >= 15)
            glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &m_buffer);
        if (m_buffer != 0)
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
    ~NoIndexBufferGuard() {
        if (m_buffer != 0)
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLuint>(m_buffer));
    }
    NoIndexBufferGuard(const NoIndexBufferGuard&) = delete;
    NoIndexBufferGuard& operator=(const NoIndexBufferGuard&) = delete;

private:
    GLint m_buffer = 0;
};

void drawBlocks(const _NskBdryMeshStr& mesh) {
    const auto vertexCount = static_cast<std::uint32_t>(std::max(mesh.vertexCount, 0));
    for (const _NskBdryElemStr* block = mesh.elements; block; block = block->next)
        if (block->indices && (block->kind == 3 || block->kind == 4))
            drawClientElements(vertexCount, block->indices, block->elementCount, block->kind);
}

/// Deliberate limit: one block reaches the buffers, and it is drawn as triangles whatever its kind. A block
/// that has grown since is drawn as far as its buffer goes.
void drawBuffered(const _NskBdryMeshStr& mesh) {
    GLint bytes = 0;
    glGetBufferParameteriv(GL_ELEMENT_ARRAY_BUFFER, GL_BUFFER_SIZE, &bytes);
    const std::uint32_t triangles =
        std::min(mesh.elements->elementCount, static_cast<std::uint32_t>(bytes / kBytesEach));
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(triangles) * 3, GL_UNSIGNED_INT, nullptr);
}

/// Front faces, then back faces, each in its palette colour. Deliberate: the fill mode, the culled side and
/// the last colour stay, for what the host draws of the same body next.
template <class Draw>
void drawBySide(int frontColor, int backColor, const Draw& draw) {
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    ngl_set_color(frontColor);
    draw();
    glCullFace(GL_FRONT);
    ngl_set_color(backColor);
    draw();
}

template <class Draw>
void drawFromBuffers(_RenderFMeshVboStr* vbo, const Draw& draw) {
    const ArraysDrawing drawing;
    NRenderNgMeshRenderer::BindBuffers(vbo);
    draw();
    NRenderNgMeshRenderer::UnbindBuffers(vbo);
}

template <class Draw>
void drawFromMemory(const _NskBdryMeshStr* mesh, bool singleNormal, const Draw& draw) {
    if (!mesh || !mesh->vertices || mesh->vertexCount <= 0)
        return;
    if (singleNormal && mesh->normals)
        glNormal3fv(mesh->normals); // stays current afterwards
    const ArraysDrawing drawing;
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, mesh->vertices);
    if (!singleNormal && mesh->normals) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, 0, mesh->normals);
    }
    draw();
}

} // namespace

void NRenderNgMeshRenderer::CreateVboInfo(_RenderFMeshVboStr*& vbo) {
    void* memory = NHOST_ALLOCATE(sizeof(_RenderFMeshVboStr));
    vbo = memory ? new (memory) _RenderFMeshVboStr{} : nullptr;
}

void NRenderNgMeshRenderer::UpdateBuffers(const _NskBdryMeshStr* mesh, _RenderFMeshVboStr* vbo) {
    if (!mesh || !vbo || !canBeBuffered(*mesh))
        return;
    if (!isMissing(vbo->vertices) && !isMissing(vbo->normals) && !isMissing(vbo->indices))
        return;
    std::optional<ClientArraysGuard> bindings; // creation unbinds what the host has bound
    if (glContextIsCurrent())
        bindings.emplace();
    const auto vertexCount = static_cast<std::uint32_t>(mesh->vertexCount);
    createBuffer(vbo->vertices, GL_ARRAY_BUFFER, vertexCount, mesh->vertices);
    createBuffer(vbo->normals, GL_ARRAY_BUFFER, vertexCount, mesh->normals);
    if (isMissing(vbo->indices))
        createIndexBuffer(vbo->indices, *mesh);
}

void NRenderNgMeshRenderer::BindBuffers(_RenderFMeshVboStr* vbo) {
    if (!vbo)
        return;
    glShadeModel(GL_SMOOTH); // stays: buffers hold a normal for each vertex
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    bindIfValid(vbo->vertices, [] { glVertexPointer(3, GL_FLOAT, 0, nullptr); });
    bindIfValid(vbo->normals, [] { glNormalPointer(GL_FLOAT, 0, nullptr); });
    bindIfValid(vbo->indices, [] {});
}

void NRenderNgMeshRenderer::UnbindBuffers(_RenderFMeshVboStr* vbo) {
    if (!vbo)
        return;
    unbind(vbo->vertices);
    unbind(vbo->normals);
    unbind(vbo->indices);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

bool NRenderNgMeshRenderer::BindAndDrawMesh(_RenderFMeshVboStr* vbo, const _NskBdryMeshStr* mesh) {
    if (AreVbosAndMeshNotValid(vbo, mesh))
        return true;
    const LightingGuard lighting(true);
    drawFromBuffers(vbo, [mesh] { drawBuffered(*mesh); });
    return false;
}

bool NRenderNgMeshRenderer::BindAndDrawMesh(_RenderFMeshVboStr* vbo, const _NskBdryMeshStr* mesh,
                                            int frontColor, int backColor) {
    if (AreVbosAndMeshNotValid(vbo, mesh))
        return true;
    // Deliberate: culling is left on; hosts draw the other parts of a closed body right after.
    drawFromBuffers(vbo, [=] { drawBySide(frontColor, backColor, [mesh] { drawBuffered(*mesh); }); });
    return false;
}

void NRenderNgMeshRenderer::DrawMesh(const _NskBdryMeshStr* mesh) {
    if (!mesh)
        return;
    const NoIndexBufferGuard memory;
    const NoRestartGuard indices;
    drawBlocks(*mesh);
}

void NRenderNgMeshRenderer::DrawWithoutVBO(const _NskBdryMeshStr* mesh, bool singleNormal) {
    drawFromMemory(mesh, singleNormal, [mesh] { drawBlocks(*mesh); });
}

void NRenderNgMeshRenderer::DrawWithoutVBO(const _NskBdryMeshStr* mesh, bool singleNormal, int frontColor,
                                           int backColor) {
    drawFromMemory(mesh, singleNormal, [=] {
        drawBySide(frontColor, backColor, [mesh] { drawBlocks(*mesh); });
        glDisable(GL_CULL_FACE);
    });
}

void NRenderNgMeshRenderer::SetShadingProperties(int flat, int color, bool transparency,
                                                 int transparencyValue) {
    glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, &m_iOrgTwoSidedColor);
    glGetIntegerv(GL_SHADE_MODEL, &m_iOrgShadeModel);
    m_iOrgLighting = glIsEnabled(GL_LIGHTING);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    if (m_iOrgLighting == 0)
        glEnable(GL_LIGHTING);
    glShadeModel(flat != 0 ? GL_FLAT : GL_SMOOTH);
    m_bEnableTransparency = transparency;
    if (transparency) {
        m_iOrgBlendingValue = ngl_get_blending_value() >> 24 & 0xFF;
        ngl_set_blending_value(255 - transparencyValue);
    }
    m_iOrgColor = ngl_get_color();
    ngl_set_color(color);
}

void NRenderNgMeshRenderer::ResetShadingProperties() {
    glShadeModel(static_cast<GLenum>(m_iOrgShadeModel));
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, m_iOrgTwoSidedColor);
    if (m_iOrgLighting == 0)
        glDisable(GL_LIGHTING);
    if (m_bEnableTransparency)
        ngl_set_blending_value(m_iOrgBlendingValue);
    m_iOrgColor >= 0 ? ngl_set_color(m_iOrgColor) : NglResetLastColor();
    m_bEnableTransparency = false;
    m_iOrgBlendingValue = 0;
    m_iOrgColor = 0;
}

void NRenderNgMeshRenderer::DeleteBuffers(_RenderFMeshVboStr* vbo) {
    if (!vbo)
        return;
    destroy(vbo->vertices);
    destroy(vbo->normals);
    destroy(vbo->indices);
}

void NRenderNgMeshRenderer::DeleteVboInfo(_RenderFMeshVboStr*& vbo) {
    DeleteBuffers(vbo);
    NHostFree(vbo);
    vbo = nullptr;
}

bool NRenderNgMeshRenderer::AreVbosAndMeshNotValid(const _RenderFMeshVboStr* vbo,
                                                   const _NskBdryMeshStr* mesh) {
    return !vbo || isUnusable(vbo->vertices) || isUnusable(vbo->normals) || isUnusable(vbo->indices) ||
           !mesh || !mesh->elements || mesh->elements->elementCount == 0;
}
