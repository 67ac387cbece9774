// A finite-element sheet of triangles and quads in an oblique view, its colours and marks, and tiles of
// elements seen from above: what tests of element meshes draw.
#pragma once

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "tests/support/librarytest.h"

namespace nrutest {

using namespace ngl;

inline constexpr NglElementRoute kRoutes[] = {NglElementRouteAutomatic, NglElementRouteMesh,
                                              NglElementRouteGeometry, NglElementRouteFixed};
inline constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// A wavy sheet over -1..1, of 12 x 12 cells: quads, warped ones, and every third cell two triangles of one
/// element. Elements have odd numbers from 5 on.
struct Sheet {
    static constexpr unsigned kSide = 12, kRow = kSide + 1;
    std::vector<double> nodes;
    std::vector<std::uint32_t> triangles, quads, ofTriangles, ofQuads;
    std::vector<float> nodeValues;

    explicit Sheet(double height = 0.06, double offset = 0) {
        for (unsigned j = 0; j < kRow; ++j)
            for (unsigned i = 0; i < kRow; ++i) {
                const double x = 2.0 * i / kSide - 1, y = 2.0 * j / kSide - 1;
                // Multiples of 2^-20, so that an offset of 1e7 changes no distance.
                const double z = std::round(height * std::sin(3 * x) * std::cos(4 * y) * 0x1p20) * 0x1p-20;
                for (const double c : {x, y})
                    nodes.push_back(std::round(c * 0x1p20) * 0x1p-20 + offset);
                nodes.push_back(z + offset);
                nodeValues.push_back(static_cast<float>(0.55 + 0.5 * std::sin(2 * x + 3 * y)));
            }
        for (unsigned cell = 0; cell < kSide * kSide; ++cell) {
            const std::uint32_t a = cell / kSide * kRow + cell % kSide, b = a + 1, c = b + kRow, d = a + kRow;
            if (cell % 3 != 0) {
                quads.insert(quads.end(), {a, b, c, d});
                ofQuads.push_back(5 + 2 * cell);
                continue;
            }
            triangles.insert(triangles.end(), {a, b, c, a, c, d});
            ofTriangles.insert(ofTriangles.end(), 2, 5 + 2 * cell);
        }
    }
    NglElementMeshInput input() const {
        const auto count = [](const auto& list, std::size_t each) {
            return static_cast<std::uint32_t>(list.size() / each);
        };
        return {count(nodes, 3),    nodes.data(),    nullptr,      count(triangles, 3), triangles.data(),
                ofTriangles.data(), count(quads, 4), quads.data(), ofQuads.data()};
    }
};

/// Three bands with a gap behind the first, and colours out of range.
inline RenderColorScale someScale() {
    RenderColorScale scale;
    scale.SetColorBands({{0.1f, 0.3f, 0x2040F0}, {0.4f, 0.6f, 0x30D050}, {0.6f, 0.9f, 0xE06020}});
    scale.SetOutOfRangeMinColor(0xF0F0F0);
    scale.SetOutOfRangeMaxColor(0x8000C0);
    return scale;
}

/// Two lights far away, so that what they give changes little within an element, and other specular colours
/// on the back.
inline void setLights() {
    const float near[4] = {300, 200, 900, 1}, side[4] = {-300, 100, 900, 1}, some[4] = {0.2f, 0.3f, 0.1f, 1},
                much[4] = {0.7f, 0.5f, 0.6f, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, near);
    glLightfv(GL_LIGHT0, GL_AMBIENT, some);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, much);
    glLightfv(GL_LIGHT2, GL_POSITION, side);
    glLightfv(GL_LIGHT2, GL_DIFFUSE, some);
    glLightfv(GL_LIGHT2, GL_SPECULAR, much);
    glMaterialfv(GL_FRONT, GL_SPECULAR, some);
    glMaterialf(GL_FRONT, GL_SHININESS, 2);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHT2);
}

/// An oblique view of the square -1..1, whose edges meet no pixel's centre.
class ElementMesh : public LibraryTest {
protected:
    void SetUp() override {
        LibraryTest::SetUp();
        setLights();
        look(0);
        ASSERT_EQ(mesh.Create(sheet.input()), 0);
    }
    void TearDown() override {
        mesh.Clear();
        LibraryTest::TearDown();
    }
    static void look(double offset, double turnDeg = 25) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-1.21, 1.13, -1.17, 1.19, -4, 4);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glRotated(turnDeg, 0.8, 0.6, 0);
        NglUpdateNglInfo();
        _NglInfoStr& record = *NglGetNglInfo();
        // What the host's own double-precision view is, of which GL keeps a rounded copy.
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < 3; ++i)
                record.modelView[3][k] -= record.modelView[i][k] * offset;
        glLoadMatrixd(record.modelView[0]);
    }
    Picture draw(NglElementMesh& drawn, const NglElementAttributes& how) {
        clear();
        drawn.SetAttributes(how);
        EXPECT_EQ(drawn.Draw(), 0);
        return read();
    }
    Picture draw(const NglElementAttributes& how) { return draw(mesh, how); }

    const Sheet sheet;
    const RenderColorScale scale = someScale();
    NglElementMesh mesh;
};

/// Changes of a mesh, for rows of cases.
inline void nodeContour(NglElementMesh& mesh) {
    const RenderColorScale scale = someScale();
    mesh.SetColorScale(&scale);
    mesh.SetNodeValues(Sheet().nodeValues.data());
}

inline void smearedContour(NglElementMesh& mesh) {
    nodeContour(mesh);
    RenderColorScale scale = someScale();
    scale.SetSmearedMode(true);
    mesh.SetColorScale(&scale);
}

inline void elementContour(NglElementMesh& mesh) {
    nodeContour(mesh);
    std::vector<float> values(mesh.ElementCount());
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i % 17 == 0 ? kNan : static_cast<float>(i % 29) / 26;
    mesh.SetElementValues(values.data());
}

inline void markSome(NglElementMesh& mesh) {
    const std::uint32_t some[] = {5, 11, 47, 101, 201};
    mesh.SetVisible(NglElements::Range(60, 30), false);
    mesh.SetSelection(NglElements::List(some, 5), NglElementSelected);
    mesh.SetSelection(NglElements::Range(75, 9), NglElementHighlighted);
    mesh.SetColor(NglElements::Range(40, 100), 0x40C0E0);
    mesh.ClearColors(NglElements::Range(110, 10));
}

/// Nodes have copies, to carry the numbers of elements or, with a small angle, for their normals.
inline void markedContour(NglElementMesh& mesh, double creaseDeg) {
    const Sheet sheet;
    NglElementMeshInput input = sheet.input();
    input.creaseDeg = creaseDeg;
    input.triangleElements = nullptr;
    mesh.Create(input);
    nodeContour(mesh);
    markSome(mesh);
}

inline void setLevels(NglElementMesh& mesh) {
    for (std::uint32_t e = 0; e < mesh.ElementCount(); ++e) {
        mesh.SetClipCode(NglElements::One(e), static_cast<int>(e / 2 % 5));
        mesh.SetFailureLevel(NglElements::One(e), static_cast<int>(e % 11) - 1, static_cast<int>(e % 7) - 1);
    }
}

/// Tiles of 8 x 8 pixels, in rows of eight from the bottom up: each an element of its own.
class ElementTiles : public ElementMesh {
protected:
    void SetUp() override {
        ElementMesh::SetUp();
        std::vector<double> nodes;
        std::vector<std::uint32_t> quads;
        for (std::uint32_t i = 0; i < 64; ++i)
            for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
                quads.push_back(static_cast<std::uint32_t>(nodes.size() / 3));
                nodes.insert(nodes.end(), {(i % 8 + x) / 4.0 - 1, (i / 8 + y) / 4.0 - 1, 0});
            }
        NglElementMeshInput input;
        input.nodeCount = 256;
        input.nodes = nodes.data();
        input.quadCount = 64;
        input.quads = quads.data();
        ASSERT_EQ(mesh.Create(input), 0);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        NglUpdateNglInfo();
        NglSetSelectionColor(kSelected);
        NglSetHighlightColor(kHighlighted);
        how.lit = false;
        how.color = kPlain;
    }
    static std::uint32_t middle(const Picture& picture, std::uint32_t tile) {
        return picture.at(tile % 8 * 8 + 4, tile / 8 * 8 + 4);
    }

    static constexpr std::uint32_t kSelected = 0xFF0010F0, kHighlighted = 0xFFE0A000, kPlain = 0xFF809080;
    NglElementAttributes how;
};

} // namespace nrutest
