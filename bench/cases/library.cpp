#include <epoxy/gl.h>

#include <cmath>
#include <cstdio>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

/// What the library decides at its start is no news in each of many processes.
void writeAllButStatus(void*, int kind, const char* text) {
    if (kind != NHostMessageStatus)
        std::fprintf(stderr, "%s\n", text);
}

} // namespace

void startLibrary() {
    NHostServices services{};
    services.message = writeAllButStatus;
    NHostSetServices(&services);
    SetRenderingContextActive(true);
    InitRenderDefaults();
    NglInitGLExtensions();
    RenderingInitShaders();
}

void openLibrary() {
    openWindow();
    startLibrary();
    check(IsFastRendererEnabled() == 1, "the programs cannot run here");
}

void setLight(unsigned light, const std::array<float, 4>& eye, float ambient, float diffuse, float specular) {
    const GLenum name = GL_LIGHT0 + light;
    const auto grey = [&](GLenum what, float value) {
        const std::array color = {value, value, value, 1.0f};
        glLightfv(name, what, color.data());
    };
    glPushMatrix();
    glLoadIdentity();
    glLightfv(name, GL_POSITION, eye.data());
    glPopMatrix();
    grey(GL_AMBIENT, ambient);
    grey(GL_DIFFUSE, diffuse);
    grey(GL_SPECULAR, specular);
    glEnable(name);
}

namespace {

void takeView() {
    NglUpdateNglInfo();
    NglUpdateColor(NglMaxColor, NglGetColors());
    ngl_set_blending_value(255);
}

} // namespace

void openSheetView() {
    openLibrary();
    loadBox(kSheetView);
    setLight(0, {-0.2f, 0.35f, 1.0f, 0.0f}, 0.5f, 0.5f, 0);
    takeView();
}

void openPixelView() {
    openLibrary();
    loadBox(kPixelView);
    setLight(0, {-2000, 3000, 4000, 1}, 0.2f, 0.8f, 0);
    takeView();
}

void openTorusView() {
    openLibrary();
    loadTorusView();
    setLight(0, {-2, 3, 4, 1}, 0.2f, 0.8f, 0.8f);
    setLight(1, {3, 1, 2, 1}, 0.2f, 0.8f, 0.8f);
    const std::array shine = {0.6f, 0.6f, 0.6f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, shine.data());
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 30);
    takeView();
    const double tilt = kTorusTiltDeg * std::numbers::pi / 180;
    _NgPoint3Str camera = {0, kTorusDistance * std::sin(tilt), kTorusDistance * std::cos(tilt)};
    ngl_set_camera_position(&camera);
}

ngl::NglElementMeshInput inputOf(const Sheet& sheet) {
    ngl::NglElementMeshInput input;
    input.nodeCount = sheet.nodeCount();
    input.nodes = sheet.nodes.data();
    input.triangleCount = static_cast<std::uint32_t>(sheet.triangles.size() / 3);
    input.triangles = sheet.triangles.data();
    input.quadCount = static_cast<std::uint32_t>(sheet.quads.size() / 4);
    input.quads = sheet.quads.data();
    return input;
}

RenderColorScale makeScale() {
    std::vector<RenderColorScale::ColorBand> bands;
    for (unsigned i = 0; i < kBands; ++i) {
        const auto [red, green, blue] = bandColor(i);
        bands.push_back({static_cast<float>(i) / kBands, static_cast<float>(i + 1) / kBands,
                         ngl_get_color_long_from_rgb(red, green, blue)});
    }
    RenderColorScale scale;
    scale.SetColorBands(bands);
    return scale;
}

} // namespace nrubench
