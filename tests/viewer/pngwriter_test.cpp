// The writer's files through libpng's own reader.
#include "viewer/pngwriter.h"

#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>

#include <array>
#include <cstdio>

TEST(PngWriter, KeepsEveryPixelInItsPlace) {
    // Packed 0xAABBGGRR, the lower row first; alpha is not kept.
    const std::array<std::uint32_t, 6> pixels = {0xFF030201, 0x00060504, 0x7F090807,
                                                 0xFF0C0B0A, 0xFF0F0E0D, 0xFFFF1110};
    const std::array<unsigned char, 18> expected = {10, 11, 12, 13, 14, 15, 16, 17, 255,
                                                    1,  2,  3,  4,  5,  6,  7,  8,  9};
    const std::string path = "/tmp/pngwriter_test" + std::to_string(getpid()) + ".png";
    nruview::writePng(path, 3, 2, pixels);

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    std::array<unsigned char, 18> rgb{};
    const bool opened = png_image_begin_read_from_file(&image, path.c_str()) != 0;
    std::remove(path.c_str());
    ASSERT_TRUE(opened) << image.message;
    EXPECT_EQ(image.width, 3u);
    EXPECT_EQ(image.height, 2u);
    EXPECT_EQ(image.format, static_cast<png_uint_32>(PNG_FORMAT_RGB));
    ASSERT_TRUE(png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr)) << image.message;
    EXPECT_EQ(rgb, expected);
}
