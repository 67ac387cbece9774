// What the tests of this folder share: matrices as flat arrays, and a log that callbacks write.
#pragma once

#include <algorithm>
#include <array>
#include <string>

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

/// What callbacks of the case wrote.
inline std::string& calls() {
    static std::string log;
    return log;
}

} // namespace nrutest
