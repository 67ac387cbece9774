// What the off-screen examples share: an OpenGL context without a window.
#pragma once

#include <EGL/egl.h>
#include <EGL/eglext.h>

/// Makes a context with a surface of width x height pixels current, of 0 or more samples a pixel.
inline bool makeContext(int width, int height, int samples = 0) {
    const auto getDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    EGLDisplay display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (!eglInitialize(display, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_API))
        return false;
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT,   EGL_DEPTH_SIZE,  24,
                             EGL_SAMPLES,      samples,         EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted, &config, 1, &count) || count == 0)
        return false;
    EGLSurface surface = eglCreatePbufferSurface(display, config, size);
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    return eglMakeCurrent(display, surface, surface, context);
}
