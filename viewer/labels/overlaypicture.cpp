// The library draws a texture in any size, but only its scaling averages the pixels of a larger picture.
#include "viewer/labels/overlaypicture.h"

#include <algorithm>
#include <cmath>

#include "viewer/app/messages.h"
#include "viewer/error.h"

namespace nruview {

namespace {

constexpr double kLargestPart = 1.0 / 6.0; ///< of the window, that a logo takes

} // namespace

OverlayPicture::OverlayPicture(const std::string& file) : m_file(file) {
    const HeldMessages messages; // ours tells the same
    if (!m_picture.CreateFromImage(GuStringFileName(file.c_str())))
        return;
    const std::string line = messages.last();
    const std::size_t colon = line.rfind(": ");
    throw ViewerError(file,
                      colon == std::string::npos ? "is no PNG or JPEG picture" : line.substr(colon + 2));
}

void OverlayPicture::scaleTo(int width, int height) {
    int oldWidth = 0, oldHeight = 0;
    if (m_scaled.GetTextureSize(oldWidth, oldHeight) && oldWidth == width && oldHeight == height)
        return;
    if (m_scaled.CreateScaledTexture(m_picture, width, height))
        throw ViewerError(m_file, "cannot be scaled");
}

void OverlayPicture::drawInCorner(int width, int height, int margin) {
    int ownWidth = 0, ownHeight = 0;
    m_picture.GetTextureSize(ownWidth, ownHeight);
    const double factor = std::min({1.0, kLargestPart * width / ownWidth, kLargestPart * height / ownHeight});
    const int shownWidth = static_cast<int>(factor * ownWidth),
              shownHeight = static_cast<int>(factor * ownHeight);
    if (shownWidth < 1 || shownHeight < 1)
        return;
    scaleTo(shownWidth, shownHeight);
    m_scaled.RenderAsRectangle(width - margin - shownWidth, margin, shownWidth, shownHeight, {});
}

void OverlayPicture::drawAround(const _NgPoint2Str& center, int diameter, NgColorLong borderColor) {
    NuTexture::RenderInfo info;
    info.border = info.borderThickness = 1;
    for (int channel = 0; channel < 3; ++channel)
        info.borderColor[channel] = static_cast<unsigned char>(borderColor >> 8 * channel & 0xFF);
    scaleTo(diameter, diameter);
    m_scaled.RenderAsCircle(static_cast<int>(std::lround(center.x - 0.5 * diameter)),
                            static_cast<int>(std::lround(center.y - 0.5 * diameter)), diameter, info);
}

} // namespace nruview
