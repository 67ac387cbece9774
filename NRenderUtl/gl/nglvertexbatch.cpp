// The single vertex batch: vertices of any primitive, drawn through fixed function.
#include <cstdint>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/nhost.h"

namespace {

constexpr std::int32_t kCapacity = 120000;

enum Option { kColored = 1, kTextured = 2 };

struct VertexBatch {
    std::int32_t primitive = 0;
    std::int32_t count = 0;
    std::int32_t option = 0;
    float* positions = nullptr; ///< 3 for each vertex; all arrays are there or none
    float* normals = nullptr;   ///< 3
    float* texCoords = nullptr; ///< 1
    std::uint32_t* colors = nullptr;
    std::uint32_t* indices = nullptr;
};

VertexBatch& vertexBatch() {
    static VertexBatch batch;
    return batch;
}

void freeArrays(VertexBatch& batch) {
    NHostFree(batch.positions);
    NHostFree(batch.normals);
    NHostFree(batch.texCoords);
    NHostFree(batch.colors);
    NHostFree(batch.indices);
    batch.positions = batch.normals = batch.texCoords = nullptr;
    batch.colors = batch.indices = nullptr;
}

void allocateArrays(VertexBatch& batch) {
    batch.positions = static_cast<float*>(NHOST_ALLOCATE(1440000));
    batch.normals = static_cast<float*>(NHOST_ALLOCATE(1440000));
    batch.texCoords = static_cast<float*>(NHOST_ALLOCATE(480000));
    batch.colors = static_cast<std::uint32_t*>(NHOST_ALLOCATE(480000));
    batch.indices = static_cast<std::uint32_t*>(NHOST_ALLOCATE(480000));
    if (!batch.positions || !batch.normals || !batch.texCoords || !batch.colors || !batch.indices)
        freeArrays(batch);
}

void draw(const VertexBatch& batch) {
    const AttributesGuard current(GL_CURRENT_BIT); // GL may leave the last vertex's values as current
    const ClientArraysGuard arrays;
    const PlainIndicesGuard plain;
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, batch.positions);
    glEnableClientState(GL_NORMAL_ARRAY);
    glNormalPointer(GL_FLOAT, 0, batch.normals);
    if (batch.option == kTextured) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(1, GL_FLOAT, 0, batch.texCoords);
    } else if (batch.option == kColored) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, batch.colors);
    }
    glDrawElements(static_cast<GLenum>(batch.primitive), batch.count, GL_UNSIGNED_INT, batch.indices);
}

} // namespace

int NglBatchRenderBegin(int primitive, int option) {
    VertexBatch& batch = vertexBatch();
    batch.primitive = primitive;
    batch.option = option;
    batch.count = 0;
    if (!batch.positions)
        allocateArrays(batch);
    return 0;
}

int NglBatchRenderAddVertex(const float position[3], const float normal[3], float texcoord, int color) {
    VertexBatch& batch = vertexBatch();
    // A batch without primitive is never drawn and so stays full.
    if (!batch.positions || !position || !normal || batch.count == kCapacity)
        return 0;
    const std::int32_t i = batch.count++;
    for (int k = 0; k < 3; ++k) {
        batch.positions[3 * i + k] = position[k];
        batch.normals[3 * i + k] = normal[k];
    }
    batch.texCoords[i] = texcoord;
    batch.colors[i] = static_cast<std::uint32_t>(color);
    batch.indices[i] = static_cast<std::uint32_t>(i);
    if (batch.count == kCapacity)
        NglBatchRenderFlush();
    return 0;
}

int NglBatchRenderFlush() {
    VertexBatch& batch = vertexBatch();
    if (batch.primitive == 0)
        return -1; // deliberate: GL_POINTS is 0 too, so points have their own batch
    if (batch.count == 0)
        return -2;
    if (glContextIsCurrent())
        draw(batch);
    batch.count = 0;
    return 0;
}
