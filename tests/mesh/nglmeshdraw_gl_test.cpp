// Mesh drawing by its pixels, and the GL state it leaves.
#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "tests/mesh/testmesh.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"

using namespace nrutest;

namespace {

constexpr std::uint32_t kRed = 0xFF0000FF, kGreen = 0xFF00FF00;

/// The square -1..1 at z = 0 in two quads that meet at x = 0, facing +z.
const struct {
    std::vector<double> coords = {-1, -1, 0, 0, -1, 0, 0, 1, 0, -1, 1, 0, 1, -1, 0, 1, 1, 0};
    std::vector<double> normals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    TestBlock quads{4, {0, 1, 2, 3, 1, 4, 5, 2}};
} sheet;

/// A view along -z of the square -2..2, red lines, and a light at the eye that makes faces lit from the front
/// green, and blue from behind; unlit faces are red.
class NglMeshDraw : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        glMatrixMode(GL_PROJECTION);
        glOrtho(-2, 2, -2, 2, -4, 4);
        glMatrixMode(GL_MODELVIEW);
        glEnable(GL_DEPTH_TEST);
        glEnable(GL_LIGHT0);
        const float black[4] = {0, 0, 0, 1}, green[4] = {0, 1, 0, 1}, blue[4] = {0, 0, 1, 1};
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, black);
        glMaterialfv(GL_FRONT, GL_DIFFUSE, green);
        glMaterialfv(GL_BACK, GL_DIFFUSE, blue);
        glColor3f(1, 0, 0);
        NglGetNglInfo()->pushDelta = {0, 0, 0.0625};
    }
    Picture draw(_NgMeshStr* drawn, unsigned flags, float* values = nullptr) {
        clear();
        values ? ngl_mesh_contour_draw(drawn, flags, values) : ngl_mesh(drawn, flags);
        return read();
    }
    void turn(double angleDeg) {
        glLoadIdentity();
        glRotated(angleDeg, 0, 1, 0);
    }

    const TestMesh mesh{sheet.coords, {sheet.quads}, sheet.normals};
};

int count(const Picture& picture, std::uint32_t color) {
    return picture.width() * picture.height() - picture.countOtherThan(color);
}

/// Whether the sheet's inner edge, at x = 0, is seen: on column 31 or 32.
bool isMiddleLine(const Picture& p) {
    return p.at(31, 32) == kRed || p.at(32, 32) == kRed;
}

} // namespace

TEST_F(NglMeshDraw, FlagsChooseWhatIsDrawn) {
    const std::tuple<unsigned, int, bool, bool, bool> rows[] = {
        // flags and optimized mode; whether faces, the inner edge and the outline are seen
        {0, 0, false, true, true},    {1, 0, false, true, true},   {0x100, 0, false, true, true},
        {2, 0, true, false, false},   {3, 0, true, true, true},    {4, 0, false, false, true},
        {8, 0, false, false, true},   {16, 0, false, false, true}, {6, 0, true, false, true},
        {32, 0, false, false, false}, {33, 0, false, true, true},  {34, 0, true, false, false},
        {36, 0, false, false, true},  {0, 1, false, false, true},  {2, 1, false, false, true}};
    for (const auto& [flags, optimized, faces, middle, outline] : rows) {
        SCOPED_TRACE(flags);
        NglSetOptimizedDisplayMode(optimized);
        const Picture p = draw(mesh, flags);
        EXPECT_EQ(p.at(24, 32) == kGreen, faces);
        EXPECT_EQ(isMiddleLine(p), middle);
        EXPECT_EQ(p.at(24, 15) == kRed || p.at(24, 16) == kRed, outline);
        EXPECT_EQ(count(p, kClear) + count(p, kRed) + count(p, kGreen), kSize * kSize);
    }
    NglSetOptimizedDisplayMode(0);
    EXPECT_EQ(count(draw(TestMesh({}, {}), 7), kClear), kSize * kSize) << "an empty mesh";
}

TEST_F(NglMeshDraw, OffsetsEdgesOverFacesAndCountsThePush) {
    // Lines of a sheet that lies exactly in its own faces, seen through a depth test that hides equal depths.
    glDepthFunc(GL_LESS);
    draw(mesh, 2);
    nglRecord().matricesCurrent = 1;
    ngl_mesh(mesh, 1); // without faces nothing pulls the lines: they stay behind
    EXPECT_EQ(nglRecord().matricesCurrent, 1);
    EXPECT_FALSE(isMiddleLine(read()));
    ngl_mesh(mesh, 33);
    EXPECT_EQ(nglRecord().matricesCurrent, 0);
    EXPECT_EQ(nglRecord().live.viewPushCount, 0);
    EXPECT_TRUE(isMiddleLine(read()));
    // The delta points to the viewer, wherever the mesh is turned.
    turn(180);
    NglGetNglInfo()->pushDelta = {0, 0, -0.0625};
    EXPECT_TRUE(isMiddleLine(draw(mesh, 3)));
    std::fill_n(mesh->edgeWeights, mesh->edgeCount, 0.0);
    EXPECT_TRUE(isMiddleLine(draw(mesh, 6)));
}

TEST_F(NglMeshDraw, DrawsSilhouettesWhereTheSurfaceTurnsAway) {
    // The right quad bent back by 28 degrees: a smooth inner edge, seen where one quad faces away.
    mesh->coords[12 + 2] = mesh->coords[15 + 2] = -std::tan(28 * M_PI / 180);
    const std::pair<double, bool> rows[] = {{0, false}, {76, true}, {-76, false}, {-104, true}, {104, false}};
    for (const auto& [angleDeg, isSilhouette] : rows) {
        turn(angleDeg);
        EXPECT_EQ(isMiddleLine(draw(mesh, 4)), isSilhouette) << angleDeg << " degrees";
        EXPECT_TRUE(isMiddleLine(draw(mesh, 1))) << angleDeg << " degrees";
    }
    std::fill_n(mesh->edgeWeights, mesh->edgeCount, 0.0);
    EXPECT_TRUE(isMiddleLine(draw(mesh, 4))) << "the weight alone makes a silhouette";
}

TEST_F(NglMeshDraw, ShadesFlatOrSmooth) {
    // The normal of the first vertex faces the light, the others are turned away by 60 degrees: cosine 0.5.
    for (int i = 3; i < 18; i += 3) {
        mesh->normals[i] = std::sqrt(0.75);
        mesh->normals[i + 2] = 0.5;
    }
    const Picture smooth = draw(mesh, 2);
    EXPECT_EQ(smooth.at(40, 32), 0xFF008000u) << hex(smooth.at(40, 32));
    EXPECT_GT(smooth.at(17, 17) >> 8 & 0xFF, 0xE0u);
    EXPECT_EQ(count(draw(mesh, 34), kGreen), 32 * 32);
    // From behind, two-sided lighting takes the other material and the opposite normal.
    turn(180);
    EXPECT_EQ(count(draw(mesh, 34), 0xFFFF0000u), 32 * 32);
}

TEST_F(NglMeshDraw, ScaledPath) {
    NglGetNglInfo()->pushDelta = {0, 0, 0}; // the offset of this path comes from the live view
    const std::tuple<double, unsigned, std::uint32_t> rows[] = {
        {1, 2, kGreen}, {-1, 2, 0xFF000000}, {0.5, 2, 0xFF008000}, {1, 34, kRed}, {1, 3, kGreen}};
    for (const auto& [factor, flags, color] : rows) {
        SCOPED_TRACE(::testing::Message() << "factor " << factor << ", flags " << flags);
        NglSetMeshScaleFactor(factor);
        glShadeModel(GL_FLAT); // hosts rely on the shade model that this path leaves
        const GlSnapshot expected = GlSnapshot::take();
        glShadeModel(GL_SMOOTH);
        const Picture p = draw(mesh, flags);
        EXPECT_TRUE(expected.equals(GlSnapshot::take()));
        EXPECT_EQ(p.at(24, 32), color);
        EXPECT_EQ(color == kGreen && isMiddleLine(p), flags == 3);
    }
}

TEST_F(NglMeshDraw, ContourTakesItsColorsFromTheTexture) {
    // Values 0..1 along x on four texels, so that the boundaries of the bands lie at known columns.
    const std::uint32_t bands[4] = {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0};
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_1D, filter, GL_NEAREST);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, bands);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnable(GL_TEXTURE_1D);
    float values[6] = {0, 0.5f, 0.5f, 0, 1, 1};
    for (const unsigned flags : {2u, 3u, 1u, 6u}) {
        const Picture p = draw(mesh, flags, values);
        for (int x = 17; x < 47; ++x) {
            const std::uint32_t expected = bands[(x - 16) / 8];
            const bool onInnerEdge = (flags & 1) && (x == 31 || x == 32);
            EXPECT_TRUE(!(flags & 2) || onInnerEdge || p.at(x, 32) == expected) << "column " << x;
            EXPECT_TRUE(flags == 2 || p.at(x, 15) == expected || p.at(x, 16) == expected) << "edge at " << x;
        }
    }
    // The scaled path sends no values: faces and edges take the current coordinate, that of the first band.
    NglSetMeshScaleFactor(1);
    const Picture scaled = draw(mesh, 3, values);
    EXPECT_GE(count(scaled, bands[0]), 32 * 32);
    EXPECT_EQ(count(scaled, bands[0]) + count(scaled, kClear), kSize * kSize);
    ngl_mesh_contour_draw(mesh, 3, nullptr);
    EXPECT_TRUE(samePicture(read(), scaled)) << "without values nothing is drawn";
}

TEST_F(NglMeshDraw, LeavesOutElementsWithForeignIndices) {
    const TestMesh bad(
        sheet.coords,
        {{4, {6, 0, 1, 2, 0, 1, 2, 3, 0, 1, 0xFFFFFFFF, 2, 1, 4, 5, 2, 9, 9, 9, 9}}, {3, {0, 1, 70}}},
        sheet.normals);
    EXPECT_TRUE(samePicture(draw(bad, 3), draw(mesh, 3)));
    // A block of lines is read as quads as far as it goes: five lines have indices for two.
    const TestMesh lines(sheet.coords, {{2, {0, 1, 2, 3, 1, 4, 5, 2, 0, 1}}}, sheet.normals);
    EXPECT_TRUE(samePicture(draw(lines, 2), draw(mesh, 2)));
    EXPECT_EQ(count(draw(lines, 2), kGreen), 32 * 32);
}
