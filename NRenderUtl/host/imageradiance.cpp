// Radiance RGBE pictures: header, the eight orientations, and the flat, old and new run-length scanlines.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "NRenderUtl/host/hostimage.h"

namespace {

// Scanlines of these lengths may use the new run-length form.
constexpr std::size_t kMinNewLength = 8, kMaxNewLength = 0x7fff;
// Old runs can repeat one pixel without end, so that a small file unfolds to gigabytes. Real pictures stay
// far below this many pixels a byte (new runs reach 16); small pictures may unfold as they like.
constexpr std::int64_t kMaxPixelsPerByte = 64, kSmallPicturePixels = std::int64_t{1} << 22;

using Rgbe = std::array<std::uint8_t, 4>;

/// The unread bytes of the file; a read past the end gives nothing.
struct Input {
    std::span<const std::uint8_t> rest;

    std::optional<std::uint8_t> byte() {
        if (rest.empty())
            return {};
        const std::uint8_t value = rest.front();
        rest = rest.subspan(1);
        return value;
    }

    std::optional<Rgbe> pixel() {
        if (rest.size() < 4)
            return {};
        const Rgbe value{rest[0], rest[1], rest[2], rest[3]};
        rest = rest.subspan(4);
        return value;
    }

    /// Text up to the next line feed, which is dropped, as is a carriage return before it.
    std::optional<std::string_view> line() {
        const auto end = std::find(rest.begin(), rest.end(), '\n');
        if (end == rest.end())
            return {};
        const auto length = static_cast<std::size_t>(end - rest.begin());
        std::string_view text(reinterpret_cast<const char*>(rest.data()), length);
        rest = rest.subspan(length + 1);
        if (text.ends_with('\r'))
            text.remove_suffix(1);
        return text;
    }
};

/// Scanlines and their pixels in the file's order. columnMajor: a scanline is a column of the picture.
struct Layout {
    int scanlines = 0, length = 0;
    bool columnMajor = false;
    bool rightToLeft = false, bottomToTop = false;

    int width() const { return columnMajor ? scanlines : length; }
    int height() const { return columnMajor ? length : scanlines; }

    /// Place of a pixel in rows from top to bottom, left to right.
    std::size_t index(int scanline, int pixel) const {
        const int column = columnMajor ? scanline : pixel, row = columnMajor ? pixel : scanline;
        const int x = rightToLeft ? width() - 1 - column : column;
        const int y = bottomToTop ? height() - 1 - row : row;
        return static_cast<std::size_t>(y) * width() + x;
    }
};

/// "FORMAT= value" gives "value"; any other line nothing.
std::optional<std::string_view> formatOf(std::string_view line) {
    constexpr std::string_view kKey = "FORMAT=";
    if (!line.starts_with(kKey))
        return {};
    line.remove_prefix(kKey.size());
    const std::size_t first = line.find_first_not_of(" \t"), last = line.find_last_not_of(" \t");
    return first == line.npos ? std::string_view() : line.substr(first, last - first + 1);
}

/// Reads up to and with the blank line that ends the header. Gives a reason when it refuses, else null.
const char* readHeader(Input& input) {
    const auto magic = input.line();
    if (!magic || (*magic != "#?RADIANCE" && *magic != "#?RGBE"))
        return "not a Radiance picture";
    while (const auto line = input.line()) {
        if (line->empty())
            return nullptr;
        const auto format = formatOf(*line);
        if (format == "32-bit_rle_xyze")
            return "Radiance pictures in XYZ colours are not supported";
        if (format && format != "32-bit_rle_rgbe")
            return "unknown FORMAT in the Radiance header";
    }
    return "the Radiance header has no end";
}

/// One half of a resolution line: sign, axis and count.
struct Axis {
    bool positive = false;
    char name = 0;
    int count = 0;
};

std::optional<Axis> takeAxis(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.size() < 4 || (text[0] != '-' && text[0] != '+') || (text[1] != 'X' && text[1] != 'Y') ||
        text[2] != ' ')
        return {};
    Axis axis{text[0] == '+', text[1], 0};
    text.remove_prefix(std::min(text.find_first_not_of(' ', 2), text.size()));
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), axis.count);
    if (failure != std::errc() || (end != text.data() + text.size() && *end != ' '))
        return {};
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return axis;
}

/// Resolution line such as "-Y 512 +X 1024": Y grows upward, X to the right, the first axis counts scanlines.
std::optional<Layout> parseResolution(std::string_view line) {
    const auto major = takeAxis(line);
    const auto minor = major ? takeAxis(line) : std::nullopt;
    if (!minor || minor->name == major->name || line.find_first_not_of(' ') != line.npos)
        return {};
    const Axis& x = major->name == 'X' ? *major : *minor;
    const Axis& y = major->name == 'Y' ? *major : *minor;
    return Layout{major->count, minor->count, major->name == 'X', !x.positive, y.positive};
}

/// The fewest bytes that can hold a scanline: one pixel and the runs of the old form, which beats the new
/// one.
std::size_t leastScanlineBytes(int length) {
    return length == 1 ? 4 : length <= 256 ? 8 : 12;
}

/// Flat pixels and old runs: (1, 1, 1, n) repeats the last pixel n times, consecutive runs count 8 bits
/// higher.
const char* readOldScanline(Input& input, std::span<Rgbe> line) {
    std::size_t done = 0;
    unsigned shift = 0;
    while (done < line.size()) {
        const auto pixel = input.pixel();
        if (!pixel)
            return "image data end too soon";
        if ((*pixel)[0] != 1 || (*pixel)[1] != 1 || (*pixel)[2] != 1) {
            line[done++] = *pixel;
            shift = 0;
            continue;
        }
        const std::size_t run = std::size_t{(*pixel)[3]} << shift;
        if (done == 0 || run > line.size() - done)
            return "image data are corrupt: a run does not fit its scanline";
        std::fill_n(line.begin() + done, run, line[done - 1]);
        done += run;
        shift = std::min(shift + 8, 24U); // any run counted so high overflows a scanline
    }
    return nullptr;
}

/// New form: each of the four components by itself; n > 128 repeats one byte n - 128 times, else n bytes
/// follow.
const char* readNewScanline(Input& input, std::span<Rgbe> line) {
    for (std::size_t component = 0; component < 4; ++component) {
        for (std::size_t done = 0; done < line.size();) {
            const auto code = input.byte();
            if (!code)
                return "image data end too soon";
            const bool repeats = *code > 128;
            const std::size_t count = repeats ? *code - 128 : *code;
            if (count == 0 || count > line.size() - done)
                return "image data are corrupt: a run does not fit its scanline";
            if (input.rest.size() < (repeats ? 1 : count))
                return "image data end too soon";
            for (std::size_t i = 0; i < count; ++i)
                line[done + i][component] = input.rest[repeats ? 0 : i];
            input.rest = input.rest.subspan(repeats ? 1 : count);
            done += count;
        }
    }
    return nullptr;
}

/// A scanline of any form. The new form opens with (2, 2, length / 256, length % 256).
const char* readScanline(Input& input, std::span<Rgbe> line) {
    if (line.size() < kMinNewLength || line.size() > kMaxNewLength)
        return readOldScanline(input, line);
    const std::span<const std::uint8_t> head = input.rest.first(std::min<std::size_t>(input.rest.size(), 4));
    if (head.size() < 4 || head[0] != 2 || head[1] != 2 || (head[2] & 128) != 0)
        return readOldScanline(input, line);
    if (line.size() != std::size_t{head[2]} * 256 + head[3])
        return "image data are corrupt: a scanline has another length";
    input.rest = input.rest.subspan(4);
    return readNewScanline(input, line);
}

/// 2^(exponent - 136) for every exponent; exponent 0 means black. Exact in a float, below 1e-38 as a
/// subnormal.
std::array<float, 256> exponentScales() {
    std::array<float, 256> scales{};
    for (int exponent = 1; exponent < 256; ++exponent)
        scales[exponent] = std::ldexp(1.0F, exponent - 136);
    return scales;
}

/// All pixels in the file's order. Memory grows with what was read, so a false size cannot ask for much.
const char* readPixels(Input& input, const Layout& layout, std::vector<Rgbe>& pixels) {
    const auto length = static_cast<std::size_t>(layout.length);
    for (int scanline = 0; scanline < layout.scanlines; ++scanline) {
        pixels.resize(pixels.size() + length);
        if (const char* error = readScanline(input, std::span(pixels).last(length)))
            return error;
    }
    return nullptr;
}

std::vector<float> toFloats(const Layout& layout, const std::vector<Rgbe>& pixels) {
    const std::array<float, 256> scales = exponentScales();
    std::vector<float> rgb(pixels.size() * 3);
    auto pixel = pixels.begin();
    for (int scanline = 0; scanline < layout.scanlines; ++scanline) {
        for (int i = 0; i < layout.length; ++i, ++pixel) {
            float* out = &rgb[layout.index(scanline, i) * 3];
            for (int channel = 0; channel < 3; ++channel)
                out[channel] = static_cast<float>((*pixel)[channel]) * scales[(*pixel)[3]];
        }
    }
    return rgb;
}

DecodedFloatImage refused(const char* reason) {
    DecodedFloatImage image;
    image.error = reason;
    return image;
}

} // namespace

DecodedFloatImage decodeRadiance(std::span<const std::uint8_t> data) {
    Input input{data};
    if (const char* error = readHeader(input))
        return refused(error);
    const auto resolution = input.line();
    const auto layout = resolution ? parseResolution(*resolution) : std::nullopt;
    if (!layout)
        return refused("bad resolution line in the Radiance header");
    if (!imageSizeAllowed(layout->width(), layout->height()))
        return refused("image size is out of range");
    if (input.rest.size() / leastScanlineBytes(layout->length) < static_cast<std::size_t>(layout->scanlines))
        return refused("image data end too soon");
    const std::int64_t pixelCount = std::int64_t{layout->width()} * layout->height();
    if (pixelCount > kSmallPicturePixels &&
        pixelCount / kMaxPixelsPerByte > static_cast<std::int64_t>(input.rest.size()))
        return refused("image is far larger than its data");
    std::vector<Rgbe> pixels;
    if (const char* error = readPixels(input, *layout, pixels))
        return refused(error);
    return {layout->width(), layout->height(), toFloats(*layout, pixels), {}};
}
