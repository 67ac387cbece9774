// The triangles of an element mesh as indices, and the numbers that reach the fragments of each by its last
// vertex, the provoking one.
#pragma once

#include "NRenderUtl/mesh/elementsurface.h"

/// What the number of a primitive, as it reaches a fragment, counts.
enum class ElementNumbering {
    Elements,
    Faces,
    Triangles, ///< of all faces, quads counting twice
    Quads,     ///< alone
};

/// Consecutive faces; none where first is not below end.
struct FaceSpan {
    std::uint32_t first, end;
};
/// The smallest span with all faces of some consecutive elements.
FaceSpan facesOf(const ElementSurface& surface, std::uint32_t firstElement, std::uint32_t endElement);
/// How many triangles the faces before this one make.
std::size_t trianglesBefore(const ElementSurface& surface, std::uint32_t face);
/// Three vertices for each triangle of some faces, in their order and quads as two triangles. Those of
/// elements that shown(element) refuses have no area.
template <class Shown>
std::vector<std::uint32_t> triangleIndices(const ElementSurface& surface, const FaceSpan& faces,
                                           const Shown& shown) {
    if (faces.first >= faces.end)
        return {};
    const std::size_t count = trianglesBefore(surface, faces.end) - trianglesBefore(surface, faces.first);
    std::vector<std::uint32_t> indices(3 * count);
    std::uint32_t* next = indices.data();
    for (std::uint32_t face = faces.first; face < faces.end; ++face) {
        const std::span<const std::uint32_t> c = surface.face(face);
        const bool seen = shown(surface.elementOf(face));
        for (std::size_t last = 2; last < c.size(); ++last) {
            *next++ = c[0];
            *next++ = seen ? c[last - 1] : c[0];
            *next++ = seen ? c[last] : c[0];
        }
    }
    return indices;
}

/// The same triangles, each turned so that its last vertex carries its number. A vertex carries one number;
/// where all of a face are taken by others, a copy of one does.
struct ElementIndexing {
    std::vector<std::uint32_t> indices;
    std::vector<std::uint32_t> copies; ///< of which vertex each vertex behind those of the surface is one
    std::vector<float> numbers;        ///< of all vertices; exact up to kMostNumbers
};
inline constexpr std::uint32_t kMostNumbers = 1u << 24;

/// By elements or faces. Throws std::bad_alloc.
ElementIndexing makeElementIndexing(const ElementSurface& surface, ElementNumbering numbering);

/// Whether the numbers are those of the elements.
bool countsElements(const ElementSurface& surface, ElementNumbering numbering);
/// Element of each primitive. Throws std::bad_alloc.
std::vector<std::uint32_t> elementsOf(const ElementSurface& surface, ElementNumbering numbering);
/// Unit normals, in w 0, of the faces or triangles: those of their first three corners, or where `halves` is
/// set each triangle's own.
std::vector<std::array<float, 4>> normalsOf(const ElementSurface& surface, ElementNumbering numbering,
                                            bool halves);
