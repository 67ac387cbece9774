// The GL interface of the host: entry points through libepoxy, GLU, and capability queries by number.
#pragma once

#include <epoxy/gl.h>

#include <GL/glu.h>

/// Numbers of the capability queries.
enum GLeeCapability {
    GLeeGeometryStage = 0,        ///< geometry stages: core GLSL 1.50 or ARB_geometry_shader4
    GLeeGeometryStageExt = 1,     ///< EXT_geometry_shader4, or the core stages that serve the same programs
    GLeeVertexShader = 2,         ///< vertex shader objects
    GLeeFragmentShader = 3,       ///< fragment shader objects with GLSL 1.50
    GLeeFramebufferExt = 4,       ///< EXT_framebuffer_object
    GLeeFramebufferArb = 5,       ///< ARB_framebuffer_object
    GLeeGL30 = 6,                 ///< OpenGL 3.0
    GLeeBufferObjects = 7,        ///< buffer objects
    GLeeTextureBufferObjects = 8, ///< texture buffer objects
    GLeeCapabilityCount
};

/// Reads the current context's version and extensions into the capability table. Returns 0; without a context
/// the table stays all false.
int GLeeInit();
/// Whether a capability of the table is present; false for an unknown number and before GLeeInit.
bool GLeeEnabled(int capability);
/// The current context's version as major * 10 + minor, 0 without a context. Costs no more than a query,
/// where the loader's function takes the text apart with the C library's scanner.
int glVersion();
/// Whether GL can be called: a context is current on this thread, and the process is not ending, when the
/// driver may be gone. Touches no context.
bool glContextIsCurrent();
