// Faces that the plane crosses become polygons of new vertices; the others are taken over.
#include "viewer/bodies/cutbody.h"

#include <algorithm>

namespace nruview {

namespace {

using Index = std::uint32_t;

Index vertexCount(const BodyMesh& mesh) {
    return static_cast<Index>(mesh.positions.size() / 3);
}

class BodyCutter {
public:
    BodyCutter(const BodyMesh& whole, const Plane& plane) : m_mesh(whole) {
        m_mesh.triangles.clear();
        m_mesh.quads.clear();
        for (std::size_t i = 0; i < whole.positions.size(); i += 3)
            m_distances.push_back(
                plane.distance({whole.positions[i], whole.positions[i + 1], whole.positions[i + 2]}));
    }
    void addFace(std::span<const Index> corners) {
        const auto isKept = [this](Index corner) { return m_distances[corner] < 0.0; };
        std::vector<Index>& indices = corners.size() == 4 ? m_mesh.quads : m_mesh.triangles;
        if (std::all_of(corners.begin(), corners.end(), isKept))
            indices.insert(indices.end(), corners.begin(), corners.end());
        else if (std::any_of(corners.begin(), corners.end(), isKept))
            for (std::size_t i = 2; i < corners.size(); ++i)
                addCut({corners[0], corners[i - 1], corners[i]});
    }
    BodyMesh finish() { return std::move(m_mesh); }

private:
    void addCut(const std::array<Index, 3>& corners) {
        std::vector<Index> polygon;
        for (std::size_t i = 0; i < 3; ++i) {
            const Index from = corners[i], to = corners[(i + 1) % 3];
            if (m_distances[from] < 0.0)
                polygon.push_back(from);
            if ((m_distances[from] < 0.0) != (m_distances[to] < 0.0))
                polygon.push_back(addVertex(from, to));
        }
        for (std::size_t i = 2; i < polygon.size(); ++i)
            m_mesh.triangles.insert(m_mesh.triangles.end(), {polygon[0], polygon[i - 1], polygon[i]});
    }
    Index addVertex(Index from, Index to) {
        const auto part = static_cast<float>(m_distances[from] / (m_distances[from] - m_distances[to]));
        for (std::vector<float>* values : {&m_mesh.positions, &m_mesh.normals})
            for (std::size_t k = 0; k < 3; ++k)
                values->push_back((1.0f - part) * (*values)[3 * from + k] + part * (*values)[3 * to + k]);
        return vertexCount(m_mesh) - 1;
    }

    BodyMesh m_mesh;
    std::vector<double> m_distances; ///< of the whole mesh's vertices
};

void addVertex(BodyMesh& mesh, const Point& position, const Point& normal) {
    for (std::size_t k = 0; k < 3; ++k) {
        mesh.positions.push_back(static_cast<float>(position[k]));
        mesh.normals.push_back(static_cast<float>(normal[k]));
    }
}

} // namespace

BodyMesh cutBody(const BodyMesh& whole, const Plane& plane) {
    BodyCutter cutter(whole, plane);
    for (std::size_t i = 0; i < whole.triangles.size(); i += 3)
        cutter.addFace({whole.triangles.data() + i, 3});
    for (std::size_t i = 0; i < whole.quads.size(); i += 4)
        cutter.addFace({whole.quads.data() + i, 4});
    return cutter.finish();
}

void addCap(BodyMesh& mesh, const ShownModel& shown, std::size_t part) {
    const Section& section = *shown.section;
    const std::vector<ModelPart>& parts = shown.model.parts;
    for (const Cut::Polygon& polygon : section.cut.polygons) {
        if (!parts.empty() && polygon.cell - parts[part].firstCell >= parts[part].cellCount)
            continue;
        const Index first = vertexCount(mesh), middle = first + polygon.count;
        for (Index i = 0; i < polygon.count; ++i)
            addVertex(mesh, section.corners[polygon.first + i], section.plane.normal);
        addVertex(mesh, middleOf(section, polygon), section.plane.normal);
        for (Index i = 0; i < polygon.count; ++i)
            mesh.triangles.insert(mesh.triangles.end(), {first + i, first + (i + 1) % polygon.count, middle});
    }
}

} // namespace nruview
