#include "NRenderUtl/mesh/elementindexing.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace {

using Corners = std::span<const std::uint32_t>;
using Vector = ElementSurface::Vector;

constexpr float kFree = -1.0f;

class IndexingMaker {
public:
    IndexingMaker(const ElementSurface& surface, ElementNumbering numbering)
        : m_surface(surface), m_numbering(numbering) {
        m_made.indices.reserve(3 * (std::size_t{surface.triangleCount} + 2 * std::size_t{surface.quadCount}));
        m_made.numbers.assign(surface.positions.size(), kFree);
    }

    ElementIndexing make() {
        for (std::uint32_t face = 0; face < m_surface.faceCount(); ++face) {
            const Corners corners = m_surface.face(face);
            m_number =
                static_cast<float>(m_numbering == ElementNumbering::Faces ? face : m_surface.elementOf(face));
            if (corners.size() == 3)
                addTriangle(corners);
            else
                addQuad(corners);
        }
        return std::move(m_made);
    }

private:
    /// The corner that carries the number, or one that nobody has taken; -1 when there is none.
    int findCarrier(Corners corners, std::initializer_list<int> candidates) const {
        for (const float wanted : {m_number, kFree})
            for (const int i : candidates)
                if (m_made.numbers[corners[i]] == wanted)
                    return i;
        return -1;
    }

    /// Index of the corner, or of a copy, that from now on carries the number.
    std::uint32_t carrier(std::uint32_t vertex) {
        float& number = m_made.numbers[vertex];
        if (number == kFree)
            number = m_number;
        if (number == m_number)
            return vertex;
        m_made.copies.push_back(vertex);
        m_made.numbers.push_back(m_number);
        return static_cast<std::uint32_t>(m_made.numbers.size() - 1);
    }

    void emit(std::uint32_t a, std::uint32_t b, std::uint32_t last) {
        m_made.indices.insert(m_made.indices.end(), {a, b, last});
    }

    void addTriangle(Corners c) {
        const int found = findCarrier(c, {2, 0, 1});
        const int last = found == -1 ? 2 : found;
        emit(c[(last + 1) % 3], c[(last + 2) % 3], carrier(c[last]));
    }

    /// One end of the diagonal serves both triangles; only where the other two corners are free, and it is
    /// not, each has its own.
    void addQuad(Corners c) {
        const int found = findCarrier(c, {2, 0});
        if (found == -1 && findCarrier(c, {1}) == 1 && findCarrier(c, {3}) == 3) {
            emit(c[2], c[0], carrier(c[1]));
            emit(c[0], c[2], carrier(c[3]));
            return;
        }
        const std::uint32_t last = carrier(c[found == 0 ? 0 : 2]);
        if (found == 0) {
            emit(c[1], c[2], last);
            emit(c[2], c[3], last);
        } else {
            emit(c[0], c[1], last);
            emit(c[3], c[0], last);
        }
    }

    const ElementSurface& m_surface;
    const ElementNumbering m_numbering;
    float m_number = kFree; ///< of the face at hand
    ElementIndexing m_made;
};

std::array<float, 4> normalOf(const Vector& p0, const Vector& p1, const Vector& p2) {
    double a[3], b[3];
    for (int k = 0; k < 3; ++k) {
        a[k] = double{p1[k]} - p0[k];
        b[k] = double{p2[k]} - p0[k];
    }
    const double n[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    const double factor = length > 0 ? 1 / length : 0;
    return {static_cast<float>(n[0] * factor), static_cast<float>(n[1] * factor),
            static_cast<float>(n[2] * factor), 0.0f};
}

} // namespace

FaceSpan facesOf(const ElementSurface& surface, std::uint32_t firstElement, std::uint32_t endElement) {
    if (surface.elements.empty())
        return {std::min(firstElement, surface.faceCount()), std::min(endElement, surface.faceCount())};
    FaceSpan span{surface.faceCount(), 0};
    for (std::uint32_t face = 0; face < surface.faceCount(); ++face)
        if (surface.elements[face] >= firstElement && surface.elements[face] < endElement) {
            span.first = std::min(span.first, face);
            span.end = face + 1;
        }
    return span;
}

std::size_t trianglesBefore(const ElementSurface& surface, std::uint32_t face) {
    return face <= surface.triangleCount ? face : 2 * std::size_t{face} - surface.triangleCount;
}

ElementIndexing makeElementIndexing(const ElementSurface& surface, ElementNumbering numbering) {
    return IndexingMaker(surface, numbering).make();
}

bool countsElements(const ElementSurface& surface, ElementNumbering numbering) {
    if (numbering == ElementNumbering::Elements)
        return true;
    const bool allFaces =
        numbering == ElementNumbering::Faces ||
        (numbering == ElementNumbering::Quads ? surface.triangleCount : surface.quadCount) == 0;
    return surface.elements.empty() && allFaces;
}

std::vector<std::uint32_t> elementsOf(const ElementSurface& surface, ElementNumbering numbering) {
    const std::uint32_t first = numbering == ElementNumbering::Quads ? surface.triangleCount : 0;
    std::vector<std::uint32_t> elements;
    elements.reserve(std::size_t{surface.faceCount()} + surface.quadCount);
    for (std::uint32_t face = first; face < surface.faceCount(); ++face) {
        const bool twice = numbering == ElementNumbering::Triangles && face >= surface.triangleCount;
        elements.insert(elements.end(), twice ? 2 : 1, surface.elementOf(face));
    }
    return elements;
}

std::vector<std::array<float, 4>> normalsOf(const ElementSurface& surface, ElementNumbering numbering,
                                            bool halves) {
    std::vector<std::array<float, 4>> normals;
    normals.reserve(std::size_t{surface.faceCount()} + surface.quadCount);
    for (std::uint32_t face = 0; face < surface.faceCount(); ++face) {
        const Corners c = surface.face(face);
        const auto ofCorners = [&](int i, int j, int k) {
            return normalOf(surface.positions[c[i]], surface.positions[c[j]], surface.positions[c[k]]);
        };
        normals.push_back(ofCorners(0, 1, 2));
        if (numbering == ElementNumbering::Triangles && c.size() == 4)
            normals.push_back(halves ? ofCorners(0, 2, 3) : normals.back());
    }
    return normals;
}
