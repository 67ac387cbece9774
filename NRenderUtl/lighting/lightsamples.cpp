#include "NRenderUtl/lighting/lightsamples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kIrradianceSamples = 65536, kReflectionSamples = 1024;
constexpr LightSample kNothing = {1, 0, 0, 0}; ///< on the horizon

struct Vector {
    double x, y, z;
};

// --- points of the unit square -----------------------------------------------------------------------------

/// Radical inverse of base 2 by reversing bits (van der Corput, 1935; Dammertz, "Hammersley Points on the
/// Hemisphere", 2012).
double radicalInverse(std::uint32_t bits) {
    bits = (bits << 16) | (bits >> 16);
    bits = ((bits & 0x55555555) << 1) | ((bits & 0xAAAAAAAA) >> 1);
    bits = ((bits & 0x33333333) << 2) | ((bits & 0xCCCCCCCC) >> 2);
    bits = ((bits & 0x0F0F0F0F) << 4) | ((bits & 0xF0F0F0F0) >> 4);
    bits = ((bits & 0x00FF00FF) << 8) | ((bits & 0xFF00FF00) >> 8);
    return bits * 0x1p-32;
}

/// Where a sample lies along the azimuth and in height, from 0 to 1.
struct Point {
    double azimuth, height;
};

/// A number by which points of one part of the square follow each other, parts of parts too (Morton, 1966).
/// Along the azimuth, which is longer on the hemisphere, the square is halved three times first.
unsigned partOf(const Point& point) {
    const auto azimuth = static_cast<unsigned>(point.azimuth * 512);
    const auto height = static_cast<unsigned>(point.height * 128);
    unsigned part = 0;
    for (int bit = 8; bit >= 0; --bit)
        part = part << 2 | (azimuth >> bit & 1) << 1 | (height >> bit & 1);
    return part;
}

void sortByPart(std::vector<Point>& points) {
    std::sort(points.begin(), points.end(),
              [](const Point& a, const Point& b) { return partOf(a) < partOf(b); });
}

// --- directions --------------------------------------------------------------------------------------------

/// Uniform over the hemisphere (Pharr, Jakob and Humphreys, "Physically Based Rendering", 3rd edition, 2016,
/// section 13.6.1).
Vector inHemisphere(const Point& point) {
    const double radius = std::sqrt(1 - point.height * point.height), phi = 2 * kPi * point.azimuth;
    return {radius * std::cos(phi), radius * std::sin(phi), point.height};
}

/// Cosine of a half vector distributed as D cos (Walter et al., "Microfacet Models for Refraction through
/// Rough Surfaces", 2007, equation 35) with alpha = roughness^2 (Burley, 2012; Karis, 2013).
double cosHalf(double height, double roughness) {
    const double alpha2 = std::pow(roughness, 4);
    return std::sqrt((1 - height) / (1 + (alpha2 - 1) * height));
}

double sineOf(double cosine) {
    return std::sqrt(std::max(0.0, 1 - cosine * cosine));
}

/// Level of the environment for the solid angle that a sample stands for (Krivanek and Colbert, "Real-time
/// Shading with Filtered Importance Sampling", 2008, equations 11 and 13). The density of the light's
/// direction is D cos / (4 cos), here with one cosine, as the eye is at the normal; D is that of Trowbridge
/// and Reitz (1975).
double levelOf(double cosine, double roughness) {
    // Deliberately a texel of 512 a side, half of what the faces have: one level finer.
    constexpr double kTexel = 4 * kPi / (6.0 * 512.0 * 512.0);
    const double alpha2 = std::pow(roughness, 4), d = cosine * cosine * (alpha2 - 1) + 1;
    const double density = alpha2 / (kPi * d * d) * 0.25;
    return std::max(0.5 * std::log2(1 / (kReflectionSamples * density) / kTexel) + 1, 0.0);
}

LightSample sampleOf(const Vector& light, double level) {
    return {static_cast<float>(light.x), static_cast<float>(light.y), static_cast<float>(light.z),
            static_cast<float>(level)};
}

} // namespace

LightSamples irradianceSamples() {
    std::vector<Point> points;
    for (std::uint32_t i = 0; i < kIrradianceSamples; ++i)
        points.push_back({radicalInverse(i), static_cast<double>(i) / kIrradianceSamples});
    sortByPart(points);
    // The mean of 2 L cos, as the density is 1 / (2 pi).
    LightSamples samples{{}, 2.0f / kIrradianceSamples};
    samples.list.reserve(points.size());
    for (const Point& point : points)
        samples.list.push_back(sampleOf(inHemisphere(point), 0));
    return samples;
}

LightSamples reflectionSamples(float roughness) {
    if (roughness == 0.0f) // a mirror: all samples are one direction, of infinite density
        return {{{0, 0, 1, 0}, kNothing}, 1};
    std::vector<Point> points;
    for (std::uint32_t i = 0; i < kReflectionSamples; ++i)
        points.push_back({static_cast<double>(i) / kReflectionSamples, radicalInverse(i)});
    sortByPart(points);
    LightSamples samples{{}, 0};
    double weight = 0;
    for (const auto& [azimuth, height] : points) {
        const double z = cosHalf(height, roughness), radius = 2 * z * sineOf(z), phi = 2 * kPi * azimuth;
        const Vector light = {radius * std::cos(phi), radius * std::sin(phi), 2 * z * z - 1};
        if (light.z <= 0)
            continue;
        samples.list.push_back(sampleOf(light, levelOf(z, roughness)));
        weight += light.z;
    }
    if (samples.list.size() % 2 != 0)
        samples.list.push_back(kNothing);
    samples.scale = static_cast<float>(1 / weight);
    return samples;
}

void appendHalfVectors(float roughness, std::vector<LightSample>& list) {
    static const auto cosines = [] {
        std::array<double, kHalfVectors> all{};
        for (int i = 0; i < kHalfVectors; ++i)
            all[i] = std::cos(2 * kPi * i / kHalfVectors);
        return all;
    }();
    for (std::uint32_t i = 0; i < kHalfVectors; ++i) {
        const double z = cosHalf(radicalInverse(i), roughness);
        list.push_back(sampleOf({sineOf(z) * cosines[i], z, 1 / z}, 0));
    }
}
