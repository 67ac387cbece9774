// Batches of points, segments and vertices, by the program and by fixed function.
#include <epoxy/gl.h>

#include <array>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/families.h"

namespace nruview {

namespace {

constexpr int kColored = 1, kTextured = 2;

void drawPointBatch() {
    const std::array<_NgPoint3Str, 3> points = {{{-0.6, -0.5, 0.1}, {0.3, 0.2, 0.3}, {0.7, -0.6, -0.2}}};
    NglBatchBegin(1, kColored);
    ngl_batch_point_3d_given_size(3, points.data(), 7);
    NglBatchEnd(1);
}

template <int option>
void drawLineBatch() {
    const std::array<_NgFPoint3Str, 4> p = {
        {{-0.9f, -0.6f, 0.1f}, {0.8f, 0.5f, 0.2f}, {-0.3f, 0.9f, 0}, {0.9f, -0.9f, 0.4f}}};
    NglBatchBegin(2, option);
    for (const std::size_t i : {0, 1, 2})
        option == kTextured ? RenderingDrawLineF(&p[i], &p[i + 1], 0.1f, 0.9f, 0, 0)
                            : ngl_batch_line_3f_s(&p[i], &p[i + 1]);
    NglBatchEnd(2);
}

/// Fixed function draws in a modified view.
template <void (*draw)()>
void inModifiedView() {
    NglSetTransformedState();
    draw();
    NglClearTransformedState();
}

void drawScreenLineBatch() {
    const std::array<_NgPoint3Str, 3> p = {{{4, 6, 0}, {50, 30, 0}, {30, 60, 0}}};
    NglBatchBegin(3, kColored);
    ngl_batch_polyline_3d_s(p.data(), p.size(), 1);
    NglBatchEnd(3);
}

template <int option>
void drawVertexBatch() {
    const float normal[3] = {0.3f, 0.2f, 0.9f};
    option == kTextured ? void(NglEnableTexture(GL_TEXTURE_2D)) : void();
    NglBatchRenderBegin(GL_TRIANGLES, option);
    for (const auto& [x, y] : {std::pair{-0.8f, -0.7f}, {0.9f, -0.3f}, {0.1f, 0.9f}}) {
        const float position[3] = {x, y, 0.2f};
        NglBatchRenderAddVertex(position, normal, x, static_cast<int>(0xFF40C020));
    }
    NglBatchRenderFlush();
    if (option == kTextured)
        NglDisableTexture(GL_TEXTURE_2D);
}

} // namespace

std::vector<Family> batchFamilies() {
    using enum FamilyKind;
    return {{"batch of points", BatchProgram, drawPointBatch, nullptr, true},
            {"batch of lines", BatchProgram, drawLineBatch<kColored>, nullptr, true},
            {"batch of contoured lines", BatchProgram, drawLineBatch<kTextured>, nullptr, true},
            {"batch of points, fixed", Arrays, inModifiedView<drawPointBatch>},
            {"batch of lines, fixed", Arrays, inModifiedView<drawLineBatch<kColored>>},
            {"batch of contoured lines, fixed", Arrays, inModifiedView<drawLineBatch<kTextured>>},
            {"batch of lines on the screen", Arrays, drawScreenLineBatch},
            {"vertex batch, coloured", Arrays, drawVertexBatch<kColored>},
            {"vertex batch, contoured", Arrays, drawVertexBatch<kTextured>}};
}

} // namespace nruview
