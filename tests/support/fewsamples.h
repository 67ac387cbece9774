// Maps of an environment that are built quickly, for tests that do not look at what many samples are for.
#pragma once

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <string>

namespace nrutest {

/// From here on programs take a few samples in place of thousands.
inline void takeFewSamples() {
    epoxy_glShaderSource = [](GLuint shader, GLsizei count, const GLchar* const* parts, const GLint*) {
        std::string source;
        for (GLsizei i = 0; i < count; ++i)
            source += parts[i];
        const std::string key = "const uint SAMPLES = ";
        if (const std::size_t at = source.find(key); at != source.npos)
            source.replace(at + key.size(), source.find(';', at) - at - key.size(), "16u");
        const GLchar* text = source.c_str();
        reinterpret_cast<PFNGLSHADERSOURCEPROC>(eglGetProcAddress("glShaderSource"))(shader, 1, &text,
                                                                                     nullptr);
    };
}

} // namespace nrutest
