// The geometry of the 3D marker shapes, against rules that give each vertex and triangle by its number, and
// when it is built.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/markers/nmarkers.h"

namespace {

/// What a shape holds, which is not public.
struct Fields : N3DMarker {
    static auto vertexCount() { return &Fields::m_vertexCount; }
    static auto vertices() { return &Fields::m_vertices; }
    static auto triangleCount() { return &Fields::m_triangleCount; }
    static auto indices() { return &Fields::m_indices; }
    static auto sliceCount() { return &Fields::m_sliceCount; }
};

constexpr auto kSmooth = RENDER_3D_MARKER_SHAPE_SMOOTH, kNormal = RENDER_3D_MARKER_SHAPE_NORMAL,
               kCoarse = RENDER_3D_MARKER_SHAPE_COARSE;
constexpr auto kUnknown = static_cast<_Render3DMarkerShape>(3);

using Point = std::array<float, 3>;
using Triangle = std::array<std::uint32_t, 3>;

Point onRing(int n, int k, float radius, float z) {
    const float step = 6.2831855f / static_cast<float>(n), angle = static_cast<float>(k) * step;
    return {radius * std::cos(angle), radius * std::sin(angle), z};
}

Triangle corners(int a, int b, int c) {
    return {static_cast<std::uint32_t>(a), static_cast<std::uint32_t>(b), static_cast<std::uint32_t>(c)};
}

/// Triangle t of a shape is triangle (or, of a band, half) t % n of one of its parts.
Triangle fan(int n, int t, int centre, int ring) {
    return corners(centre, ring + t % n, ring + (t + 1) % n);
}
Triangle mantle(int n, int t, int ring, int tip) {
    return corners(ring + t % n, tip, ring + (t + 1) % n);
}
Triangle band(int n, int t, int from, int to) {
    const int k = t / 2 % n, next = (k + 1) % n;
    return t % 2 == 0 ? corners(from + k, to + k, to + next) : corners(from + k, to + next, from + next);
}

Point cylinderVertex(int n, int i) {
    const float z = i > n ? 1.0f : 0.0f;
    const int k = i % (n + 1);
    return k == 0 ? Point{0, 0, z} : onRing(n, k - 1, 1, z);
}
Triangle cylinderTriangle(int n, int t) {
    return t < n ? fan(n, t, 0, 1) : t < 3 * n ? band(n, t - n, 1, n + 2) : fan(n, t, n + 1, n + 2);
}

Point coneVertex(int n, int i) {
    return i == 0 ? Point{0, 0, 0} : i > n ? Point{0, 0, 1} : onRing(n, i - 1, 1, 0);
}
Triangle coneTriangle(int n, int t) {
    return t < n ? fan(n, t, 0, 1) : mantle(n, t, 1, n + 1);
}

Point arrowVertex(int n, int i) {
    if (i == 0 || i == 2 * n + 1 || i == 3 * n + 2)
        return {0, 0, i == 0 ? 0.0f : i == 2 * n + 1 ? 0.6f : 1.0f};
    if (i > 2 * n + 1)
        return onRing(n, i - 2 * n - 2, 2, 0.6f);
    return onRing(n, (i - 1) % n, 1, i > n ? 0.6f : 0.0f);
}
Triangle arrowTriangle(int n, int t) {
    return t < n       ? fan(n, t, 0, 1)
           : t < 3 * n ? band(n, t - n, 1, n + 1)
           : t < 4 * n ? fan(n, t, 2 * n + 1, 2 * n + 2)
                       : mantle(n, t, 2 * n + 2, 3 * n + 2);
}

Point rivetVertex(int n, int i) {
    constexpr float kAxis[] = {-0.02f, 0.02f, 0.02f + 0.08f, 1.0f + 0.02f, 1.0f - 0.02f, 0.98f - 0.08f};
    const int j = i / (n + 1), k = i % (n + 1);
    if (k == 0)
        return {0, 0, kAxis[j]};
    return j % 3 == 0 ? onRing(n, k - 1, 1, j == 0 ? 0.0f : 1.0f) : onRing(n, k - 1, 2, kAxis[j]);
}
Triangle rivetTriangle(int n, int t) {
    const auto centre = [n](int j) { return j * (n + 1); };
    const auto cap = [&](int j) { return fan(n, t, centre(j), centre(j) + 1); };
    const auto side = [&](int from, int to) { return band(n, t - 3 * n, centre(from) + 1, centre(to) + 1); };
    const int part = t / n;
    return part < 3   ? cap(part)
           : part < 5 ? side(1, 2)
           : part < 7 ? side(0, 3)
           : part < 9 ? side(5, 4)
                      : cap(14 - part);
}

Point sphereVertex(int, int i) {
    if (i == 0 || i == 1024)
        return {0, i == 0 ? 0.5f : -0.5f, 0};
    const float phi = static_cast<float>((i - 1) / 33 + 1) * 0.09817477f;
    const float lambda = static_cast<float>((i - 1) % 33) * 0.19634955f;
    const float r = 0.5f * std::sin(phi);
    return {r * std::cos(lambda), 0.5f * std::cos(phi), r * std::sin(lambda)};
}
Triangle sphereTriangle(int, int t) {
    if (t < 32)
        return corners(0, t + 2, t + 1);
    if (t >= 1984 - 32)
        return corners(1024, 991 + t - 1952, 992 + t - 1952);
    const int quad = (t - 32) / 2, a = 1 + quad / 32 * 33 + quad % 32;
    return t % 2 == 0 ? corners(a, a + 1, a + 33) : corners(a + 33, a + 1, a + 34);
}

struct ShapeRow {
    const char* name;
    N3DMarker* marker;
    Point (*vertex)(int n, int i);
    Triangle (*triangle)(int n, int t);
    int rings, verticesBeside, trianglesAround, trianglesBeside;

    int vertexCount(int n) const { return rings * n + verticesBeside; }
    int triangleCount(int n) const { return trianglesAround * n + trianglesBeside; }
};

/// By their numbers, from 1 on.
std::vector<ShapeRow> shapeRows() {
    return {{"cylinder", N3DCylinder::GetInstance(), cylinderVertex, cylinderTriangle, 2, 2, 4, 0},
            {"rivet", N3DRivet::GetInstance(), rivetVertex, rivetTriangle, 6, 6, 12, 0},
            {"cone", N3DCone::GetInstance(), coneVertex, coneTriangle, 1, 2, 2, 0},
            {"sphere", N3DSphere::GetInstance(), sphereVertex, sphereTriangle, 0, 1025, 0, 1984},
            {"arrow", N3DArrowOneWay::GetInstance(), arrowVertex, arrowTriangle, 3, 3, 5, 0}};
}

void expectGeometry(const N3DMarker& marker, const ShapeRow& row, int slices) {
    const float* vertices = marker.*Fields::vertices();
    const std::uint32_t* indices = marker.*Fields::indices();
    for (int i = 0; i < marker.*Fields::vertexCount(); ++i)
        ASSERT_EQ((Point{vertices[3 * i], vertices[3 * i + 1], vertices[3 * i + 2]}), row.vertex(slices, i))
            << "vertex " << i;
    for (int t = 0; t < marker.*Fields::triangleCount(); ++t)
        ASSERT_EQ((Triangle{indices[3 * t], indices[3 * t + 1], indices[3 * t + 2]}), row.triangle(slices, t))
            << "triangle " << t;
}

TEST(N3DMarker, ShapesHaveTheirVerticesAndTrianglesInOrder) {
    constexpr int kSlices[] = {16, 8, 4};
    int type = 0;
    for (const ShapeRow& row : shapeRows()) {
        N3DMarker& marker = *row.marker;
        EXPECT_EQ(marker.GetType(), ++type);
        for (const int i : {2, 0, 1}) {
            SCOPED_TRACE(testing::Message() << row.name << ", resolution " << i);
            marker.Begin(nullptr, static_cast<_Render3DMarkerShape>(i));
            EXPECT_EQ(marker.*Fields::vertexCount(), row.vertexCount(kSlices[i]));
            EXPECT_EQ(marker.*Fields::triangleCount(), row.triangleCount(kSlices[i]));
            EXPECT_EQ(marker.*Fields::sliceCount(), type == RENDER_3D_MARKER_SPHERE ? 32 : kSlices[i]);
            expectGeometry(marker, row, kSlices[i]);
        }
    }
}

TEST(N3DMarker, BuildsAnotherResolutionOnly) {
    for (const ShapeRow& row : shapeRows()) {
        SCOPED_TRACE(row.name);
        N3DMarker& marker = *row.marker;
        const bool sphere = marker.GetType() == RENDER_3D_MARKER_SPHERE;
        marker.Begin(nullptr, kUnknown);
        EXPECT_EQ(marker.*Fields::vertices() != nullptr, sphere)
            << "an unknown one of none built is as built";
        marker.Begin(nullptr, kNormal);
        (marker.*Fields::vertices())[0] = 7; // stays where nothing is built
        marker.Begin(nullptr, kNormal);
        EXPECT_EQ((marker.*Fields::vertices())[0], 7);
        marker.Begin(nullptr, kSmooth);
        EXPECT_EQ((marker.*Fields::vertices())[0] == 7, sphere);
        marker.Begin(nullptr, kUnknown);
        EXPECT_EQ(marker.*Fields::vertexCount(), row.vertexCount(0));
        EXPECT_EQ(marker.*Fields::triangleCount(), row.triangleCount(0));
        EXPECT_EQ(marker.*Fields::indices() != nullptr, sphere);
        if (!sphere)
            expectGeometry(marker, row, 0);
        marker.Begin(nullptr, kCoarse);
        EXPECT_EQ(marker.*Fields::triangleCount(), row.triangleCount(4));
    }
    EXPECT_EQ(NHostLiveBlocks(), 10u) << "two arrays a shape";
}

TEST(N3DMarker, CopiesShareTheGeometry) {
    N3DCone& cone = *N3DCone::GetInstance();
    EXPECT_EQ(&cone, N3DCone::GetInstance());
    cone.Begin(nullptr, kCoarse);
    auto* copy = new N3DCone(cone);
    *copy = *copy;
    EXPECT_EQ(copy->*Fields::vertices(), cone.*Fields::vertices());
    EXPECT_EQ(copy->*Fields::indices(), cone.*Fields::indices());
    EXPECT_EQ(NHostLiveBlocks(), 2u);
    delete copy; // and with it the geometry of both
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}

int blocksLeft = 0;

TEST(N3DMarker, WithoutMemoryThereIsNothingUntilThereIsSome) {
    NHostServices services{};
    services.allocate = [](void*, std::size_t bytes, const char*, int) {
        return blocksLeft-- > 0 ? std::malloc(bytes) : nullptr;
    };
    services.release = [](void*, void* block) { std::free(block); };
    ASSERT_EQ(NHostSetServices(&services), 0);
    N3DMarker& arrow = *N3DArrowOneWay::GetInstance();
    for (const int blocks : {0, 1, 2}) { // without, with vertices only, with all
        blocksLeft = blocks;
        arrow.Begin(nullptr, kNormal);
        EXPECT_EQ(arrow.*Fields::vertexCount(), blocks == 2 ? 27 : 0);
        EXPECT_EQ(arrow.*Fields::triangleCount(), blocks == 2 ? 40 : 0);
        EXPECT_EQ(NHostLiveBlocks(), blocks == 2 ? 2u : 0u);
    }
}

} // namespace
