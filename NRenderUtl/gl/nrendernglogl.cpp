// The view record: its process-wide state, loading it into GL, reading it back, and the switches beside it.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "NRenderUtl/gl/nglline.h"
#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/host/hostutl.h"

NglRecordState& nglRecord() {
    static NglRecordState state;
    return state;
}

bool viewIsModified() {
    const NglRecordState& state = nglRecord();
    return state.live.viewPushCount > 0 || state.pushCount3d > 0 || state.live.transformed != 0;
}

namespace {

constexpr double kSmallestScaleFactor = 1e-7; // a smaller mesh scale factor counts as none
constexpr int kPixelSizeSpan = 10;            // window pixels over which the pixel size is measured

void refreshAfterRecordChange() {
    const _NglInfoStr& info = nglRecord().live;
    nglIssueLineWidth(1);
    refreshMarkersAndText(&info.modelViewF[0][0], &info.projectionF[0][0], info.pixelSize);
}

void readViewVectors(_NglInfoStr& info, const NglProjection& projection) {
    const _NgPoint3Str origin{1, 0, 0};
    info.view = nglUnprojectDirection(projection, origin, {1, 0, 1});
    info.viewY = nglUnprojectDirection(projection, origin, {1, 1, 0});
    info.viewX = nglUnprojectDirection(projection, origin, {2, 0, 0});
}

void readPixelSize(_NglInfoStr& info, const NglProjection& projection) {
    info.screenOrigin = nglUnproject(projection, 0, 0, 0);
    const _NgPoint3Str end = nglUnproject(projection, kPixelSizeSpan, 0, 0);
    info.pixelSize = static_cast<float>(MathDistance(info.screenOrigin, end) / kPixelSizeSpan);
}

void readMatrices(_NglInfoStr& info, const NglProjection& projection) {
    std::copy_n(projection.modelView, 16, &info.modelView[0][0]);
    std::copy_n(projection.projection, 16, &info.projection[0][0]);
    std::copy_n(projection.viewport, 4, info.viewport);
    NglInverse(info.modelView, info.inverseModelView);
    NglToFloat(info.modelView, info.modelViewF);
    NglToFloat(info.projection, info.projectionF);
}

/// A disabled light keeps what the record said about it.
void readLight(GLenum light, NglLightParams& params) {
    params.enabled = glIsEnabled(light);
    if (params.enabled != 1)
        return;
    glGetLightfv(light, GL_AMBIENT, params.ambient);
    glGetLightfv(light, GL_DIFFUSE, params.diffuse);
    glGetLightfv(light, GL_SPECULAR, params.specular);
    glGetLightfv(light, GL_POSITION, params.position);
    glGetLightfv(light, GL_CONSTANT_ATTENUATION, &params.constantAttenuation);
    glGetLightfv(light, GL_LINEAR_ATTENUATION, &params.linearAttenuation);
    glGetLightfv(light, GL_QUADRATIC_ATTENUATION, &params.quadraticAttenuation);
}

void readMaterial(GLenum face, NglMatParams& params) {
    glGetMaterialfv(face, GL_AMBIENT, params.ambient);
    glGetMaterialfv(face, GL_DIFFUSE, params.diffuse);
    glGetMaterialfv(face, GL_SPECULAR, params.specular);
    glGetMaterialfv(face, GL_EMISSION, params.emission);
    glGetMaterialfv(face, GL_SHININESS, &params.shininess);
}

void prompt(NglPromptFunc func, const char* message) {
    if (func && !hostPromptsBlocked())
        func(message);
}

} // namespace

// --- capabilities ------------------------------------------------------------------------------------------

int NglInitGLExtensions() {
    GLeeInit();
    return 0;
}

int NglIsFBOSupported() {
    return GLeeEnabled(GLeeFramebufferExt);
}

int NglIsVBOSupported() {
    return GLeeEnabled(GLeeBufferObjects);
}

int NglIsShaderSupported() {
    return GLeeEnabled(GLeeVertexShader) && GLeeEnabled(GLeeFragmentShader) &&
           GLeeEnabled(GLeeBufferObjects) && GLeeEnabled(GLeeTextureBufferObjects);
}

int NglHasCapability(int number) {
    return GLeeEnabled(number);
}

// --- loading and reading back ------------------------------------------------------------------------------

int NglInitMatrices(_NglInfoStr* info) {
    NglRecordState& state = nglRecord();
    state.live = *info;
    state.colorIndex = state.live.colorIndex;
    state.matricesCurrent = 1;
    state.pushCount3d = 0;
    return 0;
}

int NglSetMatrices(_NglInfoStr* info) {
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(&info->modelView[0][0]);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(&info->projection[0][0]);
    glMatrixMode(GL_MODELVIEW);
    glViewport(info->viewport[0], info->viewport[1], info->viewport[2], info->viewport[3]);
    return NglInitMatrices(info);
}

_NglInfoStr* NglGetNglInfo() {
    return &nglRecord().live;
}

_NglInfoStr* NglPushNglInfo() {
    nglRecord().saved = nglRecord().live;
    return NglGetNglInfo();
}

void NglPopNglInfo() {
    nglRecord().live = nglRecord().saved;
    refreshAfterRecordChange();
}

void NglUpdateNglInfo() {
    _NglInfoStr& info = nglRecord().live;
    ngl_compute_current_ortho_3d(&info.orthoMin, &info.orthoMax);
    const NglProjection projection = nglLiveProjection();
    readViewVectors(info, projection);
    info.pushDelta = MathScaled(info.view, nglDepthOffset(info.orthoMax.z - info.orthoMin.z, 1));
    readPixelSize(info, projection);
    info.colorIndex = -1; // loading this record later forces the next colour to be issued
    info.zoomedOrFit = 0;
    readMatrices(info, projection);
    for (int i = 0; i < static_cast<int>(std::size(info.lights)); ++i)
        readLight(GL_LIGHT0 + i, info.lights[i]);
    readMaterial(GL_FRONT, info.frontMaterial);
    readMaterial(GL_BACK, info.backMaterial);
    refreshAfterRecordChange();
}

int ngl_initialize_view(double* nearPlane, double* farPlane) {
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    const bool hasRange = nearPlane && farPlane;
    // Deliberate: width and height are the right and top edges, as in all screen conversions of the layer.
    glOrtho(viewport[0], viewport[2], viewport[1], viewport[3], hasRange ? *nearPlane : 0.0,
            hasRange ? *farPlane : -1.0);
    glMatrixMode(GL_MODELVIEW);
    return 0;
}

NglSetCustomMatrices::NglSetCustomMatrices(const double* projection, const double* modelView) {
    NglPushNglInfo();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadMatrixd(projection);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(modelView);
    NglUpdateNglInfo();
}

NglSetCustomMatrices::~NglSetCustomMatrices() {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    NglPopNglInfo();
}

// --- switches ----------------------------------------------------------------------------------------------

void NglSetBeingDrawnState(bool beingDrawn) {
    nglRecord().beingDrawn = beingDrawn;
}

bool NglIsBeingDrawn() {
    return nglRecord().beingDrawn;
}

void NglSetTransformedState() {
    nglRecord().live.transformed = 1;
}

void NglClearTransformedState() {
    nglRecord().live.transformed = 0;
}

int NglIsTransformed() {
    return nglRecord().live.transformed;
}

int NglIsPerspective() {
    return nglRecord().live.perspective == 1;
}

int NglIsZoomedOrFit() {
    return nglRecord().live.zoomedOrFit;
}

void NglSetOptimizedDisplayMode(int mode) {
    nglRecord().live.optimizedDisplayMode = mode;
}

int NglCheckOptimizedDisplayMode() {
    return nglRecord().live.optimizedDisplayMode;
}

void NglSetViewOperationMode(int mode) {
    nglRecord().viewOperationMode = mode;
}

int NglIsViewOperationMode() {
    return nglRecord().viewOperationMode;
}

void NglSetMeshScaleFactor(double factor) {
    NglResetScaleFactorAndFlag(std::abs(factor) >= kSmallestScaleFactor, factor);
}

int NglGetScaleFactorAndFlag(double* factor) {
    *factor = nglRecord().meshScaleFactor;
    return nglRecord().meshScaleFlag;
}

void NglResetScaleFactorAndFlag(int flag, double factor) {
    nglRecord().meshScaleFlag = flag;
    nglRecord().meshScaleFactor = factor;
}

// --- prompts -----------------------------------------------------------------------------------------------

void NglRegisterPromptFunction(NglPromptFunc func) {
    if (func)
        nglRecord().prompt = func;
}

void NglRegisterNoPumpPromptFunction(NglPromptFunc func) {
    if (func)
        nglRecord().noPumpPrompt = func;
}

void PromptSetSimple(const char* message) {
    prompt(nglRecord().prompt, message);
}

void SetPromptNoUpdate(const char* message) {
    prompt(nglRecord().noPumpPrompt, message);
}

void NglBlockPrompts() {
    hostBlockPrompts(true);
}

void NglUnBlockPrompts() {
    hostBlockPrompts(false);
}
