// Pictures of a motion, one file each: the steps of a result, or the swing of a shape.
#pragma once

#include "viewer/workspace/commands.h"

namespace nruview {

/// The file of a frame: the pattern has one %d, or with leading zeros %03d and the like. Throws ViewerError
/// for another one.
std::string frameFile(const std::string& pattern, int frame);

/// Writes the frames, from number 0: over all steps, or over one whole swing, after whose last frame the
/// first follows. Colours, the view and the factor of the deformation stay the same in all of them, but that
/// each mode has a factor of its own; a fitted view shows all of the motion. Then the workspace shows what it
/// did before. Throws ViewerError.
void writeAnimation(CommandPlace& place, const AnimationSettings& animation, const std::string& pattern);

} // namespace nruview
