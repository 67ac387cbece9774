#include "bench/harness/window.h"

#include <epoxy/gl.h>

#include "bench/harness/timing.h"
#include "viewer/app/offscreen.h"

namespace nrubench {

void openWindow() {
    static nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    glViewport(0, 0, kWidth, kHeight);
    glEnable(GL_DEPTH_TEST);
}

void clearWindow() {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void finishWindow() {
    glFinish();
}

std::vector<std::uint32_t> readWindow() {
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    check(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
    return pixels;
}

std::string driverOfWindow() {
    if (epoxy_gl_version() == 0)
        return {};
    const auto text = [](GLenum name) { return reinterpret_cast<const char*>(glGetString(name)); };
    return text(GL_RENDERER) + std::string(", ") + text(GL_VERSION);
}

void loadBox(const Box& box) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(box.left, box.right, box.bottom, box.top, box.near, box.far);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void loadTorusView() {
    constexpr double kAspect = static_cast<double>(kWidth) / kHeight;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-kTorusTangent * kAspect, kTorusTangent * kAspect, -kTorusTangent, kTorusTangent, 1, 10);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslated(0, 0, -kTorusDistance);
    glRotated(kTorusTiltDeg, 1, 0, 0);
}

} // namespace nrubench
