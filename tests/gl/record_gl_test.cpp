// The view record against GL: loading, reading back, the save slot and the hooks that follow a change.
#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string>
#include <utility>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/markers/markerview.h"
#include "NRenderUtl/markers/nmarkers.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"
#include "tests/support/subprocess.h"

namespace {

using nrutest::GlSnapshot;
using NglRecordGl = nrutest::GlTest;
using Matrix = std::array<double, 16>;

constexpr Matrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Matrix liveMatrix(GLenum which) {
    Matrix m;
    glGetDoublev(which, m.data());
    return m;
}

_NglInfoStr sampleRecord() {
    _NglInfoStr info{};
    for (int i = 0; i < 16; ++i) {
        (&info.modelView[0][0])[i] = 1 + i;
        (&info.modelViewF[0][0])[i] = 0.5f * i;
        (&info.projection[0][0])[i] = 40 - i;
        (&info.projectionF[0][0])[i] = 0.25f * i;
    }
    std::copy_n(std::array{3, 5, 20, 30}.begin(), 4, info.viewport);
    info.pixelSize = 0.125f;
    info.colorIndex = 9;
    return info;
}

std::string& refreshed() {
    static std::string log;
    return log;
}

/// The hooks see the record already changed, and the line width already set.
void onMarkers(const float* modelView, const float*, float) {
    float width = 0;
    glGetFloatv(GL_LINE_WIDTH, &width);
    refreshed() += "markers " + std::to_string(static_cast<int>(modelView[12])) + " width " +
                   std::to_string(static_cast<int>(width)) + ";";
}

void onText() {
    refreshed() += "text;";
}

} // namespace

TEST_F(NglRecordGl, UpdateReadsEnabledLightsAndBothMaterials) {
    const NglLightParams light{1, {1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 1}, 16, 17, 18};
    const NglMatParams front{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}, 17};
    const NglMatParams back{{21, 2, 3, 4}, {25, 6, 7, 8}, {29, 10, 11, 12}, {33, 14, 15, 16}, 37};
    const std::pair<GLenum, const float*> lightValues[] = {
        {GL_AMBIENT, light.ambient},
        {GL_DIFFUSE, light.diffuse},
        {GL_SPECULAR, light.specular},
        {GL_POSITION, light.position},
        {GL_CONSTANT_ATTENUATION, &light.constantAttenuation},
        {GL_LINEAR_ATTENUATION, &light.linearAttenuation},
        {GL_QUADRATIC_ATTENUATION, &light.quadraticAttenuation}};
    for (const auto& [name, value] : lightValues)
        glLightfv(GL_LIGHT3, name, value);
    glEnable(GL_LIGHT3);
    for (const auto& [face, material] : {std::pair{GL_FRONT, front}, {GL_BACK, back}}) {
        glMaterialfv(face, GL_EMISSION, material.emission);
        glMaterialfv(face, GL_AMBIENT, material.ambient);
        glMaterialfv(face, GL_DIFFUSE, material.diffuse);
        glMaterialfv(face, GL_SPECULAR, material.specular);
        glMaterialf(face, GL_SHININESS, material.shininess);
    }
    _NglInfoStr& info = *NglGetNglInfo();
    info.lights[5].enabled = 1;
    info.lights[5].diffuse[2] = 0.125f;
    NglUpdateNglInfo();
    EXPECT_EQ(std::memcmp(&info.lights[3], &light, sizeof light), 0);
    EXPECT_EQ(std::memcmp(&info.frontMaterial, &front, sizeof front), 0);
    EXPECT_EQ(std::memcmp(&info.backMaterial, &back, sizeof back), 0);
    EXPECT_EQ(info.lights[5].enabled, 0);
    EXPECT_EQ(info.lights[5].diffuse[2], 0.125f) << "a disabled light keeps its values";
}

TEST_F(NglRecordGl, SetLoadsGlAndInitDoesNot) {
    _NglInfoStr info = sampleRecord();
    nglRecord().pushCount3d = 3;
    const GlSnapshot before = GlSnapshot::take();
    NglInitMatrices(&info);
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    EXPECT_EQ(nglRecord().pushCount3d, 0);
    EXPECT_EQ(nglRecord().matricesCurrent, 1);
    EXPECT_EQ(ngl_get_color(), 9);
    EXPECT_EQ(std::memcmp(NglGetNglInfo(), &info, sizeof info), 0);
    glMatrixMode(GL_TEXTURE);
    NglSetMatrices(&info);
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"modelview", "projection", "viewport"}));
    EXPECT_TRUE(std::ranges::equal(liveMatrix(GL_MODELVIEW_MATRIX), std::span(&info.modelView[0][0], 16)));
    EXPECT_TRUE(std::ranges::equal(liveMatrix(GL_PROJECTION_MATRIX), std::span(&info.projection[0][0], 16)));
    std::array<int, 4> viewport;
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_TRUE(std::ranges::equal(viewport, info.viewport));
}

TEST_F(NglRecordGl, PopRestoresTheLastPushAndRefreshesTheMarkers) {
    _NglInfoStr info = sampleRecord();
    NglInitMatrices(&info);
    NglPushNglInfo();
    NglGetNglInfo()->pixelSize = 0.5f;
    EXPECT_EQ(NglPushNglInfo(), NglGetNglInfo());
    *NglGetNglInfo() = {};
    UtlDrawSetManagedTextDrawHeight(12);
    const GlSnapshot before = GlSnapshot::take();
    NglPopNglInfo();
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    info.pixelSize = 0.5f;
    EXPECT_EQ(std::memcmp(NglGetNglInfo(), &info, sizeof info), 0);
    EXPECT_TRUE(std::ranges::equal(markerView().modelView, std::span(&info.modelViewF[0][0], 16)));
    EXPECT_TRUE(std::ranges::equal(markerView().projection, std::span(&info.projectionF[0][0], 16)));
    EXPECT_EQ(markerView().orthoScale, 0.5f);
    EXPECT_EQ(UtlDrawGetManagedTextDrawHeight(), 0);
}

TEST_F(NglRecordGl, CustomMatricesLastForTheirBlock) {
    NglUpdateNglInfo();
    const _NglInfoStr record = *NglGetNglInfo();
    registerMarkerRefresh(onMarkers);
    registerTextRefresh(onText);
    Matrix projection = kIdentity, modelView = kIdentity;
    projection[5] = 0.5;
    modelView[12] = 3;
    const GlSnapshot before = GlSnapshot::take();
    glLineWidth(4);
    {
        NglSetCustomMatrices custom(projection.data(), modelView.data());
        EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX), projection);
        EXPECT_EQ(liveMatrix(GL_MODELVIEW_MATRIX), modelView);
        EXPECT_EQ(NglGetNglInfo()->modelView[3][0], 3);
        EXPECT_EQ(std::memcmp(&nglRecord().saved, &record, sizeof record), 0);
        glLineWidth(5);
        glMatrixMode(GL_PROJECTION);
    }
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    EXPECT_EQ(std::memcmp(NglGetNglInfo(), &record, sizeof record), 0);
    EXPECT_EQ(refreshed(), "markers 3 width 1;text;markers 0 width 1;text;");
}

TEST_F(NglRecordGl, InitializeViewTakesTheViewportsSizeAsItsEdges) {
    double nearPlane = -2, farPlane = 6;
    const struct {
        double *nearArgument, *farArgument;
        double near, far;
    } rows[] = {{&nearPlane, &farPlane, -2, 6}, {nullptr, &farPlane, 0, -1}, {&nearPlane, nullptr, 0, -1}};
    glViewport(10, 20, 50, 44);
    for (const auto& row : rows) {
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(10, 50, 20, 44, row.near, row.far);
        glMatrixMode(GL_MODELVIEW);
        const GlSnapshot expected = GlSnapshot::take();
        glTranslatef(1, 2, 3);
        glMatrixMode(GL_PROJECTION);
        glTranslatef(1, 2, 3);
        EXPECT_EQ(ngl_initialize_view(row.nearArgument, row.farArgument), 0);
        EXPECT_TRUE(expected.equals(GlSnapshot::take())) << row.near;
    }
}

TEST_F(NglRecordGl, ShadersNeedTextureBuffersToo) {
    EXPECT_EQ(NglIsVBOSupported(), 0) << "before initialisation";
    const bool complete = nrutest::ranInSubprocess(
        {{"MESA_GL_VERSION_OVERRIDE", "3.0COMPAT"},
         {"MESA_GLSL_VERSION_OVERRIDE", "150"},
         {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_texture_buffer_object -GL_EXT_texture_buffer_object"}});
    NglInitGLExtensions();
    ASSERT_TRUE(GLeeEnabled(2) && GLeeEnabled(3) && GLeeEnabled(7));
    ASSERT_EQ(GLeeEnabled(8), complete);
    EXPECT_EQ(NglIsShaderSupported(), complete);
    EXPECT_EQ(NglIsVBOSupported(), 1);
}
