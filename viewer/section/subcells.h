// Solid elements as linear sub-elements, so that a cut follows mid-side nodes as the surface does.
#pragma once

#include "viewer/model/celltypes.h"

namespace nruview {

/// Triangle or quad by places among an element's points; outward, or all faces of a sub-element inward.
struct SubFace {
    std::array<std::uint8_t, 4> corners{};
    std::uint8_t count = 0;
    bool isOuter = false; ///< part of a face of the element
};

/// A point without a node: mean of eight nodes of a face or of all nodes, by the shape functions.
struct SubCentre {
    std::uint8_t count = 0;
    std::array<std::uint8_t, 20> nodes{};
    std::array<double, 20> weights{};
};

/// Points are the element's nodes, then the centres.
struct SubCells {
    std::vector<SubCentre> centres;
    std::vector<std::vector<SubFace>> cells;
};

/// Of a solid.
const SubCells& subCellsOf(CellType type);

} // namespace nruview
