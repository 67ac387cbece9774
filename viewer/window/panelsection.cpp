// The panel's rows about the section: which way its plane faces and where it stands.
#include "viewer/model/vectors.h"
#include "viewer/window/panel.h"
#include "viewer/window/widgets.h"

namespace nruview {

using widgets::button;
using widgets::choose;
using widgets::section;
using widgets::slide;

namespace {

constexpr int kNone = 0, kFree = 4; ///< rows of the choice; the axes lie between

/// The row that says which way a plane faces.
int rowOf(const std::optional<SectionPlane>& plane) {
    if (!plane)
        return kNone;
    const Point normal = unit(plane->normal);
    for (int axis = 0; axis < 3; ++axis)
        if (std::abs(normal[static_cast<std::size_t>(axis)]) > 1.0 - 1e-12)
            return axis + 1;
    return kFree;
}

/// Places of the model along a direction, in its own coordinates.
std::array<double, 2> extentAlong(const ShownModel& shown, const Point& direction) {
    const Point half = 0.5 * shown.unit * (shown.bounds.high - shown.bounds.low);
    const Point middle = shown.middle + 0.5 * shown.unit * (shown.bounds.high + shown.bounds.low);
    const double reach = std::abs(direction[0]) * half[0] + std::abs(direction[1]) * half[1] +
                         std::abs(direction[2]) * half[2];
    return {dot(middle, direction) - reach, dot(middle, direction) + reach};
}

} // namespace

void Panel::layOutSection() {
    if (!section("Section", false))
        return;
    const std::optional<SectionPlane> plane = options().shown.section;
    const auto set = [this](const std::optional<SectionPlane>& to) {
        later([this, to] { m_workspace.setSection(to); });
    };
    int row = rowOf(plane);
    std::vector<std::string> rows = {"none", "across x", "across y", "across z"};
    if (row == kFree)
        rows.push_back("slanted");
    if (choose("Plane", rows, row) && row != kFree) {
        Point normal{};
        if (row != kNone)
            normal[static_cast<std::size_t>(row - 1)] = 1.0;
        set(row == kNone ? std::nullopt : std::optional(SectionPlane{{}, normal}));
    }
    if (!plane || !m_workspace.shown().section)
        return;
    const Point normal = unit(plane->normal), at = m_workspace.shown().section->at;
    // Along an axis its coordinate, whichever side is cut away.
    const bool isBackward = row != kFree && dot(normal, {1.0, 1.0, 1.0}) < 0.0;
    const Point direction = isBackward ? -1.0 * normal : normal;
    const auto [low, high] = extentAlong(m_workspace.shown(), direction);
    double place = dot(at, direction);
    if (slide("Place", place, low, high, "%.4g"))
        set(SectionPlane{at + (place - dot(at, direction)) * direction, normal});
    if (button("Other side", 0, 1, "keep what is cut away"))
        set(SectionPlane{at, -1.0 * normal});
    option("Handle", options().scene.sectionHandle,
           [](Options& options, bool on) { options.scene.sectionHandle = on; });
}

} // namespace nruview
