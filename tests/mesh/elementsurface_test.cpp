// The surface of an element mesh: what is refused, and which corners share a normal.
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/mesh/elementsurface.h"
#include "tests/mesh/testmesh.h"

using namespace nrutest;
using ngl::NglElementMeshInput;

namespace {

/// One triangle and, from node 1 to node 2, one quad.
struct Pair {
    std::vector<double> nodes = {0, 0, 0, 1, 0, 0, 1, 2, 0, 4, 0, 0, 4, 2, 0};
    std::vector<std::uint32_t> triangles = {0, 1, 2}, quads = {1, 3, 4, 2}, triangleElements, quadElements;
    std::uint32_t elementCount = 0;
    NglElementMeshInput input() const {
        const auto orNull = [](const std::vector<std::uint32_t>& v) {
            return v.empty() ? nullptr : v.data();
        };
        return {5,           nodes.data(),     nullptr,
                1,           triangles.data(), orNull(triangleElements),
                1,           quads.data(),     orNull(quadElements),
                elementCount};
    }
};

double degBetween(const ElementSurface::Vector& a, const ElementSurface::Vector& b) {
    const double cosine = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    return std::acos(std::min(1.0, std::max(-1.0, cosine))) * 180 / M_PI;
}

} // namespace

TEST(ElementSurface, NumbersElements) {
    const std::tuple<std::vector<std::uint32_t>, std::vector<std::uint32_t>, std::uint32_t, std::uint32_t,
                     std::uint32_t>
        rows[] = {{{}, {}, 0, 1, 2}, {{5}, {}, 0, 1, 6}, {{}, {7}, 0, 7, 8}, {{3}, {3}, 9, 3, 9}};
    for (const auto& [triangle, quad, given, ofQuad, count] : rows) {
        Pair pair;
        pair.triangleElements = triangle;
        pair.quadElements = quad;
        pair.elementCount = given;
        const auto surface = makeElementSurface(pair.input());
        ASSERT_TRUE(surface);
        EXPECT_EQ(surface->elementOf(0), triangle.empty() ? 0 : triangle[0]);
        EXPECT_EQ(surface->elementOf(1), ofQuad);
        EXPECT_EQ(surface->elementCount, count);
        EXPECT_EQ(surface->origin, (std::array{2.0, 1.0, 0.0})) << "the middle";
    }
}

TEST(ElementSurface, RefusesWhatIsNotInOrder) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::tuple<const char*, std::function<void(Pair&, NglElementMeshInput&)>> rows[] = {
        {"NaN", [](Pair& p, auto&) { p.nodes[7] = std::nan(""); }},
        {"infinity", [](Pair& p, auto&) { p.nodes[14] = -kInfinity; }},
        {"wider than single precision", [](Pair& p, auto&) { p.nodes[0] = 1e39; }},
        {"node of a triangle", [](Pair& p, auto&) { p.triangles[2] = 5; }},
        {"node of a quad", [](Pair& p, auto&) { p.quads[3] = 0xFFFFFFFF; }},
        {"no nodes", [](Pair&, auto& in) { in.nodes = nullptr; }},
        {"no triangles", [](Pair&, auto& in) { in.triangles = nullptr; }},
        {"no quads", [](Pair&, auto& in) { in.quads = nullptr; }},
        {"element of a quad", [](Pair&, auto& in) { in.elementCount = 1; }},
        {"element beyond all counts", [](Pair& p, auto& in) {
             p.triangleElements = {0xFFFFFFFF};
             in.triangleElements = p.triangleElements.data();
         }}};
    for (const auto& [name, breakIt] : rows) {
        Pair pair;
        NglElementMeshInput input = pair.input();
        breakIt(pair, input);
        EXPECT_FALSE(makeElementSurface(input)) << name;
    }
    NglElementMeshInput large = Pair().input();
    large.triangleCount = 0xFFFFFFFF;
    EXPECT_THROW(makeElementSurface(large), std::bad_alloc);
    EXPECT_TRUE(makeElementSurface({})) << "an empty surface is one";
}

TEST(ElementSurface, SplitsNormalsAtCreases) {
    // The quad folded about the edge from node 1 to node 2, or wound the other way.
    const std::tuple<double, double, bool, unsigned> rows[] = {
        // fold, crease angle, turned; copies
        {0, 0, false, 0},     {29, 30, false, 0},  {31, 30, false, 2}, {31, 30, true, 2},
        {0, 30, true, 2},     {20, 30, true, 2},   {80, 90, false, 0}, {100, 90, false, 2},
        {150, 160, false, 0}, {179, 180, false, 0}};
    for (const auto& [foldDeg, creaseDeg, turned, copies] : rows) {
        SCOPED_TRACE(::testing::Message() << foldDeg << " at " << creaseDeg << ", turned " << turned);
        Pair pair;
        const double fold = foldDeg * M_PI / 180;
        for (const int node : {3, 4}) {
            pair.nodes[3 * node] = 1 + 3 * std::cos(fold);
            pair.nodes[3 * node + 2] = -3 * std::sin(fold);
        }
        if (turned)
            std::swap(pair.quads[1], pair.quads[3]);
        NglElementMeshInput input = pair.input();
        input.creaseDeg = creaseDeg;
        const auto surface = makeElementSurface(input);
        ASSERT_TRUE(surface);
        EXPECT_EQ(surface->copiedNodes.size(), copies);
        EXPECT_EQ(surface->positions.size(), 5 + copies);
        EXPECT_EQ(surface->normals.size(), 5 + copies);
        const auto quad = surface->face(1), triangle = surface->face(0);
        EXPECT_EQ(surface->nodeOf(quad[0]), 1u);
        EXPECT_EQ(surface->positions[quad[0]], surface->positions[1]);
        // Shared: the mean of areas 1 and 6 (the quad is six times the triangle); split: each its own, or
        // the same one from both sides where the quad is only turned over.
        const bool smooth = foldDeg <= creaseDeg;
        const double mean = std::atan2(6 * std::sin(fold), 1 + 6 * std::cos(fold)) * 180 / M_PI;
        EXPECT_NEAR(degBetween(surface->normals[triangle[1]], {0, 0, 1}), smooth ? mean : 0, 0.05);
        const double between = smooth ? 0 : foldDeg;
        EXPECT_NEAR(degBetween(surface->normals[triangle[1]], surface->normals[quad[0]]),
                    turned ? 180 - between : between, 0.05);
    }
}

// A cone of 45 degrees: at its tip the mean of the faces within the crease angle leans to the axis; of very
// many faces each keeps its own normal.
TEST(ElementSurface, DoesNotCompareVeryManyFacesAtOneNode) {
    for (const std::uint32_t count : {500u, 1500u}) {
        std::vector<double> nodes = {0, 0, 1};
        std::vector<std::uint32_t> faces;
        for (std::uint32_t i = 0; i < count; ++i) {
            const double angle = 2 * M_PI * i / count;
            nodes.insert(nodes.end(), {std::cos(angle), std::sin(angle), 0});
            faces.insert(faces.end(), {0, i + 1, (i + 1) % count + 1});
        }
        NglElementMeshInput input{count + 1, nodes.data(), nullptr, count, faces.data()};
        const auto surface = makeElementSurface(input);
        ASSERT_TRUE(surface);
        const double angle = M_PI / count, part = std::sqrt(0.5);
        const ElementSurface::Vector first = {static_cast<float>(part * std::cos(angle)),
                                              static_cast<float>(part * std::sin(angle)),
                                              static_cast<float>(part)};
        const double leaning = degBetween(surface->normals[surface->face(0)[0]], first);
        if (count == 500)
            EXPECT_GT(leaning, 1);
        else
            EXPECT_LT(leaning, 0.05);
    }
}

TEST(ElementSurface, ToleratesFacesWithoutArea) {
    // A cube of quads, with a triangle that is a line and one that is a point on its corners.
    const std::vector<double> coords = cubeCoords();
    const std::vector<std::uint32_t> quads = cubeQuads().indices, degenerate = {0, 1, 1, 6, 6, 6};
    NglElementMeshInput input{8, coords.data(), nullptr, 2, degenerate.data(), nullptr, 6, quads.data()};
    const auto surface = makeElementSurface(input);
    ASSERT_TRUE(surface);
    EXPECT_EQ(surface->copiedNodes.size(), 16u) << "three normals at each of eight nodes";
    for (std::uint32_t face = 2; face < 8; ++face)
        for (const std::uint32_t vertex : surface->face(face)) {
            const auto& first = surface->normals[surface->face(face)[0]];
            EXPECT_EQ(surface->normals[vertex], first);
            EXPECT_FLOAT_EQ(std::abs(first[0] + first[1] + first[2]), 1.0f);
        }
    input.quadCount = 0;
    EXPECT_EQ(makeElementSurface(input)->normals[0], (ElementSurface::Vector{0, 0, 1}));
    input = {8, coords.data(), nullptr, 0, nullptr, nullptr, 6, quads.data(), nullptr, 0, 180};
    EXPECT_TRUE(makeElementSurface(input)->copiedNodes.empty());
}
