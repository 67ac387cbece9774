// The model-view stack, the record that follows it, and the view point's depth offsets.
#include <algorithm>
#include <array>
#include <cmath>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostmath.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"
#include "tests/support/subprocess.h"

namespace {

using Matrix = std::array<double, 16>;

// Products of these differ with their order; every entry below is exact in floats.
double kStart[4][4] = {{1, 0, 4, 0}, {0.5, 1, 0, 0}, {0, 2, 1, 0}, {-2, 1, 8, 1}};
double kTurn[4][4] = {{0, 2, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {3, 5, 7, 1}};
double kStretch[4][4] = {{2, 0, 0, 0}, {0, 0, 1, 0}, {0, -4, 0, 0}, {0, 1, 0, 1}};

Matrix flat(const double m[4][4]) {
    Matrix result;
    std::copy_n(&m[0][0], 16, result.begin());
    return result;
}

/// Column-major a * b by its definition.
Matrix product(const Matrix& a, const Matrix& b) {
    Matrix c{};
    for (int i = 0; i < 64; ++i)
        c[i % 16] += a[i % 4 + 4 * (i / 16)] * b[i / 16 + 4 * (i % 16 / 4)];
    return c;
}

Matrix liveMatrix() {
    Matrix m;
    glGetDoublev(GL_MODELVIEW_MATRIX, m.data());
    return m;
}

Matrix recordMatrix() {
    return flat(NglGetNglInfo()->modelView);
}

class View : public nrutest::GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        startOver();
    }
    /// GL and the record at kStart, in a matrix mode that every operation must leave.
    void startOver() {
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixd(&kStart[0][0]);
        glMatrixMode(GL_TEXTURE);
        std::copy_n(&kStart[0][0], 16, &NglGetNglInfo()->modelView[0][0]);
        std::copy_n(&kStretch[0][0], 16, &NglGetNglInfo()->inverseModelView[0][0]);
        NglGetNglInfo()->pushDelta = {0.25, -0.5, 2};
        NglGetNglInfo()->viewPushCount = 0;
        nglRecord().matricesCurrent = 1;
        nglRecord().pushCount3d = 0;
    }
};

struct Operation {
    const char* name;
    void (*apply)();
    void (*inGl)();     ///< the same on GL's model-view in plain GL
    bool recordFollows; ///< the record's model-view ends like GL's; else it stays as it was
    bool clearsCurrent; ///< the record's matrices count as no longer current
};

void nothing() {}
void offset(void (*function)(_NgPoint3Str*)) {
    _NgPoint3Str delta{1, 2, 4};
    function(&delta);
}

const Operation kOperations[] = {
    {"mult by the record's own", [] { ngl_mult_3d_matrix(NglGetNglInfo()->modelView); },
     [] { glMultMatrixd(&kStart[0][0]); }, true, true},
    {"set after a translation", [] { ngl_translate_3d(1, 1, 1), ngl_set_3d_matrix(kTurn); },
     [] { glMultMatrixd(&kTurn[0][0]); }, true, true},
    {"init after a translation", [] { ngl_translate_3d(1, 1, 1), ngl_init_3d_matrix(); }, nothing, true,
     true},
    // The record's inverse is trusted, whatever it is.
    {"nullify", ngl_nullify_view, [] { glMultMatrixd(&kStretch[0][0]); }, true, true},
    {"rotate X", [] { ngl_rotate_3d(30, 'X'); }, [] { glRotated(30, 1, 0, 0); }, false, true},
    {"rotate y", [] { ngl_rotate_3d(30, 'y'); }, [] { glRotated(30, 0, 1, 0); }, false, true},
    {"rotate z", [] { ngl_rotate_3d(30, 'z'); }, [] { glRotated(30, 0, 0, 1); }, false, true},
    {"rotate about no axis", [] { ngl_rotate_3d(30, 'q'); }, nothing, true, true},
    {"scale", [] { ngl_scale_3d(2, 3, 4); }, [] { glScaled(2, 3, 4); }, false, true},
    {"push", ngl_push_3d_matrix, nothing, true, false},
    {"push and pop", [] { ngl_push_3d_matrix(), ngl_pop_3d_matrix(); }, nothing, true, true},
    {"view matrices", [] { ngl_push_view_matrices(0), ngl_pop_view_matrices(0); }, nothing, true, false},
    {"view matrices, flag at push", [] { ngl_push_view_matrices(1), ngl_pop_view_matrices(0); }, nothing,
     true, true},
    {"view matrices, flag at pop", [] { ngl_push_view_matrices(0), ngl_pop_view_matrices(2); }, nothing, true,
     true},
    {"view point push", UtlPushViewPoint, [] { glTranslated(0.25, -0.5, 2); }, false, true},
    {"view point pop", UtlPopViewPoint, [] { glTranslated(-0.25, 0.5, -2); }, false, true},
    {"offset push", [] { offset(UtlPushViewPointDelta); }, [] { glTranslated(1, 2, 4); }, false, true},
    {"offset pop", [] { offset(UtlPopViewPointDelta); }, [] { glTranslated(-1, -2, -4); }, false, true},
};

TEST_F(View, OperationsChangeGlAndTheRecordAsTheyShould) {
    for (const Operation& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        startOver();
        glMatrixMode(GL_MODELVIEW);
        operation.inGl();
        const Matrix expected = liveMatrix();
        startOver();
        operation.apply();
        GLint mode = 0;
        glGetIntegerv(GL_MATRIX_MODE, &mode);
        EXPECT_EQ(mode, GL_MODELVIEW);
        EXPECT_EQ(liveMatrix(), expected);
        EXPECT_EQ(recordMatrix(), operation.recordFollows ? expected : flat(kStart));
        EXPECT_EQ(nglRecord().matricesCurrent, operation.clearsCurrent ? 0 : 1);
        while (NglGetPushCount() > 0)
            ngl_pop_3d_matrix();
    }
}

TEST_F(View, ShadowStackRestoresTheRecordLevelByLevel) {
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(kTurn);
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(kStretch);
    const Matrix once = product(flat(kStart), flat(kTurn));
    EXPECT_EQ(recordMatrix(), product(once, flat(kStretch)));
    EXPECT_EQ(NglGetPushCount(), 2);
    ngl_pop_3d_matrix();
    EXPECT_EQ(recordMatrix(), once);
    EXPECT_EQ(liveMatrix(), once);
    ngl_pop_3d_matrix();
    EXPECT_EQ(recordMatrix(), flat(kStart));
    EXPECT_EQ(NglGetPushCount(), 0);
}

/// A push, a product and a pop that move GL and the count while the record keeps its matrix.
void expectRecordStays() {
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(kTurn);
    EXPECT_EQ(liveMatrix(), product(flat(kStart), flat(kTurn)));
    EXPECT_EQ(recordMatrix(), flat(kStart));
    NglGetNglInfo()->modelView[3][0] = 77; // a pop that took from a shadow stack would undo this
    EXPECT_EQ(NglGetPushCount(), 1);
    ngl_pop_3d_matrix();
    EXPECT_EQ(liveMatrix(), flat(kStart));
    EXPECT_EQ(NglGetNglInfo()->modelView[3][0], 77);
    EXPECT_EQ(NglGetPushCount(), 0);
}

TEST_F(View, RecordStaysWhileBeingDrawn) {
    ngl_push_3d_matrix(); // its shadow must survive what happens while being drawn
    nglRecord().pushCount3d = 0;
    nglRecord().beingDrawn = true;
    expectRecordStays();
    nglRecord().beingDrawn = false;
    ngl_pop_3d_matrix();
    EXPECT_EQ(recordMatrix(), flat(kStart));
}

TEST_F(View, RecordStaysWithUpdateOnPickOff) {
    if (nrutest::ranInSubprocess({{"NU_UPDATE_NGLMAT_ON_PICK", "0"}}))
        return;
    expectRecordStays();
}

TEST_F(View, PopWithoutPushIsGlsErrorAndLeavesTheRecord) {
    NglGetNglInfo()->modelView[3][0] = 77;
    const Matrix before = recordMatrix();
    ngl_pop_3d_matrix();
    EXPECT_EQ(takeGlErrors(), 1);
    EXPECT_EQ(recordMatrix(), before);
    EXPECT_EQ(NglGetPushCount(), -1);
}

TEST_F(View, ViewMatricesAreBothRestored) {
    glMatrixMode(GL_MODELVIEW);
    const nrutest::GlSnapshot before = nrutest::GlSnapshot::take();
    ngl_push_view_matrices(0);
    for (const GLenum mode : {GL_PROJECTION, GL_MODELVIEW}) {
        glMatrixMode(mode);
        glMultMatrixd(&kTurn[0][0]);
    }
    ngl_pop_view_matrices(0);
    EXPECT_TRUE(before.equals(nrutest::GlSnapshot::take()));
}

TEST_F(View, ViewPointPushesAreCountedAndReset) {
    UtlPushViewPoint();
    UtlPushViewPoint();
    UtlPushViewPoint();
    UtlPopViewPoint();
    offset(UtlPushViewPointDelta);
    EXPECT_EQ(NglGetNglInfo()->viewPushCount, 2);
    NglResetViewPush();
    EXPECT_EQ(NglGetNglInfo()->viewPushCount, 0);
    offset(UtlPopViewPointDelta);
    EXPECT_EQ(liveMatrix(), flat(kStart));
    NglGetNglInfo()->viewPushCount = -1;
    NglResetViewPush();
    EXPECT_EQ(NglGetNglInfo()->viewPushCount, -1);
}

TEST_F(View, PushDeltaIsAHundredAndFiftyDepthStepsTowardsTheViewer) {
    const struct {
        const char* name;
        double nearPlane, farPlane;
        int n;
        double towardsViewer; ///< length of the offset
    } rows[] = {
        {"within the limits", -1, 2, 1, 150 * 3 / 16777206.0},
        {"three pushes", -1, 2, 3, 450 * 3 / 16777206.0},
        {"smallest step", -0.01, 0.01, 1, 150 * 1e-8},
        {"largest step", -1e7, 1e7, 2, 300 * 0.2},
        {"depth reversed", 2, -1, 1, -150 * 3 / 16777206.0},
    };
    GLint bits = 0;
    glGetIntegerv(GL_DEPTH_BITS, &bits);
    ASSERT_EQ(bits, 24);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-4, 4, -4, 4, row.nearPlane, row.farPlane);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glRotated(90, 0, 1, 0); // the viewer looks along model +x
        NglUpdateNglInfo();
        _NgPoint3Str delta;
        UtlComputeViewDelta(&delta, row.n);
        for (const _NgPoint3Str& d : {delta, MathScaled(NglGetNglInfo()->pushDelta, row.n)}) {
            EXPECT_NEAR(d.x, -row.towardsViewer, 1e-6 * std::abs(row.towardsViewer));
            EXPECT_NEAR(std::hypot(d.y, d.z), 0, 1e-6 * std::abs(row.towardsViewer));
        }
    }
}

} // namespace
