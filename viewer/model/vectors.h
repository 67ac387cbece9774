// The little vector algebra that the viewer needs on points of three doubles.
#pragma once

#include <cmath>

#include "viewer/model/model.h"

namespace nruview {

inline Point operator+(const Point& a, const Point& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

inline Point operator-(const Point& a, const Point& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline Point operator*(double factor, const Point& a) {
    return {factor * a[0], factor * a[1], factor * a[2]};
}

inline double dot(const Point& a, const Point& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Point cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double length(const Point& a) {
    return std::hypot(a[0], a[1], a[2]);
}

/// The direction of a vector; the zero vector stays as it is.
inline Point unit(const Point& a) {
    const double size = length(a);
    return size > 0.0 ? (1.0 / size) * a : a;
}

} // namespace nruview
