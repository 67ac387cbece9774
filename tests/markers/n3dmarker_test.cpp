// The geometry of the 3D marker shapes, by the areas and fluxes of the surfaces that they are made of, and
// when it is built.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>
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

/// A surface about the axis, from a radius and height to another, that looks outward or, by its sign, inward.
struct Part {
    double r0, z0, r1, z1, sign;
};

/// What the triangles of a shape add up to.
struct Measure {
    int triangles = 0;
    double area = 0, flux = 0; ///< of the position through the surface

    void add(const Part& part, int n) {
        const auto& [r0, z0, r1, z1, sign] = part;
        const double half = M_PI / n, polygon = n / 2.0 * std::sin(2 * half);
        triangles += r1 == 0 || r0 == 0 ? n : 2 * n;
        area += n * std::sin(half) * (r0 + r1) * std::hypot(z1 - z0, (r1 - r0) * std::cos(half));
        const double volume = (z1 - z0) * (r0 * r0 + r0 * r1 + r1 * r1);
        flux += sign * polygon * (volume - z1 * r1 * r1 + z0 * r0 * r0);
    }
};

std::vector<Part> sphereParts() {
    std::vector<Part> parts;
    for (int i = 0; i < 32; ++i) {
        const double from = M_PI * i / 32, to = M_PI * (i + 1) / 32;
        parts.push_back({std::sin(from) / 2, -std::cos(from) / 2, std::sin(to) / 2, -std::cos(to) / 2, 1});
    }
    parts.front().r0 = parts.back().r1 = 0;
    return parts;
}

struct ShapeRow {
    const char* name;
    N3DMarker* marker;
    int ringsOfVertices, otherVertices;
    std::vector<Part> parts;

    int vertexCount(int n) const { return ringsOfVertices * n + otherVertices; }
    Measure expected(int n) const {
        Measure sum;
        for (const Part& part : parts)
            sum.add(part, marker->GetType() == RENDER_3D_MARKER_SPHERE ? 32 : n);
        return sum;
    }
};

/// By their numbers, from 1 on. Discs look up the axis, walls inward and the sphere outward: light takes the
/// position for the normal.
std::vector<ShapeRow> shapeRows() {
    constexpr double kRim = 0.02, kHead = 0.08;
    return {
        {"cylinder", N3DCylinder::GetInstance(), 2, 2, {{1, 0, 0, 0, 1}, {1, 0, 1, 1, -1}, {1, 1, 0, 1, 1}}},
        {"rivet",
         N3DRivet::GetInstance(),
         6,
         6,
         {{1, 0, 0, -kRim, 1},
          {2, kRim, 0, kRim, 1},
          {2, kRim + kHead, 0, kRim + kHead, 1},
          {2, kRim, 2, kRim + kHead, -1},
          {1, 0, 1, 1, -1},
          {2, 1 - kRim - kHead, 2, 1 - kRim, -1},
          {2, 1 - kRim - kHead, 0, 1 - kRim - kHead, 1},
          {2, 1 - kRim, 0, 1 - kRim, 1},
          {1, 1, 0, 1 + kRim, 1}}},
        {"cone", N3DCone::GetInstance(), 1, 2, {{1, 0, 0, 0, 1}, {1, 0, 0, 1, -1}}},
        {"sphere", N3DSphere::GetInstance(), 0, 1025, sphereParts()},
        {"arrow",
         N3DArrowOneWay::GetInstance(),
         3,
         3,
         {{1, 0, 0, 0, 1}, {1, 0, 1, 0.6, -1}, {2, 0.6, 0, 0.6, 1}, {2, 0.6, 0, 1, -1}}}};
}

void expectGeometry(const N3DMarker& marker, const ShapeRow& row, int slices) {
    EXPECT_EQ(marker.*Fields::vertexCount(), row.vertexCount(slices));
    Measure sum{marker.*Fields::triangleCount()};
    for (int t = 0; t < sum.triangles; ++t) {
        glm::dvec3 p[3];
        for (int i = 0; i < 3; ++i) {
            const std::uint32_t vertex = (marker.*Fields::indices())[3 * t + i];
            ASSERT_LT(vertex, std::uint32_t(row.vertexCount(slices)));
            p[i] = glm::dvec3(glm::make_vec3(marker.*Fields::vertices() + 3 * vertex));
        }
        const glm::dvec3 normal = cross(p[1] - p[0], p[2] - p[0]) / 2.0;
        sum.area += length(normal);
        sum.flux += dot(p[0], normal);
    }
    const Measure expected = row.expected(slices);
    EXPECT_EQ(sum.triangles, expected.triangles);
    EXPECT_NEAR(sum.area, expected.area, 1e-6 * expected.area);
    EXPECT_NEAR(sum.flux, expected.flux, 1e-6 * expected.area);
}

TEST(N3DMarker, ShapesHaveTheirVerticesAndSurfaces) {
    constexpr int kSlices[] = {16, 8, 4};
    int type = 0;
    for (const ShapeRow& row : shapeRows()) {
        N3DMarker& marker = *row.marker;
        EXPECT_EQ(marker.GetType(), ++type);
        for (const int i : {2, 0, 1}) {
            SCOPED_TRACE(testing::Message() << row.name << ", resolution " << i);
            marker.Begin(nullptr, static_cast<_Render3DMarkerShape>(i));
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
        EXPECT_EQ(marker.*Fields::triangleCount(), sphere ? 1984 : 0);
        EXPECT_EQ(marker.*Fields::indices() != nullptr, sphere);
        marker.Begin(nullptr, kCoarse);
        if (!sphere)
            expectGeometry(marker, row, 4);
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
