// Radiance pictures (.hdr) for tests, made of a function of the pixel.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace nrutest {

using Radiance = std::array<float, 3>;

/// The four bytes of a colour: mantissas of eight bits, cut off, with the exponent of the largest channel.
inline std::string rgbeOf(const Radiance& rgb) {
    const float largest = std::max({rgb[0], rgb[1], rgb[2]});
    int exponent = 0;
    std::frexp(largest, &exponent);
    if (largest < 1e-32f)
        return std::string(4, '\0');
    std::string bytes;
    for (const float value : rgb)
        bytes += static_cast<char>(static_cast<std::uint8_t>(std::ldexp(value, 8 - exponent)));
    return bytes + static_cast<char>(static_cast<std::uint8_t>(exponent + 128));
}

/// A file of flat pixels. pixel(x, y) gives the colour; y is 0 in the top row. Values of up to eight bits
/// times one power of two for the pixel are exact.
template <class Pixel>
std::string radianceFile(int width, int height, const Pixel& pixel) {
    std::string file = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " + std::to_string(height) + " +X " +
                       std::to_string(width) + "\n";
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            file += rgbeOf(pixel(x, y));
    return file;
}

} // namespace nrutest
