// picturediff A.png B.png [DIFF.png]: the largest difference of two pictures in one channel, the pixel where
// it is and how many pixels differ by more than a step that eyes and rounding leave alone; DIFF.png shows
// where.
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <vector>

#include "viewer/app/pngwriter.h"
#include "viewer/error.h"

namespace {

using nruview::ViewerError;

constexpr int kVisibleStep = 8;   ///< of 255
constexpr int kAmplification = 4; ///< of differences in the picture that shows them

struct PngPicture {
    int width = 0, height = 0;
    std::vector<unsigned char> rgb;
};

PngPicture readPicture(const char* path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path) == 0)
        throw ViewerError(path, image.message);
    image.format = PNG_FORMAT_RGB;
    PngPicture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.rgb.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr) == 0)
        throw ViewerError(path, image.message);
    return picture;
}

struct Difference {
    int largest = 0, x = 0, y = 0; ///< the first pixel with it, y from the top
    std::size_t visible = 0;
    std::vector<std::uint32_t> shown; ///< grey on white, rows from the bottom
};

Difference differenceOf(const PngPicture& a, const PngPicture& b) {
    Difference result;
    const std::size_t pixels = a.rgb.size() / 3, width = static_cast<std::size_t>(a.width);
    result.shown.resize(pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
        int most = 0;
        for (std::size_t k = 3 * i; k < 3 * i + 3; ++k)
            most = std::max(most, std::abs(a.rgb[k] - b.rgb[k]));
        if (most > result.largest)
            result = {most, static_cast<int>(i % width), static_cast<int>(i / width), result.visible,
                      std::move(result.shown)};
        result.visible += most > kVisibleStep ? 1 : 0;
        const auto grey = static_cast<std::uint32_t>(255 - std::min(255, kAmplification * most));
        const std::size_t row = pixels / width - 1 - i / width;
        result.shown[row * width + i % width] = 0xFF000000u | grey * 0x010101u;
    }
    return result;
}

void compare(int argc, char** argv) {
    if (argc != 3 && argc != 4)
        throw ViewerError("picturediff", "takes A.png B.png [DIFF.png]");
    const PngPicture a = readPicture(argv[1]), b = readPicture(argv[2]);
    if (a.width != b.width || a.height != b.height)
        throw ViewerError(argv[2], "has another size than " + std::string(argv[1]));
    const Difference difference = differenceOf(a, b);
    const auto pixels = static_cast<double>(a.rgb.size() / 3);
    std::printf("largest %d at %d,%d, %.3f %% of pixels by more than %d\n", difference.largest, difference.x,
                difference.y, 100.0 * static_cast<double>(difference.visible) / pixels, kVisibleStep);
    if (argc == 4)
        nruview::writePng(argv[3], a.width, a.height, difference.shown);
}

} // namespace

int main(int argc, char** argv) {
    try {
        compare(argc, argv);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
