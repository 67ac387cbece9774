// Drawing of glyphs: the planar ones by mode, by their outline in the window and by pixels.
#include <cmath>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/nhost.h"
#include "tests/gl/testgl.h"
#include "tests/mesh/testmesh.h"

using namespace nrutest;

namespace {

constexpr std::uint32_t kGreen = 0xFF00FF00, kBlack = 0xFF000000;

class Glyphs : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        loadOrtho(-32, 32, -32, 32, -32, 32);
        glColor3f(0, 1, 0);
        const float green[] = {0, 1, 0, 1}, noLight[] = {0, 0, 0, 1};
        glMaterialfv(GL_FRONT, GL_EMISSION, green);
        glLightModelfv(GL_LIGHT_MODEL_AMBIENT, noLight);
    }
    int draw(_NgMeshStr* drawn, double sx, double sy, int mode, int drawArg = 0) {
        return ngl_draw_ellip_ngmesh(drawn, sx, sy, &centre, &matrix, mode, drawArg);
    }

    _NgPoint3Str centre{1, 2, 3};
    double matrix[4][4] = {
        {0, 2, 0, 0}, {-2, 0, 0, 0}, {0, 0, 2, 0}, {10, 0, 2, 1}}; // centre goes to 6, 2, 8
};

struct EllipticMesh {
    EllipticMesh(int n, int resolution, int rings, double a, double b) {
        double axes[] = {a, b};
        EXPECT_EQ(ngl_create_elliptic_mesh(n, resolution, rings, axes, &mesh), 0);
    }
    ~EllipticMesh() {
        NglDestroyMesh(mesh);
        NHostFree(mesh);
    }
    _NgMeshStr* mesh = nullptr;
};

TEST_F(Glyphs, OutlinesTheOuterRingAboutTheTransformedCentre) {
    std::vector<_NgPoint3Str> ring;
    for (int k = 0; k <= 12; ++k)
        ring.push_back({38 + 12 * std::cos(k * M_PI / 6), 34 + 5 * std::sin(k * M_PI / 6), 0.5 - 8. / 64});
    for (const int rings : {1, 3}) {
        const EllipticMesh made(2, 12, rings, 2, 1);
        made.mesh->coords[3 * 12 * (rings - 1) + 2] = 5; // not drawn with
        expectChain([&] { EXPECT_EQ(draw(made.mesh, 6, 5, 2), 0); }, ring);
    }
    // A mesh with its centre first: the outline starts there, as it is, and leaves the last vertex out.
    const TestMesh centreFirst({0, 0, 0, 4, 0, 0, 0, 4, 0, -4, 0, 0}, {{3, {0, 1, 2, 0, 2, 3, 0, 3, 1}}});
    expectChain([&] { draw(centreFirst, 1, 1, 2); },
                {{38, 34, 0.375}, {42, 34, 0.375}, {38, 38, 0.375}, {38, 34, 0.375}});
    const TestMesh tooFewVertices({0, 0, 0, 1, 0, 0}, {{3, {0, 1, 0, 0, 1, 0}}}), bare({1, 2, 3}, {});
    for (_NgMeshStr* nothing : std::initializer_list<_NgMeshStr*>{tooFewVertices, bare})
        expectChain([&] { draw(nothing, 1, 1, 2); }, {{}});
}

TEST_F(Glyphs, ModesChooseFacesAndOutline) {
    const EllipticMesh made(8, 32, 2, 1, 1);
    _NgMeshStr* mesh = made.mesh;
    NglGetNglInfo()->palette = &kBlack;
    NglGetNglInfo()->colorCount = 1;
    const std::vector<double> own(mesh->coords, mesh->coords + 3 * mesh->vertexCount);
    const std::tuple<int, bool, std::uint32_t, int> rows[] = {
        // mode; whether the middle is filled; the border's colour; the colour index afterwards
        {0, true, kGreen, 7},
        {1, true, kBlack, 0},
        {2, false, kGreen, 7},
        {3, false, kClear, 7},
        {-1, false, kClear, 7}};
    for (const auto& [mode, filled, border, index] : rows) {
        SCOPED_TRACE(mode);
        clear();
        nglRecord().colorIndex = 7;
        glColor3f(0, 1, 0);
        EXPECT_EQ(draw(mesh, 20.7, 10.7, mode, NglMeshFaces), 0);
        const Picture p = read();
        EXPECT_EQ(p.at(40, 36), filled ? kGreen : kClear);
        EXPECT_EQ(p.at(58, 34) & 0xFFFFFF, border & 0xFFFFFF) << hex(p.at(58, 34)); // 38 + 20.7
        EXPECT_EQ(p.at(60, 34), kClear);
        EXPECT_EQ(ngl_get_color(), index);
    }
    EXPECT_TRUE(std::equal(own.begin(), own.end(), mesh->coords)) << "the mesh has its own coordinates again";
    EXPECT_EQ(ngl_draw_ellip_ngmesh(nullptr, 1, 1, &centre, &matrix, 0, 0), 0);
    EXPECT_EQ(ngl_draw_ellip_ngmesh(mesh, 1, 1, nullptr, &matrix, 0, 0), 0);
    EXPECT_EQ(ngl_draw_ellip_ngmesh(mesh, 1, 1, &centre, nullptr, 0, 0), 0);
}

TEST_F(Glyphs, WithoutMemoryNothingIsDrawn) {
    static bool isFull = false;
    NHostServices services{};
    services.allocate = [](void*, std::size_t bytes, const char*, int) {
        return isFull ? nullptr : std::malloc(bytes);
    };
    services.release = [](void*, void* block) { std::free(block); };
    ASSERT_EQ(NHostSetServices(&services), 0);
    const EllipticMesh made(2, 12, 2, 1, 1);
    isFull = true;
    EXPECT_EQ(draw(made.mesh, 20, 10, 0, NglMeshFaces), 0);
    EXPECT_EQ(read().countOtherThan(kClear), 0);
}

TEST_F(Glyphs, ShapeFillsItsSilhouette) {
    glEnable(GL_CULL_FACE); // the faces that look outwards are front faces
    glRotated(30, 0, 0, 1);
    EXPECT_EQ(Ngl_Shape_Hyper_Ellipsoid(24, 12, 6, 2, 64), 0);
    const Picture p = read();
    EXPECT_EQ(p.at(32, 32), kGreen);
    EXPECT_NEAR(p.countOtherThan(kClear), M_PI * 24 * 12, 15);
    EXPECT_EQ(NHostLiveBlocks(), 0u);
    EXPECT_EQ(Ngl_Shape_Hyper_Ellipsoid(24, 12, 6, 1, 64), -1);
    EXPECT_TRUE(samePicture(read(), p));
}

} // namespace
