// A picture file drawn on top of the view.
#pragma once

#include <string>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/labels/screen.h"

namespace nruview {

/// Ends while the context is there in which it was drawn.
class OverlayPicture {
public:
    /// Throws ViewerError for a file that is no PNG or JPEG picture.
    explicit OverlayPicture(const std::string& file);

    /// Upright in the lower right corner, smaller than it is where that takes more than a sixth of the
    /// window's width or height.
    void drawInCorner(int width, int height, int margin);
    /// As a disc with a border about a point of the window, y upward. A square picture is shown as it is.
    void drawAround(const _NgPoint2Str& center, int diameter, NgColorLong borderColor);

private:
    void scaleTo(int width, int height);

    std::string m_file;
    NuTexture m_picture, m_scaled;
};

} // namespace nruview
