// A mark is a disc; a line leads from it to its label, which stands where little of the model is.
#include "viewer/labels/marks.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "viewer/labels/labelnumbers.h"

namespace nruview {

namespace {

constexpr double kWidestLabel = 0.6; ///< of the model's part of the picture
constexpr double kRoundOff = 1e-10;  ///< what is smaller beside the other extreme is 0

/// A value by itself, or with the digits that tell it from the other one.
std::string numberText(const std::array<Extreme, 2>& extremes, int i) {
    std::array values = {extremes[0].value, extremes[1].value};
    for (std::size_t k = 0; k < 2; ++k)
        if (std::abs(values[k]) < kRoundOff * std::abs(values[1 - k]))
            values[k] = 0.0;
    const NumberLabels alone = labelNumbers({&values[i], 1});
    const NumberLabels both = labelNumbers(values);
    std::string digits = both.texts[i];
    if (digits.find('.') != std::string::npos) {
        digits.erase(digits.find_last_not_of('0') + 1);
        digits.erase(digits.find_last_not_of('.') + 1);
    }
    const std::string own = alone.texts[0] + alone.factor, told = digits + both.factor;
    return own.size() >= told.size() ? own : told;
}

/// One extreme's place in the window and its text.
struct Mark {
    _NgPoint2Str at; ///< middle of a pixel, y upward
    std::string text;
    PixelRect box{}; ///< of the text with its border
};

std::optional<_NgPoint2Str> windowPosition(const Point& position, const PixelRect& area, int height) {
    double x = 0.0, y = 0.0, depth = 0.0;
    ngl_transform_33(position[0], position[1], position[2], &x, &y, &depth);
    const _NgPoint2Str at = {std::floor(x) + 0.5, std::floor(height - y) + 0.5}; // discs are even then
    const bool isWithin = at.x >= area.left && at.x < area.right && at.y >= area.bottom && at.y < area.top;
    return isWithin && depth >= 0.0 && depth <= 1.0 ? std::optional(at) : std::nullopt;
}

int discReach(int em_px) {
    return std::max(4, em_px / 3);
}

int padding(int em_px) {
    return std::max(4, em_px / 3);
}

/// A box beside a point: to the right (1) or left (-1), above (1) or below (-1), or level with it (0).
PixelRect boxBeside(const _NgPoint2Str& at, int width, int height, int sideX, int sideY, int distance) {
    const int x = static_cast<int>(std::lround(at.x)), y = static_cast<int>(std::lround(at.y));
    const int left = sideX > 0 ? x + distance : sideX < 0 ? x - distance - width : x - width / 2;
    const int bottom = sideY > 0 ? y + distance : sideY < 0 ? y - distance - height : y - height / 2;
    return {left, bottom, left + width, bottom + height};
}

/// A box moved sideways as far as an area asks for.
PixelRect movedInto(const PixelRect& area, PixelRect box) {
    const int right = std::max(0, area.left - box.left), left = std::max(0, box.right - area.right);
    box.left += right - left;
    box.right += right - left;
    return box;
}

/// How many pixels of a box show something of the model, transparent or not.
int modelPixels(const PixelRect& box, NgColorLong background) {
    const std::vector<NgColorLong> pixels = pixelsIn(box);
    return static_cast<int>(std::count_if(pixels.begin(), pixels.end(), [&](NgColorLong color) {
        return ((color ^ background) & 0xFFFFFF) != 0;
    }));
}

/// Where the line from the mark to its label ends.
_NgPoint2Str leaderEnd(const Mark& mark) {
    const PixelRect& box = mark.box;
    return {std::clamp(mark.at.x, static_cast<double>(box.left), static_cast<double>(box.right)),
            std::clamp(mark.at.y, static_cast<double>(box.bottom), static_cast<double>(box.top))};
}

/// Whether that line passes through a box.
bool leaderMeets(const Mark& mark, const PixelRect& box) {
    constexpr int kSteps = 32;
    const _NgPoint2Str end = leaderEnd(mark);
    for (int i = 0; i <= kSteps; ++i) {
        const double part = static_cast<double>(i) / kSteps;
        const double x = mark.at.x + part * (end.x - mark.at.x), y = mark.at.y + part * (end.y - mark.at.y);
        if (x > box.left && x < box.right && y > box.bottom && y < box.top)
            return true;
    }
    return false;
}

/// The square about a mark's disc.
PixelRect symbolOf(const Mark& mark, int em_px) {
    const int x = static_cast<int>(mark.at.x), y = static_cast<int>(mark.at.y), reach = discReach(em_px) + 2;
    return {x - reach, y - reach, x + reach + 1, y + reach + 1};
}

/// Whether a mark's label keeps clear of all marks and of the labels placed before.
bool isClear(const Mark& mark, const std::vector<Mark>& all, int em_px) {
    return std::none_of(all.begin(), all.end(), [&](const Mark& other) {
        const bool isPlaced = other.box.width() > 0;
        return symbolOf(other, em_px).overlaps(mark.box) ||
               (isPlaced && (other.box.overlaps(mark.box) || leaderMeets(other, mark.box) ||
                             leaderMeets(mark, other.box)));
    });
}

/// Finds the place within the area that hides least of the model and is clear, nearer ones first. Returns the
/// mark without a box where there is none.
Mark placed(const Mark& mark, const std::vector<Mark>& all, const PixelRect& area, int em_px,
            const TextStyle& style, NgColorLong background) {
    constexpr std::array<std::array<int, 2>, 8> kSides = {
        {{1, 1}, {-1, 1}, {1, -1}, {-1, -1}, {0, 1}, {0, -1}, {1, 0}, {-1, 0}}};
    const TextSize size = textSize(mark.text, style);
    const int width = size.width + 2 * padding(em_px);
    const int height = size.ascent + size.descent + 2 * padding(em_px);
    Mark best = mark;
    if (size.width == 0 || width > kWidestLabel * area.width())
        return best;
    double lowest = 2.0;
    for (const double distance_em : {1.0, 2.0, 4.0})
        for (const auto& [sideX, sideY] : kSides) {
            const int distance = static_cast<int>(std::lround(distance_em * em_px));
            Mark tried = mark;
            tried.box = movedInto(area, boxBeside(mark.at, width, height, sideX, sideY, distance));
            if (!area.contains(tried.box) || !isClear(tried, all, em_px))
                continue;
            const double cost =
                1.0 * modelPixels(tried.box, background) / (width * height) + 0.05 * distance_em;
            if (cost < lowest) {
                lowest = cost;
                best = tried;
            }
        }
    return best;
}

void drawLabel(const Mark& mark, int em_px, const TextStyle& style, NgColorLong background) {
    const PixelRect& box = mark.box;
    drawLine(mark.at, leaderEnd(mark), style.color);
    fillRect(box.grownBy(-3), background); // the model's colours would make the number hard to read
    drawPanel(box, padding(em_px), background, style.color);
    const int pad = padding(em_px);
    drawText(box.left + pad, box.bottom + pad + textSize(mark.text, style).descent, mark.text, style);
}

} // namespace

void drawMarks(const ShownModel& shown, const std::array<Extreme, 2>& extremes, const Point& towardViewer,
               const PixelRect& area, int height, int em_px, const TextStyle& style, NgColorLong background) {
    const bool ofCells = shown.scalars->location == FieldLocation::Cell;
    std::vector<Mark> marks;
    for (int i = 0; i < 2; ++i) {
        const std::uint32_t place = nearestOf(shown, extremes[i], towardViewer);
        const std::string what = ofCells ? ", element " + std::to_string(cellNumber(shown.model, place))
                                 : place < firstOfCut(shown)
                                     ? ", node " + std::to_string(nodeNumber(shown.model, place))
                                     : ", in the cut";
        if (const auto at = windowPosition(positionOf(shown, place), area, height))
            marks.push_back({*at, (i == 0 ? "Min " : "Max ") + numberText(extremes, i) + what});
    }
    const PixelRect room = {area.left + 2, area.bottom + 2, area.right - 2, area.top - 2};
    for (Mark& mark : marks)
        mark = placed(mark, marks, room, em_px, style, background);
    for (const Mark& mark : marks)
        if (mark.box.width() > 0)
            drawLabel(mark, em_px, style, background);
    const int reach = discReach(em_px);
    for (const Mark& mark : marks) {
        fillDisc(mark.at, reach + 0.6, style.color);
        fillDisc(mark.at, reach - 0.6, background);
        fillDisc(mark.at, 0.4 * reach, style.color);
    }
}

} // namespace nruview
