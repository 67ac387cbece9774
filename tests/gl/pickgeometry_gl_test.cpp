// Picking geometry against GLU and closed forms, with the viewport off the origin.
#include <cmath>
#include <functional>
#include <limits>

#include "NRenderUtl/host/hostmath.h"
#include "tests/gl/testview.h"

using namespace nrutest;

namespace {

constexpr int kSx = 17, kSy = 23;
constexpr _NgPoint3Str kUntouched{9, 8, 7}, kNormal{2, -1, 3};
constexpr double kFloatMatrixPx = 1e-4; // GL keeps the matrices of the ray and of its direction in floats
constexpr double kInfinity = std::numeric_limits<double>::infinity();

_NgPoint3Str mix(const _NgPoint3Str& a, const _NgPoint3Str& b, double t) {
    return MathAdd(MathScaled(a, 1 - t), MathScaled(b, t));
}

class PickGeometry : public GlTest {
protected:
    void setView(bool perspective) {
        view = setLiveView(perspective, 40);
        NglUpdateNglInfo();
        NglGetNglInfo()->perspective = perspective;
        MathGetViewVector(kSx, kSy, &p.x, &p.y, &p.z, &q.x, &q.y, &q.z);
    }
    template <class Check>
    void inBothViews(Check check) {
        for (const bool perspective : {false, true}) {
            SCOPED_TRACE(perspective ? "perspective" : "orthographic");
            setView(perspective);
            check();
        }
    }
    /// Picks a plane with everything in the box.
    int pickWithin(const _NgPoint3Str& n, double d, _NgPoint3Str min = {-kInfinity, -kInfinity, -kInfinity},
                   _NgPoint3Str max = {kInfinity, kInfinity, kInfinity}) {
        out = kUntouched;
        return MathDblGetPlanePoint(kSx, kSy, &n.x, &n.y, &n.z, &d, &min, &max, &out);
    }

    View view;
    _NgPoint3Str p, q, out; ///< p and q: the ray under the cursor
};

TEST_F(PickGeometry, PlanesAreMetUnderTheCursor) {
    const _NgPoint3Str onPlane[] = {{6, 0, 0}, {0, -12, 0}, {0, 0, 4}}; // 2 x - y + 3 z = 12
    const _NgPoint3Str low{-1e3, -1e3, -1e3}, high{1e3, 1e3, 1e3};
    const std::function<int()> picks[] = {
        [&] { return MathGetPlanePoint(&out, 2, -1, 3, -12, kSx, kSy); },
        [&] { return MathPickPointOnPlaneEqn(2, -1, 3, -12, kSx, kSy, &out); },
        [&] { return MathGetPointOnPlane(onPlane, kSx, kSy, &out); },
        [&] { return pickWithin(kNormal, -12); },
        [&] { return __MathGetPlanePoint(kSx, kSy, 2, -1, 3, -12, &low, &high, &out); },
    };
    inBothViews([&] {
        expectNear(view.screenOf(p), {kSx, kSy, 0}, 1e-6);
        for (std::size_t i = 0; i < std::size(picks); ++i) {
            out = kUntouched;
            EXPECT_EQ(picks[i](), 0) << i;
            expectNear(view.screenOf(out), {kSx, kSy, view.screenOf(out).z}, kFloatMatrixPx);
            EXPECT_NEAR(2 * out.x - out.y + 3 * out.z, 12, 1e-9) << i;
        }
        const _NgPoint3Str n = MathCross(MathDifference(q, p), {1, 0, 0}); // parallel to the ray
        const _NgPoint3Str onLine[] = {{0, 1, 2}, {1, 2, 3}, {3, 4, 5}};
        out = kUntouched;
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(MathGetPlanePoint(&out, n.x, n.y, n.z, 1, kSx, kSy), -1);
        EXPECT_EQ(MathGetPointOnPlane(onLine, kSx, kSy, &out), -1);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Cannot form Plane equation\n");
        expectNear(out, kUntouched, 0);
    });
}

TEST_F(PickGeometry, RaysWithinTwoDegreesOfThePlaneAreRefused) {
    inBothViews([&] {
        const _NgPoint3Str ray = MathDifference(q, p);
        _NgPoint3Str side = MathCross(ray, {1, 0, 0});
        MathNormalise(side);
        for (const auto& [angle, code] :
             {std::pair{89.0, 24}, {87.9, 0}, {88.1, 24}, {91.9, 24}, {92.1, 0}}) {
            const double rad = angle * std::acos(-1) / 180, length = MathLength(ray);
            const _NgPoint3Str n =
                MathAdd(MathScaled(ray, std::cos(rad)), MathScaled(side, length * std::sin(rad)));
            EXPECT_EQ(pickWithin(n, -MathDot(n, mix(p, q, 3))), code) << angle;
            expectNear(out, code == 0 ? mix(p, q, 3) : kUntouched, 1e-8);
        }
        EXPECT_EQ(pickWithin({0, 0, 0}, 1), -1) << "the intersection's own code";
    });
}

TEST_F(PickGeometry, BoxesHoldOnlyTheirInside) {
    inBothViews([&] {
        ASSERT_EQ(pickWithin(kNormal, -12), 0);
        const _NgPoint3Str found = out, low = MathAdd(found, {-1, -1, -1}), high = MathAdd(found, {1, 1, 1});
        for (double _NgPoint3Str::*axis : {&_NgPoint3Str::x, &_NgPoint3Str::y, &_NgPoint3Str::z})
            for (const double side : {-1.0, 1.0}) {
                _NgPoint3Str min = low, max = high, &corner = side < 0 ? min : max;
                corner.*axis = found.*axis;
                EXPECT_EQ(pickWithin(kNormal, -12, min, max), 24);
                expectNear(out, found, 0);
                corner.*axis = std::nextafter(found.*axis, side * kInfinity);
                EXPECT_EQ(pickWithin(kNormal, -12, min, max), 0);
            }
        out = low;
        EXPECT_EQ(__MathGetPlanePoint(kSx, kSy, 2, -1, 3, -12, &out, &high, &out), 0) << "out is the corner";
        expectNear(out, found, 0);
    });
}

TEST_F(PickGeometry, LinesAreFollowedBeyondTheirEndsByTheFractionOnTheScreen) {
    const struct {
        double ax, ay, bx, by; ///< ends on the screen, at different depths
        int sx, sy;
        double fraction; ///< by hand
    } rows[] = {
        {10, 20, 40, 20, 25, 20, 0.5},        {10, 20, 40, 20, 55, 33, 1.5},    {10, 20, 40, 20, 4, -9, -0.2},
        {10, 5, 10, 30, 60, 35, 1.2},         {10, 5, 10, 30, 9, 0, -0.2},      {0, 0, 30, 40, 50, 0, 0.6},
        {10, 20, 11.01, 20, 12, 0, 2 / 1.01}, {10, 20, 10.9, 21.01, 10, 20, 0},
    };
    inBothViews([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.fraction);
            const _NgPoint3Str a = view.modelAt(row.ax, row.ay, 0.1), b = view.modelAt(row.bx, row.by, 0.7);
            for (const int aliased : {0, 1, 2}) {
                _NgPoint3Str ends[] = {a, b, kUntouched};
                _NgPoint3Str& to = ends[aliased];
                EXPECT_EQ(MathGetNearestPointOnLineFromScreenPt(ends, ends + 1, row.sx, row.sy, &to), 0);
                expectNear(to, mix(a, b, row.fraction), 1e-9);
            }
        }
        const _NgPoint3Str a = view.modelAt(10, 20, 0.1), b = view.modelAt(10.99, 19.01, 0.7);
        EXPECT_EQ(MathGetNearestPointOnLineFromScreenPt(&a, &b, 60, 60, &out), 1) << "one pixel";
        expectNear(out, a, 0);
    });
}

TEST_F(PickGeometry, ViewSpaceKeepsTheRotationAlone) {
    inBothViews([&] {
        _NgPoint3Str at{3, -4, 12}, inView;
        ngl_convert_model_to_ortho(&at, &inView);
        out = at;
        MathTransformWorldToView(&out, &out);
        expectNear(out, MathDifference(inView, {0.5, -1, -9}), 1e-9);
        double a = 0, b = 0, c = 0, d = 0;
        MathGetViewPlaneFromPoint(&at, &a, &b, &c, &d);
        EXPECT_NEAR(a * at.x + b * at.y + c * at.z + d, 0, 1e-6);
        _NgPoint3Str normal{a, b, c};
        MathTransformWorldToView(&normal, &normal);
        expectNear(normal, {0, 0, 1}, 1e-6);
    });
}

TEST_F(PickGeometry, LinesCrossTheOrthographicBoxUnderTheCursor) {
    setView(false);
    NglGetLineFromScreenPt(kSx, kSy, &p, &q);
    // The viewport's edges: the box lies over columns 8 to 50 and the 28 rows up to 40.
    const double x = 8 + (kSx - 8) * 50.0 / 42, y = 40 - (12 + (40 - kSy) * 40.0 / 28);
    expectNear(view.screenOf(p), {x, y, 0}, 1e-5);
    expectNear(view.screenOf(q), {x, y, 1}, 1e-5);
}

} // namespace
