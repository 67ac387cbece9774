// Image loader of the host utility library: PNG and JPEG as 8-bit pixels, Radiance pictures as floats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "NRenderUtl/host/nhost.h"

/// Limits checked before memory is taken: pixels in a row or column, and pixels in all.
inline constexpr int kMaxImageExtent = 32768;
inline constexpr std::int64_t kMaxImagePixels = std::int64_t{1} << 28;

/// Frees the pixels of an image through the service that made them.
struct HostImageDeleter {
    void operator()(void* pixels) const;
};

/// 8-bit pixels, rows from top to bottom, channels interleaved. Empty when loading failed.
struct HostImage {
    int width = 0, height = 0, channels = 0;
    std::unique_ptr<unsigned char, HostImageDeleter> pixels;
    explicit operator bool() const { return pixels != nullptr; }
};

/// Float pixels, rows from top to bottom, channels interleaved. Empty when loading failed.
struct HostFloatImage {
    int width = 0, height = 0, channels = 0;
    std::unique_ptr<float, HostImageDeleter> pixels;
    explicit operator bool() const { return pixels != nullptr; }
};

/// Loads an image file as 8-bit pixels with 1 (grey), 3 (RGB) or 4 (RGBA) channels. Empty on failure.
HostImage hostLoadImage(const GuStringFileName& path, int channels);
/// Loads a Radiance (.hdr) file as linear floats with 3 (RGB) or 4 (RGB and alpha 1) channels. Empty on failure.
HostFloatImage hostLoadFloatImage(const GuStringFileName& path, int channels);
/// Frees pixels that were released from a HostImage or HostFloatImage.
void hostFreeImage(void* pixels);

/// Decoders of one format, from memory: RGBA or RGB pixels, or a reason why the data were refused.
struct DecodedImage {
    int width = 0, height = 0;
    std::vector<unsigned char> rgba;
    std::string error; ///< empty on success
};
struct DecodedFloatImage {
    int width = 0, height = 0;
    std::vector<float> rgb;
    std::string error; ///< empty on success
};
DecodedImage decodePng(std::span<const std::uint8_t> data);
DecodedImage decodeJpeg(std::span<const std::uint8_t> data);
/// Radiance RGBE (G. Ward, "Real Pixels", Graphics Gems II, 1991); value = mantissa * 2^(exponent - 136).
DecodedFloatImage decodeRadiance(std::span<const std::uint8_t> data);
