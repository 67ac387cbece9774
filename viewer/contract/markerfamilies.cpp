// 3D markers, one by one and in arrays, by the program and by fixed function.
#include <epoxy/gl.h>

#include <array>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/families.h"

namespace nruview {

namespace {

constexpr std::array<_NgFPoint3Str, 3> kStarts = {
    {{-0.7f, -0.5f, 0.1f}, {0.2f, -0.6f, 0.2f}, {0.1f, 0.5f, -0.1f}}};
constexpr std::array<_NgFPoint3Str, 3> kVectors = {
    {{0.5f, 0.3f, 0.4f}, {0.4f, 0.5f, -0.2f}, {0.2f, -0.5f, 0.5f}}};
constexpr std::array<NgColorLong, 3> kColors = {0xFF40B0F0, 0xFF60E060, 0xFFE07030};
constexpr float kDiameter = 0.35f;

void placeSphere(std::size_t i, bool contoured) {
    const _NgFPoint3Str size{kDiameter, kDiameter, kDiameter};
    RenderDraw3DSphere(&kStarts[i], &size, kColors[i], contoured, 0.2f + 0.3f * static_cast<float>(i), 0, 0);
}

void placeMarker(std::size_t i, bool contoured) {
    const float value = 0.2f + 0.3f * static_cast<float>(i);
    RenderDraw3DMarker(&kStarts[i], &kVectors[i], 1, 0.3f, &kColors[i], contoured, value, 1 - value, i == 1,
                       0);
}

/// A section of single calls. Fixed function shows contours by the texture, colours as they are current.
template <_Render3DMarkerType type, bool fixed, bool contoured>
void drawSingle() {
    if (contoured)
        NglEnableTexture(GL_TEXTURE_2D);
    RenderBegin3DMarkerDraw(type, RENDER_3D_MARKER_SHAPE_NORMAL, fixed);
    for (std::size_t i = 0; i < kStarts.size(); ++i)
        type == RENDER_3D_MARKER_SPHERE ? placeSphere(i, contoured) : placeMarker(i, contoured);
    RenderEnd3DMarkerDraw();
    if (contoured)
        NglDisableTexture(GL_TEXTURE_2D);
}

template <bool exact>
void drawCylinders() {
    Render3DMarkerArray array;
    array.count = kStarts.size();
    array.starts = kStarts.data();
    array.vectors = kVectors.data();
    array.widthRatio = 0.3f;
    array.colors = kColors.data();
    array.exact = exact;
    RenderBegin3DMarkerDraw(RENDER_3D_MARKER_CYLINDER, RENDER_3D_MARKER_SHAPE_SMOOTH, false);
    RenderDraw3DMarkers(&array);
    RenderEnd3DMarkerDraw();
}

template <bool exact>
void drawBalls() {
    Render3DSphereArray array;
    array.count = kStarts.size();
    array.centres = kStarts.data();
    array.diameter = {kDiameter, kDiameter, kDiameter};
    array.colors = kColors.data();
    array.exact = exact;
    RenderBegin3DMarkerDraw(RENDER_3D_MARKER_SPHERE, RENDER_3D_MARKER_SHAPE_SMOOTH, false);
    RenderDraw3DSpheres(&array);
    RenderEnd3DMarkerDraw();
}

} // namespace

std::vector<Family> markerFamilies() {
    using enum FamilyKind;
    constexpr auto kArrow = RENDER_3D_MARKER_ARROW_ONE_WAY, kRivet = RENDER_3D_MARKER_RIVET,
                   kSphere = RENDER_3D_MARKER_SPHERE;
    return {{"markers", Markers, drawSingle<kArrow, false, false>, nullptr, true},
            {"markers, contoured", Markers, drawSingle<kRivet, false, true>, nullptr, true},
            {"sphere markers", Markers, drawSingle<kSphere, false, false>, nullptr, true},
            {"marker array, triangles", Markers, drawCylinders<true>, nullptr, true},
            {"marker array, rays", Markers, drawCylinders<false>, nullptr, true},
            {"sphere array, triangles", Markers, drawBalls<true>, nullptr, true},
            {"sphere array, rays", Markers, drawBalls<false>, nullptr, true},
            {"markers, fixed", Lit, drawSingle<kArrow, true, false>},
            {"markers, fixed, contoured", Lit, drawSingle<kRivet, true, true>},
            {"sphere markers, fixed", Lit, drawSingle<kSphere, true, false>}};
}

} // namespace nruview
