// Overlays, the rubber band, boxes, pictures and framebuffers.
#include <epoxy/gl.h>

#include <array>
#include <memory>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/families.h"
#include "viewer/contract/frames.h"

namespace nruview {

namespace {

void drawOverlays() {
    const std::array<_NgPoint2Str, 4> panel = {{{6, 8}, {44, 10}, {50, 40}, {10, 34}}};
    const _NgPoint2Str middle{34, 40};
    const _NgPoint3Str at{0.3, 0.2, 0.1};
    ngl_draw_poly_on_screen(4, panel.data(), true, false, &at);
    ngl_draw_line_on_screen(3, 60, 61, 20, nullptr);
    ngl_draw_circle_on_screen(&middle, 11, false, false, nullptr);
}

void drawTranslucentOverlay() {
    const _NgPoint2Str middle{30, 30};
    ngl_draw_circle_on_screen(&middle, 22, true, true, nullptr);
}

void drawRubber() {
    ngl_draw_rubber(1, 10, 12, 50, 44);
    ngl_draw_rubber(0, 10, 50, 50, 6);
}

template <int rounded>
void drawBox() {
    N2DBoxDrawer::RenderInfo box{.x = 8, .y = 10, .width = 44, .height = 36, .fillColor = 0xA0C06030};
    if (rounded != 0) {
        box.roundedCorners = box.border = 1;
        std::fill_n(box.cornerRadii, 4, 9.0f);
        box.borderThickness = 3;
    }
    N2DBoxDrawer().Render(box);
}

std::shared_ptr<NuTexture> picture() {
    constexpr int kSide = 16;
    std::vector<unsigned char> pixels;
    for (int i = 0; i < kSide * kSide; ++i)
        for (const int value : {15 * (i % kSide), 15 * (i / kSide), i % 7 * 30, 100 + i % 5 * 30})
            pixels.push_back(static_cast<unsigned char>(value));
    auto texture = std::make_shared<NuTexture>();
    texture->CreateFromPixelData(kSide, kSide, pixels.data(), GL_RGBA);
    return texture;
}

std::function<void()> makeRectangle() {
    return [texture = picture()] { texture->RenderAsRectangle(7, 9, 44, 40, {}); };
}

std::function<void()> makeRoundedRectangle() {
    return [texture = picture()] {
        texture->RenderAsRectangle(
            7, 9, 44, 40, {.roundedCorners = 1, .cornerRadius = 5, .border = 1, .borderThickness = 1});
    };
}

std::function<void()> makeCircle() {
    return [texture = picture()] {
        texture->RenderAsCircle(10, 8, 46, {.border = 1, .borderThickness = 3, .borderColor = {200, 30, 90}});
    };
}

/// What is read from a framebuffer of the library's decides whether there is a polygon.
void drawByFramebuffer() {
    _NglFBOInfoStr framebuffer;
    const int bound = NglGetBoundFBO();
    NglCreateFBO(4, 4, GL_RGBA, GL_UNSIGNED_BYTE, &framebuffer);
    const bool isWhole =
        framebuffer.framebuffer != 0 && NglGetBoundFBO() == static_cast<int>(framebuffer.framebuffer);
    NglBindFrameBuffer(static_cast<unsigned>(bound));
    NglDestroyFBO(&framebuffer);
    const std::array<_NgPoint3Str, 3> corners = {{{-0.8, -0.6, 0.3}, {0.9, -0.4, 0.3}, {0.1, 0.8, 0.3}}};
    if (isWhole)
        ngl_polygon_3d_s(corners.data(), corners.size());
}

/// The host's own faces, shaded one by one.
void drawShadedFaces() {
    const bool shades = NglInitMeshRenderShader(GL_TRIANGLES) == 0;
    glBegin(GL_TRIANGLES);
    for (const auto& [x, y, z] : {std::array{-0.8f, -0.7f, 0.1f}, {0.9f, -0.5f, 0.5f}, {0.2f, 0.9f, -0.2f}})
        glVertex3f(x, y, z);
    glEnd();
    if (shades)
        NglEndMeshRenderShader();
}

} // namespace

std::vector<Family> screenFamilies() {
    using enum FamilyKind;
    return {{"overlays", Screen, drawOverlays},
            {"translucent overlays", Screen, drawTranslucentOverlay},
            {"rubber band", Rubber, drawRubber},
            {"boxes", Panels, drawBox<0>},
            {"rounded boxes", Panels, drawBox<1>, nullptr, true},
            {"pictures", Panels, nullptr, makeRectangle},
            {"rounded pictures", Panels, nullptr, makeRoundedRectangle, true},
            {"circular pictures", Panels, nullptr, makeCircle},
            {"framebuffers", Primitives, drawByFramebuffer},
            {"face shading", HostDraws, drawShadedFaces, nullptr, true}};
}

} // namespace nruview
