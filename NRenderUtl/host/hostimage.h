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
inline constexpr bool imageSizeAllowed(std::int64_t width, std::int64_t height) {
    return width >= 1 && height >= 1 && width <= kMaxImageExtent && height <= kMaxImageExtent &&
           width * height <= kMaxImagePixels;
}

/// Frees the pixels of an image by what belongs to their maker, whatever services were installed since:
/// the host's function, or NHostFree where there is none.
struct HostImageDeleter {
    void (*freeImage)(void* context, void* pixels) = nullptr;
    void* context = nullptr;
    void operator()(void* pixels) const;
};
/// The deleter for pixels that the host hands over now by other means than its loaders.
HostImageDeleter hostImageDeleter();

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

/// Loads a PNG or JPEG file, told apart by content, as 8-bit pixels with 1 (grey), 3 (RGB) or 4 (RGBA)
/// channels. Grey is Rec. 601 luma; dropped alpha is not blended. Where the host supplies image functions,
/// they load the file. Empty on failure; the library's own refusals go out as console messages that name the
/// file.
HostImage hostLoadImage(const GuStringFileName& path, int channels);
/// Loads a Radiance (.hdr) file as linear floats with 3 (RGB) or 4 (RGB and alpha 1) channels; else as
/// hostLoadImage.
HostFloatImage hostLoadFloatImage(const GuStringFileName& path, int channels);

/// What a decoder made of the bytes of one file: pixels, rows from top to bottom, or the reason for refusing
/// them.
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

/// Any PNG. Raw sample values: gamma and colour profiles are ignored, of 16 bits the upper eight are kept.
/// Every checksum counts; pixel data that are too many or too few for the size are refused.
DecodedImage decodePng(std::span<const std::uint8_t> data);
/// Grey, RGB, YCbCr, CMYK and YCCK JPEG; EXIF orientation and colour profiles are ignored.
/// Truncated or corrupt data are refused: half a picture is no picture.
DecodedImage decodeJpeg(std::span<const std::uint8_t> data);
/// Radiance RGBE (G. Ward, "Real Pixels", Graphics Gems II, 1991), any orientation and run-length form;
/// value = mantissa * 2^(exponent - 136). EXPOSURE and COLORCORR are not applied: values are those of the
/// file.
DecodedFloatImage decodeRadiance(std::span<const std::uint8_t> data);
