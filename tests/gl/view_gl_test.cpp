// The model-view stack, the record that follows it, and the view point's depth offsets.
#include "NRenderUtl/host/hostmath.h"
#include "tests/gl/testgl.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

// Products of these differ with their order; every entry below is exact in floats.
double kStart[4][4] = {{1, 0, 4, 0}, {0.5, 1, 0, 0}, {0, 2, 1, 0}, {-2, 1, 8, 1}};
double kTurn[4][4] = {{0, 2, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {3, 5, 7, 1}};
double kStretch[4][4] = {{2, 0, 0, 0}, {0, 0, 1, 0}, {0, -4, 0, 0}, {0, 1, 0, 1}};

Matrix recordMatrix() {
    return flat(NglGetNglInfo()->modelView);
}

class View : public GlTest {
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
        assign(info.modelView, flat(kStart));
        assign(info.inverseModelView, flat(kStretch));
        info.pushDelta = {0.25, -0.5, 2};
        nglRecord().matricesCurrent = 1;
    }

    _NglInfoStr& info = *NglGetNglInfo();
};

/// Pushes and pops the view's matrices, with a change of both between.
void changeViewMatrices(int pushFlag, int popFlag) {
    ngl_push_view_matrices(pushFlag);
    glLoadIdentity();
    glMatrixMode(GL_PROJECTION);
    glScaled(2, 3, 4);
    ngl_pop_view_matrices(popFlag);
}

const struct {
    const char* name;
    void (*apply)();
    void (*inGl)();     ///< the same on GL's model-view in plain GL
    bool recordFollows; ///< the record's model-view ends like GL's; else it stays as it was
} kOperations[] = {
    {"mult by the record's own", [] { ngl_mult_3d_matrix(NglGetNglInfo()->modelView); },
     [] { glMultMatrixd(&kStart[0][0]); }, true},
    {"set after a translation", [] { ngl_translate_3d(1, 1, 1), ngl_set_3d_matrix(kTurn); },
     [] { glMultMatrixd(&kTurn[0][0]); }, true},
    // The record's inverse is trusted, whatever it is.
    {"nullify", ngl_nullify_view, [] { glMultMatrixd(&kStretch[0][0]); }, true},
    {"rotate about nothing", [] { ngl_rotate_3d(30, 'q'); }, [] { glRotated(30, 0, 0, 0); }, false},
    {"rotate X", [] { ngl_rotate_3d(30, 'X'); }, [] { glRotated(30, 1, 0, 0); }, false},
    {"rotate y and z", [] { ngl_rotate_3d(30, 'y'), ngl_rotate_3d(30, 'z'); },
     [] { glRotated(30, 0, 1, 0), glRotated(30, 0, 0, 1); }, false},
    {"scale", [] { ngl_scale_3d(2, 3, 4); }, [] { glScaled(2, 3, 4); }, false},
    {"push and pop", [] { ngl_push_3d_matrix(), ngl_pop_3d_matrix(); }, [] {}, true},
    {"flag at push", [] { changeViewMatrices(1, 0); }, [] {}, true},
    {"flag at pop", [] { changeViewMatrices(0, 2); }, [] {}, true},
    {"view point push", UtlPushViewPoint, [] { glTranslated(0.25, -0.5, 2); }, false},
};

TEST_F(View, OperationsChangeGlAndTheRecordAsTheyShould) {
    for (const auto& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        startOver();
        glMatrixMode(GL_MODELVIEW);
        operation.inGl();
        const Matrix expected = liveMatrix();
        startOver();
        operation.apply();
        EXPECT_EQ(stateOf(GL_MATRIX_MODE), GL_MODELVIEW);
        EXPECT_EQ(liveMatrix(), expected);
        EXPECT_EQ(liveMatrix(GL_PROJECTION_MATRIX), kIdentity);
        EXPECT_EQ(recordMatrix(), operation.recordFollows ? expected : flat(kStart));
        EXPECT_EQ(nglRecord().matricesCurrent, 0);
    }
}

TEST_F(View, ShadowStackRestoresTheRecordLevelByLevel) {
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(kTurn);
    const Matrix once = liveMatrix();
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(kStretch);
    EXPECT_EQ(recordMatrix(), liveMatrix());
    EXPECT_EQ(NglGetPushCount(), 2);
    for (const Matrix& expected : {once, flat(kStart)}) {
        ngl_pop_3d_matrix();
        EXPECT_EQ(recordMatrix(), expected);
        EXPECT_EQ(liveMatrix(), expected);
    }
    ngl_pop_3d_matrix();
    EXPECT_EQ(takeGlErrors(), 1) << "a pop without a push";
    EXPECT_EQ(recordMatrix(), flat(kStart));
}

TEST_F(View, RecordStaysWhileBeingDrawnAndWithUpdateOnPickOff) {
    const bool isUpdated = ranInSubprocess({{"NU_UPDATE_NGLMAT_ON_PICK", "0"}});
    ngl_push_3d_matrix(); // its shadow, if any, must survive what follows
    NglSetBeingDrawnState(isUpdated);
    info.modelView[3][0] = 76; // a push that kept this, or a pop that took from a shadow stack, would show
    const Matrix record = recordMatrix();
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(kTurn);
    EXPECT_NE(liveMatrix(), flat(kStart));
    EXPECT_EQ(recordMatrix(), record);
    info.modelView[3][0] = 77;
    ngl_pop_3d_matrix();
    EXPECT_EQ(liveMatrix(), flat(kStart));
    EXPECT_EQ(info.modelView[3][0], 77);
    NglSetBeingDrawnState(false);
    ngl_pop_3d_matrix();
    EXPECT_EQ(info.modelView[3][0], isUpdated ? kStart[3][0] : 77);
}

TEST_F(View, ViewPointPushesAreCountedAndReset) {
    for (int i = 0; i < 3; ++i)
        UtlPushViewPoint();
    UtlPopViewPoint();
    UtlPushViewPointDelta(&info.pushDelta);
    EXPECT_EQ(info.viewPushCount, 2);
    NglResetViewPush();
    EXPECT_EQ(info.viewPushCount, 0);
    UtlPopViewPointDelta(&info.pushDelta);
    EXPECT_EQ(liveMatrix(), flat(kStart));
}

TEST_F(View, PushDeltaIsAHundredAndFiftyDepthStepsTowardsTheViewer) {
    const struct {
        const char* name;
        double range; ///< from the near to the far plane
        int n;
        double length;
    } rows[] = {{"within the limits", 3, 1, 150 * 3 / 16777206.0}, // 24 bits less 10 steps
                {"smallest step", 0.02, 1, 150 * 1e-8},
                {"largest step", 2e7, 2, 300 * 0.2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        loadOrtho(-4, 4, -4, 4, 0, row.range);
        glLoadIdentity();
        glRotated(90, 0, 1, 0); // the viewer looks along model +x
        NglUpdateNglInfo();
        _NgPoint3Str delta;
        UtlComputeViewDelta(&delta, row.n);
        expectNear(delta, {-row.length, 0, 0}, 1e-6 * row.length);
        expectNear(MathScaled(info.pushDelta, row.n), delta, 1e-6 * row.length);
    }
}

} // namespace
