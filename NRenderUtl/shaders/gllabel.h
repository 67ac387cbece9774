// Names of GL objects for debuggers.
#pragma once

#include "NRenderUtl/host/hostgl.h"

/// Labels an object (kind GL_PROGRAM, GL_BUFFER, GL_TEXTURE, ...) where the driver has labels. A buffer or
/// texture must have been bound before.
void labelGlObject(GLenum kind, GLuint name, const char* text);
