// What lies under a pixel: an element, one of its edges or a node.
#pragma once

#include <limits>
#include <string>

#include "viewer/scene/shownmodel.h"

namespace nruview {

struct Picked {
    enum class Kind { Nothing, Element, Edge, Node };
    Kind kind = Kind::Nothing;
    std::uint32_t cell = 0;               ///< the element, or the one whose edge or node it is
    std::array<std::uint32_t, 2> nodes{}; ///< the node, or the ends of the edge
    Point position{};                     ///< in the undeformed model
    double value = 0.0;                   ///< NaN where there is none
    /// From the origin of the pixel's ray to the face there; infinite beside all faces.
    double distance = std::numeric_limits<double>::infinity();
};

/// Finds what lies under pixels; what that takes is made with the first one and serves as long as the same
/// faces are shown in the same places.
class Picker {
public:
    explicit Picker(const ShownModel& shown);

    /// What is seen at a window pixel, y counted from the top, with the view of the last beginFrame: of the
    /// face hit first, a node within 4 pixels, else an edge within 3, else the element. Beams and single
    /// points in front count too. What a section cuts away is not there; in the cut itself there are the
    /// elements alone.
    Picked pick(int x, int y);

private:
    const ShownModel& m_shown;
    ngl::NglElementMesh m_faces;
};

/// The same for a single pixel.
Picked pick(const ShownModel& shown, int x, int y);

/// One line without its end, for example "node 12 at 1 0.5 0: S:mises = 31.25".
std::string describe(const ShownModel& shown, const Picked& picked);

} // namespace nruview
