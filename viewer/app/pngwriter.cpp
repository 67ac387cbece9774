// The picture goes to a file of a name of its own first, so that a failure leaves no half picture behind.
#include "viewer/app/pngwriter.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

#include "viewer/error.h"

namespace nruview {

namespace {

std::vector<unsigned char> topDownRgb(int width, int height, std::span<const std::uint32_t> pixels) {
    std::vector<unsigned char> rgb;
    rgb.reserve(pixels.size() * 3);
    for (int row = height - 1; row >= 0; --row)
        for (std::uint32_t pixel : pixels.subspan(static_cast<std::size_t>(row) * width, width))
            for (int shift = 0; shift < 24; shift += 8)
                rgb.push_back(static_cast<unsigned char>(pixel >> shift));
    return rgb;
}

/// Empty text, or the reason why the file could not be written.
std::string writeFile(const std::string& path, int width, int height, const std::vector<unsigned char>& rgb) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return std::strerror(errno);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    const bool written = png_image_write_to_stdio(&image, file, 0, rgb.data(), 0, nullptr) != 0;
    const std::string reason = written ? std::string() : image.message;
    const bool closed = std::fclose(file) == 0; // a full disk may only show here
    return written && !closed ? std::strerror(errno) : reason;
}

} // namespace

void writePng(const std::string& path, int width, int height, std::span<const std::uint32_t> pixels) {
    std::error_code error;
    if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error))
        throw ViewerError(path, "cannot write the picture: not a regular file");
    const std::string partial = path + ".part";
    std::string reason = writeFile(partial, width, height, topDownRgb(width, height, pixels));
    if (reason.empty() && std::rename(partial.c_str(), path.c_str()) != 0)
        reason = std::strerror(errno);
    if (!reason.empty()) {
        std::filesystem::remove(partial, error);
        throw ViewerError(path, "cannot write the picture: " + reason);
    }
}

} // namespace nruview
