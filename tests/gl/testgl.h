// What the tests of this folder share: matrices as flat arrays, and a log that callbacks write.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "NRenderUtl/gl/nglrecord.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"

namespace nrutest {

using Matrix = std::array<double, 16>;

inline constexpr Matrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

template <class Number>
Matrix flat(const Number (&m)[4][4]) {
    Matrix result;
    std::copy_n(&m[0][0], 16, result.begin());
    return result;
}

template <class Number>
void assign(Number (&to)[4][4], const Matrix& from) {
    std::ranges::copy(from, &to[0][0]);
}

inline Matrix liveMatrix(GLenum which = GL_MODELVIEW_MATRIX) {
    Matrix m;
    glGetDoublev(which, m.data());
    return m;
}

/// A number of GL's state.
inline double stateOf(GLenum name) {
    double value = 0;
    glGetDoublev(name, &value);
    return value;
}

/// Leaves the matrix mode at the model-view.
inline void loadOrtho(double left, double right, double bottom, double top, double nearZ, double farZ) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(left, right, bottom, top, nearZ, farZ);
    glMatrixMode(GL_MODELVIEW);
}

inline std::array<int, 4> liveViewport() {
    std::array<int, 4> viewport;
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    return viewport;
}

inline void expectNear(const _NgPoint3Str& a, const _NgPoint3Str& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

/// Expects a call to draw the segments of a chain, given in window coordinates.
template <class Draw>
void expectChain(Draw&& draw, const std::vector<_NgPoint3Str>& chain) {
    std::vector<GLfloat> fed(1 << 13); // a token and two points for each segment
    glFeedbackBuffer(1 << 13, GL_3D, fed.data());
    glRenderMode(GL_FEEDBACK);
    draw();
    ASSERT_EQ(glRenderMode(GL_RENDER), static_cast<int>(7 * (chain.size() - 1)));
    for (std::size_t i = 0, k = 0; i + 1 < chain.size(); ++i, k += 7) {
        expectNear({fed[k + 1], fed[k + 2], fed[k + 3]}, chain[i], 1e-4);
        expectNear({fed[k + 4], fed[k + 5], fed[k + 6]}, chain[i + 1], 1e-4);
    }
}

/// What callbacks of the case wrote.
inline std::string& calls() {
    static std::string log;
    return log;
}

} // namespace nrutest
