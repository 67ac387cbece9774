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

/// Ends of the lines that a call draws, two for each, in window coordinates, as GL feeds them back.
template <class Draw>
std::vector<_NgPoint3Str> fedBackLines(Draw&& draw) {
    std::vector<GLfloat> fed(1 << 13);
    glFeedbackBuffer(1 << 13, GL_3D, fed.data());
    glRenderMode(GL_FEEDBACK);
    draw();
    fed.resize(glRenderMode(GL_RENDER));
    std::vector<_NgPoint3Str> ends;
    for (std::size_t i = 0; i < fed.size(); i += 7) // a token and two points
        for (const std::size_t k : {i + 1, i + 4})
            ends.push_back({fed[k], fed[k + 1], fed[k + 2]});
    return ends;
}

/// What callbacks of the case wrote.
inline std::string& calls() {
    static std::string log;
    return log;
}

} // namespace nrutest
