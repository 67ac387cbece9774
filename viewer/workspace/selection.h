// Sets of elements, and the elements within a box of the picture.
#pragma once

#include "viewer/scene/camera.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// How what is selected anew goes together with what was.
enum class Selecting { Replace, Add, Toggle, Remove };

/// Ascending, each once.
using Cells = std::vector<std::uint32_t>;
Cells cellsOf(const ElementList& indices);
/// The cells of the parts of a name, "block 7" by its number alone too; throws ViewerError where there is
/// none.
Cells cellsOfBlock(const Model& model, const std::string& name);
Cells joined(const Cells& before, const Cells& cells, Selecting how);

/// Between two corners of a picture, in pixels with y from the top.
struct PictureBox {
    double left, top, right, bottom;
    PictureBox(double x0, double y0, double x1, double y1);
    bool contains(const std::array<double, 2>& place) const;
};

/// The shown elements that have a face, beam or point wholly within a box; ascending.
Cells cellsWithin(const ShownModel& shown, const Camera& camera, int width, int height,
                  const PictureBox& box);
/// Those of them with a face there of which a pixel is seen, or a beam or point that no face hides. Draws
/// into a framebuffer of its own.
Cells visibleCellsWithin(const ShownModel& shown, const Camera& camera, int width, int height,
                         const PictureBox& box);

} // namespace nruview
