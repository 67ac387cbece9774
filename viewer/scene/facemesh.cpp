// The surface as arrays of faces, which the library copies.
#include "viewer/scene/facemesh.h"

#include <new>

namespace nruview {

namespace {

/// Faces of one size as the library takes them.
struct FaceArrays {
    std::vector<std::uint32_t> corners, elements;
    void add(std::span<const std::uint32_t> face, std::uint32_t cell) {
        corners.insert(corners.end(), face.begin(), face.end());
        elements.push_back(cell);
    }
    std::uint32_t count() const { return static_cast<std::uint32_t>(elements.size()); }
};

} // namespace

ngl::NglElementMesh makeFaceMesh(const ShownModel& shown, const TakeFace& take) {
    FaceArrays triangles, quads;
    forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
        if (take(face, cell))
            (face.size() == 3 ? triangles : quads).add(face, cell);
    });
    ngl::NglElementMesh mesh;
    if (triangles.count() + quads.count() == 0)
        return mesh;
    ngl::NglElementMeshInput input;
    input.nodeCount = static_cast<std::uint32_t>(shown.points.size());
    input.nodes = shown.points.data()->data();
    input.triangleCount = triangles.count();
    input.triangles = triangles.corners.data();
    input.triangleElements = triangles.elements.data();
    input.quadCount = quads.count();
    input.quads = quads.corners.data();
    input.quadElements = quads.elements.data();
    input.elementCount = static_cast<std::uint32_t>(shown.model.cellCount());
    input.creaseDeg = shown.creaseDeg;
    if (mesh.Create(input) != 0)
        throw std::bad_alloc();
    applyFacts(shown.elements, mesh);
    return mesh;
}

} // namespace nruview
