// Names of GL objects for debuggers.
#include "NRenderUtl/shaders/gllabel.h"

void labelGlObject(GLenum kind, GLuint name, const char* text) {
    if (glVersion() >= 43 || epoxy_has_gl_extension("GL_KHR_debug"))
        glObjectLabel(kind, name, -1, text);
}
