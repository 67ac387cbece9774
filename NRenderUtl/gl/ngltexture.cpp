// The contour texture: the host's active attributes and the texture matrix that maps their value range to s =
// 0..1.
#include <cmath>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/texturehook.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

constexpr const char* kNoAttributes =
    "Texture attribute instance can not be realized, contour visualization may be "
    "impacted! Please check the use case and fix this";

/// A sampler object of the host's on the unit of the contour texture, whose own parameters count.
struct ParkedSampler {
    GLuint unit = 0, name = 0; ///< name 0: none
};

struct TextureState {
    NglGetActiveTextureAttribProc attributesOf = nullptr;
    RenderTextureAttributes* active = nullptr;
    ParkedSampler parked;
};

TextureState& textures() {
    static TextureState state;
    return state;
}

GLenum targetOf(int target) {
    return target < 0 ? GL_TEXTURE_2D : static_cast<GLenum>(target);
}

/// Maps the value range to s, in GL's texture matrix and, for the shader paths, in the record's. A range
/// without width is not scaled.
void loadTextureMatrix(double minValue, double maxValue) {
    NgMatrix matrix;
    NglSetIdentity(matrix);
    const double range = maxValue - minValue;
    if (std::abs(range) >= hostTolerance(minValue))
        NglScale(matrix, 1.0 / range, 1.0, 1.0);
    NglTranslate(matrix, -minValue, 0.0, 0.0);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixd(&matrix[0][0]);
    NglToFloat(matrix, nglRecord().live.textureMatrix);
    glMatrixMode(GL_MODELVIEW);
}

GLuint activeUnit() {
    GLint unit;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    return static_cast<GLuint>(unit) - GL_TEXTURE0;
}

void parkSampler() {
    GLint sampler = 0;
    if (glVersion() >= 33)
        glGetIntegerv(GL_SAMPLER_BINDING, &sampler);
    if (sampler == 0)
        return;
    textures().parked = {activeUnit(), static_cast<GLuint>(sampler)};
    glBindSampler(textures().parked.unit, 0);
}

/// Unless the host has bound another since, or deleted it.
void giveSamplerBack() {
    const ParkedSampler parked = textures().parked;
    if (parked.name == 0 || parked.unit != activeUnit())
        return;
    textures().parked = {};
    GLint sampler = 0;
    glGetIntegerv(GL_SAMPLER_BINDING, &sampler);
    if (sampler == 0 && glIsSampler(parked.name))
        glBindSampler(parked.unit, parked.name);
}

} // namespace

void NglRegisterGetActiveTextureAttribProc(NglGetActiveTextureAttribProc proc) {
    textures().attributesOf = proc; // deliberate: unlike the other registrations, null clears it
}

void NglSetActiveTextureInfo(unsigned int unit, float a, float b) {
    TextureState& state = textures();
    if (!state.attributesOf)
        hostMessage(NHostMessageNote, kNoAttributes);
    state.active = state.attributesOf ? state.attributesOf(unit, a, b) : nullptr;
}

RenderTextureAttributes* NglGetActiveTextureInfo() {
    return textures().active;
}

int NglEnableTexture(int target) {
    if (!textures().active)
        return -1;
    const ContourTexture contour = readContourTexture(*textures().active);
    if (contour.texture == 0)
        return -1;
    glBindTexture(targetOf(target), contour.texture);
    glEnable(targetOf(target));
    parkSampler();
    loadTextureMatrix(contour.minValue, contour.maxValue);
    return glGetError() == GL_NO_ERROR;
}

void NglDisableTexture(int target) {
    glBindTexture(targetOf(target), 0);
    glDisable(targetOf(target));
    giveSamplerBack();
}

void NglSetActiveTextureUnit(unsigned int unit) {
    glActiveTexture(unit < GL_TEXTURE0 ? GL_TEXTURE0 + unit : unit);
}

void NglWrapBindTexture(int target, unsigned int texture) {
    glBindTexture(targetOf(target), texture);
}

void NglWrapEnableTexture(int target) {
    glEnable(targetOf(target));
}

void NglWrapDisableTexture(int target) {
    glDisable(targetOf(target));
}

void NglWrapSetTextureColor(float s, float t) {
    glTexCoord2f(s, t);
}
