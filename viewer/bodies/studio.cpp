// A grey room with soft boxes: a large key light from the left, a strip to the right, a panel overhead and a
// rim light behind. Directions are (right, up, towards the viewer) of a view along the room's axis.
#include "viewer/bodies/studio.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>
#include <vector>

#include "viewer/error.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

constexpr int kWidth = 512, kHeight = 256;
constexpr double kEdge = 0.04; ///< over which a lamp's rim fades, as tangent of the angle

/// A rectangle square to its direction; half sizes as tangents.
struct Lamp {
    Point direction;
    double halfWidth, halfHeight;
    Point radiance;
};

constexpr Lamp kLamps[] = {
    {{-0.75, 0.75, 0.8}, 0.55, 0.40, {15.0, 14.6, 14.0}},
    {{1.0, 0.25, 0.35}, 0.14, 0.60, {7.5, 7.9, 8.3}},
    {{0.1, 1.0, -0.15}, 0.70, 0.30, {6.0, 6.0, 6.0}},
    {{0.4, 0.45, -1.0}, 0.60, 0.18, {9.0, 9.0, 9.4}},
};

double fade(double outside) {
    return std::clamp(0.5 - outside / kEdge, 0.0, 1.0);
}

/// How much of a lamp shows in a direction, 0 to 1.
double cover(const Lamp& lamp, const Point& direction) {
    const Point axis = unit(lamp.direction);
    const Point side =
        unit(cross(std::abs(axis[1]) < 0.9 ? Point{0.0, 1.0, 0.0} : Point{0.0, 0.0, -1.0}, axis));
    const double along = dot(direction, axis);
    if (along <= 0.0)
        return 0.0;
    const double x = std::abs(dot(direction, side)) / along,
                 y = std::abs(dot(direction, cross(axis, side))) / along;
    return fade(x - lamp.halfWidth) * fade(y - lamp.halfHeight);
}

/// Floor, walls that brighten upward, ceiling.
Point roomRadiance(const Point& direction) {
    const double up = direction[1];
    const double grey = up < 0.0 ? 0.10 + 0.16 * std::exp(8.0 * up) : 0.26 + 0.20 * up;
    return {grey, grey, 1.03 * grey};
}

Point radianceFrom(const Point& direction) {
    Point sum = roomRadiance(direction);
    for (const Lamp& lamp : kLamps)
        sum = sum + cover(lamp, direction) * lamp.radiance;
    return sum;
}

/// Shared exponent (Ward 1991).
std::array<unsigned char, 4> rgbe(const Point& radiance) {
    int exponent = 0;
    std::frexp(std::max({radiance[0], radiance[1], radiance[2]}), &exponent);
    std::array<unsigned char, 4> bytes{0, 0, 0, static_cast<unsigned char>(exponent + 128)};
    for (int k = 0; k < 3; ++k)
        bytes[k] = static_cast<unsigned char>(std::ldexp(radiance[k], 8 - exponent));
    return bytes;
}

/// Of a pixel: the picture's middle looks along x, its right quarter along z, its top upward.
Point directionOf(int column, int row) {
    const double azimuth = 2.0 * std::numbers::pi * ((column + 0.5) / kWidth - 0.5);
    const double elevation = std::numbers::pi * (0.5 - (row + 0.5) / kHeight);
    return {std::cos(elevation) * std::cos(azimuth), std::sin(elevation),
            std::cos(elevation) * std::sin(azimuth)};
}

} // namespace

void writeStudio(const std::string& path) {
    std::string bytes = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " + std::to_string(kHeight) + " +X " +
                        std::to_string(kWidth) + "\n";
    for (int row = 0; row < kHeight; ++row)
        for (int column = 0; column < kWidth; ++column)
            for (const unsigned char byte : rgbe(radianceFrom(directionOf(column, row))))
                bytes += static_cast<char>(byte);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!file || std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
        std::fflush(file.get()) != 0)
        throw ViewerError(path, "cannot be written");
}

} // namespace nruview
