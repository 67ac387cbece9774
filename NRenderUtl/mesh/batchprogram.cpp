#include "NRenderUtl/mesh/batchprogram.h"

#include "NRenderUtl/gl/batchprogram.h"
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/gl/nglclip.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/mesh/elementvalues.h"
#include "NRenderUtl/shaders/programinuse.h"
#include "NRenderUtl/shaders/shadercatalogue.h"

namespace {

constexpr int kSelectionIndex = 33, kHighlightIndex = 32;
constexpr int kSmearedContour = 1, kBandedContour = 0;

ComposedProgram& program() {
    static ComposedProgram program;
    return program;
}

void setColor(RenderingShaderUniform uniform, int index) {
    float rgb[3];
    ngl_get_floats_from_color_long(NglGetColorGivenIndex(index), rgb[0], rgb[1], rgb[2]);
    program().SetVec3UniformValue(uniform, rgb);
}

void setContour(const RenderTextureAttributes& attributes, bool colorScale) {
    program().SetUniformValue("g_use_clr_scale", colorScale);
    if (colorScale) {
        program().SetColorScaleUniforms(&attributes.colorScale);
        program().SetUniformValue(RenderUniformContourType,
                                  isSmearedScale(attributes.colorScale) ? kSmearedContour : kBandedContour);
        setColor(RenderUniformSelectionColor, kSelectionIndex);
        setColor(RenderUniformHighlightColor, kHighlightIndex);
    } else {
        program().SetUniform4x4Matrix(RenderUniformTextureMatrix, &NglGetNglInfo()->textureMatrix[0][0]);
        program().SetUniformValue(RenderUniformTextureScaled, 0);
        program().SetUniformValue(RenderUniformContourType, kBandedContour);
    }
}

void setUniforms(const BatchVertices& vertices, bool colorScale) {
    _NglInfoStr& info = *NglGetNglInfo();
    program().SetMVPMatrices(&info.projectionF[0][0], &info.modelViewF[0][0], false);
    program().SetUniformValue(RenderUniformClipped, nglClipPlanesLoaded());
    if (const RenderTextureAttributes* attributes = NglGetActiveTextureInfo())
        setContour(*attributes, colorScale);
    program().SetUniformValue(RenderUniformContour, vertices.texCoords != nullptr);
    program().SetUniformValue(RenderUniformPointSize, vertices.pointSize);
}

/// Points the attributes at the vertices; the arrays in force are the caller's to restore.
void setAttributes(const BatchVertices& vertices) {
    program().SetVertexAttribute(program().GetVertexAttributeLocation(RenderAttribPosition), 3,
                                 vertices.positions);
    if (vertices.texCoords) {
        program().SetVertexAttribute(program().GetVertexAttributeLocation(RenderAttribTexture), 2,
                                     vertices.texCoords);
        return;
    }
    const int color = program().GetVertexAttributeLocation(RenderAttribColor);
    program().EnableDisableVertexAttribute(color, true);
    glVertexAttribPointer(static_cast<GLuint>(color), 4, GL_UNSIGNED_BYTE, GL_TRUE, 0, vertices.colors);
}

void disableAttributes(const BatchVertices& vertices) {
    for (const auto attribute :
         {RenderAttribPosition, vertices.texCoords ? RenderAttribTexture : RenderAttribColor})
        program().EnableDisableVertexAttribute(program().GetVertexAttributeLocation(attribute), false);
}

void drawBatch(const BatchVertices& vertices, bool colorScale) {
    const ProgramInUseGuard guard;
    program().UseProgram(true);
    setUniforms(vertices, colorScale);
    setAttributes(vertices);
    vertices.draw();
    disableAttributes(vertices);
}

[[maybe_unused]] const bool kProgramRegistered =
    registerBatchProgram({[] { return program().buildBatch(); }, drawBatch});

} // namespace

NShaderProgram& batchProgram() {
    return program();
}
