// How a host opens a frame: its own GL set-up first, then NglUpdateNglInfo, then palette and background.
#include "viewer/frame.h"

#include <epoxy/gl.h>

#include <array>

namespace nruview {

namespace {

void loadMatrices(const ViewMatrices& view, int width, int height) {
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(view.projection.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(view.modelView.data());
}

/// A headlight a little above and to the left of the eye, so that faces of unlike slope differ in shade; no
/// visible face falls below the ambient share. The sum is 1: a face square to the light shows its own colour.
void setLights() {
    constexpr std::array<float, 4> ambient = {0.5f, 0.5f, 0.5f, 1.0f};
    constexpr std::array<float, 4> diffuse = {0.5f, 0.5f, 0.5f, 1.0f};
    constexpr std::array<float, 4> black = {0.0f, 0.0f, 0.0f, 1.0f};
    constexpr std::array<float, 4> direction = {-0.2f, 0.35f, 1.0f, 0.0f}; // toward the light, in eye space
    glPushMatrix();
    glLoadIdentity();
    glLightfv(GL_LIGHT0, GL_POSITION, direction.data());
    glPopMatrix();
    glLightfv(GL_LIGHT0, GL_AMBIENT, ambient.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse.data());
    glLightfv(GL_LIGHT0, GL_SPECULAR, black.data());
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black.data());
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    glEnable(GL_LIGHT0);
    // The current colour is the material of both sides.
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_NORMALIZE);
}

void clearWindow(NgColorLong background) {
    float red, green, blue;
    ngl_get_floats_from_color_long(background, red, green, blue);
    glClearColor(red, green, blue, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ngl_enable_depth_test();
    glDepthFunc(GL_LEQUAL);
}

} // namespace

void startLibrary() {
    NglInitGLExtensions();
    ngl_set_blending_value(255); // colours are opaque; the library starts with half of that
}

void beginFrame(const Camera& camera, const Bounds& bounds, int width, int height, NgColorLong background) {
    const ViewMatrices view = viewMatrices(camera, bounds, static_cast<double>(width) / height);
    clearWindow(background);
    loadMatrices(view, width, height);
    setLights();

    NglUpdateNglInfo();
    NglGetNglInfo()->perspective = camera.perspective ? 1 : 0;
    _NgPoint3Str eye = {view.eye[0], view.eye[1], view.eye[2]};
    ngl_set_camera_position(&eye);

    NglSetWindowBackGroundColor(background);
    NglUpdateColor(NglMaxColor, NglGetColors());
}

} // namespace nruview
