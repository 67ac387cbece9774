// Each part takes the vertices that its faces use and numbers them anew.
#include "viewer/bodies/bodymesh.h"

#include "viewer/bodies/creasenormals.h"

namespace nruview {

namespace {

class PartMeshes {
public:
    PartMeshes(const ShownModel& shown, const ShadedVertices& vertices)
        : m_shown(shown), m_vertices(vertices), m_owner(vertices.points.size(), ShadedVertices::kNone),
          m_number(vertices.points.size()), m_meshes(std::max<std::size_t>(shown.model.parts.size(), 1)) {}

    void addFace(std::span<const std::uint32_t> corners, std::uint32_t part) {
        BodyMesh& mesh = m_meshes[part];
        std::vector<std::uint32_t>& indices = corners.size() == 4 ? mesh.quads : mesh.triangles;
        for (const std::uint32_t vertex : corners)
            indices.push_back(numberIn(part, vertex));
    }
    std::vector<BodyMesh> finish() { return std::move(m_meshes); }

private:
    /// A vertex that another part has used before is a new one here; parts come one behind the other among
    /// the triangles and among the quads.
    std::uint32_t numberIn(std::uint32_t part, std::uint32_t vertex) {
        if (m_owner[vertex] == part)
            return m_number[vertex];
        BodyMesh& mesh = m_meshes[part];
        m_owner[vertex] = part;
        m_number[vertex] = static_cast<std::uint32_t>(mesh.positions.size() / 3);
        for (const double x : m_shown.points[m_vertices.points[vertex]])
            mesh.positions.push_back(static_cast<float>(x));
        mesh.normals.insert(mesh.normals.end(), m_vertices.normals[vertex].begin(),
                            m_vertices.normals[vertex].end());
        return m_number[vertex];
    }

    const ShownModel& m_shown;
    const ShadedVertices& m_vertices;
    std::vector<std::uint32_t> m_owner,
        m_number; ///< part that has last used each vertex, and its number there
    std::vector<BodyMesh> m_meshes;
};

/// The part of a cell; cells come in ascending order.
class PartFinder {
public:
    explicit PartFinder(const std::vector<ModelPart>& parts) : m_parts(parts) {}
    std::uint32_t of(std::uint32_t cell) {
        if (m_parts.empty())
            return 0;
        if (cell < m_parts[m_part].firstCell) // from the last triangle to the first quad
            m_part = 0;
        while (cell - m_parts[m_part].firstCell >= m_parts[m_part].cellCount)
            ++m_part;
        return m_part;
    }

private:
    const std::vector<ModelPart>& m_parts;
    std::uint32_t m_part = 0;
};

} // namespace

std::vector<BodyMesh> makeBodyMeshes(const ShownModel& shown) {
    const ShadedVertices vertices = shadeVertices(shown);
    PartMeshes meshes(shown, vertices);
    PartFinder parts(shown.model.parts);
    std::size_t place = 0;
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
        const std::span corners(vertices.corners.data() + place, face.size());
        if (corners[0] != ShadedVertices::kNone)
            meshes.addFace(corners, parts.of(cell));
        place += face.size();
    });
    return meshes.finish();
}

} // namespace nruview
