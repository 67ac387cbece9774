// Conversions between model, view and screen space against GLU and closed forms, with the viewport off the
// origin and the record's view different from the live one.
#include <cmath>
#include <utility>

#include "NRenderUtl/host/hostmath.h"
#include "tests/gl/testview.h"

using namespace nrutest;

namespace {

class Convert : public GlTest {
protected:
    /// Runs a check on an orthographic and on a perspective view; record and live view differ by an angle.
    template <class Check>
    void inBothViews(Check check) {
        for (const bool perspective : {false, true}) {
            SCOPED_TRACE(perspective ? "perspective" : "orthographic");
            record = setLiveView(perspective, 40);
            assign(info.modelView, record.modelView);
            assign(info.projection, record.projection);
            std::ranges::copy(kViewport, info.viewport);
            info.perspective = perspective;
            info.view = {-record.modelView[2], -record.modelView[6], -record.modelView[10]};
            live = setLiveView(perspective, 115);
            check(perspective);
        }
    }

    _NglInfoStr& info = *NglGetNglInfo();
    View record, live;
    _NgPoint3Str point{1.25, -0.75, 2.5}, out, p, q;
};

TEST_F(Convert, PointsFollowTheirProjection) {
    inBothViews([&](bool perspective) {
        ngl_transform_33_s(&point, &out);
        expectNear(out, record.screenOf(point), 1e-9);
        ngl_transform_32(point.x, point.y, point.z, &q.x, &q.y);
        expectNear({q.x, q.y, out.z}, out, 0);
        const _NgPoint3Str shown = live.windowOf(point);
        ngl_transform_33_s_with_mat(&point, live.modelView.data(), live.projection.data(), kViewport.data(),
                                    &out);
        expectNear(out, shown, 1e-9); // no flip of y
        ngl_convert_screen_to_model(17, 23, 1, &out);
        expectNear(live.windowOf(out), {17, 23, 1}, 1e-6);
        double depth = 0.25;
        ngl_get_3D_clip_pt_at_given_depth(&point, &depth, &out);
        expectNear(live.windowOf(out), {shown.x, shown.y, 0.25}, 1e-6);
        NglGetViewVector(17, 23, &p.x, &p.y, &p.z, &q.x, &q.y, &q.z);
        expectNear(record.screenOf(p), {17, 23, 0}, 1e-6);
        // Orthographic: one unit along the view vector, of 50 between the planes.
        expectNear(record.screenOf(q), {17, 23, perspective ? 1 : 1 / 50.0}, 1e-6);
        ngl_convert_model_to_ortho(&point, &out);
        EXPECT_NEAR(UtlTransform33Zp(&point, info.modelView), out.z, 1e-12);
        expectNear(View{kIdentity, record.projection}.windowOf(out), record.windowOf(point), 1e-9);
        ngl_convert_ortho_to_model(&out, &out);
        expectNear(out, point, 1e-12);
    });
}

TEST_F(Convert, UpdateReadsTheLiveView) {
    constexpr double kTolerance = 1e-5; // GL keeps matrices as floats
    inBothViews([&](bool perspective) {
        info.colorIndex = 4;
        info.zoomedOrFit = 1;
        NglUpdateNglInfo();
        EXPECT_EQ(info.colorIndex, -1);
        EXPECT_EQ(info.zoomedOrFit, 0);

        // The vectors and the pixel size lead from pixel to pixel of the live view.
        const _NgPoint3Str next = MathAdd(info.screenOrigin, MathScaled(info.viewX, info.pixelSize));
        expectNear(live.windowOf(info.screenOrigin), {0, 0, 0}, kTolerance);
        expectNear(live.windowOf(next), {1, 0, 0}, kTolerance);
        const _NgPoint3Str above = live.windowOf(MathAdd(next, info.viewY));
        EXPECT_GT(above.y, 0.5);
        expectNear(above, {1, above.y, 0}, kTolerance);
        const _NgPoint3Str behind = live.windowOf(MathAdd(next, info.view));
        EXPECT_GT(behind.z, 0.01);
        expectNear(behind, {1, 0, behind.z}, kTolerance);
        for (const _NgPoint3Str* v : {&info.viewX, &info.viewY, &info.view})
            EXPECT_NEAR(std::hypot(v->x, v->y, v->z), 1, 1e-12);

        const Matrix& m = live.modelView;
        if (!perspective) { // the projection's box without the translation; z falls from near to far
            expectNear(info.orthoMin, {-4 - m[12], -5 - m[13], 20 - m[14]}, kTolerance);
            expectNear(info.orthoMax, {6 - m[12], 3 - m[13], -30 - m[14]}, kTolerance);
        }
        EXPECT_TRUE(std::ranges::equal(info.viewport, kViewport));
        EXPECT_EQ(flat(info.modelView), m);
        EXPECT_EQ(flat(info.modelViewF), m);
        EXPECT_EQ(flat(info.projection), live.projection);
        EXPECT_EQ(flat(info.projectionF), live.projection);
        glMultMatrixd(&info.inverseModelView[0][0]);
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(liveMatrix()[i], kIdentity[i], kTolerance) << i;
    });
}

// GL keeps matrices in floats, so that the view vector leaves the ray by 1e-7 of the way along it.
constexpr double kFloatMatrixPx = 1e-4;

TEST_F(Convert, PointUnderTheCursorLiesInThePlaneAcrossTheRay) {
    inBothViews([&](bool) {
        _NgPoint3Str shown = record.screenOf(point);
        const double sx = std::trunc(shown.x) - 5, sy = std::trunc(shown.y) + 3;
        ngl_get_offset_pt_in_screen(&point, 5, -3, &out);
        shown = record.screenOf(out);
        expectNear(shown, {sx, sy, shown.z}, kFloatMatrixPx);
        NglGetViewVector(static_cast<int>(sx), static_cast<int>(sy), &p.x, &p.y, &p.z, &q.x, &q.y, &q.z);
        EXPECT_NEAR(MathDot(MathDifference(out, point), MathDifference(q, p)), 0, 1e-6);
        EXPECT_EQ(MathGet3dPtFromClickPtGivenRefPt(&out, 17, 23, &out), 1); // in and out may be the same
        shown = record.screenOf(out);
        expectNear(shown, {17, 23, shown.z}, kFloatMatrixPx);
    });
    info.perspective = 0;
    info.view = {0, 0, 0};
    EXPECT_EQ(MathGet3dPtFromClickPtGivenRefPt(&point, 17, 23, &out), 0);
    expectNear(out, point, 0);
}

TEST_F(Convert, ScreenAndViewTakeTheViewportsEdges) {
    // Box (-4, -3) to (4, 7) over columns 8 to 40 and rows 10 to 30: pixels of 0.25 by 0.5.
    info.orthoMin = {-4, -3, 0};
    info.orthoMax = {4, 7, 0};
    std::ranges::copy(std::array{8, 10, 40, 30}, info.viewport);
    int sx = 0, sy = 0;
    ngl_convert_view_to_screen(-9.1, 4.9, &sx, &sy); // towards the minimum, from below it too
    EXPECT_EQ(std::pair(sx, sy), std::pair(8 - 20, 30 - 15));
    double vx = 0, vy = 0;
    ngl_convert_screen_to_view(18, 15, &vx, &vy);
    EXPECT_EQ(std::pair(vx, vy), std::pair(-1.5, 4.5));
    ngl_set_viewport(10, 11, 60, 40);
    ngl_set_viewport(5, 5, 5, 100); // no width: nothing happens
    ngl_set_viewport(5, 5, 50, 5);  // no height
    EXPECT_EQ(liveViewport(), (std::array{10, 11, 50, 29}));
}

TEST_F(Convert, PixelSizeAtAPoint) {
    constexpr double kUnset = 9.87654321e-36;
    // A thousandth of the height of a view of 60 degrees at a distance of 1.
    const double perDistance = 2 / std::sqrt(3.0) / 1000;
    const auto scaleWith = [&](int perspective, const _NgPoint3Str& camera) {
        info.perspective = perspective;
        info.cameraPosition = camera;
        _NgPoint3Str at = {6, 0, 16};
        return ngl_get_ortho_scale_given_point(&at);
    };
    info.pixelSize = 0.75f;
    info.projectionF[1][1] = std::sqrt(3.0f);
    EXPECT_EQ(scaleWith(0, {3, 4, 4}), 0.75) << "orthographic";
    EXPECT_NEAR(scaleWith(1, {3, 4, 4}), 13 * perDistance, 1e-8);
    EXPECT_NEAR(scaleWith(1, {kUnset, kUnset, 8}), 10 * perDistance, 1e-8) << "one coordinate set";
    EXPECT_EQ(scaleWith(1, {kUnset, kUnset, kUnset}), 0.75) << "no camera";
    EXPECT_EQ(scaleWith(1, {0, 0, 0}), 0.75) << "zeros of a record without a camera";
}

TEST_F(Convert, LengthsOfPixels) {
    loadOrtho(-40, 40, -40, 40, -1, 1); // 1.25 a pixel
    double scale = 0;
    UtlRecomputeOrthoScale(&scale);
    EXPECT_NEAR(scale, 0.9 * 1.25, 1e-6);

    std::ranges::copy(std::array{8, 12, 20, 10}, info.viewport);
    // The double-precision matrices stay zero: only the copies may be used.
    assign(info.modelViewF, kIdentity);
    assign(info.projectionF, kIdentity);
    info.modelViewF[0][0] = 0.5f; // 2 / 20 / 0.5 = 0.2 a pixel
    for (const auto& [distance, pixels] : {std::pair{5.5, 4.5}, {-3.0, 4.0}, {0.0, 9.0}, {std::nan(""), 9.0}})
        EXPECT_NEAR(ngl_get_model_dist_for_screen_distance(distance), pixels * 0.2, 1e-12) << distance;
}

} // namespace
