// All points are placed in the picture once; then a face is looked up by its corners.
#include "viewer/workspace/selection.h"

#include <algorithm>
#include <iterator>

#include "viewer/error.h"
#include "viewer/model/vectors.h"
#include "viewer/workspace/seenfaces.h"

namespace nruview {

namespace {

/// Whether a point is drawn within a box. What is behind the eye is nowhere in the picture.
bool isWithinBox(const Camera& camera, const Point& point, int width, int height, const PictureBox& box) {
    const bool isBefore =
        !camera.perspective || dot(point - camera.target, camera.axes.toward) < camera.distance;
    return isBefore && box.contains(placeInPicture(camera, point, width, height));
}

/// The same for each point of the model that no section cuts away.
std::vector<bool> pointsWithin(const ShownModel& shown, const Camera& camera, int width, int height,
                               const PictureBox& box) {
    std::vector<bool> within(shown.points.size());
    for (std::size_t i = 0; i < within.size(); ++i)
        within[i] =
            !isCutAway(shown, shown.points[i]) && isWithinBox(camera, shown.points[i], width, height, box);
    return within;
}

void sortOnce(std::vector<std::uint32_t>& numbers) {
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

/// Calls visit(corners, cell, face) for what is shown of elements and lies within the box with all its
/// corners.
template <typename Visit>
void forEachWithin(const ShownModel& shown, const std::vector<bool>& within, Visit visit) {
    std::size_t face = 0;
    const auto take = [&](std::span<const std::uint32_t> corners, std::uint32_t cell) {
        const bool isWithin =
            std::all_of(corners.begin(), corners.end(), [&](std::uint32_t corner) { return within[corner]; });
        if (shown.elements.isShown(cell) && isWithin)
            visit(corners, cell, face);
        ++face;
    };
    const Surface& surface = shown.surface;
    forEachFace(surface, take);
    for (std::size_t i = 0; i < surface.lines.size(); ++i)
        take(surface.lines[i], surface.lineCells[i]);
    for (std::size_t i = 0; i < surface.points.size(); ++i)
        take({&surface.points[i], 1}, surface.pointCells[i]);
}

Point middleOf(const ShownModel& shown, std::span<const std::uint32_t> corners) {
    Point sum{};
    for (const std::uint32_t corner : corners)
        sum = sum + 1.0 / static_cast<double>(corners.size()) * shown.points[corner];
    return sum;
}

/// Calls visit(cell, place) for the polygons of the section's cut that lie within the box, by their places
/// behind the faces.
template <typename Visit>
void forEachCutWithin(const ShownModel& shown, const Camera& camera, int width, int height,
                      const PictureBox& box, Visit visit) {
    if (!shown.section)
        return;
    std::size_t place = shown.surface.triangles.size() + shown.surface.quads.size();
    for (const Cut::Polygon& polygon : shown.section->cut.polygons) {
        const auto* corners = shown.section->corners.data() + polygon.first;
        if (std::all_of(corners, corners + polygon.count,
                        [&](const Point& corner) { return isWithinBox(camera, corner, width, height, box); }))
            visit(polygon.cell, place);
        ++place;
    }
}

} // namespace

Cells cellsOf(const ElementList& indices) {
    Cells cells;
    for (const auto& [first, last] : indices)
        for (std::uint64_t cell = first; cell <= last; ++cell)
            cells.push_back(static_cast<std::uint32_t>(cell));
    sortOnce(cells);
    return cells;
}

Cells cellsOfBlock(const Model& model, const std::string& name) {
    ElementList ranges;
    std::string names;
    for (const ModelPart& part : model.parts) {
        names += (names.empty() ? "" : ", ") + part.name;
        if ((part.name == name || part.name == "block " + name) && part.cellCount > 0)
            ranges.push_back({part.firstCell, part.firstCell + part.cellCount - 1});
    }
    if (ranges.empty())
        throw ViewerError("block " + name,
                          names.empty() ? "the model has no blocks" : "not there; the model has " + names);
    return cellsOf(ranges);
}

Cells joined(const Cells& before, const Cells& cells, Selecting how) {
    Cells result;
    const auto out = std::back_inserter(result);
    if (how == Selecting::Replace)
        return cells;
    if (how == Selecting::Add)
        std::set_union(before.begin(), before.end(), cells.begin(), cells.end(), out);
    else if (how == Selecting::Remove)
        std::set_difference(before.begin(), before.end(), cells.begin(), cells.end(), out);
    else
        std::set_symmetric_difference(before.begin(), before.end(), cells.begin(), cells.end(), out);
    return result;
}

PictureBox::PictureBox(double x0, double y0, double x1, double y1)
    : left(std::min(x0, x1)), top(std::min(y0, y1)), right(std::max(x0, x1)), bottom(std::max(y0, y1)) {}

bool PictureBox::contains(const std::array<double, 2>& place) const {
    return place[0] >= left && place[0] <= right && place[1] >= top && place[1] <= bottom;
}

Cells cellsWithin(const ShownModel& shown, const Camera& camera, int width, int height,
                  const PictureBox& box) {
    Cells cells;
    forEachWithin(shown, pointsWithin(shown, camera, width, height, box),
                  [&](auto, std::uint32_t cell, std::size_t) { cells.push_back(cell); });
    forEachCutWithin(shown, camera, width, height, box,
                     [&](std::uint32_t cell, std::size_t) { cells.push_back(cell); });
    sortOnce(cells);
    return cells;
}

Cells visibleCellsWithin(const ShownModel& shown, const Camera& camera, int width, int height,
                         const PictureBox& box) {
    const SeenFaces seen(shown, camera, width, height);
    Cells cells;
    forEachWithin(shown, pointsWithin(shown, camera, width, height, box),
                  [&](std::span<const std::uint32_t> corners, std::uint32_t cell, std::size_t face) {
                      if (corners.size() > 2 ? seen.isFaceSeen(face)
                                             : seen.isInFront(middleOf(shown, corners)))
                          cells.push_back(cell);
                  });
    forEachCutWithin(shown, camera, width, height, box, [&](std::uint32_t cell, std::size_t place) {
        if (seen.isFaceSeen(place))
            cells.push_back(cell);
    });
    sortOnce(cells);
    return cells;
}

} // namespace nruview
