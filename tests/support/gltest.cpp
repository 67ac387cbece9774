#include "tests/support/gltest.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace nrutest {

namespace {

struct {
    int count = 0;
    std::string first;
} errorLog;

void onDebugMessage(GLenum, GLenum type, GLuint, GLenum, GLsizei, const GLchar* message, const void*) {
    if (type == GL_DEBUG_TYPE_ERROR && errorLog.count++ == 0)
        errorLog.first = message;
}

} // namespace

Picture::Picture(int width, int height)
    : m_width(width), m_height(height), m_pixels(static_cast<std::size_t>(width) * height) {}

Picture Picture::read(int width, int height) {
    Picture picture(width, height);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.m_pixels.data());
    return picture;
}

int Picture::countOtherThan(std::uint32_t color) const {
    return static_cast<int>(std::count_if(m_pixels.begin(), m_pixels.end(),
                                          [=](std::uint32_t p) { return ((p ^ color) & 0xFFFFFF) != 0; }));
}

PictureDifference compare(const Picture& a, const Picture& b) {
    PictureDifference difference;
    if (a.width() != b.width() || a.height() != b.height())
        return {256, 0, 0, a.width() * a.height()};
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            int worst = 0;
            for (int shift = 0; shift < 32; shift += 8) {
                const int ca = (a.at(x, y) >> shift) & 0xFF;
                const int cb = (b.at(x, y) >> shift) & 0xFF;
                worst = std::max(worst, std::abs(ca - cb));
            }
            difference.pixels += worst > 0;
            if (worst > difference.largest)
                difference = {worst, x, y, difference.pixels};
        }
    return difference;
}

::testing::AssertionResult samePicture(const Picture& a, const Picture& b, int tolerance) {
    const PictureDifference d = compare(a, b);
    if (d.largest <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << d.pixels << " pixels differ, worst by " << d.largest << " at (" << d.x << ", " << d.y
           << "): " << hex(a.at(d.x, d.y)) << " against " << hex(b.at(d.x, d.y));
}

std::string hex(std::uint32_t color) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", color);
    return text;
}

void GlTest::SetUp() {
    const std::string error = m_context.create(kSize, kSize);
    ASSERT_EQ(error, "");
    if (epoxy_gl_version() >= 43 || epoxy_has_gl_extension("GL_KHR_debug")) {
        glEnable(GL_DEBUG_OUTPUT);
        glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
        glDebugMessageCallback(onDebugMessage, nullptr);
    }
    clear();
}

void GlTest::TearDown() {
    const int errors = takeGlErrors();
    EXPECT_EQ(errors, 0) << "first GL error: " << errorLog.first;
    m_context.destroy();
}

void GlTest::clear() {
    glClearColor(0x11 / 255.0f, 0x22 / 255.0f, 0x33 / 255.0f, 1.0f);
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

int GlTest::takeGlErrors() {
    int polled = 0;
    while (GLenum code = glGetError()) {
        ++polled;
        if (errorLog.count == 0)
            errorLog.first = "glGetError " + hex(code);
    }
    // The callback and glGetError report the same errors: count the larger number.
    const int errors = std::max(polled, errorLog.count);
    errorLog.count = 0;
    return errors;
}

} // namespace nrutest
