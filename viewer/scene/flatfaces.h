// The faces of a model as a host draws them itself between the library's calls for face shading.
#pragma once

#include "viewer/scene/scenesettings.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Draws the faces shown, each with one shade, in their parts' or elements' own colours. Throws ViewerError
/// where the library has no programs for that.
void drawFlatFaces(const ShownModel& shown, const BodySettings& body);

} // namespace nruview
