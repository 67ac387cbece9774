// Arcs against their closed form; spheres by their size on the screen, light and colours.
#include <cmath>

#include "NRenderUtl/host/hostmath.h"
#include "tests/gl/testgl.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

class Spheres : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        zoom(4);
    }
    void zoom(double halfHeight) {
        loadOrtho(-halfHeight, halfHeight, -halfHeight, halfHeight, -9, 9);
        NglUpdateNglInfo();
    }
};

TEST_F(Spheres, ArcsTurnAboutTheirAxis) {
    const _NgPoint3Str center{0.5, -0.25, 1}, axis{-1, 2, -2};
    NgMatrix frame; // where the host's frame has its x and y axes
    NglAlignZAxisToLine({}, axis, 0, frame);
    std::vector<_NgPoint3Str> arc; // 8 pixels a unit, 18 units deep
    for (const double angle : {20, -10, -40, -70}) {
        const double c = 2 * std::cos(angle * M_PI / 180), s = 2 * std::sin(angle * M_PI / 180);
        const auto at = [&](int k) { return frame[0][k] * c + frame[1][k] * s; };
        arc.push_back({32 + 8 * (0.5 + at(0)), 32 + 8 * (-0.25 + at(1)), (8 - at(2)) / 18});
    }
    expectChain([&] { NglDrawArc(&center, &axis, 2, 20, -90, 3); }, arc);
    for (const int n : {0, -2})
        expectChain([&] { NglDrawArc(&center, &axis, 2, 20, -90, n); }, {{}});
}

TEST_F(Spheres, KeepTheirSizeAndLight) {
    const float center[] = {1, -0.5f, 2}, radius = 20.25f, white[] = {1, 1, 1, 1}, black[4] = {};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
    glEnable(GL_LIGHT0); // white, from the eye
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE); // of shapes that run counterclockwise
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    glShadeModel(GL_FLAT);
    glEnable(GL_PRIMITIVE_RESTART);
    glPrimitiveRestartIndex(1);
    for (const auto& [halfHeight, turnDeg] : {std::pair{4.0, 0}, {1.5, 180}, {1.5, 90}}) {
        SCOPED_TRACE(halfHeight);
        zoom(halfHeight);
        glLoadIdentity();
        glRotated(turnDeg, 0, 1, 0);
        glTranslatef(-1, 0.5f, -2);
        clear();
        glMatrixMode(GL_TEXTURE);
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
            EXPECT_TRUE(r > 0.8 || picture.at(x, y) != kClear) << "a hole at " << x << ", " << y;
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
    glMatrixMode(GL_TEXTURE);
    const std::vector<_NgFPoint3Str> centers{{-2, 0, 0}, {2, 0, 0}};
    const std::vector<float> radii{6, 3}, values{0.25f, 0.75f};
    const struct {
        int textured, a, b;
        std::array<float, 2> coordinate; ///< of the second sphere
    } rows[] = {{0, 1, 1, {0.6f, 0.7f}}, {1, 0, 0, {0.75f, 0}}, {1, 1, 0, {0, 0.25f}}, {1, 1, 1, {0, 0.5f}}};
    glEnable(GL_NORMALIZE);
    for (const auto& [textured, a, b, coordinate] : rows)
        for (const int form : {0, 1, 2}) {
            SCOPED_TRACE(testing::Message() << textured << a << b << ", form " << form);
            clear();
            glTexCoord2f(0.6f, 0.7f);
            if (form == 0)
                NglDrawSpheres(centers, radii, values, textured, a, b);
            if (form == 1)
                NglDrawSpheres(2, centers.data(), 6, values.data(), textured, a, b);
            if (form == 2)
                NglDrawSpheresWithRadius(2, &centers[0].x, radii.data(), values.data(), textured, a, b);
            float current[4];
            glGetFloatv(GL_CURRENT_TEXTURE_COORDS, current);
            EXPECT_EQ((std::array{current[0], current[1]}), coordinate);
            EXPECT_EQ(hex(read().at(15, 31)), hex(texels[!textured]));
            EXPECT_EQ(hex(read().at(47, 31)), hex(texels[coordinate[0] > 0.5f]));
            EXPECT_EQ(read().at(51, 31) != kClear, form == 1) << "the radius of the first for both";
        }
    if (epoxy_gl_version() >= 30) // and where vertex array objects are an extension
        ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "2.1"}});
}

} // namespace
