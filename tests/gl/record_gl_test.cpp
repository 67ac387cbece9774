// The view record against GL: loading, reading back, the save slot and the hooks that follow a change.
#include <cstring>
#include <utility>

#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/markers/markerview.h"
#include "NRenderUtl/markers/nmarkers.h"
#include "tests/gl/testgl.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

class NglRecordGl : public GlTest {
protected:
    /// A record with other matrices in each precision.
    NglRecordGl() {
        for (int i = 0; i < 16; ++i) {
            (&sample.modelView[0][0])[i] = 1 + i;
            (&sample.modelViewF[0][0])[i] = 0.5f * i;
            (&sample.projection[0][0])[i] = 40 - i;
            (&sample.projectionF[0][0])[i] = 0.25f * i;
        }
        std::ranges::copy(std::array{3, 5, 20, 30}, sample.viewport);
        sample.pixelSize = 0.125f;
        sample.colorIndex = 9;
    }
    bool recordIs(const _NglInfoStr& expected) const {
        return std::memcmp(&info, &expected, sizeof info) == 0;
    }

    _NglInfoStr sample{};
    _NglInfoStr& info = *NglGetNglInfo();
};

TEST_F(NglRecordGl, UpdateReadsEnabledLightsAndBothMaterials) {
    const NglLightParams light{1, {1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 1}, 16, 17, 18};
    glLightfv(GL_LIGHT3, GL_AMBIENT, light.ambient);
    glLightfv(GL_LIGHT3, GL_DIFFUSE, light.diffuse);
    glLightfv(GL_LIGHT3, GL_SPECULAR, light.specular);
    glLightfv(GL_LIGHT3, GL_POSITION, light.position);
    glLightf(GL_LIGHT3, GL_CONSTANT_ATTENUATION, light.constantAttenuation);
    glLightf(GL_LIGHT3, GL_LINEAR_ATTENUATION, light.linearAttenuation);
    glLightf(GL_LIGHT3, GL_QUADRATIC_ATTENUATION, light.quadraticAttenuation);
    glEnable(GL_LIGHT3);
    const NglMatParams front{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}, 17};
    const NglMatParams back{{21, 2, 3, 4}, {25, 6, 7, 8}, {29, 10, 11, 12}, {33, 14, 15, 16}, 37};
    for (const auto& [face, material] : {std::pair{GL_FRONT, front}, {GL_BACK, back}}) {
        glMaterialfv(face, GL_EMISSION, material.emission);
        glMaterialfv(face, GL_AMBIENT, material.ambient);
        glMaterialfv(face, GL_DIFFUSE, material.diffuse);
        glMaterialfv(face, GL_SPECULAR, material.specular);
        glMaterialf(face, GL_SHININESS, material.shininess);
    }
    info.lights[5].enabled = 1;
    NglUpdateNglInfo();
    EXPECT_EQ(std::memcmp(&info.lights[3], &light, sizeof light), 0);
    EXPECT_EQ(std::memcmp(&info.frontMaterial, &front, sizeof front), 0);
    EXPECT_EQ(std::memcmp(&info.backMaterial, &back, sizeof back), 0);
    EXPECT_EQ(info.lights[5].enabled, 0);
}

TEST_F(NglRecordGl, SetLoadsGlAndInitDoesNot) {
    nglRecord().pushCount3d = 3;
    const GlSnapshot before = GlSnapshot::take();
    NglInitMatrices(&sample);
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    EXPECT_EQ(nglRecord().pushCount3d, 0);
    EXPECT_EQ(nglRecord().matricesCurrent, 1);
    EXPECT_EQ(ngl_get_color(), 9);
    EXPECT_TRUE(recordIs(sample));
    glMatrixMode(GL_TEXTURE);
    NglSetMatrices(&sample);
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"modelview", "projection", "viewport"}));
    EXPECT_EQ(liveMatrix(), flat(sample.modelView));
    EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX), flat(sample.projection));
    EXPECT_TRUE(std::ranges::equal(liveViewport(), sample.viewport));
}

TEST_F(NglRecordGl, PopRestoresThePushAndRefreshesTheMarkers) {
    info = sample;
    NglPushNglInfo();
    info = {};
    NglPopNglInfo();
    EXPECT_TRUE(recordIs(sample));
    EXPECT_TRUE(std::ranges::equal(markerView().modelView, flat(sample.modelViewF)));
    EXPECT_TRUE(std::ranges::equal(markerView().projection, flat(sample.projectionF)));
    EXPECT_EQ(markerView().orthoScale, 0.125f);
}

TEST_F(NglRecordGl, CustomMatricesLastForTheirBlock) {
    NglUpdateNglInfo();
    const _NglInfoStr record = info;
    registerMarkerRefresh([](const float* modelView, const float*, float) {
        calls() += "markers " + std::to_string(static_cast<int>(modelView[12])) + ";";
    });
    registerTextRefresh([] { calls() += "text;"; });
    Matrix projection = kIdentity, modelView = projection;
    projection[5] = 0.5;
    modelView[12] = 3;
    const GlSnapshot before = GlSnapshot::take();
    glLineWidth(4);
    {
        NglSetCustomMatrices custom(projection.data(), modelView.data());
        EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX), projection);
        EXPECT_EQ(liveMatrix(), modelView);
        EXPECT_EQ(flat(info.modelView), modelView);
        glLineWidth(5);
        glMatrixMode(GL_PROJECTION);
    }
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    EXPECT_TRUE(recordIs(record));
    EXPECT_EQ(calls(), "markers 3;text;markers 0;text;");
}

TEST_F(NglRecordGl, InitializeViewTakesTheViewportsSizeAsItsEdges) {
    glViewport(10, 20, 50, 44);
    loadOrtho(10, 50, 20, 44, -2, 6);
    const GlSnapshot expected = GlSnapshot::take();
    glTranslatef(1, 2, 3);
    double nearPlane = -2, farPlane = 6;
    EXPECT_EQ(ngl_initialize_view(&nearPlane, &farPlane), 0);
    EXPECT_TRUE(expected.equals(GlSnapshot::take()));
    ngl_initialize_view(&nearPlane, nullptr);
    EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX)[10], 2) << "near 0, far -1";
}

TEST_F(NglRecordGl, ShadersNeedTextureBuffersToo) {
    EXPECT_EQ(NglIsVBOSupported(), 0) << "before initialisation";
    const bool complete = ranInSubprocess(
        {{"MESA_GL_VERSION_OVERRIDE", "3.0COMPAT"},
         {"MESA_GLSL_VERSION_OVERRIDE", "150"},
         {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_texture_buffer_object -GL_EXT_texture_buffer_object"}});
    NglInitGLExtensions();
    ASSERT_EQ(GLeeEnabled(8), complete);
    EXPECT_EQ(NglIsShaderSupported(), complete);
    EXPECT_EQ(NglIsVBOSupported(), 1);
}

} // namespace
