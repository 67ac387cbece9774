// Which faces are seen: a picture of their numbers.
#pragma once

#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Drawn when it is made, into a framebuffer of its own; the view is then that of the camera.
class SeenFaces {
public:
    /// Throws ViewerError where the driver has no framebuffer objects.
    SeenFaces(const ShownModel& shown, const Camera& camera, int width, int height);

    /// Whether a face, by its place in the order of forEachFace, or behind those a polygon of the section's
    /// cut has a pixel in the picture.
    bool isFaceSeen(std::size_t face) const { return m_isSeen[face]; }
    /// Whether no face lies before a point.
    bool isInFront(const Point& point) const;

private:
    void readBack();

    int m_width, m_height;
    std::vector<bool> m_isSeen;
    std::vector<float> m_depths; ///< of pixels, rows from bottom to top
};

} // namespace nruview
