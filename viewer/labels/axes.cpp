// The axes are drawn flat from their directions in the window, the farther ones first.
#include "viewer/labels/axes.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace nruview {

namespace {

constexpr double kArrow_em = 2.4, kHead_em = 0.8, kHeadHalf_em = 0.28, kLetter_em = 0.75;
constexpr double kAlongView = 0.08; ///< part of its length below which an axis is seen from its end
/// Red, green and blue, dark enough for a white background and light enough for a black one.
constexpr std::array<NgColorLong, 3> kColors = {0xFF3C3CDC, 0xFF3CA03C, 0xFFF07846};

struct Axis {
    int index;
    double x, y; ///< its direction in the window, shorter where it leaves the plane of the picture
    double toward;
    double length() const { return std::hypot(x, y); }
};

/// The farther end first, so that nearer ones lie on top.
std::array<Axis, 3> axesOf(const ViewAxes& view) {
    std::array<Axis, 3> axes;
    for (int k = 0; k < 3; ++k)
        axes[k] = {k, view.right[k], view.up[k], view.toward[k]};
    std::sort(axes.begin(), axes.end(), [](const Axis& a, const Axis& b) { return a.toward < b.toward; });
    return axes;
}

void drawArrow(const _NgPoint2Str& origin, const Axis& axis, int em_px) {
    const double length = axis.length() * kArrow_em * em_px, head = std::min(kHead_em * em_px, 0.8 * length);
    const double x = axis.x / axis.length(), y = axis.y / axis.length(), half = kHeadHalf_em * em_px;
    const _NgPoint2Str tip = {origin.x + length * x, origin.y + length * y};
    const _NgPoint2Str neck = {tip.x - head * x, tip.y - head * y};
    drawStroke(origin, neck, std::max(2.0, 0.15 * em_px), kColors[axis.index]);
    fillShape(
        std::array<_NgPoint2Str, 3>{
            {tip, {neck.x - half * y, neck.y + half * x}, {neck.x + half * y, neck.y - half * x}}},
        kColors[axis.index]);
}

/// A letter whose ink is centred about a point.
void drawLetter(double x, double y, int axis, const TextStyle& style) {
    const std::string letter(1, "xyz"[axis]);
    const TextSize size = textSize(letter, style);
    drawText(static_cast<int>(std::lround(x - 0.5 * size.width)),
             static_cast<int>(std::lround(y - 0.5 * (size.ascent - size.descent))), letter, style);
}

/// Where the letter of an axis seen from its end stands: away from the two others.
void drawEndOn(const _NgPoint2Str& origin, const std::array<Axis, 3>& axes, const Axis& endOn, int em_px,
               const TextStyle& style) {
    double x = 0.0, y = 0.0;
    for (const Axis& axis : axes) {
        x -= axis.x;
        y -= axis.y;
    }
    const double size = std::max(std::hypot(x, y), 1e-9), distance = kLetter_em * em_px;
    fillDisc(origin, std::max(3.0, 0.25 * em_px), kColors[endOn.index]);
    drawLetter(origin.x + distance * x / size, origin.y + distance * y / size, endOn.index, style);
}

} // namespace

int triadSize_px(int em_px) {
    return static_cast<int>(std::lround(2.0 * (kArrow_em + 2.0 * kLetter_em) * em_px));
}

void drawTriad(const ViewAxes& view, int left, int bottom, int em_px, const TextStyle& style) {
    const double half = 0.5 * triadSize_px(em_px);
    const _NgPoint2Str origin = {left + half, bottom + half};
    const std::array<Axis, 3> axes = axesOf(view);
    for (const Axis& axis : axes) {
        if (axis.length() < kAlongView) {
            drawEndOn(origin, axes, axis, em_px, style);
            continue;
        }
        drawArrow(origin, axis, em_px);
        const double reach = (axis.length() * kArrow_em + kLetter_em) * em_px;
        drawLetter(origin.x + reach * axis.x / axis.length(), origin.y + reach * axis.y / axis.length(),
                   axis.index, style);
    }
}

} // namespace nruview
