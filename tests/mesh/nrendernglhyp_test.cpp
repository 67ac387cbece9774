// Glyph meshes by the formulas of their surfaces and by counting.
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"

namespace {

struct Destroy {
    void operator()(_NgMeshStr* mesh) const {
        NglDestroyMesh(mesh);
        NHostFree(mesh);
    }
};
using Mesh = std::unique_ptr<_NgMeshStr, Destroy>;

using Element = std::vector<std::uint32_t>;

std::vector<Element> elementsOf(const _NgMeshStr& mesh) {
    std::vector<Element> elements;
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next)
        for (std::uint32_t e = 0; e < block->elementCount; ++e) {
            const std::uint32_t* first = block->indices + std::size_t{e} * block->verticesPerElement;
            elements.emplace_back(first, first + block->verticesPerElement);
        }
    return elements;
}

/// How often the elements go along each edge, in its direction.
std::map<std::pair<std::uint32_t, std::uint32_t>, int> edgesOf(const _NgMeshStr& mesh) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (const Element& e : elementsOf(mesh))
        for (std::size_t i = 0; i < e.size(); ++i)
            ++edges[{e[i], e[(i + 1) % e.size()]}];
    return edges;
}

struct Shape {
    double a, b, c;
    int n, resolution;
};

TEST(HyperEllipsoid, IsClosedAndObeysItsEquationWithTheGradientAsNormal) {
    const Shape shapes[] = {{1, 1, 1, 2, 8},    {3, 2, 0.5, 2, 32},    {100, 50, 25, 3, 20}, {1, 2, 3, 5, 17},
                            {-2, 3, -4, 8, 12}, {1e-3, 1e3, 1, 4, 64}, {7, 7, 7, 200, 24}};
    for (const Shape& s : shapes) {
        SCOPED_TRACE(::testing::Message() << s.a << ", " << s.b << ", " << s.c << ", " << s.n);
        const Mesh mesh(ngl_hyper_ellipsoid(s.a, s.b, s.c, s.n, s.resolution));
        const int q = std::max(s.resolution / 4, 2), count = (2 * q - 1) * 4 * q + 2;
        ASSERT_TRUE(mesh);
        ASSERT_EQ(mesh->vertexCount, count);
        const auto edges = edgesOf(*mesh);
        for (const auto& [edge, times] : edges)
            ASSERT_TRUE(times == 1 && edges.contains({edge.second, edge.first})) << "open";
        EXPECT_EQ(count - edges.size() / 2 + elementsOf(*mesh).size(), 2u);
        const double axes[3] = {std::abs(s.a), std::abs(s.b), std::abs(s.c)};
        for (int v = 0; v < count; ++v) {
            const double *p = mesh->coords + 3 * v, *normal = mesh->normals + 3 * v;
            double value = 0, gradient[3], length = 0;
            for (int k = 0; k < 3; ++k) {
                const double ratio = std::abs(p[k]) / axes[k];
                value += std::pow(ratio, s.n);
                gradient[k] = std::copysign(std::pow(ratio, s.n - 1) / axes[k], p[k]);
                length = std::hypot(length, gradient[k]);
            }
            EXPECT_NEAR(value, 1, 1e-12 * s.n) << "vertex " << v;
            for (int k = 0; k < 3; ++k)
                ASSERT_NEAR(normal[k], gradient[k] / length, 1e-10 * s.n) << "vertex " << v << ", " << k;
        }
    }
}

TEST(HyperEllipsoid, FlatOnesKeepFiniteNormals) {
    for (const Shape& s :
         {Shape{1, 1, 0, 2, 8}, {0, 2, 0, 3, 8}, {0, 0, 0, 2, 8}, {1e300, 1e-300, 1, 9, 16}}) {
        const Mesh mesh(ngl_hyper_ellipsoid(s.a, s.b, s.c, s.n, s.resolution));
        for (const double* n = mesh->normals; n < mesh->normals + 3 * mesh->vertexCount; n += 3)
            EXPECT_NEAR(std::hypot(n[0], n[1], n[2]), 1, 1e-12) << s.a;
    }
}

TEST(EllipticMesh, FillsItsOutlineWithRings) {
    const std::tuple<double, double, int, int, int> rows[] = {
        {1, 1, 2, 8, 1}, {5, 3, 2, 30, 4}, {-2, 4, 2, 64, 2}, {2, 3, 6, 16, 3}};
    for (const auto& [a, b, n, resolution, rings] : rows) {
        SCOPED_TRACE(::testing::Message() << a << ", " << b << ", " << n);
        double axes[2] = {a, b};
        _NgMeshStr* made = nullptr;
        ASSERT_EQ(ngl_create_elliptic_mesh(n, resolution, rings, axes, &made), 0);
        const Mesh mesh(made);
        const std::uint32_t m = resolution / 4 * 4, outer = (rings - 1) * m;
        ASSERT_EQ(mesh->vertexCount, rings * static_cast<int>(m) + 1);
        EXPECT_EQ(mesh->blocks->elementCount, m);
        double area = 0;
        std::uint32_t sides = 0;
        const auto edges = edgesOf(*mesh);
        for (const auto& [edge, times] : edges) {
            EXPECT_EQ(times, 1);
            if (edges.contains({edge.second, edge.first}))
                continue;
            const double *p = mesh->coords + 3 * edge.first, *q = mesh->coords + 3 * edge.second;
            area += (p[0] * q[1] - q[0] * p[1]) / 2;
            EXPECT_NEAR(std::pow(std::abs(p[0] / a), n) + std::pow(std::abs(p[1] / b), n), 1, 1e-12);
            EXPECT_EQ(edge.second, outer + (edge.first - outer + 1) % m);
            ++sides;
        }
        EXPECT_EQ(sides, m) << "the border is the outer ring";
        EXPECT_TRUE(n != 2 || std::abs(area - std::abs(a * b) * m / 2 * std::sin(2 * M_PI / m)) < 1e-12 * m);
        EXPECT_EQ(mesh->coords[3 * outer + 3 * m], 0) << "the centre comes last";
        EXPECT_NEAR(mesh->coords[0], std::abs(a) / rings, 1e-15);
        EXPECT_EQ(mesh->normals[2], 1);
    }
}

TEST(Glyphs, AreRefused) {
    const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
    const int huge = std::numeric_limits<int>::max();
    const Shape shapes[] = {{1, 1, 1, 1, 8},    {1, 1, 1, -2, 8},   {nan, 1, 1, 2, 8},   {1, inf, 1, 2, 8},
                            {1, 1, -inf, 2, 8}, {1, 1, 1, 2, huge}, {1, 1, 1, 2, 131072}};
    for (const Shape& s : shapes)
        EXPECT_EQ(ngl_hyper_ellipsoid(s.a, s.b, s.c, s.n, s.resolution), nullptr)
            << s.n << " " << s.resolution;
    double axes[2] = {1, nan};
    _NgMeshStr* mesh = nullptr;
    EXPECT_EQ(ngl_create_elliptic_mesh(1, 8, 1, nullptr, &mesh), -1);
    EXPECT_EQ(ngl_create_elliptic_mesh(2, 8, 0, nullptr, &mesh), -1);
    EXPECT_EQ(ngl_create_elliptic_mesh(2, huge, huge, nullptr, &mesh), -1);
    EXPECT_EQ(ngl_create_elliptic_mesh(2, 8, 1, axes, &mesh), -1);
    EXPECT_EQ(ngl_create_elliptic_mesh(2, 8, 1, nullptr, nullptr), -1);
    EXPECT_EQ(mesh, nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}

TEST(Glyphs, GiveEverythingBackWhenMemoryRunsOut) {
    static int left;
    NHostServices services{};
    services.allocate = [](void*, std::size_t bytes, const char*, int) {
        return left-- > 0 ? std::malloc(bytes) : nullptr;
    };
    services.release = [](void*, void* block) { std::free(block); };
    ASSERT_EQ(NHostSetServices(&services), 0);
    int failures = 0;
    for (int allowed = 0; allowed < 20; ++allowed) {
        left = allowed;
        const Mesh closed(ngl_hyper_ellipsoid(1, 2, 3, 2, 8));
        EXPECT_TRUE(closed ? elementsOf(*closed).size() == 32 : NHostLiveBlocks() == 0) << allowed;
        failures += !closed;
        const std::size_t before = NHostLiveBlocks();
        _NgMeshStr* flat = nullptr;
        left = allowed;
        ngl_create_elliptic_mesh(2, 8, 2, nullptr, &flat);
        const Mesh planar(flat);
        EXPECT_TRUE(flat ? elementsOf(*flat).size() == 16 : NHostLiveBlocks() == before) << allowed;
    }
    EXPECT_EQ(failures, 13) << "blocks that a glyph takes: powers, 2 arrays, the record, 3 for each block";
}

} // namespace
