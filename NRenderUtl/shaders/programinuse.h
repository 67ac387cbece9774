// Keeps the program in use for the length of a block.
#pragma once

#include "NRenderUtl/host/hostgl.h"

/// Needs a context with shader objects.
class ProgramInUseGuard {
public:
    ProgramInUseGuard() { glGetIntegerv(GL_CURRENT_PROGRAM, &m_program); }
    ~ProgramInUseGuard() { glUseProgram(static_cast<GLuint>(m_program)); }
    ProgramInUseGuard(const ProgramInUseGuard&) = delete;
    ProgramInUseGuard& operator=(const ProgramInUseGuard&) = delete;

private:
    GLint m_program = 0;
};
