// Jacobi's rotations (1846): slower than a closed form and exact to rounding also where values coincide.
#include "viewer/markers/principal.h"

#include <algorithm>
#include <cmath>

#include "viewer/model/vectors.h"

namespace nruview {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

/// Golub & Van Loan, Matrix Computations, section "Jacobi methods": the rotation in the plane of p and q that
/// makes a[p][q] zero, with the smaller angle.
void rotate(Matrix& a, std::array<Point, 3>& directions, std::size_t p, std::size_t q) {
    if (a[p][q] == 0.0)
        return;
    const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
    const double t = std::copysign(1.0, theta) / (std::abs(theta) + std::hypot(theta, 1.0));
    const double c = 1.0 / std::hypot(t, 1.0), s = t * c;
    for (std::size_t k = 0; k < 3; ++k) {
        const double kp = a[k][p], kq = a[k][q];
        a[k][p] = c * kp - s * kq;
        a[k][q] = s * kp + c * kq;
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const double pk = a[p][k], qk = a[q][k];
        a[p][k] = c * pk - s * qk;
        a[q][k] = s * pk + c * qk;
    }
    a[p][q] = a[q][p] = 0.0; // but for rounding
    const Point u = directions[p], v = directions[q];
    directions[p] = c * u - s * v;
    directions[q] = s * u + c * v;
}

double offDiagonal(const Matrix& a) {
    return std::max({std::abs(a[0][1]), std::abs(a[0][2]), std::abs(a[1][2])});
}

} // namespace

PrincipalValues principalValues(const std::array<double, 6>& tensor) {
    constexpr int kMostSweeps = 20; // convergence is quadratic; five are enough as a rule
    const auto& [xx, yy, zz, xy, yz, xz] = tensor;
    Matrix a = {{{xx, xy, xz}, {xy, yy, yz}, {xz, yz, zz}}};
    std::array<Point, 3> directions = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (int sweep = 0; sweep < kMostSweeps && offDiagonal(a) > 0.0; ++sweep) {
        rotate(a, directions, 0, 1);
        rotate(a, directions, 0, 2);
        rotate(a, directions, 1, 2);
    }
    std::array<std::size_t, 3> order = {0, 1, 2};
    std::sort(order.begin(), order.end(), [&](std::size_t i, std::size_t k) { return a[i][i] > a[k][k]; });
    PrincipalValues principal;
    for (std::size_t i = 0; i < 3; ++i) {
        principal.values[i] = a[order[i]][order[i]];
        principal.directions[i] = unit(directions[order[i]]);
    }
    principal.directions[2] = cross(principal.directions[0], principal.directions[1]);
    return principal;
}

} // namespace nruview
