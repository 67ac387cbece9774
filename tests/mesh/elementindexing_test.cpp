// Indices by which each triangle's last vertex carries its number.
#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/mesh/elementindexing.h"

namespace {

/// A sheet of side x side cells in quads, or in two triangles each, which may be of one element.
ElementSurface sheet(std::uint32_t side, bool quads, bool paired) {
    std::vector<double> nodes;
    std::vector<std::uint32_t> corners, elements;
    for (std::uint32_t j = 0; j <= side; ++j)
        for (std::uint32_t i = 0; i <= side; ++i)
            nodes.insert(nodes.end(), {double(i), double(j), 0});
    for (std::uint32_t cell = 0; cell < side * side; ++cell) {
        const std::uint32_t a = cell / side * (side + 1) + cell % side, b = a + 1, c = b + side + 1,
                            d = c - 1;
        corners.insert(corners.end(), quads ? std::initializer_list<std::uint32_t>{a, b, c, d}
                                            : std::initializer_list<std::uint32_t>{a, b, c, a, c, d});
        elements.insert(elements.end(), quads ? 1 : 2, cell + 3);
    }
    const auto count = static_cast<std::uint32_t>(elements.size());
    ngl::NglElementMeshInput input;
    input.nodeCount = static_cast<std::uint32_t>(nodes.size() / 3);
    input.nodes = nodes.data();
    (quads ? input.quadCount : input.triangleCount) = count;
    (quads ? input.quads : input.triangles) = corners.data();
    if (paired)
        (quads ? input.quadElements : input.triangleElements) = elements.data();
    return *makeElementSurface(input);
}

} // namespace

TEST(ElementIndexing, LastVerticesCarryTheNumbers) {
    const std::tuple<bool, bool, ElementNumbering, std::size_t> rows[] = {
        // quads, elements of cells, numbering; most copies for 100 cells and their 121 vertices
        {true, false, ElementNumbering::Elements, 0},
        {true, true, ElementNumbering::Faces, 0},
        {false, true, ElementNumbering::Elements, 0},
        {false, true, ElementNumbering::Faces, 200 - 121 + 2}, // two vertices serve no triangle
        {false, false, ElementNumbering::Elements, 200 - 121 + 2}};
    for (const auto& [quads, paired, numbering, mostCopies] : rows) {
        SCOPED_TRACE(::testing::Message() << quads << paired << static_cast<int>(numbering));
        const ElementSurface surface = sheet(10, quads, paired);
        const ElementIndexing made = makeElementIndexing(surface, numbering);
        const auto all = [](std::uint32_t) { return true; };
        const std::vector<std::uint32_t> plain = triangleIndices(surface, {0, surface.faceCount()}, all);
        ASSERT_EQ(made.indices.size(), plain.size());
        EXPECT_LE(made.copies.size(), mostCopies);
        ASSERT_EQ(made.numbers.size(), surface.positions.size() + made.copies.size());
        for (std::size_t t = 0; t < plain.size(); t += 3) {
            const auto face = static_cast<std::uint32_t>(quads ? t / 6 : t / 3);
            const bool byFace = numbering == ElementNumbering::Faces;
            EXPECT_EQ(made.numbers[made.indices[t + 2]], byFace ? face : surface.elementOf(face));
            // The same corners in the same sense of rotation.
            std::array<std::uint32_t, 3> corners;
            for (std::size_t i = 0; i < 3; ++i) {
                const std::uint32_t vertex = made.indices[t + i];
                corners[i] = vertex < surface.positions.size()
                                 ? vertex
                                 : made.copies[vertex - surface.positions.size()];
            }
            std::rotate(corners.begin(), std::find(corners.begin(), corners.end(), plain[t]), corners.end());
            EXPECT_TRUE(std::equal(corners.begin(), corners.end(), plain.begin() + static_cast<long>(t)));
        }
    }
}
