// Polygons, lines and circles in window pixels, on top of the scene or at the depth of a model point.
#include <array>
#include <cmath>
#include <optional>

#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/stateguards.h"

namespace {

constexpr NgColorLong kTranslucentAlpha = 0x32000000;
constexpr int kCircleSteps = 360;
constexpr double kRadPerDeg = 0.017453293005625408; // pi / 180 rounded to single precision

/// z in the pixel view, where it is the window depth. Deliberate: the point's own window depth is set against
/// the box as if it were a z of the box, which gives it back where the box goes from 1 to -1, as hosts' do.
double depthOf(const _NgPoint3Str& reference) {
    const _NglInfoStr& info = nglRecord().live;
    const double minZ = info.orthoMin.z, maxZ = info.orthoMax.z;
    const double windowDepth = nglProject(nglRecordProjection(info), reference).z;
    return 1 - 2 * (minZ - windowDepth) / (minZ - maxZ);
}

void beginTranslucency() {
    glDepthMask(GL_FALSE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // The caller's colour stays translucent: shapes of one kind follow each other.
    ngl_set_color_long((ngl_get_color_long() & 0x00FFFFFF) | kTranslucentAlpha);
}

/// To the library's defaults, not to what was found: every other drawing function starts from these.
void endTranslucency() {
    glDepthMask(GL_TRUE);
    glBlendFunc(GL_ONE, GL_ZERO);
    glDisable(GL_BLEND);
}

/// Pairs of neighbours: the segments of an open chain, or a polygon that repeats its inner points.
void emitPairs(GLenum primitive, int count, const _NgPoint2Str* points, double z) {
    const BeginEndInColor vertices(primitive);
    for (int i = 0; i + 1 < count; ++i) {
        glVertex3d(points[i].x, points[i].y, z);
        glVertex3d(points[i + 1].x, points[i + 1].y, z);
    }
}

} // namespace

int ngl_draw_poly_on_screen(int count, const _NgPoint2Str* points, bool filled, bool translucent,
                            const _NgPoint3Str* depthAt) {
    if (!points)
        return 0;
    std::optional<NoDepthTestGuard> onTop;
    if (!depthAt)
        onTop.emplace();
    const double z = depthAt ? depthOf(*depthAt) : 0;
    const PixelViewGuard pixels;
    const NoProgramGuard fixed;
    std::optional<AddingGuard> adds;
    if (filled && translucent) {
        adds.emplace();
        beginTranslucency();
    }
    emitPairs(filled ? GL_POLYGON : GL_LINES, count, points, z);
    if (filled && translucent)
        endTranslucency();
    return 0;
}

int ngl_draw_line_on_screen(int x0, int y0, int x1, int y1, const _NgPoint3Str* depthAt) {
    const _NgPoint2Str ends[] = {{static_cast<double>(x0), static_cast<double>(y0)},
                                 {static_cast<double>(x1), static_cast<double>(y1)}};
    return ngl_draw_poly_on_screen(2, ends, false, false, depthAt);
}

int ngl_draw_circle_on_screen(const _NgPoint2Str* center, float radius, bool filled, bool translucent,
                              const _NgPoint3Str* depthAt) {
    if (!center)
        return 0;
    std::array<_NgPoint2Str, kCircleSteps + 1> points;
    for (int i = 0; i <= kCircleSteps; ++i) {
        const double angle = i * kRadPerDeg, r = std::abs(radius);
        points[i] = {center->x + r * std::cos(angle), center->y + r * std::sin(angle)};
    }
    return ngl_draw_poly_on_screen(kCircleSteps + 1, points.data(), filled, translucent, depthAt);
}
