// The programs that the library shares, and how their stages are put together.
#pragma once

#include "NRenderUtl/shaders/nshaders.h"

/// A program built from the sources of a catalogue type, with sampler units assigned and a name for
/// debuggers.
class ComposedProgram : public NShaderProgram {
public:
    /// define: null, or a name that the main source of each stage then sees as defined. Whether it linked.
    bool build(_RenderingShaderType type, const char* define = nullptr);
};
