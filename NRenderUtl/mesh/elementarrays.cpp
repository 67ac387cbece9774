#include "NRenderUtl/mesh/elementarrays.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace {

using Look = ElementArrays::Look;
using Part = ElementArrays::Part;
using Vector = ElementSurface::Vector;
using Corners = std::span<const std::uint32_t>; // vertices of a face or of a piece of it

constexpr std::uint32_t kFan[2][3] = {{0, 1, 2}, {0, 2, 3}}; // how a quad is cut

/// Unit normal of three positions; zero where they span nothing.
Vector normalOf(const Vector& p0, const Vector& p1, const Vector& p2) {
    double a[3], b[3];
    for (int i = 0; i < 3; ++i) {
        a[i] = double{p1[i]} - p0[i];
        b[i] = double{p2[i]} - p0[i];
    }
    const double n[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    const double length = std::hypot(n[0], n[1], n[2]);
    if (!(length > 0))
        return {};
    return {static_cast<float>(n[0] / length), static_cast<float>(n[1] / length),
            static_cast<float>(n[2] / length)};
}

void addTriangles(Part& part, bool banded, Corners corners) {
    std::vector<std::uint32_t>& indices = banded ? part.banded : part.plain;
    for (std::size_t t = 0; t + 2 < corners.size(); ++t)
        for (const std::uint32_t corner : kFan[t])
            indices.push_back(corners[corner]);
}

void addRun(Part& part, std::uint32_t end, const std::optional<ElementPaint>& paint) {
    if (!part.runs.empty() && part.runs.back().paint == paint)
        part.runs.back().end = end;
    else
        part.runs.push_back({end, paint});
}

class ArraysMaker {
public:
    ArraysMaker(const ElementScene& scene, const ContourRule* rule, const ContourTexture* texture)
        : m_scene(scene), m_surface(scene.surface), m_rule(rule), m_texture(texture) {
        if (texture) {
            m_common = {ElementPaint{}, true};
            m_hasGaps = std::ranges::any_of(scene.values.values, [](float v) { return !std::isfinite(v); });
        }
    }

    ElementArrays make() {
        reserve();
        for (std::uint32_t face = 0; face < m_surface.faceCount(); ++face)
            if (isElementShown(m_scene.facts, m_surface.elementOf(face), m_scene.attributes))
                addFace(face);
        if (!m_arrays.shared.plain.empty() || !m_arrays.shared.banded.empty())
            addSharedVertices();
        return std::move(m_arrays);
    }

private:
    bool isShading(ngl::NglElementShading shading) const { return m_scene.attributes.shading == shading; }
    bool isOfElements() const { return m_rule && !m_texture; }

    /// Memory for what most models need, so that it is not moved about.
    void reserve() {
        const std::size_t corners =
            3 * (std::size_t{m_surface.triangleCount} + 2 * std::size_t{m_surface.quadCount});
        const bool shares = isShading(ngl::NglElementSmooth) && !isOfElements();
        Part& part = shares ? m_arrays.shared : m_arrays.own;
        (m_common.banded ? part.banded : part.plain).reserve(corners);
        if (shares)
            return;
        const std::size_t vertices = isShading(ngl::NglElementFlat) ? corners : m_surface.corners.size();
        part.positions.reserve(vertices);
        part.normals.reserve(vertices);
        if (m_texture)
            part.coordinates.reserve(vertices);
    }

    Look lookOf(std::uint32_t element) const {
        const ElementFacts& facts = m_scene.facts;
        const bool stands = facts.selection[element] == ngl::NglElementSelected ||
                            facts.selection[element] == ngl::NglElementHighlighted;
        if (stands || (!m_rule && !facts.color.isInitial()))
            if (const std::optional<NgColorLong> color = elementColor(facts, element))
                return {ElementPaint{*color}};
        if (isOfElements())
            return {ElementPaint{.filter = m_rule->color(m_scene.values.values[element])}};
        return m_common;
    }

    void addFace(std::uint32_t face) {
        const Corners corners = m_surface.face(face);
        const Look look = lookOf(m_surface.elementOf(face));
        std::optional<Vector> normal;
        if (isShading(ngl::NglElementNormals))
            normal = normalOf(corners);
        m_arrays.facing = m_arrays.facing || !look.paint;
        if (!isShading(ngl::NglElementFlat) && !(m_hasGaps && look.banded))
            return addPiece(corners, look, normal);
        for (std::size_t t = 0; t + 2 < corners.size(); ++t) {
            const auto& [a, b, c] = kFan[t];
            addTriangle({{corners[a], corners[b], corners[c]}}, look, normal);
        }
    }

    void addTriangle(const std::array<std::uint32_t, 3>& corners, Look look, std::optional<Vector> normal) {
        if (isShading(ngl::NglElementFlat))
            normal = normalOf(corners);
        if (m_hasGaps && look.banded)
            if (const double sum = valueSum(corners); !std::isfinite(sum))
                look = {ElementPaint{.filter = m_rule->color(static_cast<float>(sum))}};
        addPiece(corners, look, normal);
    }

    void addPiece(Corners corners, const Look& look, const std::optional<Vector>& normal) {
        if (!normal && look == m_common)
            return addTriangles(m_arrays.shared, look.banded, corners);
        Part& own = m_arrays.own;
        std::array<std::uint32_t, 4> indices;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            indices[i] = static_cast<std::uint32_t>(own.positions.size());
            own.positions.push_back(m_surface.positions[corners[i]]);
            own.normals.push_back(normal ? *normal : m_surface.normals[corners[i]]);
            if (m_texture)
                own.coordinates.push_back(coordinateOf(corners[i]));
        }
        addRun(own, static_cast<std::uint32_t>(own.positions.size()), look.paint);
        addTriangles(own, look.banded, Corners(indices).first(corners.size()));
    }

    void addSharedVertices() {
        const auto count = static_cast<std::uint32_t>(m_surface.positions.size());
        addRun(m_arrays.shared, count, m_common.paint);
        if (!m_texture)
            return;
        m_arrays.shared.coordinates.resize(count);
        for (std::uint32_t vertex = 0; vertex < count; ++vertex)
            m_arrays.shared.coordinates[vertex] = coordinateOf(vertex);
    }

    Vector normalOf(Corners corners) const {
        const std::vector<Vector>& positions = m_surface.positions;
        return ::normalOf(positions[corners[0]], positions[corners[1]], positions[corners[2]]);
    }

    float valueOf(std::uint32_t vertex) const { return m_scene.values.values[m_surface.nodeOf(vertex)]; }

    /// What interpolation makes of values that are not all finite, wherever in the triangle.
    double valueSum(Corners corners) const {
        double sum = 0;
        for (const std::uint32_t corner : corners)
            sum += valueOf(corner);
        return sum;
    }

    /// Triangles at a value that is not finite do without the texture.
    float coordinateOf(std::uint32_t vertex) const {
        const float value = valueOf(vertex);
        return std::isfinite(value) ? m_texture->coordinate(value) : 0.0f;
    }

    const ElementScene& m_scene;
    const ElementSurface& m_surface;
    const ContourRule* m_rule;
    const ContourTexture* m_texture; ///< null for values of elements
    Look m_common;                   ///< of faces that nothing marks
    bool m_hasGaps = false;          ///< whether values of nodes are missing
    ElementArrays m_arrays;
};

} // namespace

ElementArrays makeElementArrays(const ElementScene& scene, const ContourRule* rule,
                                const ContourTexture* texture) {
    return ArraysMaker(scene, rule, texture).make();
}
