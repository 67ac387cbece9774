// The math library against GLM, against constructions with known answers and on degenerate input.
#include "NRenderUtl/host/hostmath.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <gtest/gtest.h>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

glm::dvec3 v(const _NgPoint3Str& p) {
    return {p.x, p.y, p.z};
}

_NgPoint3Str point(const glm::dvec3& p) {
    return {p.x, p.y, p.z};
}

glm::dmat4 g(const NgMatrix m) {
    return glm::make_mat4(m[0]);
}

void set(NgMatrix m, const glm::dmat4& from) {
    std::memcpy(m, &from, sizeof from);
}

double largest(const glm::dmat4& m) {
    double result = 0;
    for (int k = 0; k < 16; ++k)
        result = std::max(result, std::fabs(m[k / 4][k % 4]));
    return result;
}

class Random {
public:
    double value() { return m_distribution(m_engine); }
    glm::dvec3 vector() { return {value(), value(), value()}; }
    glm::dmat4 matrix() {
        glm::dmat4 m;
        for (int k = 0; k < 16; ++k)
            m[k / 4][k % 4] = value();
        return m;
    }

private:
    std::mt19937 m_engine{7};
    std::uniform_real_distribution<double> m_distribution{-5, 5};
};

TEST(Matrix, ProductsAreOpenGLs) {
    struct Row {
        const char* name;
        std::function<void(NgMatrix)> ours;
        std::function<glm::dmat4(const glm::dmat4&)> theirs;
    };
    Random random;
    const glm::dmat4 other = random.matrix();
    NgMatrix b;
    set(b, other);
    const glm::dvec3 axis(1.5, -2, 0.25);
    const Row rows[] = {
        {"a * b", [&](NgMatrix m) { NglMultiply(m, b, m); }, [&](auto& m) { return m * other; }},
        {"b * a", [&](NgMatrix m) { NglMultiply(b, m, m); }, [&](auto& m) { return other * m; }},
        {"concatenate", [&](NgMatrix m) { NglConcatenate(m, b); }, [&](auto& m) { return m * other; }},
        {"square", [&](NgMatrix m) { NglConcatenate(m, m); }, [&](auto& m) { return m * m; }},
        {"transpose", [&](NgMatrix m) { NglTranspose(m, m); }, [&](auto& m) { return glm::transpose(m); }},
        {"translate", [&](NgMatrix m) { NglTranslate(m, 1, -2, 3); },
         [&](auto& m) { return glm::translate(m, glm::dvec3(1, -2, 3)); }},
        {"scale", [&](NgMatrix m) { NglScale(m, 2, 3, -4); },
         [&](auto& m) { return glm::scale(m, glm::dvec3(2, 3, -4)); }},
        {"rotate", [&](NgMatrix m) { EXPECT_EQ(NglRotate(m, 70, point(axis)), 0); },
         [&](auto& m) { return glm::rotate(m, glm::radians(70.0), axis); }},
        {"zero axis",
         [&](NgMatrix m) {
             EXPECT_EQ(NglRotate(m, 70, {0, 0, 0}), -1);
         },
         [&](auto& m) { return m; }},
        {"inverse", [&](NgMatrix m) { EXPECT_EQ(NglInverse(m, m), 0); },
         [&](auto& m) { return glm::inverse(m); }},
    };
    for (const Row& row : rows) {
        const glm::dmat4 start = random.matrix();
        NgMatrix m;
        set(m, start);
        row.ours(m);
        EXPECT_LT(largest(g(m) - row.theirs(start)), 1e-12) << row.name;
    }
}

TEST(Matrix, PointsAreTransformedWithoutDivision) {
    Random random;
    NgMatrix m;
    set(m, random.matrix());
    _NgPoint3Str p = {2, -3, 4};
    const glm::dvec4 expected = g(m) * glm::dvec4(v(p), 1);
    NglTransform33p(p, m, p);
    EXPECT_LT(glm::length(v(p) - glm::dvec3(expected)), 1e-13);
}

TEST(Matrix, InverseStaysAccurateFarFromOne) {
    const std::pair<const char*, glm::dmat4> rows[] = {
        {"perspective", glm::perspective(0.7, 1.3, 1e-3, 1e5)},
        {"far origin", glm::translate(glm::rotate(glm::dmat4(1), 1.0, {1, 2, 3}), {1e9, -2e9, 3e8})},
        {"tiny", glm::scale(glm::dmat4(1), {1e-120, 3e-120, 2e-119})},
        {"mixed", glm::scale(glm::dmat4(1), {1e-90, 5, 1e100})},
        {"orthographic", glm::ortho(-1e-4, 3e-4, -1e-4, 1e-4, -1e7, 1e7)},
    };
    for (const auto& [name, m] : rows) {
        NgMatrix a, inverse;
        set(a, m);
        EXPECT_EQ(NglInverse(a, inverse), 0) << name;
        EXPECT_LT(largest(g(inverse) * m - glm::dmat4(1)), 1e-6) << name;
    }
}

TEST(Matrix, WithoutInverseLeavesIdentity) {
    Random random;
    glm::dmat4 dependent = random.matrix(), nan = random.matrix(), infinite = random.matrix();
    dependent[2] = dependent[0] * 0.3 - dependent[1] * 1.7 + dependent[3] * 0.9;
    nan[1][2] = kNaN;
    infinite[3][0] = kInfinity;
    const std::pair<const char*, glm::dmat4> rows[] = {{"zero", glm::dmat4(0)},
                                                       {"flat", glm::scale(glm::dmat4(1), {1, 0, 1})},
                                                       {"dependent", dependent},
                                                       {"dependent rows", glm::transpose(dependent)},
                                                       {"NaN", nan},
                                                       {"infinite", infinite}};
    for (const auto& [name, m] : rows) {
        NgMatrix a;
        set(a, m);
        EXPECT_EQ(NglInverse(a, a), -1) << name;
        EXPECT_EQ(g(a), glm::dmat4(1)) << name;
    }
}

// Directions all over the sphere, and some that close in on both poles.
std::vector<glm::dvec3> directions() {
    std::vector<glm::dvec3> result;
    constexpr int kCount = 4000;
    for (int i = 0; i < kCount; ++i) {
        const double z = 1 - (2 * i + 1.0) / kCount, r = std::sqrt(1 - z * z), phi = i * 2.399963229728653;
        result.emplace_back(r * std::cos(phi), r * std::sin(phi), z);
    }
    for (double offset = 1e-1; offset > 1e-18; offset /= 10)
        for (double pole : {-1.0, 1.0})
            result.push_back(glm::normalize(glm::dvec3(offset, -2 * offset, pole)));
    result.insert(result.end(), {{0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {0, -1, 0}});
    return result;
}

TEST(AlignZAxis, GivesARightHandedFrameForEveryDirection) {
    const glm::dvec3 start(3, -7, 11);
    for (const glm::dvec3& d : directions()) {
        NgMatrix m, rolled;
        ASSERT_EQ(NglAlignZAxisToLine(point(start), point(start + 2.5 * d), 0, m), 0);
        const glm::dmat3 frame(g(m));
        const std::string name = std::to_string(d.x) + " " + std::to_string(d.y) + " " + std::to_string(d.z);
        const glm::dmat4 gram(glm::transpose(frame) * frame - glm::dmat3(1));
        EXPECT_LT(largest(gram - glm::dmat4(glm::dmat3(0))), 1e-14) << name;
        EXPECT_NEAR(glm::determinant(frame), 1, 1e-14) << name;
        EXPECT_LT(glm::length(glm::dvec3(g(m) * glm::dvec4(0, 0, 2.5, 1)) - (start + 2.5 * d)), 1e-14)
            << name;

        ASSERT_EQ(NglAlignZAxisToLine(point(start), point(start + 2.5 * d), 30, rolled), 0);
        EXPECT_LT(largest(glm::rotate(g(m), glm::radians(30.0), {0, 0, 1}) - g(rolled)), 1e-14) << name;
    }
}

TEST(AlignZAxis, DependsOnTheDirectionAlone) {
    NgMatrix near, far, negativeZero;
    NglAlignZAxisToLine({0, 0, 0}, {0.25, -0.5, 0}, 0, near);
    NglAlignZAxisToLine({0, 0, 0}, {64, -128, 0}, 0, far);
    NglAlignZAxisToLine({0, 0, 0}, {0.25, -0.5, -0.0}, 0, negativeZero);
    EXPECT_EQ(g(near), g(far));
    EXPECT_EQ(g(near), g(negativeZero));
    EXPECT_EQ(NglAlignZAxisToLine({1, 2, 3}, {1, 2, 3}, 45, near), -1);
    EXPECT_EQ(g(near), glm::translate(glm::dmat4(1), {1, 2, 3}));
}

TEST(Vector, KeepsItsDirectionAtAnySize) {
    for (double size : {1.0, 1e-200, 1e200, 1e-307, 4e307}) {
        _NgPoint3Str a = {0.48 * size, -0.6 * size, 0.64 * size};
        EXPECT_NEAR(MathLength(a) / size, 1, 1e-15) << size;
        EXPECT_EQ(MathNormalise(a), 0) << size;
        EXPECT_LT(glm::length(v(a) - glm::dvec3(0.48, -0.6, 0.64)), 1e-15) << size;
    }
    for (const _NgPoint3Str& none : {_NgPoint3Str{0, 0, 0}, _NgPoint3Str{1, kNaN, 0},
                                     _NgPoint3Str{kNaN, 1, 0}, _NgPoint3Str{0, kInfinity, 1}}) {
        _NgPoint3Str a = none;
        EXPECT_EQ(MathNormalise(a), -1);
        EXPECT_EQ(std::memcmp(&a, &none, sizeof a), 0);
    }
}

TEST(Vector, AngleIsAccurateNearBothEnds) {
    for (double degrees : {0.0, 1e-9, 1e-4, 30.0, 90.0, 179.9999, 180 - 1e-9, 180.0}) {
        const double a = glm::radians(degrees), b = glm::radians(180 - degrees);
        const _NgPoint3Str direction = degrees > 90 ? _NgPoint3Str{0, -std::cos(b), std::sin(b)}
                                                    : _NgPoint3Str{0, std::cos(a), std::sin(a)};
        EXPECT_NEAR(MathAngleDeg({0, 7, 0}, MathScaled(direction, 0.1)), degrees, 3e-14) << degrees;
    }
    EXPECT_EQ(MathAngleDeg({0, 0, 0}, {1, 0, 0}), 0);
}

TEST(Plane, PassesThroughItsPoints) {
    Random random;
    for (int i = 0; i < 200; ++i) {
        const glm::dvec3 p[3] = {random.vector(), random.vector(), random.vector()};
        NgPlane plane;
        ASSERT_EQ(MathPlaneFromPoints(point(p[0]), point(p[1]), point(p[2]), plane), 0);
        const glm::dvec3 n(plane.a, plane.b, plane.c);
        EXPECT_NEAR(glm::length(n), 1, 1e-14);
        EXPECT_GT(glm::dot(n, glm::cross(p[1] - p[0], p[2] - p[0])), 0);
        for (const glm::dvec3& on : p)
            EXPECT_NEAR(glm::dot(n, on) + plane.d, 0, 1e-12);

        // Any other form of the same plane meets a line through a point of it in that point.
        const glm::dvec3 hit = p[0] + 0.3 * (p[1] - p[0]) - 0.8 * (p[2] - p[0]),
                         eye = hit + 5.0 * n + random.vector();
        const NgPlane scaled = {-40 * plane.a, -40 * plane.b, -40 * plane.c, -40 * plane.d};
        _NgPoint3Str out;
        ASSERT_EQ(MathIntersectLinePlane(point(eye), point(eye + 0.1 * (hit - eye)), scaled, out), 0);
        EXPECT_LT(glm::length(v(out) - hit), 1e-10);
    }
}

TEST(Plane, ThatIsNoneIsRefused) {
    NgPlane plane = {1, 2, 3, 4};
    EXPECT_EQ(MathPlaneFromPoints({0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.3, 0.6, 0.9}, plane), -1);
    EXPECT_EQ(MathPlaneFromPoints({1, 1, 1}, {1, 1, 1}, {2, 0, 0}, plane), -1);
    EXPECT_EQ(plane.a + plane.b + plane.c + plane.d, 10);

    _NgPoint3Str out = {7, 8, 9};
    EXPECT_EQ(MathIntersectLinePlane({0, 0, 1}, {0.1, 0.7, 1}, {0, 0, 1, 0}, out), -1) << "parallel";
    EXPECT_EQ(MathIntersectLinePlane({0, 0, 1}, {0, 0, 1}, {0, 0, 1, 0}, out), -1) << "no line";
    EXPECT_EQ(MathIntersectLinePlane({0, 0, 1}, {0, 0, 2}, {0, 0, 0, 1}, out), -1) << "no normal";
    EXPECT_EQ(v(out), glm::dvec3(7, 8, 9));
}

TEST(Line, NearestPointOfAPoint) {
    const glm::dvec3 a(1, -2, 3), b(4, 2, 15),
        across = glm::normalize(glm::cross(b - a, glm::dvec3(1, 5, -2)));
    for (double t : {-0.75, 0.0, 0.3, 1.0, 2.5}) {
        const glm::dvec3 foot = a + t * (b - a);
        _NgPoint3Str onLine, onSegment;
        double tLine, tSegment;
        EXPECT_EQ(MathNearestPointOnLine(point(a), point(b), point(foot + 6.0 * across), onLine, &tLine), 0);
        EXPECT_EQ(
            MathNearestPointOnSegment(point(a), point(b), point(foot + 6.0 * across), onSegment, &tSegment),
            0);
        EXPECT_NEAR(tLine, t, 1e-14);
        EXPECT_NEAR(tSegment, std::min(std::max(t, 0.0), 1.0), 1e-14);
        EXPECT_LT(glm::length(v(onLine) - foot), 1e-13) << t;
        EXPECT_LT(glm::length(v(onSegment) - (t < 0 ? a : t > 1 ? b : foot)), 1e-13) << t;
    }
    _NgPoint3Str out;
    double t = 9;
    EXPECT_EQ(MathNearestPointOnLine({1, 2, 3}, {1, 2, 3}, {5, 5, 5}, out, &t), -1);
    EXPECT_EQ(v(out), glm::dvec3(1, 2, 3));
    EXPECT_EQ(t, 0);
}

TEST(Line, NearestPointOfASegment) {
    const glm::dvec3 a(1, -2, 3), b(4, 2, 15), along(0.3, -2, 1);
    const glm::dvec3 across = glm::normalize(glm::cross(b - a, along));
    const std::pair<double, NgSegmentSpot> rows[] = {{-0.5, NgSegmentSpot::Start},
                                                     {0.25, NgSegmentSpot::Inside},
                                                     {0.8, NgSegmentSpot::Inside},
                                                     {1.5, NgSegmentSpot::End}};
    for (const auto& [t, spot] : rows) {
        const glm::dvec3 p = a + t * (b - a) + 6.0 * across - 40.0 * along;
        const NgSegmentNearest n =
            MathNearestPointOnSegmentFromLine(point(a), point(b), point(p), point(p + 2.0 * along));
        const glm::dvec3 nearest = a + std::min(std::max(t, 0.0), 1.0) * (b - a);
        EXPECT_EQ(n.spot, spot) << t;
        EXPECT_NEAR(n.t, t, 1e-12);
        EXPECT_LT(glm::length(v(n.point) - nearest), 1e-11) << t;
        const double distance = glm::length(glm::cross(nearest - p, glm::normalize(along)));
        EXPECT_NEAR(n.distance, distance, 1e-11) << t;
    }
}

TEST(Line, NearestPointOfASegmentWithoutOneAnswer) {
    struct Row {
        const char* name;
        _NgPoint3Str a, b, p, q;
        double t, distance;
    };
    const Row rows[] = {
        {"parallel", {0, 0, 0}, {2, 0, 0}, {5, 3, 4}, {-9, 3, 4}, 0, 5},
        {"skew parallel", {0, 0, 0}, {0.1, 0.2, 0.3}, {0, 0, 7}, {0.7, 1.4, 9.1}, 0, 7 * std::sqrt(5.0 / 14)},
        {"no segment", {1, 0, 0}, {1, 0, 0}, {0, 2, -5}, {0, 2, 5}, 0, std::sqrt(5.0)},
        {"no line", {0, 0, 0}, {4, 0, 0}, {1, 2, 0}, {1, 2, 0}, 0.25, 2},
    };
    for (const Row& row : rows) {
        const NgSegmentNearest n = MathNearestPointOnSegmentFromLine(row.a, row.b, row.p, row.q);
        EXPECT_DOUBLE_EQ(n.t, row.t) << row.name;
        EXPECT_NEAR(n.distance, row.distance, 1e-12) << row.name;
        EXPECT_EQ(n.spot, row.t > 0 ? NgSegmentSpot::Inside : NgSegmentSpot::Start) << row.name;
    }
}

TEST(Float, ClassesFollowTheDoubleOnes) {
    Random random;
    const glm::mat4 a(random.matrix()), b(random.matrix());
    NgFMatrix4 fa, fb, inverse;
    std::memcpy(fa.m, &a, sizeof a);
    std::memcpy(fb.m, &b, sizeof b);
    const auto difference = [](const NgFMatrix4& ours, const glm::mat4& theirs) {
        return largest(glm::dmat4(glm::make_mat4(ours.m) - theirs));
    };
    EXPECT_LT(difference(fa * fb, a * b), 1e-4);
    EXPECT_EQ(difference(fa.transposed(), glm::transpose(a)), 0);
    EXPECT_EQ(fa.inverse(inverse), 0);
    EXPECT_LT(difference(inverse * fa, glm::mat4(1)), 1e-5);
    const NgFMatrix4 singular{{1, 2, 3, 4, 2, 4, 6, 8, 0, 0, 1, 0, 0, 0, 0, 1}};
    EXPECT_EQ(singular.inverse(inverse), -1);
    EXPECT_EQ(difference(inverse, glm::mat4(1)), 0);

    const glm::vec4 p(1, -2, 3, 1), d(1, -2, 3, 0);
    const NgFPoint3 moved = fa.transformPoint({1, -2, 3}), turned = fa.transformVector({1, -2, 3});
    EXPECT_LT(glm::length(glm::vec3(moved.x, moved.y, moved.z) - glm::vec3(a * p)), 1e-5);
    EXPECT_LT(glm::length(glm::vec3(turned.x, turned.y, turned.z) - glm::vec3(a * d)), 1e-5);
    const NgFVector3 cross = NgFVector3{1, 2, 3}.cross({-4, 5, 0.5f});
    EXPECT_EQ(glm::vec3(cross.x, cross.y, cross.z), glm::cross(glm::vec3(1, 2, 3), glm::vec3(-4, 5, 0.5f)));
    NgFVector3 large = {3e30f, 0, -4e30f};
    EXPECT_EQ(large.length(), 5e30f);
    EXPECT_EQ(large.normalise(), 0);
    EXPECT_FLOAT_EQ(large.x, 0.6f);
    EXPECT_FLOAT_EQ(MathFltPoint3Distance({1, 2, 3}, {1, 6, 0}), 5);
}

} // namespace
