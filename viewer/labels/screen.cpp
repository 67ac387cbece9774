// Texts are given to the library in model space: here that of a view of one unit a pixel.
#include "viewer/labels/screen.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace nruview {

namespace {

/// A rectangle of what is drawn to, ready for glReadPixels from (left, bottom) on: of a multisampled
/// framebuffer object, which that refuses, a copy of one sample for each pixel.
class ReadableRect {
public:
    explicit ReadableRect(const PixelRect& rect) : left(rect.left), bottom(rect.bottom) {
        GLint samples = 0;
        glGetIntegerv(GL_SAMPLES, &samples);
        if (samples == 0)
            return;
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &m_drawn);
        if (m_drawn == 0)
            return;
        glGenRenderbuffers(1, &m_store);
        glBindRenderbuffer(GL_RENDERBUFFER, m_store);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, rect.width(), rect.height());
        glGenFramebuffers(1, &m_copy);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_copy);
        glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_store);
        glBlitFramebuffer(rect.left, rect.bottom, rect.right, rect.top, 0, 0, rect.width(), rect.height(),
                          GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, m_copy);
        left = bottom = 0;
    }
    ~ReadableRect() {
        if (m_copy == 0)
            return;
        glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(m_drawn));
        glDeleteFramebuffers(1, &m_copy);
        glDeleteRenderbuffers(1, &m_store);
    }
    ReadableRect(const ReadableRect&) = delete;
    ReadableRect& operator=(const ReadableRect&) = delete;

    int left, bottom;

private:
    GLint m_drawn = 0;
    GLuint m_copy = 0, m_store = 0;
};

} // namespace

void fillRect(const PixelRect& rect, NgColorLong color) {
    const auto left = static_cast<double>(rect.left), right = static_cast<double>(rect.right);
    const auto bottom = static_cast<double>(rect.bottom), top = static_cast<double>(rect.top);
    fillShape(std::array<_NgPoint2Str, 4>{{{left, bottom}, {right, bottom}, {right, top}, {left, top}}},
              color);
}

void outlineRect(const PixelRect& rect, NgColorLong color) {
    const auto& [left, bottom, right, top] = rect;
    fillRect({left, bottom, right, bottom + 1}, color);
    fillRect({left, top - 1, right, top}, color);
    fillRect({left, bottom, left + 1, top}, color);
    fillRect({right - 1, bottom, right, top}, color);
}

/// The library's shapes are chains: the last point comes back to the first.
void fillShape(std::span<const _NgPoint2Str> points, NgColorLong color) {
    std::vector<_NgPoint2Str> chain(points.begin(), points.end());
    chain.push_back(points.front());
    ngl_set_color_long(color);
    ngl_draw_poly_on_screen(static_cast<int>(chain.size()), chain.data(), true, false, nullptr);
}

void drawLine(const _NgPoint2Str& from, const _NgPoint2Str& to, NgColorLong color) {
    const std::array<_NgPoint2Str, 2> ends = {from, to};
    ngl_set_color_long(color);
    ngl_draw_poly_on_screen(2, ends.data(), false, false, nullptr);
}

void drawStroke(const _NgPoint2Str& from, const _NgPoint2Str& to, double width, NgColorLong color) {
    const double dx = to.x - from.x, dy = to.y - from.y, length = std::hypot(dx, dy);
    if (length == 0.0)
        return;
    const double x = -dy / length * 0.5 * width, y = dx / length * 0.5 * width;
    fillShape(
        std::array<_NgPoint2Str, 4>{
            {{from.x - x, from.y - y}, {to.x - x, to.y - y}, {to.x + x, to.y + y}, {from.x + x, from.y + y}}},
        color);
}

void fillDisc(const _NgPoint2Str& center, double radius, NgColorLong color) {
    ngl_set_color_long(color);
    ngl_draw_circle_on_screen(&center, static_cast<float>(radius), true, false, nullptr);
}

void drawPanel(const PixelRect& rect, int radius, NgColorLong background, NgColorLong textColor) {
    constexpr NgColorLong kAlpha = 0xD8;
    N2DBoxDrawer::RenderInfo panel{
        .x = rect.left, .y = rect.bottom, .width = rect.width(), .height = rect.height()};
    panel.fillColor = kAlpha << 24 | (background & 0xFFFFFF);
    for (int channel = 0; channel < 3; ++channel)
        panel.borderColor[channel] = static_cast<std::uint8_t>(
            ((background >> 8 * channel & 0xFF) + (textColor >> 8 * channel & 0xFF)) / 2);
    panel.roundedCorners = panel.border = panel.borderThickness = 1;
    std::fill_n(panel.cornerRadii, 4, static_cast<float>(radius));
    N2DBoxDrawer().Render(panel);
}

std::vector<NgColorLong> pixelsIn(const PixelRect& rect) {
    std::vector<NgColorLong> pixels(static_cast<std::size_t>(std::max(rect.width(), 0)) *
                                    static_cast<std::size_t>(std::max(rect.height(), 0)));
    if (pixels.empty())
        return pixels;
    const ReadableRect readable(rect);
    glReadPixels(readable.left, readable.bottom, rect.width(), rect.height(), GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels.data());
    return pixels;
}

NgColorLong colorOver(const PixelRect& rect) {
    constexpr std::uint64_t kHalf = 128, kWeights = 4; // green counts most in brightness
    std::uint64_t sum = 0;
    const std::vector<NgColorLong> pixels = pixelsIn(rect);
    for (const NgColorLong color : pixels)
        sum += (color & 0xFF) + 2 * (color >> 8 & 0xFF) + (color >> 16 & 0xFF);
    return sum < kHalf * kWeights * pixels.size() ? 0xFFFFFFFF : 0xFF000000;
}

TextSize textSize(const std::string& utf8, const TextStyle& style) {
    const std::wstring text = GuString(utf8).Wide();
    TextSize size;
    int height = 0;
    ngl_get_text_size(&size.width, &height, text.c_str(), style.font);
    ngl_get_text_ascent_descent(text.c_str(), &size.ascent, &size.descent, style.font);
    return size;
}

void drawText(int x, int y, const std::string& utf8, const TextStyle& style) {
    const _NgPoint3Str point = {static_cast<double>(x), static_cast<double>(y), 0.0};
    ngl_push_view_matrices(0);
    ngl_initialize_view(nullptr, nullptr);
    ngl_draw_text_unclipped(&point, GuString(utf8).Wide().c_str(), style.color, false, style.font, false);
    ngl_pop_view_matrices(0);
}

std::string elided(const std::string& utf8, int width, const TextStyle& style) {
    if (textSize(utf8, style).width <= width)
        return utf8;
    const std::wstring whole = GuString(utf8).Wide();
    std::string best;
    std::size_t fits = 1, tooMany = whole.size(); // letters kept
    while (tooMany > fits + 1) {
        const std::size_t kept = fits + (tooMany - fits) / 2;
        const std::wstring tail = whole.substr(whole.size() - kept / 2);
        const std::string text = GuString(whole.substr(0, (kept + 1) / 2) + L"…" + tail).Utf8();
        const bool isShort = textSize(text, style).width <= width;
        (isShort ? fits : tooMany) = kept;
        best = isShort ? text : best;
    }
    return best;
}

} // namespace nruview
