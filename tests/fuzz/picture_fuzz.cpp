// Fuzz target: bytes as a PNG or a JPEG. Either there is a reason and no picture, or a whole picture.
#include <cstdlib>

#include "NRenderUtl/host/hostimage.h"

namespace {

void check(const DecodedImage& image) {
    const std::size_t bytes = std::size_t{4} * image.width * image.height;
    if (image.rgba.size() != bytes || (bytes == 0) != !image.error.empty()) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const bool isJpeg = size > 0 && data[0] == 0xff;
    check(isJpeg ? decodeJpeg({data, size}) : decodePng({data, size}));
    return 0;
}
