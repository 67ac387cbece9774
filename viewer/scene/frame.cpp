// How a host starts the library in its context, and how it opens a frame: its own GL set-up first, then
// NglUpdateNglInfo, then palette and background.
#include "viewer/scene/frame.h"

#include <epoxy/gl.h>

#include <array>

#include "viewer/model/vectors.h"

namespace nruview {

namespace {

// Colours that the contour's ramp does not have.
constexpr NgColorLong kSelectionColor = 0xFFC832DC;
constexpr NgColorLong kHighlightColor = 0xFF8CF5FF;

void loadMatrices(const ViewMatrices& view, int width, int height) {
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(view.projection.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(view.modelView.data());
}

/// A headlight a little above and to the left of the eye, so that faces of unlike slope differ in shade. The
/// library's programs weigh ambient light with 1.74 and diffuse light with 0.5: no face falls below half of
/// its colour, and one square to the light shows just that. They take the light for a lamp at a place; one so
/// far away shines in one direction for any view.
void setLights() {
    constexpr float kAmbient = 0.5f / 1.74f, kDiffuse = 0.5f / 0.5f, kFar = 1e5f;
    constexpr std::array<float, 4> ambient = {kAmbient, kAmbient, kAmbient, 1.0f};
    constexpr std::array<float, 4> diffuse = {kDiffuse, kDiffuse, kDiffuse, 1.0f};
    constexpr std::array<float, 4> black = {0.0f, 0.0f, 0.0f, 1.0f};
    constexpr std::array<float, 4> direction = {-0.2f * kFar, 0.35f * kFar, kFar, 0.0f}; // in eye space
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

/// The viewer of a parallel projection stands so far away that all sight goes in one direction.
Point viewerOf(const Camera& camera, const ViewMatrices& view) {
    constexpr double kFar = 1000.0;
    return camera.perspective ? view.eye : camera.target + (kFar * camera.distance) * camera.axes.toward;
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

LibrarySession::LibrarySession(bool fixed) {
    NglInitGLExtensions();
    InitRenderDefaults(); // reads NU_RENDERING_MODE
    if (fixed)
        SetUserDefinedFastRenderingMode(0);
    if (IsFastRendererEnabled() != 0)
        RenderingInitShaders();
    SetRenderingContextActive(true);
    ngl_set_blending_value(255); // colours are opaque; the library starts with half of that
    NglSetSelectionColor(kSelectionColor);
    NglSetHighlightColor(kHighlightColor);
}

LibrarySession::~LibrarySession() {
    RenderGLCleanupBuffers();
    SetRenderingContextActive(false);
}

void beginFrame(const Camera& camera, const Bounds& bounds, int width, int height, NgColorLong background) {
    const ViewMatrices view = viewMatrices(camera, bounds, static_cast<double>(width) / height);
    clearWindow(background);
    loadMatrices(view, width, height);
    setLights();

    NglUpdateNglInfo();
    // Read back in perspective, the view vector is that of the ray at the window's corner.
    const Point sight = -1.0 * camera.axes.toward;
    NglGetNglInfo()->view = {sight[0], sight[1], sight[2]};
    NglGetNglInfo()->perspective = camera.perspective ? 1 : 0;
    const Point viewer = viewerOf(camera, view);
    _NgPoint3Str eye = {viewer[0], viewer[1], viewer[2]};
    ngl_set_camera_position(&eye);

    NglSetWindowBackGroundColor(background);
    NglUpdateColor(NglMaxColor, NglGetColors());
}

} // namespace nruview
