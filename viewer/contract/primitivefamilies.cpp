// Primitives, glyphs, symbols and the view: fixed function, vertex by vertex.
#include <epoxy/gl.h>

#include <array>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/families.h"

namespace nruview {

namespace {

using Points = std::vector<_NgPoint3Str>;

const Points kFar = {{-0.9, -0.8, -0.2}, {0.7, -0.9, 0.1}, {0.9, 0.6, 0.3}, {-0.5, 0.9, -0.1}};
const Points kNotched = {{-0.9, -0.9, 0}, {0.9, -0.7, 0}, {0.1, 0, 0}, {0.8, 0.9, 0}, {-0.8, 0.7, 0}};
const std::array<float, 5> kValues = {0.05f, 0.9f, 0.4f, 0.7f, 0.2f};
const std::array<NgColorLong, 5> kColors = {0xFF2040F0, 0xFF30D050, 0xFFE06020, 0x80F0F0F0, 0xFF8000C0};

void drawPoints() {
    ngl_set_color(3);
    ngl_point_3d(0.5, 0.2, 0.4);
    ngl_point_3d_given_size(4, kFar.data(), 5);
}

void drawLines() {
    ngl_set_color_long(0xFF40E0F0);
    ngl_polyline_3d_s(kFar.data(), kFar.size());
    ngl_line_2d(-0.2, -0.9, 0.6, 0.8);
}

void drawPolygons() {
    ngl_set_color_long(0xC0E06040);
    ngl_polygon_3d_s(kFar.data(), kFar.size());
    const Points corners = {{-0.3, -0.3, 0.5}, {0.6, -0.2, 0.5}, {0.4, 0.5, 0.5}};
    const Points normals = {{0.5, 0, 0.9}, {0, 0.7, 1.4}, {-0.6, 0, 0.8}};
    ngl_set_color(5);
    ngl_polygon_3d_s_with_vertex_array(corners.data(), normals.data(), corners.size());
}

void drawConcavePolygon() {
    ngl_concave_polygon_3d_s(kNotched.data(), kNotched.size());
}

void drawShaded() {
    ngl_shade_polygon_3d(kFar.data(), kColors.data(), kFar.size());
    ngl_shade_polyline_3d(kNotched.data(), kColors.data(), kNotched.size());
}

void drawContourCurves() {
    NglEnableTexture(GL_TEXTURE_2D);
    ngl_curve_contour_draw_s(kNotched.data(), kValues.data(), kNotched.size());
    RenderingDrawLine(&kFar[0], &kFar[2], 0.1f, 0.9f, 0, 0);
    RenderingDrawPointList(4, kFar.data(), kValues.data(), 0, 0);
    NglDisableTexture(GL_TEXTURE_2D);
}

void drawArcs() {
    const _NgPoint3Str center{0, 0, 0.2}, axis{0.2, 0.3, 1};
    NglDrawArc(&center, &axis, 0.7, 20, 250, 12);
}

void drawSpheres() {
    const std::array<float, 9> centers = {-0.4f, 0.2f, 0.1f, 0.4f, -0.3f, 0.3f, 0.1f, 0.6f, -0.4f};
    const std::array<float, 3> radii = {9, 13, 7};
    NglDrawSpheresWithRadius(3, centers.data(), radii.data(), nullptr, 0, 0, 0);
}

/// Nested views and matrices, as a host draws parts of its model.
void drawInViews() {
    double turn[4][4] = {{0.8, 0.6, 0, 0}, {-0.6, 0.8, 0, 0}, {0, 0, 1, 0}, {0.1, 0, 0, 1}};
    ngl_push_3d_matrix();
    ngl_mult_3d_matrix(turn);
    ngl_polygon_3d_s(kFar.data(), kFar.size());
    ngl_pop_3d_matrix();
    ngl_push_view_matrices(0);
    ngl_initialize_view(nullptr, nullptr);
    ngl_line_2d(5, 7, 60, 50);
    ngl_pop_view_matrices(0);
    UtlPushViewPoint();
    ngl_line_3d_s(&kFar[0], &kFar[2]);
    UtlPopViewPoint();
}

void hostText(const _NgPoint3Str* point, const wchar_t*, NgColorLong color, bool, void*, bool) {
    ngl_set_color_long(color);
    ngl_point_3d_given_size(1, point, 6);
}

std::function<void()> makeText() {
    NglRegisterDrawTextFunc(hostText);
    return [] {
        const _NgPoint3Str place{0.3, -0.2, 0.4};
        ngl_draw_text_unclipped(&place, L"mark", 0xFF20D0F0, false, nullptr, false);
    };
}

const std::array<_NgPoint3Str, 5> kCoil = {{{0, 0, 0}, {3, 4, 0}, {8, -4, 0}, {13, 4, 0}, {16, 0, 0}}};
const std::array<utl_symbol_primitive_s, 1> kCoilPart = {{{2, 5, {.array = kCoil.data()}}}};
const std::array<_NgPoint3Str, 4> kFoot = {{{-6, -8, 0}, {6, -8, 0}, {0, 0, 0}, {-6, -8, 0}}};
const std::array<utl_symbol_primitive_s, 2> kFootPart = {
    {{3, 3, {.array = kFoot.data()}}, {1, 0, {.points = {{0, 0, 0}, {14, 6, 0}}}}}};
const std::array<utl_parametric_symbol_data_s, 1> kCoilParts = {{{0, 0, 1, kCoilPart.data(), 16, nullptr}}};
const std::array<utl_parametric_symbol_data_s, 1> kFootParts = {{{0, 0, 2, kFootPart.data(), 12, nullptr}}};

/// In another colour when picking does not find what has been drawn.
void drawSymbols() {
    static std::array<utl_symbols, 16> list{};
    list[3] = {nullptr, 1, kCoilParts.data()};
    list[6] = list[7] = {nullptr, 1, kFootParts.data()};
    UtlSetSymbolList(list.data(), 16);
    const std::array<_NgPoint3Str, 2> ends = {{{-0.6, 0.1, 0.1}, {0.6, 0.4, 0.2}}};
    const _NgPoint3Str foot{0.2, -0.4, 0.3};
    double sx, sy;
    ngl_transform_32(foot.x, foot.y, foot.z, &sx, &sy);
    const bool picked = utl_pick_point_symbol(&foot, 8, static_cast<int>(sx), static_cast<int>(sy)) == 0;
    ngl_set_color(picked ? 7 : 3);
    utl_disp_point_symbol(&foot, 8);
    utl_disp_line_symbol(ends.data(), 1);
    utl_disp_axis_symbol(&ends[1], 4, 0);
    UtlSetSymbolList(nullptr, 0);
}

} // namespace

std::vector<Family> primitiveFamilies() {
    using enum FamilyKind;
    return {{"points", Primitives, drawPoints},
            {"lines", Primitives, drawLines},
            {"polygons", Primitives, drawPolygons},
            {"concave polygons", Primitives, drawConcavePolygon},
            {"shaded polygons and lines", Primitives, drawShaded},
            {"curves and points of contours", Primitives, drawContourCurves},
            {"arcs", Primitives, drawArcs},
            {"drawing in nested views", Primitives, drawInViews},
            {"text of the host", Primitives, nullptr, makeText},
            {"spheres of pixels", Lit, drawSpheres},
            {"symbols", Symbols, drawSymbols}};
}

} // namespace nruview
