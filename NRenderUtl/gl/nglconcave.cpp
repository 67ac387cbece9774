// Plane polygons of any outline, filled by the parity of a triangle fan that is counted in the stencil
// buffer.
#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/stateguards.h"

namespace {

constexpr std::uint64_t kFewestCorners = 3;

/// Room in the stencil buffer for the length of a block. The host's state comes back after it, but the
/// stencil test is left off, also where the host had it on: its values are gone from the buffer.
class StencilScope {
public:
    StencilScope() {
        glPushAttrib(GL_STENCIL_BUFFER_BIT | GL_ENABLE_BIT);
        glEnable(GL_STENCIL_TEST);
        glStencilMask(~0u);
        glClearStencil(0);
        glClear(GL_STENCIL_BUFFER_BIT);
        // The triangles of a fan face both ways, and all of them count.
        glDisable(GL_CULL_FACE);
    }
    ~StencilScope() {
        glPopAttrib();
        glDisable(GL_STENCIL_TEST);
    }
    StencilScope(const StencilScope&) = delete;
    StencilScope& operator=(const StencilScope&) = delete;
};

template <class DrawFan>
void fillByParity(const DrawFan& drawFan) {
    const StencilScope stencil;
    {
        // Nothing but the stencil is written: depths of this pass would hide the next one, and the scene
        // behind the notches.
        const AttributesGuard writes(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        glDepthMask(GL_FALSE);
        glStencilFunc(GL_ALWAYS, 0, 1);
        glStencilOp(GL_INVERT, GL_INVERT, GL_INVERT);
        drawFan();
    }
    glStencilFunc(GL_EQUAL, 1, 1);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    drawFan();
}

} // namespace

void ngl_concave_polygon_3d(const double* x, const double* y, const double* z, std::uint64_t count) {
    if (!x || !y || !z || count < kFewestCorners)
        return;
    fillByParity([=] {
        const BeginEnd triangles(GL_TRIANGLES);
        for (std::uint64_t i = 2; i < count; ++i)
            for (const std::uint64_t corner : {std::uint64_t{0}, i - 1, i})
                sendVertex(_NgPoint3Str{x[corner], y[corner], z[corner]});
    });
}

void ngl_concave_polygon_3d_s(const _NgPoint3Str* points, std::uint64_t count) {
    if (!points || count < kFewestCorners)
        return;
    fillByParity(
        [=] { drawVertices(GL_TRIANGLE_FAN, count, [=](std::uint64_t i) { glVertex3dv(&points[i].x); }); });
}
