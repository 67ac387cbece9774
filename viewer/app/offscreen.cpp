// EGL surfaceless context. libepoxy has no provider for the core platform entry point before eglInitialize,
// so the EXT one is used.
#include "viewer/app/offscreen.h"

#include <epoxy/egl.h>

#include <array>

namespace nruview {

namespace {

EGLDisplay openDisplay() {
    if (epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) {
        EGLDisplay display =
            eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr))
            return display;
    }
    EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr))
        return display;
    return EGL_NO_DISPLAY;
}

EGLSurface createSurface(EGLDisplay display, EGLConfig config, int width, int height) {
    const std::array<EGLint, 5> size = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    return eglCreatePbufferSurface(display, config, size.data());
}

std::string noSurface(int width, int height) {
    return "EGL cannot make a surface of " + std::to_string(width) + " x " + std::to_string(height) +
           " pixels";
}

EGLContext createContext(EGLDisplay display, EGLConfig config) {
    const std::array<EGLint, 7> compatibility45 = {EGL_CONTEXT_MAJOR_VERSION,
                                                   4,
                                                   EGL_CONTEXT_MINOR_VERSION,
                                                   5,
                                                   EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                                   EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                                                   EGL_NONE};
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, compatibility45.data());
    if (context == EGL_NO_CONTEXT)
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    return context;
}

} // namespace

OffscreenContext::~OffscreenContext() {
    destroy();
}

std::string OffscreenContext::create(int width, int height) {
    destroy();
    m_display = openDisplay();
    if (m_display == EGL_NO_DISPLAY)
        return "no EGL display could be opened";
    if (!eglBindAPI(EGL_OPENGL_API))
        return "EGL offers no OpenGL";
    const std::array<EGLint, 17> wanted = {EGL_SURFACE_TYPE,
                                           EGL_PBUFFER_BIT,
                                           EGL_RENDERABLE_TYPE,
                                           EGL_OPENGL_BIT,
                                           EGL_RED_SIZE,
                                           8,
                                           EGL_GREEN_SIZE,
                                           8,
                                           EGL_BLUE_SIZE,
                                           8,
                                           EGL_ALPHA_SIZE,
                                           8,
                                           EGL_DEPTH_SIZE,
                                           24,
                                           EGL_STENCIL_SIZE,
                                           8,
                                           EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(m_display, wanted.data(), &m_config, 1, &count) || count < 1)
        return "EGL has no RGBA8 / depth 24 / stencil 8 configuration";
    m_surface = createSurface(m_display, m_config, width, height);
    if (m_surface == EGL_NO_SURFACE)
        return noSurface(width, height);
    m_context = createContext(m_display, m_config);
    if (m_context == EGL_NO_CONTEXT)
        return "EGL cannot make an OpenGL compatibility context";
    if (!eglMakeCurrent(m_display, m_surface, m_surface, m_context))
        return "EGL cannot make the context current";
    return {};
}

std::string OffscreenContext::resize(int width, int height) {
    const EGLSurface surface = createSurface(m_display, m_config, width, height);
    if (surface == EGL_NO_SURFACE)
        return noSurface(width, height);
    if (!eglMakeCurrent(m_display, surface, surface, m_context)) {
        eglDestroySurface(m_display, surface);
        return "EGL cannot make the context current";
    }
    eglDestroySurface(m_display, m_surface);
    m_surface = surface;
    return {};
}

void OffscreenContext::destroy() {
    if (m_display == nullptr)
        return;
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (m_context != nullptr)
        eglDestroyContext(m_display, m_context);
    if (m_surface != nullptr)
        eglDestroySurface(m_display, m_surface);
    m_display = m_context = m_surface = nullptr;
}

} // namespace nruview
