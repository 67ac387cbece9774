// The lights of fixed function that stand for those of the programs.
#include "viewer/markers/markersection.h"

#include <epoxy/gl.h>

namespace nruview {

FixedLight::FixedLight() {
    constexpr float kHalf[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    glPushAttrib(GL_LIGHTING_BIT);
    glLightfv(GL_LIGHT0, GL_AMBIENT, kHalf);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, kHalf);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
    glEnable(GL_LIGHTING);
}

FixedLight::~FixedLight() {
    glPopAttrib();
}

} // namespace nruview
