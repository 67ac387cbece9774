// Mesh drawing by its pixels, and the GL state it leaves.
#include <algorithm>
#include <cmath>
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
struct Sheet {
    std::vector<double> coords = {-1, -1, 0, 0, -1, 0, 0, 1, 0, -1, 1, 0, 1, -1, 0, 1, 1, 0};
    std::vector<double> normals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    TestBlock quads{4, {0, 1, 2, 3, 1, 4, 5, 2}};
};

/// A view along -z of the square -2..2, red lines, and a light that makes faces lit from the front green, and
/// blue from behind; unlit faces are red.
class NglMeshDraw : public GlTest {
protected:
    void SetUp() override;
    Picture draw(_NgMeshStr* mesh, unsigned flags, float* values = nullptr);
    void turn(double angleDeg) {
        glLoadIdentity();
        glRotated(angleDeg, 0, 1, 0);
    }

    Sheet sheet;
    const TestMesh mesh{sheet.coords, {sheet.quads}, sheet.normals};
};

void NglMeshDraw::SetUp() {
    GlTest::SetUp();
    glMatrixMode(GL_PROJECTION);
    glOrtho(-2, 2, -2, 2, -4, 4);
    glMatrixMode(GL_MODELVIEW);
    glEnable(GL_DEPTH_TEST);
    glColor3f(1, 0, 0);
    glEnable(GL_LIGHT0);
    const float headlight[4] = {0, 0, 1, 0}, black[4] = {0, 0, 0, 1}, white[4] = {1, 1, 1, 1};
    const float green[4] = {0, 1, 0, 1}, blue[4] = {0, 0, 1, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, headlight);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, black);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, green);
    glMaterialfv(GL_BACK, GL_DIFFUSE, blue);
    NglGetNglInfo()->pushDelta = {0, 0, 0.0625};
    NglSetMeshScaleFactor(0);
}

Picture NglMeshDraw::draw(_NgMeshStr* drawn, unsigned flags, float* values) {
    clear();
    values ? ngl_mesh_contour_draw(drawn, flags, values) : ngl_mesh(drawn, flags);
    return read();
}

int count(const Picture& picture, std::uint32_t color) {
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            pixels += picture.at(x, y) == color;
    return pixels;
}

/// Whether the sheet's inner edge, at x = 0, is seen: on column 31 or 32.
bool isMiddleLine(const Picture& p) {
    return p.at(31, 32) == kRed || p.at(32, 32) == kRed;
}

} // namespace

TEST_F(NglMeshDraw, FlagsChooseWhatIsDrawn) {
    const struct {
        unsigned flags;
        int optimized;
        bool faces, middle, outline;
    } rows[] = {
        {0, 0, false, true, true},    {1, 0, false, true, true},   {0x100, 0, false, true, true},
        {2, 0, true, false, false},   {3, 0, true, true, true},    {4, 0, false, false, true},
        {8, 0, false, false, true},   {16, 0, false, false, true}, {6, 0, true, false, true},
        {32, 0, false, false, false}, {33, 0, false, true, true},  {34, 0, true, false, false},
        {36, 0, false, false, true},  {0, 1, false, false, true},  {2, 1, false, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.flags);
        NglSetOptimizedDisplayMode(row.optimized);
        const Picture p = draw(mesh, row.flags);
        EXPECT_EQ(p.at(24, 32) == kGreen, row.faces);
        EXPECT_EQ(isMiddleLine(p), row.middle);
        EXPECT_EQ(p.at(24, 15) == kRed || p.at(24, 16) == kRed, row.outline);
        EXPECT_EQ(count(p, kClear) + count(p, kRed) + count(p, kGreen), kSize * kSize);
    }
    NglSetOptimizedDisplayMode(0);
    mesh->vertexCount = 0;
    EXPECT_EQ(count(draw(mesh, 7), kClear), kSize * kSize) << "an empty mesh";
    mesh->vertexCount = 6;
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
    // A tube of 14 facets along y: its long edges are smooth, its two rims are features. The view is turned a
    // little, so that right and left differ.
    std::vector<double> coords;
    TestBlock quads{4, {}};
    for (unsigned i = 0; i < 14; ++i) {
        const double a = i * M_PI / 7;
        for (int y : {-1, 1})
            coords.insert(coords.end(), {1.9 * std::cos(a), double(y), 1.9 * std::sin(a)});
        const unsigned j = (i + 1) % 14;
        quads.indices.insert(quads.indices.end(), {2 * i, 2 * i + 1, 2 * j + 1, 2 * j});
    }
    const TestMesh tube(coords, {quads});
    turn(20);
    const auto lineColumns = [&](unsigned flags) {
        const Picture p = draw(tube, flags);
        std::vector<int> columns;
        for (int x = 0; x < kSize; ++x)
            if (p.at(x, 32) == kRed)
                columns.push_back(x);
        return columns;
    };
    const std::vector<int> all = lineColumns(1);
    ASSERT_GT(all.size(), 8u);
    EXPECT_EQ(lineColumns(4), (std::vector<int>{all.front(), all.back()}));
    // A silhouette is drawn by the weight alone: set back, all long edges are.
    std::fill_n(tube->edgeWeights, tube->edgeCount, 0.0);
    EXPECT_EQ(lineColumns(4), all);
}

TEST_F(NglMeshDraw, ShadesFlatOrSmooth) {
    // The normal of the first vertex faces the light, the others are turned away by 60 degrees: cosine 0.5.
    for (int i = 1; i < 6; ++i) {
        mesh->normals[i * 3] = std::sqrt(0.75);
        mesh->normals[i * 3 + 2] = 0.5;
    }
    const Picture smooth = draw(mesh, 2), flat = draw(mesh, 34);
    EXPECT_EQ(count(flat, kGreen), 32 * 32);
    EXPECT_EQ(smooth.at(40, 32), 0xFF008000u) << hex(smooth.at(40, 32));
    EXPECT_GT(smooth.at(17, 17) >> 8 & 0xFF, 0xE0u);
    // From behind, two-sided lighting takes the other material and the opposite normal.
    turn(180);
    EXPECT_EQ(count(draw(mesh, 34), 0xFFFF0000u), 32 * 32);
}

TEST_F(NglMeshDraw, ScaledPath) {
    NglGetNglInfo()->pushDelta = {0, 0, 0}; // the offset of this path comes from the live view
    const struct {
        double factor;
        unsigned flags;
        std::uint32_t color;
    } rows[] = {{1, 2, kGreen}, {-1, 2, 0xFF000000}, {0.5, 2, 0xFF008000}, {1, 34, kRed}, {1, 3, kGreen}};
    for (const auto& row : rows) {
        NglSetMeshScaleFactor(row.factor);
        glShadeModel(GL_SMOOTH);
        const GlSnapshot before = GlSnapshot::take();
        const Picture p = draw(mesh, row.flags);
        EXPECT_EQ(p.at(24, 32), row.color) << "factor " << row.factor << ", flags " << row.flags;
        EXPECT_EQ(row.color == kGreen && isMiddleLine(p), row.flags == 3);
        EXPECT_TRUE(before.equals(GlSnapshot::take(), {"shade model"}));
        GLint shade;
        glGetIntegerv(GL_SHADE_MODEL, &shade);
        EXPECT_EQ(shade, GL_FLAT) << "hosts rely on the shade model that the scaled path leaves";
    }
}

TEST_F(NglMeshDraw, ContourTakesItsColorsFromTheTexture) {
    // Values 0..1 along x on four texels, so that the boundaries of the bands lie at known columns.
    const std::uint32_t bands[4] = {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0};
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, bands);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnable(GL_TEXTURE_1D);
    float values[6] = {0, 0.5f, 0.5f, 0, 1, 1};
    for (const unsigned flags : {2u, 3u, 1u, 6u}) {
        const GlSnapshot before = GlSnapshot::take();
        const Picture p = draw(mesh, flags, values);
        EXPECT_TRUE(before.equals(GlSnapshot::take())) << flags;
        EXPECT_EQ(nglRecord().live.viewPushCount, 0);
        for (int x = 17; x < 47; ++x) {
            const std::uint32_t expected = bands[(x - 16) / 8];
            const bool onInnerEdge = (flags & 1) && (x == 31 || x == 32);
            EXPECT_TRUE(!(flags & 2) || onInnerEdge || p.at(x, 32) == expected) << "column " << x;
            EXPECT_TRUE(flags == 2 || p.at(x, 15) == expected || p.at(x, 16) == expected) << "edge at " << x;
        }
    }
    clear();
    ngl_mesh_contour_draw(mesh, 3, nullptr);
    EXPECT_EQ(count(read(), kClear), kSize * kSize);
    // The scaled path sends no values: faces and edges take the current coordinate, that of the first band.
    NglSetMeshScaleFactor(1);
    const Picture scaled = draw(mesh, 3, values);
    EXPECT_GE(count(scaled, bands[0]), 32 * 32);
    EXPECT_EQ(count(scaled, bands[0]) + count(scaled, kClear), kSize * kSize);
}

TEST_F(NglMeshDraw, LeavesTheStateAsItWas) {
    // Everything that could disturb client arrays is in use by the host: objects, buffers and other arrays.
    GLuint vao, buffer;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &buffer);
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    const Picture plain = draw(mesh, 7);
    const std::vector<float> zeros(64);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, 256, zeros.data(), GL_STATIC_DRAW);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(3, GL_FLOAT, 0, nullptr);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    for (const bool other : {false, true}) {
        glBindVertexArray(other ? vao : 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        other ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
        glShadeModel(other ? GL_FLAT : GL_SMOOTH);
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, other);
        glMatrixMode(other ? GL_PROJECTION : GL_TEXTURE);
        for (const unsigned flags : {0u, 3u, 7u, 32u, 34u, 39u, 4u}) {
            glNormal3f(0.5f, 0.25f, 0.125f);
            const GlSnapshot before = GlSnapshot::take();
            const Picture p = draw(mesh, flags);
            EXPECT_TRUE(before.equals(GlSnapshot::take())) << "flags " << flags << ", other " << other;
            EXPECT_TRUE(flags != 7 || samePicture(p, plain)) << "other " << other;
        }
    }
    glMatrixMode(GL_MODELVIEW);
}

TEST_F(NglMeshDraw, LeavesOutElementsWithForeignIndices) {
    const Picture expected = draw(mesh, 3);
    const TestMesh bad(
        sheet.coords,
        {{4, {6, 0, 1, 2, 0, 1, 2, 3, 0, 1, 0xFFFFFFFF, 2, 1, 4, 5, 2, 9, 9, 9, 9}}, {3, {0, 1, 70}}},
        sheet.normals);
    EXPECT_GT(count(expected, kGreen), 500);
    EXPECT_TRUE(samePicture(draw(bad, 3), expected));
    // A block of lines is read as quads as far as it goes: five lines have indices for two.
    const TestMesh lines(sheet.coords, {{2, {0, 1, 2, 3, 1, 4, 5, 2, 0, 1}}}, sheet.normals);
    EXPECT_TRUE(samePicture(draw(lines, 2), draw(mesh, 2)));
}
