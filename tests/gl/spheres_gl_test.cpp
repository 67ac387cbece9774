// Arcs against their closed form; the polyhedron of spheres, their size on the screen, light and colours.
#include <cmath>
#include <set>

#include "NRenderUtl/gl/spherepolyhedron.h"
#include "NRenderUtl/host/hostmath.h"
#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

_NgPoint3Str wide(const _NgFPoint3Str& p) {
    return {p.x, p.y, p.z};
}

class Spheres : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        zoom(4);
    }
    void zoom(double halfHeight) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-halfHeight, halfHeight, -halfHeight, halfHeight, -9, 9);
        glMatrixMode(GL_MODELVIEW);
        NglUpdateNglInfo();
    }
};

TEST_F(Spheres, ArcsTurnAboutTheirAxis) {
    const _NgPoint3Str center{0.5, -0.25, 1}, z{0, 0, 2}, slanted{1, -2, 2};
    // About z the frame is the model's.
    const auto arc = fedBackLines([&] { NglDrawArc(&center, &z, 2, 30, 120, 3); });
    ASSERT_EQ(arc.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) {
        const double angle = (30 + (i + 1) / 2 * 40.0) * M_PI / 180; // 8 pixels a unit
        expectNear(arc[i], {36 + 16 * std::cos(angle), 30 + 16 * std::sin(angle), 8 / 18.0}, 1e-4);
    }
    const auto model = [&](const _NgPoint3Str& w) {
        return MathDifference({(w.x - 32) / 8, (w.y - 32) / 8, 9 - 18 * w.z}, center);
    };
    const auto plain = fedBackLines([&] { NglDrawArc(&center, &slanted, 2, 0, -90, 2); });
    const auto twisted = fedBackLines([&] { NglDrawArc(&center, &slanted, 2, 45, -90, 2); });
    ASSERT_EQ(plain.size(), 4u);
    for (const _NgPoint3Str& end : plain) {
        EXPECT_NEAR(MathLength(model(end)), 2, 1e-4);
        EXPECT_NEAR(MathDot(model(end), slanted), 0, 1e-4);
    }
    const double sine = 4 * 3 * std::sin(M_PI / 4); // of 45 degrees, times both radii and the axis' length
    EXPECT_NEAR(MathDot(MathCross(model(plain[0]), model(plain[1])), slanted), -sine, 1e-3);
    EXPECT_NEAR(MathDot(MathCross(model(plain[0]), model(twisted[0])), slanted), sine, 1e-3);
    for (const int n : {0, -2})
        EXPECT_TRUE(fedBackLines([&] { NglDrawArc(&center, &z, 2, 30, 120, n); }).empty());
}

TEST(SpherePolyhedron, IsClosedAndOnTheUnitSphere) {
    const auto& [vertices, indices] = nglSpherePolyhedron();
    const std::vector<unsigned> first(indices.begin(), indices.begin() + 12);
    EXPECT_EQ(first, (std::vector<unsigned>{0, 4, 12, 4, 1, 12, 1, 0, 12, 0, 9, 13}));
    expectNear(wide(vertices[2]), {-0.525731, 0, -0.850651}, 1e-7);
    std::set<std::pair<unsigned, unsigned>> edges; // with a direction
    double volume = 0;
    for (std::size_t i = 0; i < indices.size(); i += 3) {
        const auto p = [&, &corners = vertices](int k) { return wide(corners[indices[i + k % 3]]); };
        volume += MathDot(p(0), MathCross(p(1), p(2))) / 6;
        EXPECT_LT(MathDot(p(0), MathCross(p(1), p(2))), 0) << "clockwise as seen from outside: " << i;
        for (int k = 0; k < 3; ++k) {
            edges.insert({indices[i + k], indices[i + (k + 1) % 3]});
            EXPECT_NEAR(MathLength(p(k)), 1, 1e-6);
        }
    }
    EXPECT_EQ(edges.size(), 180u);
    for (const auto& [from, to] : edges)
        EXPECT_TRUE(edges.contains({to, from})) << from << ", " << to;
    EXPECT_NEAR(volume, -2.5361507 - 20 * 0.4787275 * (1 - 0.7946545) / 3, 1e-5); // icosahedron, pyramids
}

TEST_F(Spheres, KeepTheirSizeAndLight) {
    const float center[] = {1, -0.5f, 2}, radius = 20.25f, white[] = {1, 1, 1, 1}, black[4] = {};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
    glEnable(GL_LIGHT0); // white, from the eye
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glShadeModel(GL_FLAT);
    for (const double halfHeight : {4.0, 1.5}) {
        SCOPED_TRACE(halfHeight);
        zoom(halfHeight);
        glLoadIdentity();
        glTranslatef(-1, 0.5f, -2);
        clear();
        NglDrawSpheresWithRadius(1, center, &radius, nullptr, 0, 0, 0);
        const Picture picture = read();
        std::vector<float> depths(kSize * kSize);
        glReadPixels(0, 0, kSize, kSize, GL_DEPTH_COMPONENT, GL_FLOAT, depths.data());
        double outermost = 0;
        for (int i = 0; i < kSize * kSize; ++i) {
            const int x = i % kSize, y = i / kSize, blue = (picture.at(x, y) >> 16) & 0xFF;
            const double r = std::hypot(x - 31.5, y - 31.5) / radius;
            if (picture.at(x, y) != kClear)
                outermost = std::max(outermost, r);
            // Position and normal of a corner are one, so the light is the height in units of the radius.
            const double height = (9 - 18 * depths[i]) / (radius * halfHeight / 32);
            EXPECT_TRUE(r > 0.5 || std::abs(blue / 255.0 - height) < 0.01) << x << ", " << y;
        }
        EXPECT_NEAR(outermost, 1, 0.05);
    }
}

TEST_F(Spheres, TakeTheirColorsFromTheTexture) {
    const NgColorLong texels[] = {0xFF0000FF, 0xFF00FF00}; // from s = 0.5 on green
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    glEnable(GL_TEXTURE_1D);
    const std::vector<_NgFPoint3Str> centers{{-2, 0, 0}, {2, 0, 0}};
    const std::vector<float> radii{6, 6}, values{0.25f, 0.75f};
    const struct {
        int textured, a, b;
        double s, t;      ///< current afterwards
        NgColorLong left; ///< the right sphere is always green
    } rows[] = {{0, 1, 1, 0.6, 0.7, 0xFF00FF00},
                {1, 0, 0, 0.75, 0, 0xFF0000FF},
                {1, 1, 0, 0, 0.25, 0},
                {1, 0, 1, 0, 0.5, 0},
                {1, 1, 1, 0, 0.5, 0}};
    glColor3f(1, 1, 1);
    glNormal3f(0.25f, 0.5f, 0.75f);
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.textured << row.a << row.b);
        clear();
        glTexCoord2d(0.6, 0.7);
        glDisable(GL_NORMALIZE);
        const GlSnapshot before = GlSnapshot::take();
        NglDrawSpheres(centers, radii, values, row.textured, row.a, row.b);
        float current[4];
        glGetFloatv(GL_CURRENT_TEXTURE_COORDS, current);
        EXPECT_FLOAT_EQ(current[0], row.s);
        EXPECT_FLOAT_EQ(current[1], row.t);
        EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
        glDisable(GL_NORMALIZE);
        glTexCoord2d(0.6, 0.7);
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        const Picture picture = read();
        const bool byValue = !row.textured || (!row.a && !row.b);
        EXPECT_EQ(hex(picture.at(15, 31)), hex(byValue ? row.left : 0xFF0000FF));
        EXPECT_EQ(hex(picture.at(47, 31)), hex(byValue ? 0xFF00FF00 : 0xFF0000FF));
        for (const bool shared : {true, false}) {
            clear();
            glTexCoord2d(0.6, 0.7);
            if (shared)
                NglDrawSpheres(2, centers.data(), 6, values.data(), row.textured, row.a, row.b);
            else
                NglDrawSpheresWithRadius(2, &centers[0].x, radii.data(), values.data(), row.textured, row.a,
                                         row.b);
            EXPECT_TRUE(samePicture(read(), picture));
        }
    }
}

} // namespace
