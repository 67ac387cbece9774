// One pass over what is drawn; ties are kept, so that the view may choose among them.
#include "viewer/model/extremes.h"

#include <algorithm>
#include <cmath>

#include "viewer/model/vectors.h"

namespace nruview {

namespace {

bool ofElements(const ShownModel& shown) {
    return shown.scalars->location == FieldLocation::Cell;
}

/// Calls visit(number, value) for every node and vertex of the cut, or element, that is drawn; for some more
/// than once.
template <typename Visit>
void forEachDrawn(const ShownModel& shown, Visit visit) {
    const std::vector<double>& values = shown.scalars->values;
    const auto isThere = [&shown](std::uint32_t point) { return !isCutAway(shown, shown.points[point]); };
    const auto add = [&](std::span<const std::uint32_t> corners, std::uint32_t cell) {
        if (!shown.elements.isShown(cell) || std::none_of(corners.begin(), corners.end(), isThere))
            return;
        if (ofElements(shown))
            visit(cell, values[cell]);
        else
            for (const std::uint32_t point : corners)
                if (point < shown.model.nodes.size() && isThere(point)) // no centre of a split face
                    visit(point, values[point]);
    };
    const Surface& surface = shown.surface;
    forEachFace(surface, add);
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        add(surface.lines[i], surface.lineCells[i]);
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        add({&surface.points[i], 1}, surface.pointCells[i]);
    if (!shown.section)
        return;
    const Cut& cut = shown.section->cut;
    for (const Cut::Polygon& polygon : cut.polygons)
        for (std::uint32_t i = polygon.first; i < polygon.first + polygon.count; ++i)
            visit(ofElements(shown) ? polygon.cell : firstOfCut(shown) + i,
                  valueAtVertex(shown, cut.vertices[i], polygon.cell));
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

} // namespace

std::optional<std::array<Extreme, 2>> findExtremes(const ShownModel& shown) {
    std::optional<Extreme> smallest, largest;
    forEachDrawn(shown, [&](std::uint32_t number, double value) {
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

std::uint32_t firstOfCut(const ShownModel& shown) {
    return static_cast<std::uint32_t>(shown.points.size());
}

Point positionOf(const ShownModel& shown, std::uint32_t number) {
    if (!ofElements(shown))
        return number < firstOfCut(shown) ? shown.points[number]
                                          : shown.section->corners[number - firstOfCut(shown)];
    Point sum{};
    const std::span<const std::uint32_t> nodes = shown.model.cellNodes(number);
    for (const std::uint32_t node : nodes)
        sum = sum + shown.points[node];
    const Point middle = (1.0 / static_cast<double>(nodes.size())) * sum;
    if (isCutAway(shown, middle))
        for (const Cut::Polygon& polygon : shown.section->cut.polygons)
            if (polygon.cell == number)
                return middleOf(*shown.section, polygon);
    return middle;
}

std::uint32_t nearestOf(const ShownModel& shown, const Extreme& extreme, const Point& towardViewer) {
    const auto nearness = [&](std::uint32_t number) { return dot(positionOf(shown, number), towardViewer); };
    return *std::max_element(extreme.numbers.begin(), extreme.numbers.end(),
                             [&](std::uint32_t a, std::uint32_t b) { return nearness(a) < nearness(b); });
}

} // namespace nruview
