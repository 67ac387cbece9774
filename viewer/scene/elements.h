// What was asked for single elements, as the library's element mesh takes it.
#pragma once

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/model/model.h"
#include "viewer/scene/scenesettings.h"

namespace nruview {

/// The settings found good for a model, with what its coordinates and fields say.
struct ElementFacts {
    ElementSettings settings;             ///< its lists are of indices
    ElementList hiddenBlocks;             ///< their elements, of indices
    std::vector<std::uint32_t> clipped;   ///< elements outside of a clip interval
    std::vector<int> failFrom, existFrom; ///< levels of every element, -1 = none; empty without a level
    std::vector<bool> shown;              ///< whether an element is drawn; empty: all are
    std::vector<bool> colored;            ///< whether it has a colour of its own; empty: none has

    bool isShown(std::uint32_t cell) const { return shown.empty() || shown[cell]; }
    bool isColored(std::uint32_t cell) const { return !colored.empty() && colored[cell]; }
};

/// Throws ViewerError for an element that the model does not have, and for a level field that is unknown or
/// not one of the elements.
ElementFacts elementFacts(const Model& model, const ElementSettings& settings, std::optional<int> step);

/// Tells a mesh whose element numbers are the model's.
void applyFacts(const ElementFacts& facts, ngl::NglElementMesh& mesh);

/// The colours of elements that are selected, highlighted or have their own, else 0; empty where none is.
std::vector<NgColorLong> standOutColors(const ElementFacts& facts, std::size_t count);

} // namespace nruview
