// A colour for each block of a model.
#pragma once

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Of the first twelve blocks no two look alike to any eye; those after them have paler colours.
NgColorLong blockColor(std::size_t block);

/// The colours of elements that are selected, highlighted or have their own, else that of their block where
/// blocks are shown, else 0; empty where all are 0.
std::vector<NgColorLong> ownColors(const ShownModel& shown);

/// The same for an element mesh whose element numbers are the model's, as far as applyFacts has not done it.
void setBlockColors(const ShownModel& shown, ngl::NglElementMesh& mesh);

} // namespace nruview
