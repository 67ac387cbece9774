// The models, views and sizes that every program draws.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace nrubench {

constexpr int kWidth = 1024, kHeight = 768;
constexpr unsigned kBands = 12;

// --- views -------------------------------------------------------------------------------------------------

/// The box, in eye space, that a parallel view along -z shows. Its sides are as the picture's.
struct Box {
    double left, right, bottom, top, near, far; ///< near and far as distances, as of glOrtho
};

/// A sheet of 4/3 x 1 times 2 units covers four fifths of the picture.
constexpr double kSheetHalf = 1.118033988749895;
constexpr Box kSheetView = {
    -kSheetHalf * kWidth / kHeight, kSheetHalf* kWidth / kHeight, -kSheetHalf, kSheetHalf, -3, 3};
/// Model units are pixels.
constexpr Box kPixelView = {0, kWidth, 0, kHeight, -300, 300};

/// A perspective view of the torus: turned about x, then moved away.
constexpr double kTorusDistance = 4, kTorusTiltDeg = -35, kTorusTangent = 0.3; ///< of half the height's angle

// --- a finite-element sheet --------------------------------------------------------------------------------

/// A wavy sheet over 4/3 x 1 times -1..1, of about `count` triangles, or of half as many quads.
struct Sheet {
    explicit Sheet(unsigned count, bool quads = false);
    std::uint32_t elementCount() const { return static_cast<std::uint32_t>(elementValues.size()); }
    std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(nodes.size() / 3); }

    unsigned side; ///< elements along one side
    std::vector<double> nodes;
    std::vector<float> normals;
    std::vector<std::uint32_t> triangles, quads;
    std::vector<float> nodeValues, elementValues; ///< 0 to 1
    std::vector<std::uint32_t> colors;            ///< of the elements, 0x00BBGGRR
};

inline double sheetHeight(double x, double y) {
    return 0.05 * std::sin(9 * x) * std::cos(7 * y);
}

inline Sheet::Sheet(unsigned count, bool ofQuads)
    : side(static_cast<unsigned>(std::lround(std::sqrt(count / 2.0)))) {
    const unsigned row = side + 1;
    for (unsigned j = 0; j < row; ++j)
        for (unsigned i = 0; i < row; ++i) {
            const double x = 2.0 * i / side - 1, y = 2.0 * j / side - 1;
            nodes.insert(nodes.end(), {x * kWidth / kHeight, y, sheetHeight(x, y)});
            const double dx = 0.45 * std::cos(9 * x) * std::cos(7 * y) * kHeight / kWidth,
                         dy = -0.35 * std::sin(9 * x) * std::sin(7 * y), length = std::hypot(dx, dy, 1.0);
            for (const double n : {-dx, -dy, 1.0})
                normals.push_back(static_cast<float>(n / length));
            nodeValues.push_back(static_cast<float>(0.5 + 0.5 * std::sin(3 * x + 2 * y)));
        }
    for (unsigned j = 0; j < side; ++j)
        for (unsigned i = 0; i < side; ++i) {
            const unsigned a = j * row + i, b = a + 1, c = b + row, d = a + row;
            if (ofQuads)
                quads.insert(quads.end(), {a, b, c, d});
            else
                triangles.insert(triangles.end(), {a, b, c, a, c, d});
        }
    const std::size_t elements = triangles.size() / 3 + quads.size() / 4;
    for (std::size_t e = 0; e < elements; ++e) {
        elementValues.push_back(static_cast<float>(e) / static_cast<float>(elements));
        colors.push_back(static_cast<std::uint32_t>(e * 2654435761u >> 8 & 0xFFFFFF));
    }
}

inline std::array<unsigned char, 3> bandColor(unsigned band) {
    return {static_cast<unsigned char>(band * 20), static_cast<unsigned char>(255 - band * 20), 128};
}

/// Through places of the sheet, slanted a little: start and end of each ray.
inline std::vector<std::array<std::array<double, 3>, 2>> sheetRays(unsigned count) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(-0.95, 0.95), slant(-0.1, 0.1);
    std::vector<std::array<std::array<double, 3>, 2>> rays(count);
    for (auto& [start, end] : rays) {
        const double x = place(random), y = place(random), dx = slant(random), dy = slant(random);
        start = {x + dx, y + dy, 1};
        end = {x - dx, y - dy, -1};
    }
    return rays;
}

// --- a body ------------------------------------------------------------------------------------------------

/// A torus about the z axis whose tube swells and shrinks, normals from its parametrisation.
struct Torus {
    explicit Torus(unsigned count);

    std::vector<float> positions, normals;
    std::vector<std::uint32_t> triangles;
};

inline Torus::Torus(unsigned count) {
    const auto along = static_cast<unsigned>(std::lround(std::sqrt(count / 6.4))), around = along * 32 / 10;
    constexpr double kTurn = 2 * std::numbers::pi;
    const auto point = [](double u, double v) {
        const double tube = 0.4 * (1 + 0.08 * std::sin(12 * u) * std::sin(8 * v)),
                     r = 0.9 + tube * std::cos(v);
        return std::array{r * std::cos(u), r * std::sin(u), tube * std::sin(v)};
    };
    for (unsigned i = 0; i < around * along; ++i) {
        const double u = kTurn * (i / along) / around, v = kTurn * (i % along) / along, h = 1e-4;
        const auto p = point(u, v), a = point(u + h, v), b = point(u, v + h);
        const std::array du = {a[0] - p[0], a[1] - p[1], a[2] - p[2]},
                         dv = {b[0] - p[0], b[1] - p[1], b[2] - p[2]};
        const std::array n = {du[1] * dv[2] - du[2] * dv[1], du[2] * dv[0] - du[0] * dv[2],
                              du[0] * dv[1] - du[1] * dv[0]};
        const double length = std::hypot(n[0], n[1], n[2]);
        for (int k = 0; k < 3; ++k) {
            positions.push_back(static_cast<float>(p[k]));
            normals.push_back(static_cast<float>(n[k] / length));
        }
        const unsigned j = i / along * along, next = (j + along) % (around * along), up = (i + 1) % along;
        const unsigned c = next + i % along, d = next + up, e = j + up;
        triangles.insert(triangles.end(), {i, c, d, i, d, e});
    }
}

// --- points, segments and markers, in pixels ---------------------------------------------------------------

/// Points, or pairs of them about 6 pixels apart, in double precision, and a colour for each.
struct Dots {
    Dots(unsigned count, bool segments);

    std::vector<std::array<double, 3>> points;
    std::vector<std::uint32_t> colors; ///< 0xAABBGGRR
};

inline Dots::Dots(unsigned count, bool segments) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> x(0, kWidth), y(0, kHeight), step(-6, 6);
    for (unsigned i = 0; i < count; ++i) {
        const std::array p = {x(random), y(random), 0.0};
        points.push_back(p);
        if (segments)
            points.push_back({p[0] + step(random), p[1] + step(random), 0});
        colors.push_back(0xFF000000 | static_cast<std::uint32_t>(random() >> 8));
    }
}

constexpr float kDotSize = 3;

/// Markers strewn over the picture so that two fifths of it are covered, one and a half to three times as
/// long as the side of the square that each has on average.
struct Markers {
    Markers(unsigned count, unsigned seed);

    std::vector<std::array<float, 3>> starts, vectors, diameters;
    std::vector<std::uint32_t> colors; ///< 0x00BBGGRR
};

constexpr float kWidthRatio = 0.25f; ///< of a cylinder's length
constexpr unsigned kMarkerSets = 3;  ///< all markers are others in each frame

inline Markers::Markers(unsigned count, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<float> normal;
    std::uniform_real_distribution<float> unit;
    const float cell = std::sqrt(static_cast<float>(kWidth * kHeight) / static_cast<float>(count));
    for (unsigned i = 0; i < count; ++i) {
        const std::array<float, 3> d = {normal(random), normal(random), normal(random)};
        const float scale = cell * (1 + unit(random)) / std::hypot(d[0], d[1], d[2]);
        vectors.push_back({d[0] * scale, d[1] * scale, d[2] * scale});
        starts.push_back({kWidth * unit(random) - vectors.back()[0] / 2,
                          kHeight * unit(random) - vectors.back()[1] / 2, 200 * unit(random) - 100});
        const float diameter = cell * (0.5f + 0.5f * unit(random));
        diameters.push_back({diameter, diameter, diameter});
        colors.push_back(static_cast<std::uint32_t>(random() & 0xFFFFFF));
    }
}

inline std::vector<Markers> markerSets(unsigned count) {
    std::vector<Markers> sets;
    for (unsigned seed = 1; seed <= kMarkerSets; ++seed)
        sets.emplace_back(count, seed);
    return sets;
}

// --- pictures and boxes ------------------------------------------------------------------------------------

constexpr int kPictureSize = 24, kPictureKinds = 20;

/// A picture in two colours, one of them translucent.
inline std::vector<std::uint32_t> picturePixels(int kind) {
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < kPictureSize * kPictureSize; ++i)
        pixels.push_back((i / 6 + i / kPictureSize) % 2 ? 0x80FFFFFF
                                                        : 0xFF0000FF + static_cast<unsigned>(kind) * 2560);
    return pixels;
}

/// Lower left corner of picture i.
inline std::array<int, 2> picturePlace(int i) {
    return {i % 40 * (kPictureSize + 1), i / 40 % 30 * (kPictureSize + 1)};
}

/// A label of 80 x 20 pixels and its translucent colour.
struct Label {
    static constexpr int kLabelWidth = 80, kLabelHeight = 20;
    explicit Label(unsigned i)
        : x(static_cast<int>(i * 97 % (kWidth - kLabelWidth))),
          y(static_cast<int>(i * 61 % (kHeight - kLabelHeight))), color(0x90000000u | (i * 7919 & 0xFFFFFF)) {
    }
    int x, y;
    std::uint32_t color;
};

// --- surroundings ------------------------------------------------------------------------------------------

constexpr int kSkyWidth = 1024, kSkyHeight = 512;

/// Radiance of a sky with a small sun.
inline std::array<float, 3> skyRadiance(int x, int y) {
    const bool isSun = x > 300 && x < 308 && y > 100 && y < 108;
    return isSun ? std::array{2e4f, 1.8e4f, 1.5e4f}
                 : std::array{0.3f, 0.5f, 1.0f - static_cast<float>(y) / kSkyHeight};
}

} // namespace nrubench
