// Fuzz target: bytes as a Radiance picture. Either there is a reason and no picture, or a whole picture.
#include <cmath>
#include <cstdlib>

#include "NRenderUtl/host/hostimage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const DecodedFloatImage image = decodeRadiance({data, size});
    const std::size_t values = std::size_t{3} * image.width * image.height;
    if (image.rgb.size() != values || (values == 0) != !image.error.empty()) {
        std::abort();
    }
    for (const float value : image.rgb) {
        if (!std::isfinite(value) || value < 0) {
            std::abort();
        }
    }
    return 0;
}
