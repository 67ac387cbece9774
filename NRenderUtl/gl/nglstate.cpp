// Fixed-function lights and the depth test.
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"

namespace {

/// Hosts use the first three lights; every number but 0 and 1 means the third.
GLenum lightOf(int light) {
    return light == 0 ? GL_LIGHT0 : light == 1 ? GL_LIGHT1 : GL_LIGHT2;
}

} // namespace

void ngl_enable_light() {
    glEnable(GL_LIGHTING);
}

void ngl_disable_light() {
    glDisable(GL_LIGHTING);
}

int ngl_is_light_enabled() {
    return glIsEnabled(GL_LIGHTING);
}

int ngl_enable_given_light(int light) {
    glEnable(lightOf(light));
    return 0;
}

int ngl_disable_given_light(int light) {
    const int wasEnabled = glIsEnabled(lightOf(light));
    if (wasEnabled)
        glDisable(lightOf(light));
    return wasEnabled;
}

void ngl_enable_depth_test() {
    glEnable(GL_DEPTH_TEST);
}

void ngl_disable_depth_test() {
    glDisable(GL_DEPTH_TEST);
}

int ngl_is_depth_test_enabled() {
    return glIsEnabled(GL_DEPTH_TEST);
}
