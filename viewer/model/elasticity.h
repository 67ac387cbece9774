// Exact solutions of plane-stress elasticity that the samples are made of. Lengths in mm, stresses in MPa.
#pragma once

#include "viewer/model/model.h"

namespace nruview {

/// Stress (xx yy zz xy yz xz) and displacement at a point.
struct ElasticState {
    std::array<double, 6> stress{};
    Point displacement{};
};

/// Young's modulus and Poisson's ratio of both solutions (steel).
constexpr double kYoung = 210000.0;
constexpr double kPoisson = 0.3;

/// Beam along x from the clamp at x = 0, axis at y = 0, with a force downward (-y) at its free end.
struct Cantilever {
    static constexpr double kLength = 100.0, kHeight = 20.0, kWidth = 10.0, kForce = 1000.0;
    static constexpr double kInertia = kWidth * kHeight * kHeight * kHeight / 12.0;
    /// Timoshenko & Goodier, Theory of Elasticity, section "Bending of a cantilever loaded at the end".
    static ElasticState at(const Point& point);
};

/// Infinite plate with a round hole at the origin, pulled along x. Valid from the hole's rim outward.
struct PlateWithHole {
    static constexpr double kRadius = 10.0, kTension = 100.0;
    /// Kirsch (1898); displacements with the centre of the hole at rest.
    static ElasticState at(const Point& point);
};

} // namespace nruview
