// Surfaces from the host's arrays: checked, moved about an origin of their own, with the numbers of their
// elements. Normals are made in elementnormals.cpp.
#include "NRenderUtl/mesh/elementsurface.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>

#include "NRenderUtl/mesh/elementnormals.h"

namespace {

using ngl::NglElementMeshInput;

/// What GL counts, indices of triangles and vertices with their copies, has 31 bits.
constexpr std::uint64_t kMostIndices = std::numeric_limits<std::int32_t>::max();

bool isTooLarge(const NglElementMeshInput& input) {
    const std::uint64_t indices = 3 * std::uint64_t{input.triangleCount} + 6 * std::uint64_t{input.quadCount};
    return indices > kMostIndices || input.nodeCount > kMostIndices;
}

bool hasArrays(const NglElementMeshInput& input) {
    return (input.nodeCount == 0 || input.nodes) && (input.triangleCount == 0 || input.triangles) &&
           (input.quadCount == 0 || input.quads);
}

bool areBelow(const std::uint32_t* indices, std::size_t count, std::uint32_t limit) {
    std::uint32_t highest = 0;
    for (std::size_t i = 0; i < count; ++i)
        highest = std::max(highest, indices[i]);
    return count == 0 || highest < limit;
}

// --- positions ---------------------------------------------------------------------------------------------

struct Bounds {
    std::array<double, 3> low{DBL_MAX, DBL_MAX, DBL_MAX}, high{-DBL_MAX, -DBL_MAX, -DBL_MAX};
    bool finite = true;
};

Bounds boundsOf(const double* nodes, std::uint32_t count) {
    Bounds bounds;
    for (const double* p = nodes; p != nodes + 3 * std::size_t{count}; p += 3)
        for (int k = 0; k < 3; ++k) {
            bounds.low[k] = std::min(bounds.low[k], p[k]);
            bounds.high[k] = std::max(bounds.high[k], p[k]);
            bounds.finite &= std::abs(p[k]) <= DBL_MAX;
        }
    return bounds;
}

/// False for positions that single precision about the middle does not hold.
bool placePositions(const NglElementMeshInput& input, ElementSurface& surface) {
    if (input.nodeCount == 0)
        return true;
    const Bounds bounds = boundsOf(input.nodes, input.nodeCount);
    for (int k = 0; k < 3; ++k) {
        surface.origin[k] = 0.5 * bounds.low[k] + 0.5 * bounds.high[k];
        if (!bounds.finite || bounds.high[k] - surface.origin[k] > FLT_MAX)
            return false;
    }
    surface.positions.resize(input.nodeCount);
    const auto& [x, y, z] = surface.origin;
    const double* p = input.nodes;
    for (ElementSurface::Vector& position : surface.positions) {
        position = {static_cast<float>(p[0] - x), static_cast<float>(p[1] - y), static_cast<float>(p[2] - z)};
        p += 3;
    }
    return true;
}

void copyNormals(const float* normals, ElementSurface& surface) {
    surface.normals.resize(surface.nodeCount);
    for (ElementSurface::Vector& normal : surface.normals) {
        normal = {normals[0], normals[1], normals[2]};
        normals += 3;
    }
}

// --- faces and elements ------------------------------------------------------------------------------------

bool placeCorners(const NglElementMeshInput& input, ElementSurface& surface) {
    const std::size_t ofTriangles = 3 * std::size_t{input.triangleCount};
    const std::size_t ofQuads = 4 * std::size_t{input.quadCount};
    if (!areBelow(input.triangles, ofTriangles, input.nodeCount) ||
        !areBelow(input.quads, ofQuads, input.nodeCount))
        return false;
    surface.corners.reserve(ofTriangles + ofQuads);
    surface.corners.insert(surface.corners.end(), input.triangles, input.triangles + ofTriangles);
    surface.corners.insert(surface.corners.end(), input.quads, input.quads + ofQuads);
    return true;
}

/// Whether the numbers, where there are any, are first, first + 1, ...
bool countThrough(const std::uint32_t* elements, std::uint32_t count, std::uint32_t first) {
    for (std::uint32_t i = 0; elements && i < count; ++i)
        if (elements[i] != first + i)
            return false;
    return true;
}

void appendElements(const std::uint32_t* elements, std::uint32_t count, std::vector<std::uint32_t>& all) {
    const std::size_t before = all.size();
    if (elements) {
        all.insert(all.end(), elements, elements + count);
        return;
    }
    all.resize(before + count);
    std::iota(all.begin() + static_cast<std::ptrdiff_t>(before), all.end(),
              static_cast<std::uint32_t>(before));
}

bool placeElements(const NglElementMeshInput& input, ElementSurface& surface) {
    std::uint64_t needed = surface.faceCount();
    if (!countThrough(input.triangleElements, input.triangleCount, 0) ||
        !countThrough(input.quadElements, input.quadCount, input.triangleCount)) {
        surface.elements.reserve(surface.faceCount());
        appendElements(input.triangleElements, input.triangleCount, surface.elements);
        appendElements(input.quadElements, input.quadCount, surface.elements);
        needed = std::uint64_t{*std::max_element(surface.elements.begin(), surface.elements.end())} + 1;
    }
    surface.elementCount = input.elementCount ? input.elementCount : static_cast<std::uint32_t>(needed);
    return needed <= surface.elementCount;
}

} // namespace

std::optional<ElementSurface> makeElementSurface(const NglElementMeshInput& input) {
    if (!hasArrays(input))
        return {};
    if (isTooLarge(input))
        throw std::bad_alloc();
    ElementSurface surface;
    surface.nodeCount = input.nodeCount;
    surface.triangleCount = input.triangleCount;
    surface.quadCount = input.quadCount;
    if (!placeCorners(input, surface) || !placeElements(input, surface) || !placePositions(input, surface))
        return {};
    if (input.normals)
        copyNormals(input.normals, surface);
    else
        makeElementNormals(input.nodes, input.creaseDeg, surface);
    return surface;
}
