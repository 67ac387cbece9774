// Polygons, lines and circles in window pixels, on top of the scene or at the depth of a model point.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/pixeldisc.h"
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

/// A shape that send(z) draws in a view of one unit a pixel.
template <class Send>
void drawOnScreen(bool translucent, const _NgPoint3Str* depthAt, const Send& send) {
    std::optional<NoDepthTestGuard> onTop;
    if (!depthAt)
        onTop.emplace();
    const double z = depthAt ? depthOf(*depthAt) : 0;
    const PixelViewGuard pixels;
    const NoProgramGuard fixed;
    std::optional<AddingGuard> adds;
    if (translucent) {
        adds.emplace();
        beginTranslucency();
    }
    send(z);
    if (translucent)
        endTranslucency();
}

// --- circles -----------------------------------------------------------------------------------------------

using CirclePoints = std::array<_NgPoint2Str, kCircleSteps + 1>;

/// Cosine and sine in steps of a degree, from 0 to 360.
const CirclePoints& unitCircle() {
    static const CirclePoints points = [] {
        CirclePoints made;
        for (int i = 0; i <= kCircleSteps; ++i)
            made[static_cast<std::size_t>(i)] = {std::cos(i * kRadPerDeg), std::sin(i * kRadPerDeg)};
        return made;
    }();
    return points;
}

bool isWhole(double value, double largest) {
    return std::abs(value) <= largest && value == std::trunc(value);
}

/// Whether the disc is one of whole pixels, where the view's units are pixels.
bool hasWholePixels(const _NgPoint2Str& center, double radius) {
    constexpr double kLargestWindow = 16384;
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    return viewport[0] == 0 && viewport[1] == 0 && isWhole(radius, kLargestDiscOfRows) &&
           isWhole(center.x, kLargestWindow) && isWhole(center.y, kLargestWindow) && pixelsAreCentres();
}

void drawDiscByRows(const _NgPoint2Str& center, int radius, double z) {
    const BeginEndInColor vertices(GL_QUADS);
    sendDiscByRows(radius, [&](int x, int y) { glVertex3d(center.x + x, center.y + y, z); });
}

} // namespace

int ngl_draw_poly_on_screen(int count, const _NgPoint2Str* points, bool filled, bool translucent,
                            const _NgPoint3Str* depthAt) {
    if (!points)
        return 0;
    drawOnScreen(filled && translucent, depthAt,
                 [&](double z) { emitPairs(filled ? GL_POLYGON : GL_LINES, count, points, z); });
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
    const double r = std::abs(radius);
    if (filled && hasWholePixels(*center, r)) {
        drawOnScreen(translucent, depthAt,
                     [&](double z) { drawDiscByRows(*center, static_cast<int>(r), z); });
        return 0;
    }
    CirclePoints points;
    std::ranges::transform(unitCircle(), points.begin(), [&](const _NgPoint2Str& unit) {
        return _NgPoint2Str{center->x + r * unit.x, center->y + r * unit.y};
    });
    return ngl_draw_poly_on_screen(kCircleSteps + 1, points.data(), filled, translucent, depthAt);
}
