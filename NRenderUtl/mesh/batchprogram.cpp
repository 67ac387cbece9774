#include "NRenderUtl/mesh/batchprogram.h"

#include <array>

#include "NRenderUtl/gl/batchprogram.h"
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/nglclip.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/mesh/elementvalues.h"
#include "NRenderUtl/shaders/programinuse.h"
#include "NRenderUtl/shaders/shadercatalogue.h"
#include "NRenderUtl/shaders/vertexattribute.h"

namespace {

constexpr int kSelectionIndex = 33, kHighlightIndex = 32;
constexpr int kSmearedContour = 1, kBandedContour = 0;

struct Programs {
    ComposedProgram contours; ///< does both
    ComposedProgram colors;   ///< without the contour, which drivers in software compute for every fragment
};

Programs& programs() {
    static Programs programs;
    return programs;
}

bool buildPrograms() {
    return programs().contours.buildBatch() && programs().colors.buildBatch({{}, {{"g_bct", 0}}});
}

void setColor(NShaderProgram& program, RenderingShaderUniform uniform, int index) {
    float rgb[3];
    ngl_get_floats_from_color_long(NglGetColorGivenIndex(index), rgb[0], rgb[1], rgb[2]);
    program.SetVec3UniformValue(uniform, rgb);
}

void setContour(NShaderProgram& program, const RenderTextureAttributes& attributes, bool colorScale) {
    const bool smeared = colorScale && isSmearedScale(attributes.colorScale);
    program.SetUniformValue("g_use_clr_scale", colorScale);
    program.SetUniformValue(RenderUniformContourType, smeared ? kSmearedContour : kBandedContour);
    if (colorScale) {
        program.SetColorScaleUniforms(&attributes.colorScale);
        setColor(program, RenderUniformSelectionColor, kSelectionIndex);
        setColor(program, RenderUniformHighlightColor, kHighlightIndex);
    } else {
        program.SetUniform4x4Matrix(RenderUniformTextureMatrix, &NglGetNglInfo()->textureMatrix[0][0]);
        program.SetUniformValue(RenderUniformTextureScaled, 0);
    }
}

void setUniforms(NShaderProgram& program, const BatchVertices& vertices, bool colorScale) {
    _NglInfoStr& info = *NglGetNglInfo();
    program.SetMVPMatrices(&info.projectionF[0][0], &info.modelViewF[0][0], false);
    program.SetUniformValue(RenderUniformClipped, nglClipPlanesLoaded());
    const RenderTextureAttributes* attributes = NglGetActiveTextureInfo();
    if (attributes && vertices.texCoords)
        setContour(program, *attributes, colorScale);
    program.SetUniformValue(RenderUniformContour, vertices.texCoords != nullptr);
    program.SetUniformValue(RenderUniformPointSize, vertices.pointSize);
}

std::array<RenderingShaderAttributes, 2> attributesOf(const BatchVertices& vertices) {
    return {RenderAttribPosition, vertices.texCoords ? RenderAttribTexture : RenderAttribColor};
}

void clearDivisors(const NShaderProgram& program, const BatchVertices& vertices) {
    for (const auto attribute : attributesOf(vertices))
        advanceByVertex(program.GetVertexAttributeLocation(attribute));
}

/// Points the attributes at the vertices. What of the arrays is the host's, the caller restores.
void setAttributes(NShaderProgram& program, const BatchVertices& vertices) {
    program.SetVertexAttribute(program.GetVertexAttributeLocation(RenderAttribPosition), 3,
                               vertices.positions);
    if (vertices.texCoords) {
        program.SetVertexAttribute(program.GetVertexAttributeLocation(RenderAttribTexture), 2,
                                   vertices.texCoords);
        return;
    }
    const int color = program.GetVertexAttributeLocation(RenderAttribColor);
    program.EnableDisableVertexAttribute(color, true);
    glVertexAttribPointer(static_cast<GLuint>(color), 4, GL_UNSIGNED_BYTE, GL_TRUE, 0, vertices.colors);
}

void disableAttributes(NShaderProgram& program, const BatchVertices& vertices) {
    for (const auto attribute : attributesOf(vertices))
        program.EnableDisableVertexAttribute(program.GetVertexAttributeLocation(attribute), false);
}

void drawBatch(const BatchVertices& vertices, bool colorScale) {
    NShaderProgram& program = batchProgram(vertices.texCoords != nullptr);
    const ProgramInUseGuard guard;
    program.UseProgram(true);
    setUniforms(program, vertices, colorScale);
    setAttributes(program, vertices);
    clearDivisors(program, vertices);
    vertices.draw();
    disableAttributes(program, vertices);
}

[[maybe_unused]] const bool kProgramRegistered = registerBatchProgram({buildPrograms, drawBatch});

} // namespace

NShaderProgram& batchProgram(bool textured) {
    return textured ? programs().contours : programs().colors;
}
