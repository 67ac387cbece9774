// The math library against GLM, against constructions with known answers and on degenerate input.
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

#include "NRenderUtl/host/hostmath.h"

namespace {

using glm::dmat4;
using glm::dvec3;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The same layouts, so that one reads as the other.
_NgPoint3Str p(const dvec3& v) {
    return {v.x, v.y, v.z};
}
auto& n(dmat4& m) {
    return reinterpret_cast<NgMatrix&>(m);
}

double distance(const _NgPoint3Str& a, const dvec3& b) {
    return glm::length(dvec3(a.x, a.y, a.z) - b);
}
double distance(const dmat4& a, const dmat4& b) {
    const dmat4 d = a - b;
    return glm::length(d[0]) + glm::length(d[1]) + glm::length(d[2]) + glm::length(d[3]);
}

// Asymmetric and without zeros.
const dmat4 kStart{1, 2, -3, 0.5, 4, -1, 2, -0.3, 0.7, 5, 1, 0.2, -2, 3, 6, 1.5};
const dmat4 kOther{2, -1, 0.3, 4, 1, 1, -5, 2, 0.1, 3, 2, -2, 4, -3, 1, 0.6};

TEST(Matrix, ProductsAreOpenGLs) {
    dmat4 b = kOther;
    const dvec3 axis(1.5, -2, 0.25), a(1, -2, 3);
    const std::pair<std::function<void(NgMatrix)>, dmat4> rows[] = {
        {[&](NgMatrix m) { NglMultiply(m, n(b), m); }, kStart * kOther},
        {[&](NgMatrix m) { NglMultiply(n(b), m, m); }, kOther * kStart},
        {[&](NgMatrix m) { NglTranspose(m, m); }, glm::transpose(kStart)},
        {[&](NgMatrix m) { NglTranslate(m, 1, -2, 3); }, glm::translate(kStart, a)},
        {[&](NgMatrix m) { NglScale(m, 1, -2, 3); }, glm::scale(kStart, a)},
        {[&](NgMatrix m) { NglRotate(m, 45, p(axis)); }, glm::rotate(kStart, M_PI / 4, axis)},
        {[&](NgMatrix m) { EXPECT_EQ(NglRotate(m, 40, p(dvec3(0))), -1); }, kStart},
    };
    for (const auto& row : rows) {
        dmat4 m = kStart;
        row.first(n(m));
        EXPECT_LT(distance(m, row.second), 1e-13) << &row - rows;
    }
    _NgPoint3Str moved = p(a);
    NglTransform33p(moved, n(b), moved);
    EXPECT_LT(distance(moved, dvec3(kOther * glm::dvec4(a, 1))), 1e-13);
}

TEST(Matrix, InverseIsAccurateOrRefused) {
    dmat4 dependent = kStart, nan = kStart;
    dependent[2] = kStart[0] * 0.3 - kStart[1] * 1.7 + kStart[3] * 0.9;
    nan[1][2] = kNaN;
    for (dmat4 regular :
         {kStart, glm::perspective(0.7, 1.3, 1e-3, 1e5), glm::scale(dmat4(1), {1e-90, 5, 1e100}),
          glm::translate(glm::rotate(dmat4(1), 1.0, {1, 2, 3}), {1e9, -2e9, 3e8})}) {
        dmat4 inverse;
        EXPECT_EQ(NglInverse(n(regular), n(inverse)), 0);
        EXPECT_LT(distance(inverse * regular, dmat4(1)), 1e-6) << regular[0][0];
    }
    for (dmat4 singular : {glm::scale(dmat4(1), {1, 0, 1}), dependent, nan}) {
        EXPECT_EQ(NglInverse(n(singular), n(singular)), -1);
        EXPECT_EQ(singular, dmat4(1));
    }
}

TEST(AlignZAxis, GivesARightHandedFrameForEveryDirection) {
    const dvec3 start(3, -7, 11);
    for (int i = 0; i < 1000; ++i) {
        const double z = 1 - (2 * i + 1.0) / 1000, r = std::sqrt(1 - z * z), phi = i * 2.4;
        const dvec3 onSphere(r * std::cos(phi), r * std::sin(phi), z);
        const dvec3 nearPole(std::exp2(-i), -std::exp2(1 - i), i % 2 ? 1 : -1);
        for (const dvec3& d : {onSphere, glm::normalize(nearPole)}) {
            dmat4 m, rolled;
            ASSERT_EQ(NglAlignZAxisToLine(p(start), p(start + 2.5 * d), 0, n(m)), 0);
            EXPECT_LT(distance(glm::transpose(glm::dmat3(m)) * glm::dmat3(m), dmat4(1)), 1e-14);
            EXPECT_NEAR(glm::determinant(m), 1, 1e-14);
            EXPECT_LT(glm::length(dvec3(m * glm::dvec4(0, 0, 2.5, 1)) - (start + 2.5 * d)), 1e-14);
            NglAlignZAxisToLine(p(start), p(start + 2.5 * d), 30, n(rolled));
            EXPECT_LT(distance(glm::rotate(m, glm::radians(30.0), {0, 0, 1}), rolled), 1e-14);
        }
    }
    dmat4 m, same;
    NglAlignZAxisToLine({0, 0, 0}, {0.25, -0.5, 0}, 0, n(m));
    NglAlignZAxisToLine({0, 0, 0}, {64, -128, -0.0}, 0, n(same));
    EXPECT_EQ(m, same) << "the direction alone counts, and no sign of a zero";
    EXPECT_EQ(NglAlignZAxisToLine({1, 2, 3}, {1, 2, 3}, 45, n(m)), -1);
    EXPECT_EQ(m, glm::translate(dmat4(1), {1, 2, 3}));
}

TEST(Vector, HasADirectionAtAnySizeAndAnAccurateAngle) {
    for (const double size : {1.0, 1e-200, 4e307}) {
        _NgPoint3Str a = {0.48 * size, -0.6 * size, 0.64 * size};
        EXPECT_NEAR(MathLength(a) / size, 1, 1e-15) << size;
        EXPECT_TRUE(MathNormalise(a) == 0 && distance(a, {0.48, -0.6, 0.64}) < 1e-15) << size;
    }
    for (_NgPoint3Str none : {p(dvec3(0)), p({kNaN, 1, 0}), p({0, kInfinity, 1})})
        EXPECT_EQ(MathNormalise(none), -1);
    EXPECT_NEAR(MathAngleDeg({0, 7, 0}, {0, -0.1, 0.1 * std::sqrt(3.0)}), 120, 3e-14);
    EXPECT_NEAR(MathAngleDeg({0, 7, 0}, {0, 1, 1e-10}), glm::degrees(1e-10), 1e-22);
}

TEST(Plane, PassesThroughItsPointsAndMeetsALine) {
    const dvec3 a(1, 2, 4), b(-3, 0.5, 2), c(2, -6, 1), hit = a + 0.3 * (b - a) - 0.8 * (c - a), eye(9, 8, 7);
    NgPlane plane;
    ASSERT_EQ(MathPlaneFromPoints(p(a), p(b), p(c), plane), 0);
    EXPECT_LT(distance({plane.a, plane.b, plane.c}, glm::normalize(glm::cross(b - a, c - a))), 1e-15);
    // Another form of the same plane; the line's two points lie on one side.
    const NgPlane scaled = {-40 * plane.a, -40 * plane.b, -40 * plane.c, -40 * plane.d};
    _NgPoint3Str out;
    ASSERT_EQ(MathIntersectLinePlane(p(eye), p(eye + 0.1 * (hit - eye)), scaled, out), 0);
    EXPECT_LT(distance(out, hit), 1e-13);

    const std::pair<_NgPoint3Str, NgPlane> degenerate[] = {// parallel, no line, no normal
                                                           {{0.1, 0.7, 1}, {0, 0, 1, 0}},
                                                           {{0, 0, 1}, {0, 0, 1, 0}},
                                                           {{0, 0, 2}, {0, 0, 0, 1}}};
    for (const auto& [q, bad] : degenerate)
        EXPECT_EQ(MathIntersectLinePlane({0, 0, 1}, q, bad, out), -1);
    EXPECT_LT(distance(out, hit), 1e-13) << "left as it was";
    EXPECT_EQ(MathPlaneFromPoints({0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.3, 0.6, 0.9}, plane), -1);
}

TEST(Line, NearestPointsOfAPointAndOfALine) {
    const dvec3 a(1, -2, 3), b(4, 2, 15), along(0.3, -2, 1),
        across = glm::normalize(glm::cross(b - a, along));
    using enum NgSegmentSpot;
    const std::pair<double, NgSegmentSpot> rows[] = {{-0.75, Start}, {0.3, Inside}, {2.5, End}};
    for (const auto& [t, spot] : rows) {
        const dvec3 foot = a + t * (b - a), end = t < 0 ? a : t > 1 ? b : foot, off = foot + 6.0 * across;
        _NgPoint3Str onLine, onSegment;
        double tLine, tSegment;
        MathNearestPointOnLine(p(a), p(b), p(off), onLine, &tLine);
        MathNearestPointOnSegment(p(a), p(b), p(off), onSegment, &tSegment);
        EXPECT_LT(distance(onLine, foot) + distance(onSegment, end), 1e-13) << t;
        EXPECT_LT(std::fabs(tLine - t) + std::fabs(tSegment - std::clamp(t, 0.0, 1.0)), 1e-14) << t;

        const dvec3 q = off - 40.0 * along;
        const auto s = MathNearestPointOnSegmentFromLine(p(a), p(b), p(q), p(q + 2.0 * along));
        EXPECT_LT(distance(s.point, end) + std::fabs(s.t - t), 1e-11) << t;
        EXPECT_NEAR(s.distance, glm::length(glm::cross(end - q, glm::normalize(along))), 1e-11) << t;
        EXPECT_EQ(s.spot, spot) << t;
    }
    _NgPoint3Str out;
    double t = 9;
    EXPECT_EQ(MathNearestPointOnLine({1, 2, 3}, {1, 2, 3}, {5, 5, 5}, out, &t), -1);
    EXPECT_EQ(distance(out, {1, 2, 3}) + t, 0);
}

TEST(Line, NearestPointOfASegmentWithoutOneAnswer) {
    const auto sum = [](const dvec3& a, const dvec3& b, const dvec3& start, const dvec3& end) {
        const auto nearest = MathNearestPointOnSegmentFromLine(p(a), p(b), p(start), p(end));
        return nearest.t + nearest.distance;
    };
    EXPECT_NEAR(sum({0, 0, 0}, {0.1, 0.2, 0.3}, {0, 0, 7}, {0.7, 1.4, 9.1}), 7 * std::sqrt(5.0 / 14), 1e-12)
        << "parallel";
    EXPECT_NEAR(sum({1, 0, 0}, {1, 0, 0}, {0, 2, -5}, {0, 2, 5}), std::sqrt(5.0), 1e-12) << "no segment";
    EXPECT_NEAR(sum({0, 0, 0}, {4, 0, 0}, {1, 2, 0}, {1, 2, 0}), 2.25, 1e-15) << "no line";
}

} // namespace
