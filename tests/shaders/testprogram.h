// What the tests of this folder share: a program from two sources, GL state and names, the host's messages.
#pragma once

#include <string>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/support/gltest.h"

namespace nrutest {

class TestProgram : public NShaderProgram {
public:
    bool build(const char* vertex, const char* fragment, const char* geometry = nullptr, int inputKind = 0) {
        return CompileProgram(vertex, 1, &fragment, geometry != nullptr, &geometry, inputKind);
    }
    GLuint name() const { return static_cast<GLuint>(m_program); }
};

/// An integer of the GL state.
inline GLint integer(GLenum query) {
    GLint value = 0;
    glGetIntegerv(query, &value);
    return value;
}

/// How many names are alive by one of GL's questions (glIsShader, ...); new contexts number from 1.
template <class IsAlive>
int living(IsAlive isAlive) {
    int count = 0;
    for (GLuint name = 1; name < 2000; ++name)
        count += isAlive(name);
    return count;
}

/// Messages and, with a negative number, diagnostics that the library wrote, one a line.
inline std::string& hostLog() {
    static std::string log;
    return log;
}

inline void captureHostLog() {
    static const auto write = [](int n, const char* text) {
        hostLog() += std::to_string(n) + " " + text + "\n";
    };
    NHostServices services{};
    services.message = [](void*, int kind, const char* text) { write(kind, text); };
    services.diagnostic = [](void*, int level, const char* text) { write(-level, text); };
    NHostSetServices(&services);
}

} // namespace nrutest
