// The closed forms of the samples.
#include "viewer/model/elasticity.h"

#include <cmath>

namespace nruview {

namespace {

constexpr double kShear = kYoung / (2.0 * (1.0 + kPoisson));

} // namespace

ElasticState Cantilever::at(const Point& point) {
    constexpr double c = kHeight / 2.0;
    constexpr double bending = kForce / (kYoung * kInertia); // P / EI
    constexpr double shear = kForce / (kShear * kInertia);   // P / GI
    const double a = kLength - point[0];                     // distance from the loaded end
    const double y = point[1];
    ElasticState state;
    state.stress[0] = kForce * a * y / kInertia;
    state.stress[3] = -kForce * (c * c - y * y) / (2.0 * kInertia);
    state.displacement[0] = bending * y * ((kLength * kLength - a * a) / 2.0 - kPoisson * y * y / 6.0) +
                            shear * y * (y * y / 6.0 - c * c / 2.0);
    state.displacement[1] = -bending * (kPoisson * a * y * y / 2.0 + a * a * a / 6.0 -
                                        kLength * kLength * a / 2.0 + kLength * kLength * kLength / 3.0);
    return state;
}

ElasticState PlateWithHole::at(const Point& point) {
    const double r = std::hypot(point[0], point[1]);
    const double angle = std::atan2(point[1], point[0]);
    const double q = kRadius / r, q2 = q * q, q4 = q2 * q2;
    const double cos2 = std::cos(2.0 * angle), sin2 = std::sin(2.0 * angle);

    // Polar stresses, turned into x and y.
    const double half = kTension / 2.0;
    const double radial = half * (1.0 - q2) + half * (1.0 - 4.0 * q2 + 3.0 * q4) * cos2;
    const double hoop = half * (1.0 + q2) - half * (1.0 + 3.0 * q4) * cos2;
    const double shear = -half * (1.0 + 2.0 * q2 - 3.0 * q4) * sin2;
    const double mean = (radial + hoop) / 2.0, deviation = (radial - hoop) / 2.0;
    ElasticState state;
    state.stress[0] = mean + deviation * cos2 - shear * sin2;
    state.stress[1] = mean - deviation * cos2 + shear * sin2;
    state.stress[3] = deviation * sin2 + shear * cos2;

    // Displacements; kappa is Kolosov's constant of plane stress.
    constexpr double kappa = (3.0 - kPoisson) / (1.0 + kPoisson);
    const double scale = kTension * kRadius / (8.0 * kShear);
    const double cos1 = std::cos(angle), sin1 = std::sin(angle);
    const double cos3 = std::cos(3.0 * angle), sin3 = std::sin(3.0 * angle);
    state.displacement[0] =
        scale * ((kappa + 1.0) * cos1 / q + 2.0 * q * ((1.0 + kappa) * cos1 + cos3) - 2.0 * q * q2 * cos3);
    state.displacement[1] =
        scale * ((kappa - 3.0) * sin1 / q + 2.0 * q * ((1.0 - kappa) * sin1 + sin3) - 2.0 * q * q2 * sin3);
    return state;
}

} // namespace nruview
