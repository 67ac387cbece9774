// The maps of image-based lighting by other routes than the shaders': pictures by direction, exact places on
// the faces of a cube, sums and quadratures in double precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <glm/glm.hpp>

namespace nrutest {

using glm::dvec2;
using glm::dvec3;

constexpr double kTau = 2 * M_PI;

/// A point of a cube map: s to the right, t downward in 0..1 of the face as its rows are stored.
struct CubePlace {
    int face;
    dvec2 st;
};

/// OpenGL 4.5, table 8.19: the direction looked up at a place.
inline dvec3 directionOf(const CubePlace& place) {
    const double s = 2 * place.st.s - 1, t = 2 * place.st.t - 1;
    const dvec3 directions[] = {{1, -t, -s}, {-1, -t, s}, {s, 1, t}, {s, -1, -t}, {s, -t, 1}, {-s, -t, -1}};
    return normalize(directions[place.face]);
}

/// The picture's direction that stands at a direction of the environment, by up vector: its axes as quarter
/// turns move them.
inline dvec3 turnedBack(int up, dvec3 d) {
    const dvec3 turned[] = {{d.y, -d.x, d.z},  {-d.y, d.x, d.z}, d,
                            {d.x, -d.y, -d.z}, {d.x, d.z, -d.y}, {d.x, -d.z, d.y}};
    return turned[up];
}

/// An equirectangular picture: rows from the top (+y), columns from -x by z, sampled as a clamped texture.
struct Panorama {
    int width, height;
    std::vector<float> rgb;

    /// Light of every pixel by a function of its direction, in steps that a Radiance file and a half hold.
    template <class Light>
    Panorama(int w, int h, Light light) : width(w), height(h) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const dvec3 color = light(direction(x, y));
                for (int c = 0; c < 3; ++c)
                    rgb.push_back(static_cast<float>(std::round(64 * color[c]) / 64));
            }
    }
    dvec3 direction(int x, int y) const {
        const double azimuth = ((x + 0.5) / width - 0.5) * kTau, polar = (y + 0.5) / height * M_PI;
        return {std::sin(polar) * std::cos(azimuth), std::cos(polar), std::sin(polar) * std::sin(azimuth)};
    }
    double solidAngle(int y) const {
        return kTau / width * (std::cos(y * M_PI / height) - std::cos((y + 1) * M_PI / height));
    }
    dvec3 pixel(int x, int y) const {
        const float* p = &rgb[3 * (std::clamp(y, 0, height - 1) * width + std::clamp(x, 0, width - 1))];
        return {p[0], p[1], p[2]};
    }
    dvec3 at(dvec3 d) const {
        const double x = (std::atan2(d.z, d.x) / kTau + 0.5) * width - 0.5,
                     y = std::acos(std::clamp(d.y, -1.0, 1.0)) / M_PI * height - 0.5;
        const int i = static_cast<int>(std::floor(x)), j = static_cast<int>(std::floor(y));
        return mix(mix(pixel(i, j), pixel(i + 1, j), x - i), mix(pixel(i, j + 1), pixel(i + 1, j + 1), x - i),
                   y - j);
    }
};

/// The environment cube of a picture.
struct Environment {
    const Panorama& picture;
    int up;
    dvec3 at(dvec3 d) const { return picture.at(turnedBack(up, d)); }
};

/// Tangent and its partner for a unit vector.
inline std::pair<dvec3, dvec3> frameOf(dvec3 n) {
    const dvec3 t = normalize(cross(n, std::abs(n.z) < 0.9 ? dvec3(0, 0, 1) : dvec3(1, 0, 0)));
    return {t, cross(n, t)};
}

/// Calls f(half vector about +z, weight) over the GGX distribution of normals seen from its own normal
/// (Walter et al. 2007, equation 35): the cosine by the share u of the density below it. The mesh is finer
/// where u nears 1, the grazing half vectors; weights sum to 1.
template <class F>
void overGgx(double roughness, int rings, F f) {
    const double alpha = roughness * roughness;
    for (int i = 0; i < rings; ++i) {
        const double s = (i + 0.5) / rings, u = 1 - s * s, weight = 2 * s / rings / rings;
        const double theta = std::atan(alpha * std::sqrt(u / (1 - u)));
        for (int j = 0; j < rings; ++j) {
            const double phi = (j + 0.5 * (i % 2)) * kTau / rings;
            f(dvec3(std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)),
              weight);
        }
    }
}

/// What the environment sends into a mirror of a roughness seen head-on (Karis 2013): the mean over the
/// distribution, weighted by the cosine of the reflected direction.
inline dvec3 prefiltered(const Environment& environment, dvec3 n, double roughness, int rings = 96) {
    const auto [t, b] = frameOf(n);
    dvec3 sum(0);
    double weights = 0;
    overGgx(roughness, rings, [&, t = t, b = b](dvec3 h, double density) {
        const double cosine = 2 * h.z * h.z - 1, weight = density * cosine;
        if (cosine <= 0)
            return;
        sum += weight * environment.at(2 * h.z * (h.x * t + h.y * b) + cosine * n);
        weights += weight;
    });
    return sum / weights;
}

/// Scale and bias of F0 that a directional view of a rough mirror has under even light (Karis 2013), with
/// Schlick's shadowing of k = alpha / 2.
inline dvec2 mirrorResponse(double cosLo, double roughness, int rings = 320) {
    const dvec3 lo(std::sqrt(1 - cosLo * cosLo), 0, cosLo);
    const double k = roughness * roughness / 2;
    const auto shadowing = [=](double cosine) { return cosine / (cosine + k - k * cosine); };
    dvec2 sum(0);
    overGgx(roughness, rings, [&](dvec3 h, double density) {
        const double facing = dot(lo, h), cosLi = 2 * facing * h.z - lo.z;
        if (cosLi <= 0 || facing <= 0)
            return;
        const double visible = shadowing(cosLi) * shadowing(cosLo) * facing / (h.z * cosLo);
        const double fresnel = std::pow(1 - facing, 5);
        sum += density * visible * dvec2(1 - fresnel, fresnel);
    });
    return sum;
}

} // namespace nrutest
