// Everything is copied into memory of the host allocator, which NglDestroyMesh gives back.
#include "viewer/scene/meshbuilder.h"

#include <algorithm>
#include <new>

namespace nruview {

namespace {

void addBlock(_NgMeshStr* mesh, int verticesPerElement, std::vector<std::uint32_t>& indices) {
    if (!indices.empty())
        ngl_add_connect(mesh, static_cast<unsigned>(indices.size() / verticesPerElement), verticesPerElement,
                        indices.data(), 1);
}

/// Edges of the host's own choice; without weights the library draws each of them.
void setEdges(_NgMeshStr* mesh, const std::vector<std::uint32_t>& edges) {
    if (edges.empty())
        return;
    mesh->edges = static_cast<std::uint32_t*>(NHOST_ALLOCATE(edges.size() * sizeof(std::uint32_t)));
    if (mesh->edges == nullptr)
        throw std::bad_alloc();
    std::copy(edges.begin(), edges.end(), mesh->edges);
    mesh->edgeCount = static_cast<std::uint32_t>(edges.size() / 2);
}

} // namespace

std::uint32_t MeshBuilder::addVertex(const Point& position, float value) {
    m_positions.push_back(position);
    m_values.push_back(value);
    return static_cast<std::uint32_t>(m_positions.size() - 1);
}

void MeshBuilder::addFace(std::span<const std::uint32_t> corners) {
    std::vector<std::uint32_t>& indices = corners.size() == 3 ? m_triangles : m_quads;
    indices.insert(indices.end(), corners.begin(), corners.end());
}

void MeshBuilder::addEdge(std::uint32_t from, std::uint32_t to) {
    m_edges.insert(m_edges.end(), {from, to});
}

ContourMesh MeshBuilder::finish() {
    if (m_positions.empty())
        return {};
    MeshPtr mesh(
        ngl_create_mesh(static_cast<unsigned>(m_positions.size()), m_positions.data(), nullptr, 0, 0, 1));
    if (!mesh)
        throw std::bad_alloc();
    addBlock(mesh.get(), 3, m_triangles);
    addBlock(mesh.get(), 4, m_quads);
    setEdges(mesh.get(), m_edges);
    return {std::move(mesh), std::move(m_values)};
}

} // namespace nruview
