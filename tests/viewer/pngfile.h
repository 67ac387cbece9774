// PNG files as pictures.
#pragma once

#include <png.h>

#include "tests/support/gltest.h"

namespace nrutest {

/// Rows from top to bottom; of 1 x 1 where there is no picture.
inline Picture readPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
        return {1, 1};
    image.format = PNG_FORMAT_RGBA;
    Picture picture(static_cast<int>(image.width), static_cast<int>(image.height));
    png_image_finish_read(&image, nullptr, &picture.at(0, 0), 0, nullptr);
    return picture;
}

} // namespace nrutest
