// Maps of an environment that are built quickly, for tests that do not look at what many samples are for.
#pragma once

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <algorithm>

namespace nrutest {

/// From here on programs take a few samples in place of thousands.
inline void takeFewSamples() {
    epoxy_glUniform1i = [](GLint location, GLint value) {
        GLint program = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        if (location == glGetUniformLocation(static_cast<GLuint>(program), "g_count"))
            value = std::min(value, 16);
        reinterpret_cast<PFNGLUNIFORM1IPROC>(eglGetProcAddress("glUniform1i"))(location, value);
    };
}

} // namespace nrutest
