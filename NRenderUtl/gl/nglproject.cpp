// Projections through GLU and the depth offset of view-point pushes.
#include "NRenderUtl/gl/nglproject.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

constexpr double kDepthSteps = 150.0;
constexpr double kSmallestStep = 1e-8, kLargestStep = 0.2;
constexpr double kDepthStepsSpared = 10.0; ///< of the depth buffer's range

} // namespace

NglProjection nglLiveProjection() {
    NglProjection live;
    glGetDoublev(GL_MODELVIEW_MATRIX, live.modelView);
    glGetDoublev(GL_PROJECTION_MATRIX, live.projection);
    glGetIntegerv(GL_VIEWPORT, live.viewport);
    return live;
}

NglProjection nglRecordProjection(const _NglInfoStr& info) {
    NglProjection p;
    std::memcpy(p.modelView, info.modelView, sizeof p.modelView);
    std::memcpy(p.projection, info.projection, sizeof p.projection);
    std::copy_n(info.viewport, 4, p.viewport);
    return p;
}

NglProjection nglRecordProjectionF(const _NglInfoStr& info) {
    NglProjection p;
    std::copy_n(&info.modelViewF[0][0], 16, p.modelView);
    std::copy_n(&info.projectionF[0][0], 16, p.projection);
    std::copy_n(info.viewport, 4, p.viewport);
    return p;
}

_NgPoint3Str nglProject(const NglProjection& p, const _NgPoint3Str& model) {
    _NgPoint3Str w{};
    gluProject(model.x, model.y, model.z, p.modelView, p.projection, p.viewport, &w.x, &w.y, &w.z);
    return w;
}

_NgPoint3Str nglUnproject(const NglProjection& p, double wx, double wy, double wz) {
    _NgPoint3Str model{};
    gluUnProject(wx, wy, wz, p.modelView, p.projection, p.viewport, &model.x, &model.y, &model.z);
    return model;
}

_NgPoint3Str nglUnprojectDirection(const NglProjection& p, const _NgPoint3Str& from, const _NgPoint3Str& to) {
    _NgPoint3Str direction =
        MathDifference(nglUnproject(p, to.x, to.y, to.z), nglUnproject(p, from.x, from.y, from.z));
    MathNormalise(direction);
    return direction;
}

double nglDepthOffset(double boxDepth, int n) {
    GLint bits = 0;
    glGetIntegerv(GL_DEPTH_BITS, &bits);
    const double step = std::abs(boxDepth / (std::ldexp(1.0, bits) - kDepthStepsSpared));
    return -kDepthSteps * std::clamp(step, kSmallestStep, kLargestStep) * n;
}
