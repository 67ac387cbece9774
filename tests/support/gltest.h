// Fixture of every test that draws: an off-screen context per case and a trap for GL errors, with pixel
// helpers.
#pragma once

#include <epoxy/gl.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "viewer/app/offscreen.h"

namespace nrutest {

/// Pixels of the current read buffer, packed 0xAABBGGRR, rows from bottom to top.
class Picture {
public:
    Picture(int width, int height);
    /// Reads the whole of the current read buffer from pixel (0, 0).
    static Picture read(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Pixel by window position: x to the right, y upward.
    std::uint32_t at(int x, int y) const { return m_pixels[static_cast<std::size_t>(y) * m_width + x]; }
    std::uint32_t& at(int x, int y) { return m_pixels[static_cast<std::size_t>(y) * m_width + x]; }
    /// Number of pixels whose red, green and blue differ from those of a colour.
    int countOtherThan(std::uint32_t color) const;

private:
    int m_width, m_height;
    std::vector<std::uint32_t> m_pixels;
};

/// The largest difference of one channel between two pictures and where it is.
struct PictureDifference {
    int largest = 0;
    int x = 0, y = 0;
    int pixels = 0; ///< how many pixels differ at all
};
PictureDifference compare(const Picture& a, const Picture& b);
/// Success when no channel differs by more than tolerance; the failure names the worst pixel.
::testing::AssertionResult samePicture(const Picture& a, const Picture& b, int tolerance = 0);

/// Packed colour as text 0xAABBGGRR.
std::string hex(std::uint32_t color);

/// A context of kSize x kSize pixels, current in every case, cleared to kClear. Any GL error fails the case.
class GlTest : public ::testing::Test {
protected:
    static constexpr int kSize = 64;
    static constexpr std::uint32_t kClear = 0xFF332211; ///< a colour that no test draws

    void SetUp() override;
    void TearDown() override;

    /// Clears colour and depth, and the stencil to 0.
    void clear();
    Picture read() const { return Picture::read(kSize, kSize); }
    /// Errors that the driver reported since the last call; the trap then counts them as expected.
    int takeGlErrors();

private:
    nruview::OffscreenContext m_context;
};

} // namespace nrutest
