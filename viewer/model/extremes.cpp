// One pass over what is drawn; ties are kept, so that the view may choose among them.
#include "viewer/model/extremes.h"

#include <algorithm>
#include <cmath>

#include "viewer/model/vectors.h"

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

Point positionOf(const ShownModel& shown, std::uint32_t number) {
    if (shown.scalars->location == FieldLocation::Node)
        return shown.points[number];
    Point sum{};
    const std::span<const std::uint32_t> nodes = shown.model.cellNodes(number);
    for (const std::uint32_t node : nodes)
        sum = sum + shown.points[node];
    return (1.0 / static_cast<double>(nodes.size())) * sum;
}

std::uint32_t nearestOf(const ShownModel& shown, const Extreme& extreme, const Point& towardViewer) {
    const auto nearness = [&](std::uint32_t number) { return dot(positionOf(shown, number), towardViewer); };
    return *std::max_element(extreme.numbers.begin(), extreme.numbers.end(),
                             [&](std::uint32_t a, std::uint32_t b) { return nearness(a) < nearness(b); });
}

} // namespace nruview
