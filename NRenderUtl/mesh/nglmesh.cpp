// The library's own mesh record: made, extended, copied and destroyed.
#include "NRenderUtl/mesh/nmesh.h"

#include <cstddef>
#include <cstring>
#include <limits>

#include "NRenderUtl/mesh/hostarray.h"
#include "NRenderUtl/mesh/meshaccess.h"

namespace {

// Deliberate: hosts write terminators behind the indices of a block that was copied.
constexpr std::size_t kIndexSlackBytes = 24;

HostArray<double> copyPoints(const void* source, std::size_t count, bool indirect) {
    if (!indirect)
        return hostArrayCopy(static_cast<const double*>(source), count * 3);
    HostArray<double> copy = hostArray<double>(count * 3);
    const auto* points = static_cast<const double* const*>(source);
    for (std::size_t i = 0; copy && i < count; ++i)
        std::copy_n(points[i], 3, copy.get() + i * 3);
    return copy;
}

_NgConnectStr** endOfBlocks(_NgMeshStr* mesh) {
    _NgConnectStr** link = &mesh->blocks;
    while (*link)
        link = &(*link)->next;
    return link;
}

HostArray<std::uint32_t> copyIndices(const std::uint32_t* indices, std::size_t count) {
    HostArray<std::uint32_t> copy =
        hostArray<std::uint32_t>(count + kIndexSlackBytes / sizeof(std::uint32_t));
    if (copy)
        std::copy_n(indices, count, copy.get());
    return copy;
}

/// Whether a block of this shape can be stored.
bool isBlockShape(int verticesPerElement) {
    return verticesPerElement >= 1 && verticesPerElement <= std::numeric_limits<std::int16_t>::max();
}

/// Appends a block; the indices are taken over. False when there is no memory.
bool appendBlock(_NgMeshStr* mesh, std::uint32_t elementCount, int verticesPerElement,
                 std::uint32_t* indices) {
    HostArray<_NgConnectStr> block = hostArray<_NgConnectStr>(1);
    if (!block)
        return false;
    block[0] = {static_cast<std::int16_t>(verticesPerElement), elementCount, indices, nullptr};
    *endOfBlocks(mesh) = block.release();
    return true;
}

bool appendBlockCopy(_NgMeshStr* mesh, std::uint32_t elementCount, int verticesPerElement,
                     const std::uint32_t* indices) {
    HostArray<std::uint32_t> copy =
        copyIndices(indices, std::size_t{elementCount} * static_cast<std::size_t>(verticesPerElement));
    if (!copy || !appendBlock(mesh, elementCount, verticesPerElement, copy.get()))
        return false;
    copy.release();
    return true;
}

bool copyBlocks(const _NgMeshStr& source, _NgMeshStr* copy) {
    for (const _NgConnectStr* block = source.blocks; block; block = block->next)
        if (block->indices && isBlockShape(block->verticesPerElement) &&
            !appendBlockCopy(copy, block->elementCount, block->verticesPerElement, block->indices))
            return false;
    return true;
}

void freeBlocks(_NgMeshStr* mesh) {
    while (_NgConnectStr* block = mesh->blocks) {
        mesh->blocks = block->next;
        NHostFree(block->indices);
        NHostFree(block);
    }
}

template <class T>
void freeArray(T*& array) {
    NHostFree(array);
    array = nullptr;
}

} // namespace

_NgMeshStr* ngl_create_mesh(unsigned int count, void* coords, void* normals, int coordsIndirect,
                            int normalsIndirect, int copy) {
    HostArray<_NgMeshStr> mesh = hostArray<_NgMeshStr>(1);
    if (!mesh || count > static_cast<unsigned int>(std::numeric_limits<std::int32_t>::max()))
        return nullptr;
    std::memset(mesh.get(), 0, sizeof(_NgMeshStr));
    mesh[0].vertexCount = static_cast<std::int32_t>(count);
    if (!copy) {
        mesh[0].coords = static_cast<double*>(coords);
        mesh[0].normals = static_cast<double*>(normals);
        return mesh.release();
    }
    // An empty mesh gets no arrays: NglDestroyMesh would not free them.
    if (count == 0)
        return mesh.release();
    HostArray<double> ownCoords = coords ? copyPoints(coords, count, coordsIndirect != 0) : nullptr;
    HostArray<double> ownNormals = normals ? copyPoints(normals, count, normalsIndirect != 0) : nullptr;
    if ((coords && !ownCoords) || (normals && !ownNormals))
        return nullptr;
    mesh[0].coords = ownCoords.release();
    mesh[0].normals = ownNormals.release();
    return mesh.release();
}

void ngl_add_connect(_NgMeshStr* mesh, unsigned int elementCount, int verticesPerElement,
                     unsigned int* indices, int copy) {
    if (!isBlockShape(verticesPerElement))
        return;
    if (!copy)
        appendBlock(mesh, elementCount, verticesPerElement, indices);
    else if (indices)
        appendBlockCopy(mesh, elementCount, verticesPerElement, indices);
}

int NglCopyNgMesh(_NgMeshStr* source, _NgMeshStr** copy) {
    if (source->vertexCount == 0)
        return 1;
    _NgMeshStr* mesh = ngl_create_mesh(static_cast<unsigned int>(source->vertexCount), source->coords,
                                       source->normals, 0, 0, 1);
    if (!mesh)
        return 1;
    if (!copyBlocks(*source, mesh)) {
        NglDestroyMesh(mesh);
        NHostFree(mesh);
        return 1;
    }
    *copy = mesh;
    return 0;
}

void NglDestroyMesh(_NgMeshStr* mesh) {
    if (mesh->vertexCount == 0)
        return;
    freeArray(mesh->coords);
    freeArray(mesh->normals);
    if (mesh->edgeCount != 0)
        freeArray(mesh->edges);
    freeBlocks(mesh);
    freeArray(mesh->edgeFaceNormals);
    freeArray(mesh->edgeWeights);
    mesh->vertexCount = 0;
    mesh->edgeCount = 0;
    mesh->edges = nullptr;
}
