// Arcs in model space.
#include <cmath>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

constexpr float kRadPerDeg = 0.017453292f;

} // namespace

void NglDrawArc(const _NgPoint3Str* center, const _NgPoint3Str* axis, double radius, double twist,
                double sweep, int n) {
    if (!center || !axis || n < 1)
        return;
    NgMatrix frame;
    NglAlignZAxisToLine(*center, MathAdd(*center, *axis), twist, frame);
    const double step = sweep / n;
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i <= n; ++i) {
        const float angle = static_cast<float>(i * kRadPerDeg * step);
        _NgPoint3Str point{radius * std::cos(angle), radius * std::sin(angle), 0};
        NglTransform33p(point, frame, point);
        glVertex3dv(&point.x);
    }
    glEnd();
}
