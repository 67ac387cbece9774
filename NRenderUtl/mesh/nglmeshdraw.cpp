// Mesh drawing with the fixed-function pipeline: faces, all edges, silhouette and feature edges.
#include "NRenderUtl/mesh/nmesh.h"

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/mesh/clientelements.h"
#include "NRenderUtl/mesh/meshaccess.h"

namespace {

constexpr unsigned int kFlagByte = 0xFF;
constexpr unsigned int kAnySilhouette = 4 | 8 | 16;
constexpr double kEdgeOn = 1e-6; // a face seen more nearly edge-on than this has no side

/// One call: the mesh, the low byte of the flags, and one texture coordinate per vertex or null.
struct MeshDraw {
    _NgMeshStr* mesh;
    unsigned int flags;
    const float* values;
    bool has(unsigned int bits) const { return (flags & bits) != 0; }
};

// --- faces -------------------------------------------------------------------------------------------------

/// Blocks of three vertices are triangles and all others quads, of four indices each, as far as the block has
/// them.
void drawBlock(const _NgMeshStr& mesh, const _NgConnectStr& block) {
    const std::uint32_t count = usableElements(block);
    const auto vertexCount = static_cast<std::uint32_t>(mesh.vertexCount);
    const int size = block.verticesPerElement;
    if (size == 3)
        drawClientElements(vertexCount, block.indices, count, 3);
    else
        drawClientElements(vertexCount, block.indices,
                           size < 4 ? static_cast<std::uint32_t>(std::uint64_t{count} * size / 4) : count, 4);
}

void drawFaces(const MeshDraw& draw) {
    const _NgMeshStr& mesh = *draw.mesh;
    const bool flat = draw.has(NglMeshFlat);
    const ShadingGuard shading;
    const LightingGuard lighting(true);
    const ClientArraysGuard arrays;
    const PlainIndicesGuard indices;
    glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, 1.0f);
    glShadeModel(flat ? GL_FLAT : GL_SMOOTH);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_DOUBLE, 0, mesh.coords);
    if (mesh.normals && flat) {
        glNormal3dv(mesh.normals);
    } else if (mesh.normals) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_DOUBLE, 0, mesh.normals);
    }
    if (draw.values) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(1, GL_FLOAT, 0, draw.values);
    }
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next)
        drawBlock(mesh, *block);
}

void drawScaledElement(const _NgMeshStr& mesh, const std::uint32_t* indices, int corners, double factor) {
    glBegin(GL_POLYGON);
    for (int i = 0; i < corners; ++i) {
        if (mesh.normals) {
            const double* normal = mesh.normals + std::size_t{indices[i]} * 3;
            glNormal3d(normal[0] * factor, normal[1] * factor, normal[2] * factor);
        }
        glVertex3dv(vertexCoords(mesh, indices[i]));
    }
    glEnd();
}

/// Faces while the mesh scale factor is on: its sign turns the normals, and so the side that is lit.
void drawScaledFaces(const MeshDraw& draw, double factor) {
    const _NgMeshStr& mesh = *draw.mesh;
    const LightingGuard lighting(!draw.has(NglMeshFlat));
    glShadeModel(GL_SMOOTH);
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next)
        for (std::uint32_t e = 0; e < usableElements(*block); ++e) {
            const std::uint32_t* indices = elementIndices(*block, e);
            if (areVertices(mesh, indices, block->verticesPerElement))
                drawScaledElement(mesh, indices, block->verticesPerElement, factor);
        }
    // Deliberate: the previous shade model is not restored; hosts draw their symbols flat after a scaled
    // mesh.
    glShadeModel(GL_FLAT);
}

// --- edges -------------------------------------------------------------------------------------------------

void sendVertex(const MeshDraw& draw, std::uint32_t index) {
    if (draw.values)
        glTexCoord2f(draw.values[index], 0.0f);
    glVertex3dv(vertexCoords(*draw.mesh, index));
}

/// Draws the edges that pass a test, each as a line of its own, unlit. The edge data are built when missing.
template <class Test>
void drawEdges(const MeshDraw& draw, const Test& isDrawn) {
    _NgMeshStr* mesh = draw.mesh;
    if (!mesh->edges)
        ngl_process_mesh_edges(mesh);
    const LightingGuard lighting(false);
    const std::uint32_t count = mesh->edges ? mesh->edgeCount : 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t* ends = mesh->edges + std::size_t{i} * 2;
        if (!isDrawn(i) || !areVertices(*mesh, ends, 2))
            continue;
        glBegin(GL_LINES);
        sendVertex(draw, ends[0]);
        sendVertex(draw, ends[1]);
        glEnd();
    }
}

/// Whether the viewer, looking along w, sees one face of an edge from the front and the other from behind.
bool isSilhouette(const double* normals, const _NgPoint3Str& w) {
    const double d1 = w.x * normals[0] + w.y * normals[1] + w.z * normals[2];
    const double d2 = w.x * normals[3] + w.y * normals[4] + w.z * normals[5];
    return (d1 > kEdgeOn && d2 < -kEdgeOn) || (d1 < -kEdgeOn && d2 > kEdgeOn);
}

void drawSilhouetteAndFeatureEdges(const MeshDraw& draw) {
    GLdouble m[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, m);
    const _NgPoint3Str w = {m[2], m[6], m[10]};
    const _NgMeshStr& mesh = *draw.mesh;
    drawEdges(draw, [&](std::uint32_t i) {
        // Edges that a host listed without normals or weights are feature edges.
        if (!mesh.edgeWeights || !mesh.edgeFaceNormals || !(mesh.edgeWeights[i] > 0.0))
            return true;
        return isSilhouette(mesh.edgeFaceNormals + std::size_t{i} * 6, w);
    });
}

/// The edge passes that the flags ask for; over faces they are pulled towards the viewer.
void drawEdgePasses(const MeshDraw& draw, DepthOffset::Kind offset) {
    if (draw.flags == 0 || draw.has(NglMeshEdges)) {
        const DepthOffset pulled(draw.has(NglMeshFaces | NglMeshFlat) ? offset : DepthOffset::None);
        drawEdges(draw, [](std::uint32_t) { return true; });
    }
    if (draw.has(kAnySilhouette)) {
        const DepthOffset pulled(draw.has(NglMeshFaces) ? offset : DepthOffset::None);
        drawSilhouetteAndFeatureEdges(draw);
    }
}

void drawMesh(MeshDraw draw) {
    if (draw.mesh->vertexCount <= 0 || !draw.mesh->coords)
        return;
    draw.flags &= kFlagByte;
    const CurrentStateGuard current;
    double factor;
    if (NglCheckOptimizedDisplayMode() != 0) {
        drawSilhouetteAndFeatureEdges(draw);
    } else if (draw.has(NglMeshFaces) && NglGetScaleFactorAndFlag(&factor) != 0) {
        draw.values = nullptr; // deliberate: the scaled path has no contour
        drawScaledFaces(draw, factor);
        drawEdgePasses(draw, DepthOffset::ViewDelta);
    } else {
        if (draw.has(NglMeshFaces))
            drawFaces(draw);
        drawEdgePasses(draw, DepthOffset::ViewPush);
    }
}

} // namespace

void ngl_mesh(_NgMeshStr* mesh, unsigned int flags) {
    drawMesh({mesh, flags, nullptr});
}

void ngl_mesh_contour_draw(_NgMeshStr* mesh, unsigned int flags, float* values) {
    if (values)
        drawMesh({mesh, flags, values});
}
