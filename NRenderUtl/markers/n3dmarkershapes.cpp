// The vertices and triangles of the 3D marker shapes. Their order is part of the interface: contour values
// belong to halves of it.
#include <array>
#include <cmath>
#include <cstdint>
#include <new>

#include "NRenderUtl/markers/nmarkers.h"

N3DCylinder* N3DCylinder::m_pInstance = nullptr;
N3DRivet* N3DRivet::m_pInstance = nullptr;
N3DCone* N3DCone::m_pInstance = nullptr;
N3DSphere* N3DSphere::m_pInstance = nullptr;
N3DArrowOneWay* N3DArrowOneWay::m_pInstance = nullptr;

namespace {

constexpr float kTwoPi = 6.2831855f;

class VertexWriter {
public:
    VertexWriter(float* vertices, int sliceCount) : m_next(vertices), m_sliceCount(sliceCount) {}
    void point(float x, float y, float z) {
        *m_next++ = x;
        *m_next++ = y;
        *m_next++ = z;
    }
    void ring(float radius, float z) {
        const float step = kTwoPi / static_cast<float>(m_sliceCount);
        for (int k = 0; k < m_sliceCount; ++k) {
            const float angle = static_cast<float>(k) * step;
            point(radius * std::cos(angle), radius * std::sin(angle), z);
        }
    }

private:
    float* m_next;
    const int m_sliceCount;
};

/// Triangles between rings, each given by its first vertex.
class TriangleWriter {
public:
    TriangleWriter(std::uint32_t* indices, int sliceCount) : m_next(indices), m_sliceCount(sliceCount) {}
    void triangle(int a, int b, int c) {
        for (const int index : {a, b, c})
            *m_next++ = static_cast<std::uint32_t>(index);
    }
    void fan(int centre, int ring) {
        for (int k = 0; k < m_sliceCount; ++k)
            triangle(centre, ring + k, ring + next(k));
    }
    void band(int from, int to) {
        for (int k = 0; k < m_sliceCount; ++k) {
            triangle(from + k, to + k, to + next(k));
            triangle(from + k, to + next(k), from + next(k));
        }
    }
    void mantle(int ring, int tip) {
        for (int k = 0; k < m_sliceCount; ++k)
            triangle(ring + k, tip, ring + next(k));
    }

private:
    int next(int k) const { return (k + 1) % m_sliceCount; }
    std::uint32_t* m_next;
    const int m_sliceCount;
};

template <class Marker>
Marker* madeOnce(Marker*& instance, Marker* (*make)()) {
    if (!instance)
        instance = make();
    return instance;
}

} // namespace

// --- cylinder ----------------------------------------------------------------------------------------------

N3DCylinder::N3DCylinder() : N3DMarker(RENDER_3D_MARKER_CYLINDER) {}
N3DCylinder::N3DCylinder(const N3DCylinder&) = default;
N3DCylinder& N3DCylinder::operator=(const N3DCylinder&) = default;

N3DCylinder* N3DCylinder::GetInstance() {
    return madeOnce(
        m_pInstance, +[] { return new (std::nothrow) N3DCylinder; });
}

void N3DCylinder::CreateUnitInstance(_Render3DMarkerShape shape) {
    const int n = GetSliceCount(shape);
    if (!startInstance(n, 2 * n + 2, 4 * n))
        return;
    VertexWriter vertices(m_vertices, n);
    for (const float z : {0.0f, 1.0f}) {
        vertices.point(0, 0, z);
        vertices.ring(1, z);
    }
    TriangleWriter triangles(m_indices, n);
    triangles.fan(0, 1);
    triangles.band(1, n + 2);
    triangles.fan(n + 1, n + 2);
    CreateVBOs();
}

// --- cone --------------------------------------------------------------------------------------------------

N3DCone::N3DCone() : N3DMarker(RENDER_3D_MARKER_CONE) {}
N3DCone::N3DCone(const N3DCone&) = default;
N3DCone& N3DCone::operator=(const N3DCone&) = default;

N3DCone* N3DCone::GetInstance() {
    return madeOnce(
        m_pInstance, +[] { return new (std::nothrow) N3DCone; });
}

void N3DCone::CreateUnitInstance(_Render3DMarkerShape shape) {
    const int n = GetSliceCount(shape);
    if (!startInstance(n, n + 2, 2 * n))
        return;
    VertexWriter vertices(m_vertices, n);
    vertices.point(0, 0, 0);
    vertices.ring(1, 0);
    vertices.point(0, 0, 1);
    TriangleWriter triangles(m_indices, n);
    triangles.fan(0, 1);
    triangles.mantle(1, n + 1);
    CreateVBOs();
}

// --- arrow -------------------------------------------------------------------------------------------------

N3DArrowOneWay::N3DArrowOneWay() : N3DMarker(RENDER_3D_MARKER_ARROW_ONE_WAY) {}
N3DArrowOneWay::N3DArrowOneWay(const N3DArrowOneWay&) = default;
N3DArrowOneWay& N3DArrowOneWay::operator=(const N3DArrowOneWay&) = default;

N3DArrowOneWay* N3DArrowOneWay::GetInstance() {
    return madeOnce(
        m_pInstance, +[] { return new (std::nothrow) N3DArrowOneWay; });
}

void N3DArrowOneWay::CreateUnitInstance(_Render3DMarkerShape shape) {
    constexpr float kNeck = 0.6f, kHeadRadius = 2;
    const int n = GetSliceCount(shape);
    if (!startInstance(n, 3 * n + 3, 5 * n))
        return;
    VertexWriter vertices(m_vertices, n);
    vertices.point(0, 0, 0);
    vertices.ring(1, 0);
    vertices.ring(1, kNeck);
    vertices.point(0, 0, kNeck);
    vertices.ring(kHeadRadius, kNeck);
    vertices.point(0, 0, 1);
    TriangleWriter triangles(m_indices, n);
    triangles.fan(0, 1);
    triangles.band(1, n + 1); // open at the top, which the head covers
    triangles.fan(2 * n + 1, 2 * n + 2);
    triangles.mantle(2 * n + 2, 3 * n + 2);
    CreateVBOs();
}

// --- rivet -------------------------------------------------------------------------------------------------

N3DRivet::N3DRivet() : N3DMarker(RENDER_3D_MARKER_RIVET) {}
N3DRivet::N3DRivet(const N3DRivet&) = default;
N3DRivet& N3DRivet::operator=(const N3DRivet&) = default;

N3DRivet* N3DRivet::GetInstance() {
    return madeOnce(
        m_pInstance, +[] { return new (std::nothrow) N3DRivet; });
}

void N3DRivet::CreateUnitInstance(_Render3DMarkerShape shape) {
    constexpr float kInset = 0.02f, kThickness = 0.08f, kFlange = 2;
    struct Ring {
        float radius, z, centreZ;
    };
    constexpr float kBottom = 0.0f + kInset, kTop = 1.0f - kInset;
    constexpr Ring kRings[] = {
        {1, 0, 0.0f - kInset},
        {kFlange, kBottom, kBottom},
        {kFlange, kBottom + kThickness, kBottom + kThickness},
        {1, 1, 1.0f + kInset},
        {kFlange, kTop, kTop},
        {kFlange, kTop - kThickness, kTop - kThickness},
    };
    const int n = GetSliceCount(shape);
    if (!startInstance(n, 6 * (n + 1), 12 * n))
        return;
    VertexWriter vertices(m_vertices, n);
    for (const Ring& ring : kRings) {
        vertices.point(0, 0, ring.centreZ);
        vertices.ring(ring.radius, ring.z);
    }
    TriangleWriter triangles(m_indices, n);
    const auto centre = [n](int j) { return j * (n + 1); };
    const auto ring = [n](int j) { return j * (n + 1) + 1; };
    for (const int j : {0, 1, 2})
        triangles.fan(centre(j), ring(j));
    triangles.band(ring(1), ring(2));
    triangles.band(ring(0), ring(3));
    triangles.band(ring(5), ring(4));
    for (const int j : {5, 4, 3})
        triangles.fan(centre(j), ring(j));
    CreateVBOs();
}

// --- sphere ------------------------------------------------------------------------------------------------

N3DSphere::N3DSphere() : N3DMarker(RENDER_3D_MARKER_SPHERE) {}
N3DSphere::N3DSphere(const N3DSphere&) = default;
N3DSphere& N3DSphere::operator=(const N3DSphere&) = default;

N3DSphere* N3DSphere::GetInstance() {
    return madeOnce(
        m_pInstance, +[] { return new (std::nothrow) N3DSphere; });
}

void N3DSphere::CreateUnitInstance(_Render3DMarkerShape) {
    constexpr int kSlices = 32, kStacks = 32, kPerStack = kSlices + 1; // the seam has vertices of its own
    constexpr int kSouth = 1 + (kStacks - 1) * kPerStack;
    constexpr float kStackAngle = 0.09817477f, kSliceAngle = 0.19634955f, kRadius = 0.5f;
    if (!startInstance(kSlices, kSouth + 1, 2 * kSlices * (kStacks - 1)))
        return;
    VertexWriter vertices(m_vertices, kSlices);
    vertices.point(0, kRadius, 0);
    for (int j = 1; j < kStacks; ++j) {
        const float phi = static_cast<float>(j) * kStackAngle;
        const float r = kRadius * std::sin(phi), y = kRadius * std::cos(phi);
        for (int i = 0; i < kPerStack; ++i) {
            const float lambda = static_cast<float>(i) * kSliceAngle;
            vertices.point(r * std::cos(lambda), y, r * std::sin(lambda));
        }
    }
    vertices.point(0, -kRadius, 0);
    TriangleWriter triangles(m_indices, kSlices);
    for (int k = 1; k <= kSlices; ++k)
        triangles.triangle(0, k + 1, k);
    for (int j = 1; j < kStacks - 1; ++j)
        for (int m = 0; m < kSlices; ++m) {
            const int a = 1 + kPerStack * (j - 1) + m;
            triangles.triangle(a, a + 1, a + kPerStack);
            triangles.triangle(a + kPerStack, a + 1, a + kPerStack + 1);
        }
    for (int k = kSouth - kPerStack; k < kSouth - 1; ++k)
        triangles.triangle(kSouth, k, k + 1);
    CreateVBOs();
}
