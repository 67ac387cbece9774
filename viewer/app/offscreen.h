// An OpenGL context without a window or display: EGL surfaceless with a pbuffer.
#pragma once

#include <string>

namespace nruview {

/// Owns a current compatibility-profile context with an RGBA8 / D24 / S8 pbuffer. One per thread.
class OffscreenContext {
public:
    OffscreenContext() = default;
    ~OffscreenContext();
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    /// Makes the context and its surface, of a size in pixels, current. Returns an empty text, or the reason
    /// why not.
    std::string create(int width, int height);
    /// Gives the context a surface of another size. Returns an empty text, or the reason why not: then all is
    /// as it was.
    std::string resize(int width, int height);
    void destroy();

private:
    void* m_display = nullptr;
    void* m_config = nullptr;
    void* m_context = nullptr;
    void* m_surface = nullptr;
};

} // namespace nruview
