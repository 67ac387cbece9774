// Reading a mesh's connectivity without trusting it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "NRenderUtl/mesh/nmesh.h"

/// Number of elements that a block really offers: none without indices or vertices.
inline std::uint32_t usableElements(const _NgConnectStr& block) {
    return block.indices && block.verticesPerElement > 0 ? block.elementCount : 0;
}

inline const std::uint32_t* elementIndices(const _NgConnectStr& block, std::uint32_t element) {
    return block.indices +
           static_cast<std::size_t>(element) * static_cast<std::size_t>(block.verticesPerElement);
}

/// Whether all of count indices name one of so many vertices.
inline bool areVertices(std::uint32_t vertexCount, const std::uint32_t* indices, int count) {
    return std::all_of(indices, indices + count, [=](std::uint32_t index) { return index < vertexCount; });
}
inline bool areVertices(const _NgMeshStr& mesh, const std::uint32_t* indices, int count) {
    return areVertices(static_cast<std::uint32_t>(mesh.vertexCount), indices, count);
}

inline const double* vertexCoords(const _NgMeshStr& mesh, std::uint32_t index) {
    return mesh.coords + std::size_t{index} * 3;
}

inline _NgPoint3Str vertexPoint(const _NgMeshStr& mesh, std::uint32_t index) {
    const double* c = vertexCoords(mesh, index);
    return {c[0], c[1], c[2]};
}
