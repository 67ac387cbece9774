// Pictures for tests: PNG files and textures.
#pragma once

#include <png.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/Texture/ntexture.h"

namespace nrutest {

/// A PNG of 8-bit RGBA pixels, packed 0xAABBGGRR, rows from top to bottom.
inline std::string pngOf(unsigned width, unsigned height, const std::vector<std::uint32_t>& pixels) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_RGBA;
    std::string file(PNG_IMAGE_PNG_SIZE_MAX(image), '\0');
    png_alloc_size_t size = file.size();
    if (pixels.size() != std::size_t{width} * height ||
        !png_image_write_to_memory(&image, file.data(), &size, 0, pixels.data(), 0, nullptr))
        throw std::runtime_error("no PNG");
    file.resize(size);
    return file;
}

/// Rows from bottom to top, packed 0xAABBGGRR; the last pixel fills the rest.
inline void fillTexture(NuTexture& texture, int width, int height, std::vector<std::uint32_t> pixels,
                        unsigned format = 0x1908 /* GL_RGBA */) {
    pixels.resize(static_cast<std::size_t>(width * height), pixels.back());
    ASSERT_FALSE(texture.CreateFromPixelData(width, height, reinterpret_cast<unsigned char*>(pixels.data()),
                                             static_cast<int>(format)));
}

} // namespace nrutest
