// The view record against GL: loading, reading back, the save slot and the hooks that follow a change.
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

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

Matrix liveMatrix(GLenum which) {
    Matrix m;
    glGetDoublev(which, m.data());
    return m;
}

void expectNear(const _NgPoint3Str& actual, const _NgPoint3Str& expected, double tolerance,
                const char* what) {
    EXPECT_NEAR(actual.x, expected.x, tolerance) << what;
    EXPECT_NEAR(actual.y, expected.y, tolerance) << what;
    EXPECT_NEAR(actual.z, expected.z, tolerance) << what;
}

/// A turned and shifted view with a viewport off the origin; nothing in it is symmetric.
struct SkewView {
    static constexpr double kLeft = -3, kRight = 5, kBottom = -2, kTop = 7, kNear = 1, kFar = 11;
    static constexpr int kX = 8, kY = 4, kWidth = 48, kHeight = 32;

    SkewView() {
        glViewport(kX, kY, kWidth, kHeight);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(kLeft, kRight, kBottom, kTop, kNear, kFar);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glTranslated(0.5, -1.5, -6);
        glRotated(40, 1, 2, 3);
        m = liveMatrix(GL_MODELVIEW_MATRIX);
    }
    /// Row of the rotation: the model-space direction of an eye axis.
    _NgPoint3Str axis(int row, double sign = 1) const {
        return {sign * m[row], sign * m[4 + row], sign * m[8 + row]};
    }
    /// Eye point to model point: the rotation's inverse is its transpose.
    _NgPoint3Str model(double ex, double ey, double ez) const {
        const double x = ex - m[12], y = ey - m[13], z = ez - m[14];
        return {m[0] * x + m[1] * y + m[2] * z, m[4] * x + m[5] * y + m[6] * z,
                m[8] * x + m[9] * y + m[10] * z};
    }
    Matrix m;
};

_NglInfoStr sampleRecord() {
    _NglInfoStr info{};
    for (int i = 0; i < 16; ++i) {
        (&info.modelView[0][0])[i] = 1 + i;
        (&info.modelViewF[0][0])[i] = 0.5f * i;
        (&info.projection[0][0])[i] = 40 - i;
        (&info.projectionF[0][0])[i] = 0.25f * i;
    }
    const int viewport[] = {3, 5, 20, 30};
    std::copy_n(viewport, 4, info.viewport);
    info.pixelSize = 0.125f;
    info.colorIndex = 9;
    return info;
}

} // namespace

TEST_F(NglRecordGl, UpdateReadsTheViewBackFromGl) {
    const SkewView view;
    _NglInfoStr& info = *NglGetNglInfo();
    info.colorIndex = 4;
    info.zoomedOrFit = 1;
    const GlSnapshot before = GlSnapshot::take();
    NglUpdateNglInfo();
    EXPECT_TRUE(before.equals(GlSnapshot::take()));

    constexpr double kTolerance = 1e-6; // GL keeps matrices as floats
    expectNear(info.viewX, view.axis(0), kTolerance, "view x");
    expectNear(info.viewY, view.axis(1), kTolerance, "view y");
    expectNear(info.view, view.axis(2, -1), kTolerance, "view");
    const double pixelX = (view.kRight - view.kLeft) / view.kWidth,
                 pixelY = (view.kTop - view.kBottom) / view.kHeight;
    EXPECT_NEAR(info.pixelSize, pixelX, kTolerance);
    expectNear(info.screenOrigin,
               view.model(view.kLeft - view.kX * pixelX, view.kBottom - view.kY * pixelY, -view.kNear), 1e-5,
               "screen origin");
    // In eye space the box runs from the near plane to the far one, so its z falls.
    expectNear(info.orthoMin, {view.kLeft - view.m[12], view.kBottom - view.m[13], -view.kNear - view.m[14]},
               1e-5, "box min");
    expectNear(info.orthoMax, {view.kRight - view.m[12], view.kTop - view.m[13], -view.kFar - view.m[14]},
               1e-5, "box max");
    EXPECT_EQ(info.colorIndex, -1);
    EXPECT_EQ(info.zoomedOrFit, 0);
    const int viewport[] = {view.kX, view.kY, view.kWidth, view.kHeight};
    EXPECT_TRUE(std::equal(viewport, viewport + 4, info.viewport));
    const Matrix projection = liveMatrix(GL_PROJECTION_MATRIX);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ((&info.modelView[0][0])[i], view.m[i]);
        EXPECT_EQ((&info.modelViewF[0][0])[i], static_cast<float>(view.m[i]));
        EXPECT_EQ((&info.projection[0][0])[i], projection[i]);
        EXPECT_EQ((&info.projectionF[0][0])[i], static_cast<float>(projection[i]));
        double product = 0;
        for (int k = 0; k < 4; ++k)
            product += info.modelView[k][i % 4] * info.inverseModelView[i / 4][k];
        EXPECT_NEAR(product, i % 5 == 0, kTolerance) << i;
    }
}

TEST_F(NglRecordGl, PushDeltaIs150DepthStepsWithinBounds) {
    GLint bits = 0;
    glGetIntegerv(GL_DEPTH_BITS, &bits);
    ASSERT_EQ(bits, 24);
    const struct {
        double boxDepth, step;
    } rows[] = {
        {1.0, 1.0 / 16777206.0}, {1e4, 1e4 / 16777206.0}, {1e7, 0.2}, {0.01, 1e-8}, {-1.0, 1.0 / 16777206.0}};
    for (const auto& row : rows) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-1, 1, -1, 1, 0, row.boxDepth);
        NglUpdateNglInfo();
        const double view = row.boxDepth < 0 ? 1 : -1; // the view vector's z
        EXPECT_NEAR(NglGetNglInfo()->pushDelta.z / (-150 * row.step * view), 1, 1e-6) << row.boxDepth;
    }
}

TEST_F(NglRecordGl, UpdateReadsEnabledLightsAndBothMaterials) {
    const NglLightParams light{1, {1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 1}, 16, 17, 18};
    const NglMatParams front{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}, 17};
    const NglMatParams back{{21, 2, 3, 4}, {25, 6, 7, 8}, {29, 10, 11, 12}, {33, 14, 15, 16}, 37};
    glLightfv(GL_LIGHT3, GL_AMBIENT, light.ambient);
    glLightfv(GL_LIGHT3, GL_DIFFUSE, light.diffuse);
    glLightfv(GL_LIGHT3, GL_SPECULAR, light.specular);
    glLightfv(GL_LIGHT3, GL_POSITION, light.position);
    glLightf(GL_LIGHT3, GL_CONSTANT_ATTENUATION, light.constantAttenuation);
    glLightf(GL_LIGHT3, GL_LINEAR_ATTENUATION, light.linearAttenuation);
    glLightf(GL_LIGHT3, GL_QUADRATIC_ATTENUATION, light.quadraticAttenuation);
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
    EXPECT_EQ(std::memcmp(NglGetNglInfo(), &info, sizeof info), 0);
    glMatrixMode(GL_TEXTURE);
    NglSetMatrices(&info);
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"modelview", "projection", "viewport"}));
    Matrix expected;
    std::copy_n(&info.modelView[0][0], 16, expected.begin());
    EXPECT_EQ(liveMatrix(GL_MODELVIEW_MATRIX), expected);
    std::copy_n(&info.projection[0][0], 16, expected.begin());
    EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX), expected);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_TRUE(std::equal(viewport, viewport + 4, info.viewport));
    EXPECT_EQ(ngl_get_color(), 9);
}

TEST_F(NglRecordGl, PopRestoresTheLastPushAndRefreshes) {
    _NglInfoStr info = sampleRecord();
    NglInitMatrices(&info);
    EXPECT_EQ(NglPushNglInfo(), NglGetNglInfo());
    NglGetNglInfo()->pixelSize = 0.5f;
    NglPushNglInfo();
    *NglGetNglInfo() = {};
    UtlDrawSetManagedTextDrawHeight(12);
    glLineWidth(4);
    const GlSnapshot before = GlSnapshot::take();
    NglPopNglInfo();
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"line width"}));
    info.pixelSize = 0.5f;
    EXPECT_EQ(std::memcmp(NglGetNglInfo(), &info, sizeof info), 0);
    EXPECT_TRUE(std::equal(markerView().modelView, markerView().modelView + 16, &info.modelViewF[0][0]));
    EXPECT_TRUE(std::equal(markerView().projection, markerView().projection + 16, &info.projectionF[0][0]));
    EXPECT_EQ(markerView().orthoScale, 0.5f);
    EXPECT_EQ(UtlDrawGetManagedTextDrawHeight(), 0);
    float width = 0;
    glGetFloatv(GL_LINE_WIDTH, &width);
    EXPECT_EQ(width, 1);
}

namespace {

std::vector<std::string>& refreshed() {
    static std::vector<std::string> log;
    return log;
}

void onMarkers(const float* modelView, const float*, float) {
    // The hooks see the record already read, and the line width already set.
    float width = 0;
    glGetFloatv(GL_LINE_WIDTH, &width);
    refreshed().push_back("markers " + std::to_string(static_cast<int>(modelView[12])) + " " +
                          std::to_string(static_cast<int>(width)));
}

void onText() {
    refreshed().push_back("text");
}

} // namespace

TEST_F(NglRecordGl, CustomMatricesLastForTheirBlock) {
    const SkewView view;
    NglUpdateNglInfo();
    const _NglInfoStr record = *NglGetNglInfo();
    registerMarkerRefresh(onMarkers);
    registerTextRefresh(onText);
    Matrix projection{}, modelView{};
    for (int i : {0, 5, 10, 15})
        projection[i] = 0.5, modelView[i] = 1;
    modelView[12] = 3;
    const GlSnapshot before = GlSnapshot::take();
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
    EXPECT_EQ(refreshed(), (std::vector<std::string>{"markers 3 1", "text", "markers 0 1", "text"}));
}

TEST_F(NglRecordGl, InitializeViewTakesTheViewportsSizeAsItsEdges) {
    double nearPlane = -2, farPlane = 6;
    const struct {
        const char* name;
        double *nearArgument, *farArgument;
        double near, far;
    } rows[] = {{"both", &nearPlane, &farPlane, -2, 6},
                {"no near", nullptr, &farPlane, 0, -1},
                {"no far", &nearPlane, nullptr, 0, -1}};
    const Matrix identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glViewport(10, 20, 50, 44);
    for (const auto& row : rows) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(10, 50, 20, 44, row.near, row.far);
        const Matrix expected = liveMatrix(GL_PROJECTION_MATRIX);
        glScalef(3, 3, 3);
        glMatrixMode(GL_MODELVIEW);
        glTranslatef(1, 2, 3);
        glMatrixMode(GL_TEXTURE);
        EXPECT_EQ(ngl_initialize_view(row.nearArgument, row.farArgument), 0);
        EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX), expected) << row.name;
        EXPECT_EQ(liveMatrix(GL_MODELVIEW_MATRIX), identity) << row.name;
        GLint mode = 0;
        glGetIntegerv(GL_MATRIX_MODE, &mode);
        EXPECT_EQ(mode, GL_MODELVIEW);
    }
}

TEST_F(NglRecordGl, ShadersNeedTextureBuffersToo) {
    if (nrutest::ranInSubprocess(
            {{"MESA_GL_VERSION_OVERRIDE", "3.0COMPAT"},
             {"MESA_GLSL_VERSION_OVERRIDE", "150"},
             {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_texture_buffer_object -GL_EXT_texture_buffer_object"}}))
        return;
    EXPECT_EQ(NglIsVBOSupported(), 0) << "before initialisation";
    NglInitGLExtensions();
    ASSERT_TRUE(GLeeEnabled(2) && GLeeEnabled(3) && GLeeEnabled(7));
    ASSERT_FALSE(GLeeEnabled(8));
    EXPECT_EQ(NglIsShaderSupported(), 0);
    EXPECT_EQ(NglIsVBOSupported(), 1);
}
