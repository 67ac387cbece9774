// Which marker lies under a pixel.
#pragma once

#include <optional>
#include <string>

#include "viewer/markers/markers.h"
#include "viewer/scene/pick.h"

namespace nruview {

struct PickedMarker {
    std::string text;      ///< one line without its end, for example "support 3 (pin) at node 12 at 0 10 5"
    double distance = 0.0; ///< from the origin of the pixel's ray
};

/// The nearest of the symbols at a pixel, y counted from the top, else of the other markers there, if it is
/// nearer than `hidden`, in the view of the last beginFrame.
std::optional<PickedMarker> pickMarker(const ShownModel& shown, const Markers& markers, int x, int y,
                                       double hidden);

/// What is picked at a pixel, as one line: a marker, unless opaque faces hide it, else the model.
std::string describePixel(const ShownModel& shown, Picker& picker, const Markers& markers, bool opaque, int x,
                          int y);

} // namespace nruview
