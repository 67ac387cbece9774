// Textures in another size: averages of areas where they shrink, cubic interpolation where they grow.
#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <vector>

#include "NRenderUtl/Texture/ntexture.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostimage.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

constexpr int kChannels = 4;
constexpr float kFullAlpha = 255;
constexpr float kLeastAlpha = 0.5f; ///< below it a byte of alpha rounds to 0

// --- weights -----------------------------------------------------------------------------------------------

/// The source pixels that make one pixel along an axis, from `first` on, and their shares: 1 in all.
struct Taps {
    int first;
    std::vector<float> weights;
};

/// What pixel i covers of the source.
Taps areaTaps(int i, int from, int to) {
    const double scale = static_cast<double>(from) / to, low = i * scale, high = (i + 1) * scale;
    Taps taps{static_cast<int>(low), {}};
    const int end = std::min(static_cast<int>(std::ceil(high)), from);
    for (int k = taps.first; k < end; ++k)
        taps.weights.push_back(
            static_cast<float>((std::min<double>(high, k + 1) - std::max<double>(low, k)) / scale));
    return taps;
}

/// E. Catmull and R. Rom, "A Class of Local Interpolating Splines", 1974: the source's own pixels stay. What
/// would lie beyond its edge is the pixel at the edge.
Taps cubicTaps(int i, int from, int to) {
    const double centre = (i + 0.5) * from / to - 0.5, base = std::floor(centre), t = centre - base;
    const std::array shares = {t * (-0.5 + t * (1 - 0.5 * t)), 1 + t * t * (-2.5 + 1.5 * t),
                               t * (0.5 + t * (2 - 1.5 * t)), t * t * (-0.5 + 0.5 * t)};
    const auto inside = [=](int k) { return std::clamp(static_cast<int>(base) - 1 + k, 0, from - 1); };
    Taps taps{inside(0), std::vector<float>(static_cast<std::size_t>(inside(3) - inside(0) + 1))};
    for (int k = 0; k < 4; ++k)
        taps.weights[static_cast<std::size_t>(inside(k) - taps.first)] +=
            static_cast<float>(shares[static_cast<std::size_t>(k)]);
    return taps;
}

std::vector<Taps> tapsOf(int from, int to) {
    std::vector<Taps> all;
    all.reserve(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i)
        all.push_back(to < from ? areaTaps(i, from, to) : cubicTaps(i, from, to));
    return all;
}

// --- pixels ------------------------------------------------------------------------------------------------

using Pixel = std::array<float, kChannels>;

void add(Pixel& sum, const Pixel& pixel, float weight) {
    for (std::size_t i = 0; i < kChannels; ++i)
        sum[i] += pixel[i] * weight;
}

unsigned char byteOf(float value) {
    return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0f, 255.0f)));
}

struct PictureView {
    const unsigned char* bytes;
    int width, height;
    bool hasAlpha; ///< else the fourth byte is no alpha and colours do not depend on it

    const unsigned char* at(int x, int y) const {
        return bytes + kChannels * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                    static_cast<std::size_t>(x));
    }
    /// Colours count by their alpha, so that those of transparent pixels do not bleed.
    Pixel weighed(int x, int y) const {
        const unsigned char* p = at(x, y);
        const float share = hasAlpha ? static_cast<float>(p[3]) / kFullAlpha : 1;
        return {static_cast<float>(p[0]) * share, static_cast<float>(p[1]) * share,
                static_cast<float>(p[2]) * share, static_cast<float>(p[3])};
    }
};

/// Rows of a picture in another width. Those of the last few are kept: neighbours share them.
class ResizedRows {
public:
    ResizedRows(const PictureView& picture, int width)
        : m_picture(picture), m_columns(tapsOf(picture.width, width)) {}

    const std::vector<Pixel>& row(int y) {
        Slot& slot = m_slots[static_cast<std::size_t>(y) % m_slots.size()];
        if (slot.y != y)
            fill(slot, y);
        return slot.pixels;
    }

private:
    struct Slot {
        int y = -1;
        std::vector<Pixel> pixels;
    };
    void fill(Slot& slot, int y) {
        slot.y = y;
        slot.pixels.assign(m_columns.size(), Pixel{});
        for (std::size_t x = 0; x < m_columns.size(); ++x) {
            int from = m_columns[x].first;
            for (const float weight : m_columns[x].weights)
                add(slot.pixels[x], m_picture.weighed(from++, y), weight);
        }
    }
    const PictureView m_picture;
    const std::vector<Taps> m_columns;
    std::array<Slot, 4> m_slots; ///< as many rows as the interpolation takes
};

/// A pixel whose colours count by their alpha, as bytes. One that nobody sees keeps the colour of the source.
void store(const Pixel& pixel, const PictureView& picture, const unsigned char* nearest,
           unsigned char* bytes) {
    const bool unseen = picture.hasAlpha && pixel[3] < kLeastAlpha;
    const float share = picture.hasAlpha ? kFullAlpha / pixel[3] : 1;
    for (std::size_t i = 0; i < 3; ++i)
        bytes[i] = unseen ? nearest[i] : byteOf(pixel[i] * share);
    bytes[3] = byteOf(pixel[3]);
}

int nearestTo(int i, int from, int to) {
    return static_cast<int>((2 * std::int64_t{i} + 1) * from / (2 * std::int64_t{to}));
}

std::vector<unsigned char> resized(const PictureView& picture, int width, int height) {
    std::vector<unsigned char> bytes(std::size_t{kChannels} * static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height));
    unsigned char* next = bytes.data();
    ResizedRows rows(picture, width);
    const std::vector<Taps> lines = tapsOf(picture.height, height);
    std::vector<Pixel> sums(static_cast<std::size_t>(width));
    for (int y = 0; y < height; ++y) {
        std::fill(sums.begin(), sums.end(), Pixel{});
        int from = lines[static_cast<std::size_t>(y)].first;
        for (const float weight : lines[static_cast<std::size_t>(y)].weights) {
            const std::vector<Pixel>& row = rows.row(from++);
            for (std::size_t x = 0; x < sums.size(); ++x)
                add(sums[x], row[x], weight);
        }
        for (int x = 0; x < width; ++x, next += kChannels)
            store(sums[static_cast<std::size_t>(x)], picture,
                  picture.at(nearestTo(x, picture.width, width), nearestTo(y, picture.height, height)), next);
    }
    return bytes;
}

} // namespace

NErrorPtr NuTexture::CreateScaledTexture(const NuTexture& source, int width, int height) {
    if (NErrorPtr refusal = RefuseOtherThan(PixelData))
        return refusal;
    if (!source.m_pixels)
        return hostError("The texture to scale has no pixels!");
    if (!imageSizeAllowed(width, height))
        return hostError(hostFormat("A texture cannot be scaled to %d x %d pixels!", width, height));
    try {
        const PictureView picture{source.m_pixels, source.m_width, source.m_height,
                                  source.m_pixelFormat == GL_RGBA};
        std::vector<unsigned char> pixels = resized(picture, width, height);
        return CreateFromPixelData(width, height, pixels.data(), static_cast<int>(source.m_pixelFormat));
    } catch (const std::bad_alloc&) {
        return hostError(hostFormat("Not enough memory for a texture of %d x %d pixels!", width, height));
    }
}
