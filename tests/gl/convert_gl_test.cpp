// Conversions between model, view and screen space against the projection's definition, with the record's
// view and the live one different wherever both exist.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "NRenderUtl/gl/ngl.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"

namespace {

struct Projection {
    double modelView[16], projection[16];
    int viewport[4];
};

/// The mapping of OpenGL written out: clip = P M p, divided by w, onto the viewport and depths 0 to 1.
_NgPoint3Str windowOf(const Projection& view, const _NgPoint3Str& p) {
    std::array<double, 4> v{p.x, p.y, p.z, 1};
    for (const double* m : {view.modelView, view.projection}) {
        std::array<double, 4> r{};
        for (int i = 0; i < 16; ++i)
            r[i % 4] += m[i] * v[i / 4];
        v = r;
    }
    return {view.viewport[0] + view.viewport[2] * (v[0] / v[3] + 1) / 2,
            view.viewport[1] + view.viewport[3] * (v[1] / v[3] + 1) / 2, (v[2] / v[3] + 1) / 2};
}

void expectNear(const _NgPoint3Str& a, const _NgPoint3Str& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

struct ViewRow {
    const char* name;
    bool perspective;
    int x, y, w, h;
};

const ViewRow kViews[] = {
    {"orthographic", false, 0, 0, 64, 48},
    {"orthographic, viewport off the origin", false, 8, 12, 50, 40},
    {"perspective", true, 0, 0, 64, 48},
    {"perspective, viewport off the origin", true, 8, 12, 50, 40},
};

/// Puts the row's view into GL, turned by an angle, and returns it.
Projection setLiveView(const ViewRow& row, double angle) {
    glViewport(row.x, row.y, row.w, row.h);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    row.perspective ? glFrustum(-1, 2, -1.5, 1, 2, 40) : glOrtho(-4, 6, -5, 3, -20, 30);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslated(0.5, -1, -9);
    glRotated(angle, 1, 2, -0.5);
    Projection live;
    glGetDoublev(GL_MODELVIEW_MATRIX, live.modelView);
    glGetDoublev(GL_PROJECTION_MATRIX, live.projection);
    glGetIntegerv(GL_VIEWPORT, live.viewport);
    return live;
}

class Convert : public nrutest::GlTest {
protected:
    _NglInfoStr& info = *NglGetNglInfo();

    /// A record and a live view that differ.
    void setViews(const ViewRow& row) {
        record = setLiveView(row, 40);
        std::copy_n(record.modelView, 16, &info.modelView[0][0]);
        std::copy_n(record.projection, 16, &info.projection[0][0]);
        std::copy_n(record.viewport, 4, info.viewport);
        info.perspective = row.perspective;
        info.view = {-record.modelView[2], -record.modelView[6], -record.modelView[10]};
        live = setLiveView(row, 115);
    }
    /// The record's screen point: y is downward from the viewport's fourth value.
    _NgPoint3Str screenOf(const _NgPoint3Str& p) const {
        const _NgPoint3Str w = windowOf(record, p);
        return {w.x, record.viewport[3] - w.y, w.z};
    }

    Projection record, live;
    _NgPoint3Str point{1.25, -0.75, 2.5};
};

TEST_F(Convert, PointsFollowTheirProjection) {
    for (const ViewRow& row : kViews) {
        SCOPED_TRACE(row.name);
        setViews(row);
        _NgPoint3Str out, q;
        _NgPoint2Str flat;
        ngl_transform_33_s(&point, &out);
        expectNear(out, screenOf(point), 1e-9);
        ngl_transform_33(point.x, point.y, point.z, &q.x, &q.y, &q.z);
        expectNear(q, out, 0);
        ngl_transform_32_s(&point, &flat);
        expectNear({flat.x, flat.y, out.z}, out, 0);
        ngl_transform_33_s_with_mat(&point, live.modelView, live.projection, live.viewport, &out);
        const _NgPoint3Str shown = windowOf(live, point);
        expectNear(out, shown, 1e-9); // no flip of y
        ngl_convert_screen_to_model(17, 23, 1, &out);
        expectNear(windowOf(live, out), {17, 23, 1}, 1e-6);
        double depth = 0.25;
        ngl_get_3D_clip_pt_at_given_depth(&point, &depth, &out);
        expectNear(windowOf(live, out), {shown.x, shown.y, 0.25}, 1e-6);
        NglGetViewVector(17, 23, &out.x, &out.y, &out.z, &q.x, &q.y, &q.z);
        expectNear(screenOf(out), {17, 23, 0}, 1e-6);
        // Orthographic: one unit along the view vector, of 50 between the planes.
        expectNear(screenOf(q), {17, 23, row.perspective ? 1 : 1 / 50.0}, 1e-6);
        ngl_convert_model_to_ortho(&point, &out);
        EXPECT_NEAR(UtlTransform33Zp(&point, info.modelView), out.z, 1e-12);
        glLoadMatrixd(record.modelView);
        glTranslated(point.x, point.y, point.z);
        double moved[16]; // its translation is the transformed point
        glGetDoublev(GL_MODELVIEW_MATRIX, moved);
        expectNear(out, {moved[12], moved[13], moved[14]}, 1e-5);
        ngl_convert_ortho_to_model(&out, &out);
        expectNear(out, point, 1e-12);
    }
}

TEST_F(Convert, UpdateReadsTheLiveView) {
    for (const ViewRow& row : kViews) {
        SCOPED_TRACE(row.name);
        setViews(row);
        info.colorIndex = 4;
        info.zoomedOrFit = 1;
        const nrutest::GlSnapshot before = nrutest::GlSnapshot::take();
        NglUpdateNglInfo();
        EXPECT_TRUE(before.equals(nrutest::GlSnapshot::take()));
        EXPECT_EQ(info.colorIndex, -1);
        EXPECT_EQ(NglIsZoomedOrFit(), 0);

        // The vectors and the pixel size lead from pixel to pixel of the live view.
        constexpr double kTolerance = 1e-5; // GL keeps matrices as floats
        const auto from = [](const _NgPoint3Str& p, const _NgPoint3Str& v, double t) {
            return _NgPoint3Str{p.x + t * v.x, p.y + t * v.y, p.z + t * v.z};
        };
        expectNear(windowOf(live, info.screenOrigin), {0, 0, 0}, kTolerance);
        const _NgPoint3Str next = from(info.screenOrigin, info.viewX, info.pixelSize);
        expectNear(windowOf(live, next), {1, 0, 0}, kTolerance);
        for (const _NgPoint3Str* v : {&info.viewX, &info.viewY, &info.view})
            EXPECT_NEAR(std::hypot(v->x, v->y, v->z), 1, 1e-12);
        const _NgPoint3Str above = windowOf(live, from(next, info.viewY, 1)),
                           behind = windowOf(live, from(next, info.view, 1));
        EXPECT_GT(above.y, 0.5);
        expectNear(above, {1, above.y, 0}, kTolerance);
        EXPECT_GT(behind.z, 0.01);
        expectNear(behind, {1, 0, behind.z}, kTolerance);

        if (!row.perspective) { // the projection's box without the translation; z falls from near to far
            const double* m = live.modelView;
            expectNear(info.orthoMin, {-4 - m[12], -5 - m[13], 20 - m[14]}, kTolerance);
            expectNear(info.orthoMax, {6 - m[12], 3 - m[13], -30 - m[14]}, kTolerance);
        }
        EXPECT_TRUE(std::ranges::equal(info.viewport, live.viewport));
        for (int i = 0; i < 16; ++i) {
            const double m = live.modelView[i], p = live.projection[i];
            EXPECT_EQ((&info.modelView[0][0])[i], m);
            EXPECT_EQ((&info.modelViewF[0][0])[i], static_cast<float>(m));
            EXPECT_EQ((&info.projection[0][0])[i], p);
            EXPECT_EQ((&info.projectionF[0][0])[i], static_cast<float>(p));
        }
        glMultMatrixd(&info.inverseModelView[0][0]);
        double identity[16];
        glGetDoublev(GL_MODELVIEW_MATRIX, identity);
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(identity[i], i % 5 == 0, kTolerance) << i;
    }
}

TEST_F(Convert, QueriesHandOutTheRecord) {
    setViews(kViews[1]);
    info.orthoMin = {1, 2, 3};
    info.orthoMax = {4, 5, 6};
    info.viewX = {7, 8, 9};
    info.viewY = {10, 11, 12};
    info.view = {13, 14, 15};
    double box[6];
    ngl_get_ortho_3d(&box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    EXPECT_TRUE(std::ranges::equal(box, std::array{1, 2, 3, 4, 5, 6}));
    _NgPoint3Str v[5];
    ngl_get_ortho_3d_p(&v[0], &v[1]);
    ngl_get_view_x_vector(&v[2]);
    ngl_get_view_y_vector(&v[3]);
    ngl_get_view_vector(&v[4]);
    for (int i = 0; i < 5; ++i)
        expectNear(v[i], {3.0 * i + 1, 3.0 * i + 2, 3.0 * i + 3}, 0);
    double m[4][4];
    nglGetSilhoutteMatrix(m);
    EXPECT_TRUE(std::equal(live.modelView, live.modelView + 16, &m[0][0]));
    ngl_get_global_matrix(m);
    std::fill_n(record.modelView + 12, 3, 0);
    EXPECT_TRUE(std::equal(record.modelView, record.modelView + 16, &m[0][0]));
    ngl_get_view_matrix(m);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(m[i / 4][i % 4], i % 5 == 0);
}

// GL keeps matrices in floats, so that the view vector leaves the ray by 1e-7 of the way along it.
constexpr double kFloatMatrixPx = 1e-4;

TEST_F(Convert, PointUnderTheCursorLiesInThePlaneAcrossTheRay) {
    for (const ViewRow& row : kViews) {
        SCOPED_TRACE(row.name);
        setViews(row);
        const _NgPoint3Str shown = screenOf(point);
        const double sx = std::trunc(shown.x) - 5, sy = std::trunc(shown.y) + 3;
        _NgPoint3Str out, p, q;
        ngl_get_offset_pt_in_screen(&point, 5, -3, &out);
        expectNear({screenOf(out).x, screenOf(out).y, 0}, {sx, sy, 0}, kFloatMatrixPx);
        NglGetViewVector(static_cast<int>(sx), static_cast<int>(sy), &p.x, &p.y, &p.z, &q.x, &q.y, &q.z);
        const double across = (out.x - point.x) * (q.x - p.x) + (out.y - point.y) * (q.y - p.y) +
                              (out.z - point.z) * (q.z - p.z);
        EXPECT_NEAR(across, 0, 1e-6);
        EXPECT_EQ(MathGet3dPtFromClickPtGivenRefPt(&point, 17, 23, &point), 1); // out may be the reference
        expectNear({screenOf(point).x, screenOf(point).y, 0}, {17, 23, 0}, kFloatMatrixPx);
    }
    setViews(kViews[0]);
    info.view = {0, 0, 0};
    _NgPoint3Str out{};
    EXPECT_EQ(MathGet3dPtFromClickPtGivenRefPt(&point, 17, 23, &out), 0);
    expectNear(out, point, 0);
}

TEST_F(Convert, ScreenAndViewTakeTheViewportsEdges) {
    // Box (-4, -3) to (4, 7) over columns 8 to 40 and rows 10 to 30: pixels of 0.25 by 0.5.
    info.orthoMin = {-4, -3, 0};
    info.orthoMax = {4, 7, 0};
    std::copy_n(std::array{8, 10, 40, 30}.begin(), 4, info.viewport);
    const struct {
        const char* name;
        double vx, vy;
        int sx, sy;
    } rows[] = {
        {"left bottom", -4, -3, 8, 30},
        {"inside", -1.5, 4.5, 18, 15},
        {"part of a pixel is dropped", -1.3, 4.9, 18, 15},
        {"towards zero below the minimum", -4.6, -3.9, 6, 31},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        int sx = 0, sy = 0;
        ngl_convert_view_to_screen(row.vx, row.vy, &sx, &sy);
        EXPECT_EQ(sx, row.sx);
        EXPECT_EQ(sy, row.sy);
        double vx = 0, vy = 0;
        ngl_convert_screen_to_view(sx, sy, &vx, &vy);
        EXPECT_DOUBLE_EQ(vx, -4 + 0.25 * (row.sx - 8));
        EXPECT_DOUBLE_EQ(vy, -3 + 0.5 * (30 - row.sy));
    }
}

TEST_F(Convert, PixelSizeAtAPoint) {
    constexpr double kUnset = 9.87654321e-36;
    // A thousandth of the height of a view of 60 degrees at a distance of 1.
    const double perDistance = 2 / std::sqrt(3.0) / 1000;
    const struct {
        const char* name;
        int perspective;
        _NgPoint3Str camera;
        double expected; ///< at the point (6, 0, 16)
    } rows[] = {
        {"orthographic", 0, {3, 4, 4}, 0.75},
        {"perspective", 1, {3, 4, 4}, 13 * perDistance},
        {"one coordinate set", 1, {kUnset, kUnset, 8}, 10 * perDistance},
        {"just beyond the marker", 1, {0, 0, 2.1 * kUnset}, std::sqrt(292.0) * perDistance},
        {"no camera", 1, {kUnset, kUnset, kUnset}, 0.75},
        {"zeros of a record without a camera", 1, {0, 0, 0}, 0.75},
    };
    info.pixelSize = 0.75f;
    info.projectionF[1][1] = std::sqrt(3.0f);
    for (const auto& row : rows) {
        info.perspective = row.perspective;
        info.cameraPosition = row.camera;
        _NgPoint3Str at = {6, 0, 16};
        EXPECT_NEAR(ngl_get_ortho_scale_given_point(&at), row.expected, 1e-8) << row.name;
    }
}

TEST_F(Convert, LengthsOfPixels) {
    glMatrixMode(GL_PROJECTION);
    glOrtho(-40, 40, -40, 40, -1, 1); // 1.25 a pixel
    double scale = 0;
    UtlRecomputeOrthoScale(&scale);
    EXPECT_NEAR(scale, 0.9 * 1.25, 1e-6);
    EXPECT_EQ(scale, static_cast<float>(scale));

    std::copy_n(std::array{8, 12, 20, 10}.begin(), 4, info.viewport);
    // The double-precision matrices stay zero: only the copies may be used.
    for (int i = 0; i < 4; ++i)
        info.modelViewF[i][i] = info.projectionF[i][i] = 1;
    info.modelViewF[0][0] = 0.5f;
    const double pixel = 2.0 / 20 / 0.5, nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [distance, pixels] : {std::pair{5.5, 4.5}, {-3.0, 4.0}, {0.0, 9.0}, {nan, 9.0}})
        EXPECT_NEAR(ngl_get_model_dist_for_screen_distance(distance), pixels * pixel, 1e-12) << distance;
}

TEST_F(Convert, ViewportIsSetFromCorners) {
    using Box = std::array<int, 4>;
    for (const auto& [corners, viewport] : {std::pair{Box{10, 11, 60, 40}, Box{10, 11, 50, 29}},
                                            {{5, 5, 5, 100}, {1, 2, 3, 4}}, // no width
                                            {{5, 5, 50, 5}, {1, 2, 3, 4}},  // no height
                                            {{10, 10, 0, 0}, {1, 2, 3, 4}}}) {
        glViewport(1, 2, 3, 4);
        ngl_set_viewport(corners[0], corners[1], corners[2], corners[3]);
        EXPECT_EQ(takeGlErrors(), corners[2] == 0) << "a negative size is GL's to refuse";
        Box now;
        double modelView[16], projection[16];
        ngl_get_std_matrices(modelView, projection, now.data());
        EXPECT_EQ(now, viewport) << corners[2];
    }
}

} // namespace
