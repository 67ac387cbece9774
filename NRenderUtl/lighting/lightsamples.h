// Quasi-random directions about a normal, by which the maps are integrated. They are the same for all texels,
// so they are made once and not by each fragment.
#pragma once

#include <vector>

/// A direction about the normal (z), and the level of the environment at which its light is read.
struct LightSample {
    float x, y, z, level;
};

/// The light of a texel is the sum over the samples of radiance x cosine (z) x scale. Their number is even.
/// Neighbours in the list are neighbours on the hemisphere, so that a part of it reads a part of the
/// environment.
struct LightSamples {
    std::vector<LightSample> list;
    float scale;
};

/// Uniform over the hemisphere: diffuse irradiance divided by pi.
LightSamples irradianceSamples();
/// Mirrored by a rough surface that is seen at right angles. Those below the horizon are left out.
LightSamples reflectionSamples(float roughness);

constexpr int kHalfVectors = 1024;
/// In the plane of normal and eye: x, z and 1 / z of each half vector of a roughness, appended.
void appendHalfVectors(float roughness, std::vector<LightSample>& list);
