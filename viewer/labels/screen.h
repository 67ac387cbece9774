// Drawing in window pixels with the library: rectangles, shapes and texts on top of the picture.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

/// Between pixel edges, y upward.
struct PixelRect {
    int left = 0, bottom = 0, right = 0, top = 0;
    int width() const { return right - left; }
    int height() const { return top - bottom; }
    PixelRect grownBy(int pixels) const {
        return {left - pixels, bottom - pixels, right + pixels, top + pixels};
    }
    bool overlaps(const PixelRect& other) const {
        return left < other.right && other.left < right && bottom < other.top && other.bottom < top;
    }
    bool contains(const PixelRect& other) const {
        return left <= other.left && other.right <= right && bottom <= other.bottom && other.top <= top;
    }
};

void fillRect(const PixelRect& rect, NgColorLong color);
/// The rectangle's outermost pixels.
void outlineRect(const PixelRect& rect, NgColorLong color);
/// A convex shape.
void fillShape(std::span<const _NgPoint2Str> points, NgColorLong color);
/// A line of one pixel's width.
void drawLine(const _NgPoint2Str& from, const _NgPoint2Str& to, NgColorLong color);
/// A straight stroke of a width in pixels.
void drawStroke(const _NgPoint2Str& from, const _NgPoint2Str& to, double width, NgColorLong color);
/// A rounded, bordered panel for texts of a colour, in the background's, so that they stand out from whatever
/// is behind. Without programs it is plain.
void drawPanel(const PixelRect& rect, int radius, NgColorLong background, NgColorLong textColor);
void fillDisc(const _NgPoint2Str& center, double radius, NgColorLong color);

/// What the picture shows in a rectangle, rows from bottom to top. Also of multisampled framebuffer objects.
std::vector<NgColorLong> pixelsIn(const PixelRect& rect);
/// Black or white, whichever stands out from what the picture shows in a rectangle of the window.
NgColorLong colorOver(const PixelRect& rect);

/// A text and how it is set: what the library's text functions take.
struct TextStyle {
    void* font = nullptr;
    NgColorLong color = 0;
};
struct TextSize {
    int width = 0, ascent = 0, descent = 0;
};
TextSize textSize(const std::string& utf8, const TextStyle& style);
/// x, y: left end of the base line.
void drawText(int x, int y, const std::string& utf8, const TextStyle& style);
/// The text, or as much of its start and its end as fits into a width with an ellipsis between; empty where
/// not even two letters do.
std::string elided(const std::string& utf8, int width, const TextStyle& style);

} // namespace nruview
