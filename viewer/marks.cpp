#include "viewer/marks.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "viewer/labelnumbers.h"
#include "viewer/vectors.h"

namespace nruview {

namespace {

/// Calls visit(number) for every node, or element, that is drawn; for some more than once.
template <typename Visit>
void forEachDrawn(const ShownModel& shown, Visit visit) {
    const bool ofElements = shown.scalars->location == FieldLocation::Cell;
    const auto add = [&](std::span<const std::uint32_t> corners, std::uint32_t cell) {
        if (!shown.elements.isShown(cell))
            return;
        if (ofElements)
            visit(cell);
        else
            for (const std::uint32_t point : corners)
                if (point < shown.model.nodes.size()) // no centre of a split face
                    visit(point);
    };
    const Surface& surface = shown.surface;
    forEachFace(surface, add);
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        add(surface.lines[i], surface.lineCells[i]);
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        add({&surface.points[i], 1}, surface.pointCells[i]);
}

/// Takes a value into account for the smallest (sign 1) or the largest (sign -1).
void take(std::optional<Extreme>& extreme, double value, std::uint32_t number, double sign) {
    if (!extreme || sign * value < sign * extreme->value)
        extreme = Extreme{value, {}};
    if (value == extreme->value)
        extreme->numbers.push_back(number);
}

void sortOnce(std::vector<std::uint32_t>& numbers) {
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

std::uint32_t nearest(const ShownModel& shown, const Extreme& extreme, const Point& towardViewer) {
    const auto nearness = [&](std::uint32_t number) {
        return dot(markPosition(shown, number), towardViewer);
    };
    return *std::max_element(extreme.numbers.begin(), extreme.numbers.end(),
                             [&](std::uint32_t a, std::uint32_t b) { return nearness(a) < nearness(b); });
}

/// A value by itself, or with the digits that tell it from the other one.
std::string numberText(const std::array<Extreme, 2>& extremes, int i) {
    const NumberLabels alone = labelNumbers({&extremes[i].value, 1});
    const NumberLabels both = labelNumbers(std::array{extremes[0].value, extremes[1].value});
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

int padding(int em_px) {
    return std::max(2, em_px / 4);
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

/// How many pixels of a box show something of the model.
int modelPixels(const PixelRect& box) {
    std::vector<float> depths(static_cast<std::size_t>(box.width()) * box.height());
    glReadPixels(box.left, box.bottom, box.width(), box.height(), GL_DEPTH_COMPONENT, GL_FLOAT,
                 depths.data());
    return static_cast<int>(std::count_if(depths.begin(), depths.end(), [](float d) { return d < 1.0f; }));
}

/// Finds the place within the area that hides least of the model and is not taken, nearer ones first. Where
/// there is none the label goes without.
bool place(Mark& mark, const PixelRect& area, const std::vector<PixelRect>& taken, int em_px,
           const TextStyle& style) {
    constexpr std::array<std::array<int, 2>, 8> kSides = {
        {{1, 1}, {-1, 1}, {1, -1}, {-1, -1}, {0, 1}, {0, -1}, {1, 0}, {-1, 0}}};
    const TextSize size = textSize(mark.text, style);
    const int width = size.width + 2 * padding(em_px);
    const int height = size.ascent + size.descent + 2 * padding(em_px);
    double best = 2.0;
    for (const double distance_em : {1.0, 2.0, 4.0})
        for (const auto& [sideX, sideY] : kSides) {
            const PixelRect box =
                movedInto(area, boxBeside(mark.at, width, height, sideX, sideY,
                                          static_cast<int>(std::lround(distance_em * em_px))));
            const auto overlaps = [&](const PixelRect& other) { return other.overlaps(box); };
            if (!area.contains(box) || std::any_of(taken.begin(), taken.end(), overlaps))
                continue;
            const double cost = 1.0 * modelPixels(box) / (width * height) + 0.05 * distance_em;
            if (cost < best) {
                best = cost;
                mark.box = box;
            }
        }
    return best < 2.0;
}

PixelRect around(const _NgPoint2Str& at, int reach) {
    const int x = static_cast<int>(std::lround(at.x)), y = static_cast<int>(std::lround(at.y));
    return {x - reach, y - reach, x + reach, y + reach};
}

void drawLabel(const Mark& mark, int em_px, const TextStyle& style, NgColorLong background) {
    const PixelRect& box = mark.box;
    const _NgPoint2Str nearest = {
        std::clamp(mark.at.x, static_cast<double>(box.left), static_cast<double>(box.right)),
        std::clamp(mark.at.y, static_cast<double>(box.bottom), static_cast<double>(box.top))};
    drawLine(mark.at, nearest, style.color);
    fillRect(box, background);
    outlineRect(box, style.color);
    const int pad = padding(em_px);
    drawText(box.left + pad, box.bottom + pad + textSize(mark.text, style).descent, mark.text, style);
}

} // namespace

std::optional<std::array<Extreme, 2>> findExtremes(const ShownModel& shown) {
    std::optional<Extreme> smallest, largest;
    forEachDrawn(shown, [&](std::uint32_t number) {
        const double value = shown.scalars->values[number];
        if (!std::isfinite(value))
            return;
        take(smallest, value, number, 1.0);
        take(largest, value, number, -1.0);
    });
    if (!smallest || smallest->value == largest->value)
        return {};
    sortOnce(smallest->numbers);
    sortOnce(largest->numbers);
    return std::array{*smallest, *largest};
}

Point markPosition(const ShownModel& shown, std::uint32_t number) {
    if (shown.scalars->location == FieldLocation::Node)
        return shown.points[number];
    Point sum{};
    const std::span<const std::uint32_t> nodes = shown.model.cellNodes(number);
    for (const std::uint32_t node : nodes)
        sum = sum + shown.points[node];
    return (1.0 / static_cast<double>(nodes.size())) * sum;
}

void drawMarks(const ShownModel& shown, const std::array<Extreme, 2>& extremes, const Point& towardViewer,
               const PixelRect& area, int height, int em_px, const TextStyle& style, NgColorLong background) {
    const char* what = shown.scalars->location == FieldLocation::Cell ? ", element " : ", node ";
    const int reach = std::max(3, em_px / 3);
    std::vector<Mark> marks;
    std::vector<PixelRect> taken;
    for (int i = 0; i < 2; ++i) {
        const std::uint32_t number = nearest(shown, extremes[i], towardViewer);
        const auto at = windowPosition(markPosition(shown, number), area, height);
        if (!at)
            continue;
        marks.push_back(
            {*at, (i == 0 ? "Min " : "Max ") + numberText(extremes, i) + what + std::to_string(number)});
        taken.push_back(around(*at, reach + 1));
    }
    for (Mark& mark : marks)
        if (textSize(mark.text, style).width > 0 && place(mark, area, taken, em_px, style)) {
            taken.push_back(mark.box);
            drawLabel(mark, em_px, style, background);
        }
    for (const Mark& mark : marks) {
        fillDisc(mark.at, reach + 0.6, style.color);
        fillDisc(mark.at, reach - 0.6, background);
        fillDisc(mark.at, 0.4 * reach, style.color);
    }
}

} // namespace nruview
