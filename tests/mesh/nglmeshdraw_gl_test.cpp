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

/// A view along -z of the square -2..2, red lines, and a light that makes faces lit from the front green, and
/// blue from behind; unlit faces are red.
class NglMeshDraw : public GlTest {
protected:
    void SetUp() override;
    Picture draw(_NgMeshStr* mesh, unsigned flags);
    void turn(double angleDeg, double x, double y, double z);
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
}

Picture NglMeshDraw::draw(_NgMeshStr* mesh, unsigned flags) {
    clear();
    ngl_mesh(mesh, flags);
    return read();
}

void NglMeshDraw::turn(double angleDeg, double x, double y, double z) {
    glLoadIdentity();
    glRotated(angleDeg, x, y, z);
}

int count(const Picture& picture, std::uint32_t color) {
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            pixels += picture.at(x, y) == color;
    return pixels;
}

/// The square -1..1 at z = 0 in two quads that meet at x = 0, facing +z.
struct Sheet {
    std::vector<double> coords = {-1, -1, 0, 0, -1, 0, 0, 1, 0, -1, 1, 0, 1, -1, 0, 1, 1, 0};
    std::vector<double> normals;
    TestBlock quads{4, {0, 1, 2, 3, 1, 4, 5, 2}};
    Sheet() {
        for (int i = 0; i < 6; ++i)
            normals.insert(normals.end(), {0, 0, 1});
    }
};

bool isLine(const Picture& p, int x, int y) {
    return p.at(x, y) == kRed;
}

/// Whether the sheet's inner edge, at x = 0, is seen.
bool isMiddleLine(const Picture& p) {
    return isLine(p, 31, 32) || isLine(p, 32, 32);
}

} // namespace

TEST_F(NglMeshDraw, FlagsChooseWhatIsDrawn) {
    const Sheet sheet;
    const TestMesh mesh(sheet.coords, {sheet.quads}, sheet.normals);
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
        // A line at x = 0 falls on column 31 or 32, the outline at y = -1 on row 15 or 16.
        EXPECT_EQ(isMiddleLine(p), row.middle);
        EXPECT_EQ(isLine(p, 24, 15) || isLine(p, 24, 16), row.outline);
        EXPECT_EQ(count(p, kClear) + count(p, kRed) + count(p, kGreen), kSize * kSize);
    }
}

TEST_F(NglMeshDraw, OffsetsEdgesOverFacesAndCountsThePush) {
    // Lines of a sheet that lies exactly in its own faces, seen through a depth test that hides equal depths.
    const Sheet sheet;
    const TestMesh mesh(sheet.coords, {sheet.quads}, sheet.normals);
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
    // Both sides: the delta points to the viewer, wherever the mesh is turned.
    turn(180, 0, 1, 0);
    NglGetNglInfo()->pushDelta = {0, 0, -0.0625};
    EXPECT_TRUE(isMiddleLine(draw(mesh, 3)));
    ngl_process_mesh_edges(mesh);
    std::fill_n(mesh->edgeWeights, mesh->edgeCount, 0.0);
    EXPECT_TRUE(isMiddleLine(draw(mesh, 6)));
}

TEST_F(NglMeshDraw, DrawsNoEdgesThroughABody) {
    const TestMesh cube(cubeCoords(), {cubeQuads()});
    turn(30, 1, 1, 0);
    const int edgesOnly = count(draw(cube, 1), kRed), seen = count(draw(cube, 3), kRed);
    EXPECT_GT(seen, 100);
    EXPECT_LT(seen, edgesOnly * 0.9) << "hidden edges shine through";
    EXPECT_EQ(count(draw(cube, 6), kRed), seen) << "all edges of a cube are features";
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
    turn(20, 0, 1, 0);
    const Picture outline = draw(tube, 4), all = draw(tube, 1);
    std::vector<int> outlineColumns, allColumns;
    for (int x = 0; x < kSize; ++x) {
        if (isLine(outline, x, 32))
            outlineColumns.push_back(x);
        if (isLine(all, x, 32))
            allColumns.push_back(x);
    }
    ASSERT_GT(allColumns.size(), 8u);
    EXPECT_EQ(outlineColumns, (std::vector<int>{allColumns.front(), allColumns.back()}));
    // A silhouette is drawn by the weight alone: set back, all long edges are.
    std::fill_n(tube->edgeWeights, tube->edgeCount, 0.0);
    EXPECT_EQ(count(draw(tube, 4), kRed), count(draw(tube, 1), kRed));
}

TEST_F(NglMeshDraw, ShadesFlatOrSmooth) {
    // The normal of the first vertex faces the light, the others are turned away by 60 degrees: cosine 0.5.
    Sheet sheet;
    for (int i = 1; i < 6; ++i) {
        sheet.normals[i * 3] = std::sqrt(0.75);
        sheet.normals[i * 3 + 2] = 0.5;
    }
    const TestMesh mesh(sheet.coords, {sheet.quads}, sheet.normals);
    const Picture smooth = draw(mesh, 2), flat = draw(mesh, 34);
    EXPECT_EQ(count(flat, kGreen), 32 * 32);
    EXPECT_EQ(smooth.at(40, 32), 0xFF008000u) << hex(smooth.at(40, 32));
    EXPECT_GT(smooth.at(17, 17) >> 8 & 0xFF, 0xE0u);
    // From behind, two-sided lighting takes the other material and the opposite normal.
    turn(180, 0, 1, 0);
    EXPECT_EQ(count(draw(mesh, 34), 0xFFFF0000u), 32 * 32);
}

TEST_F(NglMeshDraw, ScaledPath) {
    const Sheet sheet;
    const TestMesh mesh(sheet.coords, {sheet.quads}, sheet.normals);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);
    NglGetNglInfo()->pushDelta = {0, 0, 0}; // the offset of this path comes from the live view
    const struct {
        double factor;
        unsigned flags;
        std::uint32_t color;
    } rows[] = {{1, 2, kGreen}, {-1, 2, 0xFF000000}, {0.5, 2, 0xFF008000}, {1, 34, kRed}, {1, 3, kGreen}};
    for (const auto& row : rows) {
        NglSetMeshScaleFactor(row.factor);
        glShadeModel(GL_SMOOTH);
        glDisable(GL_LIGHTING);
        const GlSnapshot before = GlSnapshot::take();
        const Picture p = draw(mesh, row.flags);
        EXPECT_EQ(p.at(24, 32), row.color) << "factor " << row.factor << ", flags " << row.flags;
        EXPECT_EQ(row.color == kGreen && isMiddleLine(p), row.flags == 3);
        EXPECT_TRUE(before.equals(GlSnapshot::take(), {"shade model"}));
        GLint shade;
        glGetIntegerv(GL_SHADE_MODEL, &shade);
        EXPECT_EQ(shade, GL_FLAT) << "hosts rely on the shade model that the scaled path leaves";
    }
    NglSetMeshScaleFactor(0);
}

TEST_F(NglMeshDraw, ContourTakesItsColorsFromTheTexture) {
    // Values 0..1 along x on four texels, so that the boundaries of the bands lie at known columns.
    const std::uint32_t bands[4] = {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0};
    GLuint texture;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_1D, texture);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, bands);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnable(GL_TEXTURE_1D);
    const Sheet sheet;
    const TestMesh mesh(sheet.coords, {sheet.quads}, sheet.normals);
    float values[6] = {0, 0.5f, 0.5f, 0, 1, 1};
    for (const unsigned flags : {2u, 3u, 1u, 6u}) {
        clear();
        const GlSnapshot before = GlSnapshot::take();
        ngl_mesh_contour_draw(mesh, flags, values);
        EXPECT_TRUE(before.equals(GlSnapshot::take())) << flags;
        EXPECT_EQ(nglRecord().live.viewPushCount, 0);
        const Picture p = read();
        for (int x = 17; x < 47; ++x) {
            const std::uint32_t expected = bands[(x - 16) / 8];
            const bool onInnerEdge = (flags & 1) && (x == 31 || x == 32);
            if ((flags & 2) && !onInnerEdge) {
                EXPECT_EQ(p.at(x, 32), expected) << "column " << x << ", flags " << flags;
            }
            if (flags & (1 | 4)) {
                EXPECT_TRUE(p.at(x, 15) == expected || p.at(x, 16) == expected) << "edge column " << x;
            }
        }
    }
    clear();
    ngl_mesh_contour_draw(mesh, 3, nullptr);
    EXPECT_EQ(count(read(), kClear), kSize * kSize);
    // The scaled path sends no values: faces and edges take the current coordinate, that of the first band.
    NglSetMeshScaleFactor(1);
    clear();
    ngl_mesh_contour_draw(mesh, 3, values);
    const Picture scaled = read();
    EXPECT_GE(count(scaled, bands[0]), 32 * 32);
    EXPECT_EQ(count(scaled, bands[0]) + count(scaled, kClear), kSize * kSize);
    NglSetMeshScaleFactor(0);
    glDeleteTextures(1, &texture);
}

TEST_F(NglMeshDraw, LeavesTheStateAsItWas) {
    // Everything that could disturb client arrays is in use by the host: objects, buffers and other arrays.
    GLuint vao, buffer;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &buffer);
    const Sheet sheet;
    const TestMesh mesh(sheet.coords, {sheet.quads}, sheet.normals);
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
    for (const bool object : {false, true}) {
        glBindVertexArray(object ? vao : 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        for (const unsigned flags : {0u, 1u, 2u, 3u, 7u, 32u, 34u, 39u, 4u})
            for (const bool lit : {false, true}) {
                lit ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
                lit ? glShadeModel(GL_FLAT) : glShadeModel(GL_SMOOTH);
                glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, lit);
                glNormal3f(0.5f, 0.25f, 0.125f);
                glMatrixMode(lit ? GL_PROJECTION : GL_TEXTURE);
                const GlSnapshot before = GlSnapshot::take();
                const Picture p = draw(mesh, flags);
                EXPECT_TRUE(before.equals(GlSnapshot::take())) << "flags " << flags << ", object " << object;
                if (flags == 7) {
                    EXPECT_TRUE(samePicture(p, plain)) << "lit " << lit << ", object " << object;
                }
            }
    }
    glMatrixMode(GL_MODELVIEW);
    glDeleteVertexArrays(1, &vao);
    glDeleteBuffers(1, &buffer);
}

TEST_F(NglMeshDraw, LeavesOutElementsWithForeignIndices) {
    const Sheet sheet;
    const TestMesh good(sheet.coords, {sheet.quads}, sheet.normals);
    const Picture expected = draw(good, 3), expectedFlat = draw(good, 35);
    const TestMesh bad(
        sheet.coords,
        {{4, {6, 0, 1, 2, 0, 1, 2, 3, 0, 1, 0xFFFFFFFF, 2, 1, 4, 5, 2, 9, 9, 9, 9}}, {3, {0, 1, 70}}},
        sheet.normals);
    EXPECT_TRUE(samePicture(draw(bad, 3), expected));
    EXPECT_TRUE(samePicture(draw(bad, 35), expectedFlat));
    EXPECT_GT(count(expected, kGreen), 500);
    // A block of lines is read as quads as far as it goes: five lines have indices for two.
    const TestMesh lines(sheet.coords, {{2, {0, 1, 2, 3, 1, 4, 5, 2, 0, 1}}}, sheet.normals);
    EXPECT_TRUE(samePicture(draw(lines, 2), draw(good, 2)));
    const TestMesh empty({}, {sheet.quads});
    EXPECT_EQ(count(draw(empty, 7), kClear), kSize * kSize);
    for (_NgConnectStr* b = empty->blocks; b; b = empty->blocks) { // an empty mesh does not free them
        empty->blocks = b->next;
        NHostFree(b->indices);
        NHostFree(b);
    }
}
