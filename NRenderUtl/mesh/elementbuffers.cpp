#include "NRenderUtl/mesh/elementbuffers.h"

#include <limits>

#include "NRenderUtl/host/hostgl.h"

namespace {

bool make(RenderGLBuffer& buffer, GLenum target, const void* data, std::size_t bytes, GLenum usage) {
    if (!buffer.IsValid() && bytes <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        buffer.Create(target, static_cast<int>(bytes), data, usage);
    return buffer.IsValid() != 0;
}

template <class T>
bool makeFrom(RenderGLBuffer& buffer, GLenum target, const std::vector<T>& data) {
    return make(buffer, target, data.data(), data.size() * sizeof(T), GL_STATIC_DRAW);
}

bool showsAll(const ElementScene& scene, const std::optional<ElementLeavingOut>& leavingOut) {
    return !leavingOut || (leavingOut == ElementLeavingOut{} && scene.facts.visible.isInitial());
}

/// Of some faces, without what is left out.
std::vector<std::uint32_t> shownIndices(const ElementScene& scene, const FaceSpan& faces,
                                        const std::optional<ElementLeavingOut>& leavingOut) {
    const ElementFacts& facts = scene.facts;
    if (showsAll(scene, leavingOut))
        return triangleIndices(scene.surface, faces, [](std::uint32_t) { return true; });
    if (leavingOut == ElementLeavingOut{} && facts.selection.isInitial())
        return triangleIndices(scene.surface, faces,
                               [&](std::uint32_t element) { return facts.visible[element] != 0; });
    return triangleIndices(scene.surface, faces, [&](std::uint32_t element) {
        return isElementShown(facts, element, scene.attributes);
    });
}

/// Data of the surface's vertices, with those of the copies behind.
bool makeOfVertices(RenderGLBuffer& buffer, const std::vector<ElementSurface::Vector>& data,
                    const std::vector<std::uint32_t>& copies) {
    if (buffer.IsValid() || copies.empty())
        return makeFrom(buffer, GL_ARRAY_BUFFER, data);
    std::vector<ElementSurface::Vector> all;
    all.reserve(data.size() + copies.size());
    all = data;
    for (const std::uint32_t vertex : copies)
        all.push_back(data[vertex]);
    return makeFrom(buffer, GL_ARRAY_BUFFER, all);
}

} // namespace

bool ElementBuffers::makeNumbering(const ElementSurface& surface, ElementNumbering numbering) {
    if (surface.elements.empty())
        numbering = ElementNumbering::Elements; // faces count the same
    if (m_numbering == numbering)
        return numbered.IsValid() && numbers.IsValid();
    ElementIndexing made = makeElementIndexing(surface, numbering);
    for (RenderGLBuffer* buffer : {&positions, &normals, &values, &numbers, &numbered})
        buffer->Destroy(true);
    m_valuesStale = true;
    m_numbering = numbering;
    m_copies = std::move(made.copies);
    return makeFrom(numbered, GL_ELEMENT_ARRAY_BUFFER, made.indices) &&
           makeFrom(numbers, GL_ARRAY_BUFFER, made.numbers);
}

bool ElementBuffers::updateValues(const ElementSurface& surface, const ElementValues& scene) {
    if (!m_valuesStale)
        return values.IsValid() != 0;
    const std::vector<float>* ofVertices = &scene.values;
    std::vector<float> all;
    if (!surface.copiedNodes.empty() || !m_copies.empty()) {
        all.reserve(surface.positions.size() + m_copies.size());
        all = scene.values;
        for (const std::uint32_t node : surface.copiedNodes)
            all.push_back(scene.values[node]);
        for (const std::uint32_t vertex : m_copies)
            all.push_back(all[vertex]);
        ofVertices = &all;
    }
    m_valuesStale = false;
    if (values.IsValid())
        values.Update(ofVertices->data());
    return make(values, GL_ARRAY_BUFFER, ofVertices->data(), ofVertices->size() * sizeof(float),
                GL_DYNAMIC_DRAW);
}

bool ElementBuffers::updateTriangles(const ElementScene& scene,
                                     const std::optional<ElementLeavingOut>& leavingOut) {
    const ElementSurface& surface = scene.surface;
    const bool anew = !triangles.IsValid() || leavingOut != m_leavingOut;
    if (!anew && (!leavingOut || m_shownChanged.empty()))
        return true;
    const FaceSpan faces =
        anew ? FaceSpan{0, surface.faceCount()} : facesOf(surface, m_shownChanged.first, m_shownChanged.end);
    m_leavingOut = leavingOut;
    if (leavingOut)
        m_shownChanged = {};
    if (!triangles.IsValid() && showsAll(scene, leavingOut) && surface.quadCount == 0)
        return makeFrom(triangles, GL_ELEMENT_ARRAY_BUFFER, surface.corners);
    const std::vector<std::uint32_t> indices = shownIndices(scene, faces, leavingOut);
    if (!triangles.IsValid())
        return makeFrom(triangles, GL_ELEMENT_ARRAY_BUFFER, indices);
    constexpr std::size_t triangleBytes = 3 * sizeof(std::uint32_t);
    triangles.Update(static_cast<int>(trianglesBefore(surface, faces.first) * triangleBytes),
                     static_cast<int>(indices.size() * sizeof(std::uint32_t)), indices.data());
    return true;
}

bool ElementBuffers::update(const ElementScene& scene, const Need& need) {
    const ElementSurface& surface = scene.surface;
    if (need.numbering && !makeNumbering(surface, *need.numbering))
        return false;
    if (need.triangles && !updateTriangles(scene, need.leavingOut))
        return false;
    const std::size_t ofTriangles = 3 * std::size_t{surface.triangleCount};
    if (need.quads && !make(quads, GL_ELEMENT_ARRAY_BUFFER, surface.corners.data() + ofTriangles,
                            (surface.corners.size() - ofTriangles) * sizeof(std::uint32_t), GL_STATIC_DRAW))
        return false;
    return makeOfVertices(positions, surface.positions, m_copies) &&
           (!need.normals || makeOfVertices(normals, surface.normals, m_copies)) &&
           (!need.values || updateValues(surface, scene.values));
}
