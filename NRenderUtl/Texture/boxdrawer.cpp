// Boxes in window pixels: a plain quad, or rounded and bordered by a program.
#include <algorithm>
#include <array>
#include <utility>

#include "NRenderUtl/Texture/ntexture.h"
#include "NRenderUtl/Texture/texturesources.h"
#include "NRenderUtl/Texture/windowscope.h"
#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/shaders/vertexattribute.h"

namespace {

constexpr NgColorLong kNoFill = 0xFFFFFFFF;

struct BoxState {
    NShaderProgram program;
    float corners[4][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
};

BoxState& box() {
    static BoxState state;
    return state;
}

using Color = std::array<float, 4>;

Color colorOf(NgColorLong color) {
    Color floats;
    for (float& channel : floats) {
        channel = static_cast<float>(color & 0xFF) / 255;
        color >>= 8;
    }
    return floats;
}

void resize(float (&corners)[4][3], int width, int height) {
    corners[1][0] = corners[2][0] = static_cast<float>(width);
    corners[2][1] = corners[3][1] = static_cast<float>(height);
}

void setMatrices(NShaderProgram& program) {
    std::array<float, 16> modelView, projection;
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView.data());
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    program.SetMVPMatrices(projection.data(), modelView.data(), false);
}

void setFill(NShaderProgram& program, const N2DBoxDrawer::RenderInfo& info) {
    program.SetUniformValue("g_width", info.width);
    program.SetUniformValue("g_height", info.height);
    if (info.fillColor != kNoFill)
        program.SetVec4UniformValue("g_filled_col", colorOf(info.fillColor).data());
    program.SetUniformValue("g_wire_draw", info.fillColor == kNoFill);
}

void setCornersAndBorder(NShaderProgram& program, const N2DBoxDrawer::RenderInfo& info) {
    Color radii, borderColor{0, 0, 0, 1};
    std::ranges::copy(info.cornerRadii, radii.begin());
    program.SetUniformValue("g_rounded_corner", info.roundedCorners != 0);
    program.SetVec4UniformValue("g_corner_radius", radii.data());
    program.SetUniformValue("g_border", info.border != 0);
    if (info.border == 0)
        return;
    std::ranges::transform(info.borderColor, borderColor.begin(),
                           [](unsigned char byte) { return static_cast<float>(byte) / 255; });
    program.SetUniformValue("g_border_thickness", info.borderThickness);
    program.SetVec4UniformValue("g_border_col", borderColor.data());
}

} // namespace

N2DBoxDrawer::N2DBoxDrawer() {}
N2DBoxDrawer::~N2DBoxDrawer() {}

N2DBoxDrawer& N2DBoxDrawer::operator=(const N2DBoxDrawer&) {
    return *this;
}

void N2DBoxDrawer::CreateShaderProgram() {
    const char* fragment[] = {kBoxFragmentMain, kRoundedEdgeLibrary};
    if (!box().program.IsProgramValid())
        box().program.CompileProgram(kBoxVertexMain, 2, fragment, 0, nullptr, 0);
}

void N2DBoxDrawer::Render(const RenderInfo& info) {
    if (info.width <= 0 || info.height <= 0 || !glContextIsCurrent())
        return;
    const WindowScope window({info.x, info.y, info.width, info.height}, true);
    const bool plain = info.roundedCorners == 0 && info.border == 0;
    if (!plain && DrawWithVAMode(info))
        return;
    const PlainFragmentsGuard untextured;
    DrawWithImmediateMode(info);
}

bool N2DBoxDrawer::DrawWithVAMode(const RenderInfo& info) {
    auto& [program, corners] = box();
    CreateShaderProgram();
    if (!program.IsProgramValid())
        return false;
    resize(corners, info.width, info.height);
    const ClientArraysGuard clientMemory;
    program.UseProgram(true);
    setMatrices(program);
    setFill(program, info);
    setCornersAndBorder(program, info);
    const int position = program.GetVertexAttributeLocation(RenderAttribPosition);
    program.SetVertexAttribute(position, 3, &corners[0][0]);
    advanceByVertex(position);
    glDrawArrays(GL_QUADS, 0, 4);
    program.EnableDisableVertexAttribute(position, false);
    program.UseProgram(false);
    return true;
}

void N2DBoxDrawer::DrawWithImmediateMode(const RenderInfo& info) {
    const BeginEnd vertices(GL_QUADS);
    glColor4fv(colorOf(info.fillColor).data());
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
        glTexCoord2i(x, y);
        glVertex2i(x * info.width, y * info.height);
    }
}
