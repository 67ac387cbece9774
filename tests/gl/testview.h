// A rotated view, orthographic or perspective, whose viewport lies off the origin, with GLU's mapping of it.
#pragma once

#include "NRenderUtl/host/hostgl.h"
#include "tests/gl/testgl.h"

namespace nrutest {

inline std::array kViewport{8, 12, 50, 40};

struct View {
    Matrix modelView, projection;

    _NgPoint3Str windowOf(const _NgPoint3Str& p) const {
        _NgPoint3Str w;
        gluProject(p.x, p.y, p.z, modelView.data(), projection.data(), kViewport.data(), &w.x, &w.y, &w.z);
        return w;
    }
    /// With y downward from the viewport's fourth value.
    _NgPoint3Str screenOf(const _NgPoint3Str& p) const {
        const _NgPoint3Str w = windowOf(p);
        return {w.x, kViewport[3] - w.y, w.z};
    }
    _NgPoint3Str modelAt(double sx, double sy, double depth) const {
        _NgPoint3Str p;
        gluUnProject(sx, kViewport[3] - sy, depth, modelView.data(), projection.data(), kViewport.data(),
                     &p.x, &p.y, &p.z);
        return p;
    }
};

/// Loads the view into GL. The orthographic box is -4..6, -5..3, -20..30 in front of the eye.
inline View setLiveView(bool perspective, double angle) {
    glViewport(kViewport[0], kViewport[1], kViewport[2], kViewport[3]);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    perspective ? glFrustum(-1, 2, -1.5, 1, 2, 40) : glOrtho(-4, 6, -5, 3, -20, 30);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslated(0.5, -1, -9);
    glRotated(angle, 1, 2, -0.5);
    return {liveMatrix(), liveMatrix(GL_PROJECTION_MATRIX)};
}

} // namespace nrutest
