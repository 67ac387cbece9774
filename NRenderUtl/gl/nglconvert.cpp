// Conversions of points between model, view and screen space.
#include <algorithm>
#include <climits>
#include <cmath>

#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

const _NglInfoStr& view() {
    return nglRecord().live;
}

/// Window y, upward, of a screen y, downward, and back. Deliberate: the viewport's fourth value is its top
/// edge.
double flipY(double y) {
    return view().viewport[3] - y;
}

/// Size of a pixel in view space: the box over the viewport, whose third and fourth values are edges.
_NgPoint2Str viewPixelSize() {
    const _NglInfoStr& v = view();
    return {(v.orthoMax.x - v.orthoMin.x) / (v.viewport[2] - v.viewport[0]),
            (v.orthoMax.y - v.orthoMin.y) / (v.viewport[3] - v.viewport[1])};
}

/// Truncation towards zero that stays within int, whatever a degenerate view gives.
int truncated(double value) {
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp<double>(value, INT_MIN, INT_MAX));
}

/// Screen point with depth of a model point, by the record.
_NgPoint3Str screenPoint(const _NgPoint3Str& model) {
    _NgPoint3Str window = nglProject(nglRecordProjection(view()), model);
    window.y = flipY(window.y);
    return window;
}

} // namespace

// --- model to screen ---------------------------------------------------------------------------------------

void ngl_transform_33(double x, double y, double z, double* sx, double* sy, double* sz) {
    const _NgPoint3Str screen = screenPoint({x, y, z});
    *sx = screen.x;
    *sy = screen.y;
    *sz = screen.z;
}

void ngl_transform_33_s(_NgPoint3Str* point, _NgPoint3Str* screen) {
    *screen = screenPoint(*point);
}

void ngl_transform_32(double x, double y, double z, double* sx, double* sy) {
    const _NgPoint3Str screen = screenPoint({x, y, z});
    *sx = screen.x;
    *sy = screen.y;
}

void ngl_transform_32_s(_NgPoint3Str* point, _NgPoint2Str* screen) {
    ngl_transform_32(point->x, point->y, point->z, &screen->x, &screen->y);
}

void ngl_transform_33_s_with_mat(_NgPoint3Str* point, double modelView[16], double projection[16],
                                 int viewport[4], _NgPoint3Str* screen) {
    NglProjection given;
    std::copy_n(modelView, 16, given.modelView);
    std::copy_n(projection, 16, given.projection);
    std::copy_n(viewport, 4, given.viewport);
    *screen = nglProject(given, *point);
}

double UtlTransform33Zp(_NgPoint3Str* point, double matrix[4][4]) {
    return matrix[0][2] * point->x + matrix[1][2] * point->y + matrix[2][2] * point->z + matrix[3][2];
}

// --- model and view ----------------------------------------------------------------------------------------

void ngl_convert_model_to_ortho(_NgPoint3Str* model, _NgPoint3Str* ortho) {
    NglTransform33p(*model, view().modelView, *ortho);
}

void ngl_convert_ortho_to_model(_NgPoint3Str* ortho, _NgPoint3Str* model) {
    NgMatrix inverse; // afresh: the record's own inverse does not follow ngl_mult_3d_matrix
    NglInverse(view().modelView, inverse);
    NglTransform33p(*ortho, inverse, *model);
}

// --- screen to view and model ------------------------------------------------------------------------------

void ngl_convert_screen_to_model(int sx, int sy, int sz, _NgPoint3Str* model) {
    *model = nglUnproject(nglLiveProjection(), sx, sy, sz);
}

void ngl_convert_screen_to_view(int sx, int sy, double* vx, double* vy) {
    const _NglInfoStr& v = view();
    *vx = v.orthoMin.x + (static_cast<double>(sx) - v.viewport[0]) * (v.orthoMax.x - v.orthoMin.x) /
                             (v.viewport[2] - v.viewport[0]);
    *vy = v.orthoMin.y + flipY(sy) * (v.orthoMax.y - v.orthoMin.y) / (v.viewport[3] - v.viewport[1]);
}

void ngl_convert_view_to_screen(double vx, double vy, int* sx, int* sy) {
    const _NgPoint2Str pixel = viewPixelSize();
    *sx = truncated(view().viewport[0] + std::trunc((vx - view().orthoMin.x) / pixel.x));
    *sy = truncated(flipY(std::trunc((vy - view().orthoMin.y) / pixel.y)));
}

int NglGetViewVector(int sx, int sy, double* px, double* py, double* pz, double* qx, double* qy, double* qz) {
    const NglProjection projection = nglRecordProjection(view());
    const _NgPoint3Str p = nglUnproject(projection, sx, flipY(sy), 0);
    const _NgPoint3Str q =
        NglIsPerspective() ? nglUnproject(projection, sx, flipY(sy), 1) : MathAdd(p, view().view);
    *px = p.x;
    *py = p.y;
    *pz = p.z;
    *qx = q.x;
    *qy = q.y;
    *qz = q.z;
    return 0;
}

int ngl_get_3D_clip_pt_at_given_depth(_NgPoint3Str* point, double* depth, _NgPoint3Str* out) {
    const NglProjection live = nglLiveProjection();
    const _NgPoint3Str window = nglProject(live, *point);
    *out = nglUnproject(live, window.x, window.y, *depth);
    return 0;
}

void ngl_get_offset_pt_in_screen(_NgPoint3Str* point, int dx, int dy, _NgPoint3Str* out) {
    const _NgPoint3Str screen = screenPoint(*point);
    MathGet3dPtFromClickPtGivenRefPt(point, truncated(std::trunc(screen.x) - dx),
                                     truncated(std::trunc(screen.y) - dy), out);
}
