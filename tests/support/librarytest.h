// Fixture of tests that draw with the library's programs.
#pragma once

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/support/gltest.h"

namespace nrutest {

/// The library started in the case's context, with the depth test on.
class LibraryTest : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        SetRenderingContextActive(true);
        NglInitGLExtensions();
        RenderingInitShaders();
        glEnable(GL_DEPTH_TEST);
    }
};

} // namespace nrutest
