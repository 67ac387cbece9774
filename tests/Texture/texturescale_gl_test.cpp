// Textures in other sizes: every pixel of smaller ones against averages on a finer grid, of larger ones what
// an interpolation must keep.
#include <cmath>

#include "NRenderUtl/NRenderUtl.h"
#include "tests/Texture/pictures.h"
#include "tests/support/librarytest.h"

using namespace nrutest;
using Pixels = std::vector<std::uint32_t>;

namespace {

/// The pixels, as the GL texture has them.
Pixels pixelsOf(NuTexture& texture) {
    int width = 0, height = 0;
    texture.GetTextureSize(width, height);
    Pixels pixels(static_cast<std::size_t>(width * height));
    texture.RenderAsRectangle(0, 0, 1, 1, {});
    GLuint name = 99;
    while (name > 0 && !glIsTexture(name))
        --name; // the texture drawn last
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return pixels;
}

Pixels scaled(int width, int height, const Pixels& pixels, int newWidth, int newHeight,
              GLenum format = GL_RGBA) {
    NuTexture texture, copy;
    fillTexture(texture, width, height, pixels, format);
    EXPECT_FALSE(copy.CreateScaledTexture(texture, newWidth, newHeight));
    return pixelsOf(copy);
}

int byte(std::uint32_t color, int i) {
    return static_cast<int>(color >> 8 * i & 0xFF);
}

/// Every pixel cut into newWidth x newHeight cells, of which each new pixel takes width x height.
std::uint32_t averageOfCells(int width, int height, const Pixels& pixels, int newWidth, int x, int newHeight,
                             int y) {
    double colors[3] = {}, alphas = 0;
    for (int cell = 0; cell < width * height; ++cell) {
        const int column = (x * width + cell % width) / newWidth,
                  row = (y * height + cell / width) / newHeight;
        const std::uint32_t pixel = pixels[static_cast<std::size_t>(row * width + column)];
        for (int i = 0; i < 3; ++i)
            colors[i] += byte(pixel, i) * byte(pixel, 3);
        alphas += byte(pixel, 3);
    }
    std::uint32_t result = static_cast<std::uint32_t>(std::lround(alphas / (width * height))) << 24;
    for (int i = 0; i < 3; ++i)
        result |= static_cast<std::uint32_t>(std::lround(colors[i] / alphas)) << 8 * i;
    return result;
}

struct TextureScale : LibraryTest {};

} // namespace

TEST_F(TextureScale, ShrinkingAveragesWhatEachPixelCovers) {
    constexpr int kWidth = 12, kHeight = 9;
    Pixels pixels;
    for (std::uint32_t i = 0; i < kWidth * kHeight; ++i)
        pixels.push_back(i * 2654435761u);
    pixels[5] &= 0x00FFFFFF; // transparent: not a trace of its colour
    for (const auto& [width, height] : {std::pair{1, 1}, {4, 3}, {5, 7}, {12, 2}, {11, 9}}) {
        const Pixels small = scaled(kWidth, kHeight, pixels, width, height);
        for (int i = 0; i < width * height; ++i) {
            const std::uint32_t wanted =
                averageOfCells(kWidth, kHeight, pixels, width, i % width, height, i / width);
            for (int channel = 0; channel < 4; ++channel) // 1: single precision at a half
                EXPECT_NEAR(byte(small[static_cast<std::size_t>(i)], channel), byte(wanted, channel), 1)
                    << width << " x " << height << ": " << i << " " << hex(wanted);
        }
    }
    EXPECT_EQ(scaled(2, 1, {0x00FFFFFF, 0xFF0000FF}, 1, 1), (Pixels{0x800000FF}));
    EXPECT_EQ(scaled(2, 1, {0x00FEFEFE, 0xFF000000}, 1, 1, GL_RGB), (Pixels{0xFF7F7F7F})); // no alpha there
}

TEST_F(TextureScale, GrowingKeepsThePixelsTheRampsAndTheEdges) {
    Pixels ramp;
    for (std::uint32_t i = 0; i < 8; ++i)
        ramp.push_back(0xFF000000 | (27 * i) << 16 | (30 * i + 9) << 8 | (210 - 30 * i));
    const Pixels wide = scaled(8, 1, ramp, 24, 3);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(wide[24 + 3 * i + 1], ramp[i]) << "a third of each pixel is its centre";
    for (std::size_t i = 6; i < 18; ++i) // thirds of 27 and 30 are whole
        EXPECT_EQ(wide[24 + i + 1] - wide[24 + i], (9u << 16) + (10u << 8) - 10u) << i;
    const Pixels edge = scaled(2, 2, {0x0000FF00, 0x0000FF00, 0xFF0000FF, 0xFF0000FF}, 16, 50);
    bool partly = false;
    for (const std::uint32_t pixel : edge) {
        EXPECT_TRUE(pixel >> 24 == 0 || (pixel & 0xFFFFFF) == 0x0000FF) << hex(pixel);
        partly |= byte(pixel, 3) > 64 && byte(pixel, 3) < 192;
    }
    EXPECT_TRUE(partly);
    const Pixels same = {0x0012AB34, 0x80FF0000, 0x01AAAAAA, 0xFF010203, 0x7F808182, 0};
    EXPECT_EQ(scaled(3, 2, same, 3, 2), same);
}

TEST_F(TextureScale, RefusesImpossibleSizesAndEmptySources) {
    NuTexture texture, none;
    fillTexture(texture, 2, 1, {0xFF000000, 0xFFFFFFFF});
    const auto refusal = [&](const NuTexture& source, int width, int height) -> std::string {
        const NErrorPtr error = texture.CreateScaledTexture(source, width, height);
        return error ? error->GetTextUtf8() : "";
    };
    EXPECT_EQ(refusal(none, 1, 1), "The texture to scale has no pixels!");
    EXPECT_EQ(refusal(texture, 0, 1), "A texture cannot be scaled to 0 x 1 pixels!");
    EXPECT_EQ(refusal(texture, 32768, 32768), "A texture cannot be scaled to 32768 x 32768 pixels!");
    EXPECT_EQ(pixelsOf(texture), (Pixels{0xFF000000, 0xFFFFFFFF}));
    EXPECT_EQ(refusal(texture, 1, 1), ""); // of itself
    EXPECT_EQ(pixelsOf(texture), (Pixels{0xFF808080}));
}
