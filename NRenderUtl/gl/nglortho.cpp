// The orthographic box of the view, the length of a pixel in model space, and what else the view record
// tells.
#include <algorithm>
#include <cmath>

#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

/// Coordinate by which hosts mark a camera that is not set, and how close to it counts. The zeros of a record
/// that no camera was ever written to count too.
constexpr double kNoCamera = 9.87654321e-36;
/// The perspective scale is the view's height at the point divided by this.
constexpr double kScaleDivisor = 1000.0;
constexpr double kDefaultScreenDistancePx = 10.0;

const _NglInfoStr& view() {
    return nglRecord().live;
}

bool isNoCamera(double coordinate) {
    return std::abs(coordinate - kNoCamera) <= kNoCamera;
}

/// Distance in model space between the window points (x0, 0, 0) and (x1, 0, 0).
double distanceAlongBottomRow(const NglProjection& projection, double x0, double x1) {
    return MathDistance(nglUnproject(projection, x0, 0, 0), nglUnproject(projection, x1, 0, 0));
}

} // namespace

// --- orthographic box --------------------------------------------------------------------------------------

void ngl_get_ortho_2d(double* minX, double* minY, double* maxX, double* maxY) {
    *minX = view().orthoMin.x;
    *minY = view().orthoMin.y;
    *maxX = view().orthoMax.x;
    *maxY = view().orthoMax.y;
}

void ngl_get_ortho_3d(double* minX, double* minY, double* minZ, double* maxX, double* maxY, double* maxZ) {
    ngl_get_ortho_2d(minX, minY, maxX, maxY);
    *minZ = view().orthoMin.z;
    *maxZ = view().orthoMax.z;
}

void ngl_get_ortho_3d_p(_NgPoint3Str* minCorner, _NgPoint3Str* maxCorner) {
    *minCorner = view().orthoMin;
    *maxCorner = view().orthoMax;
}

int ngl_compute_current_ortho_3d(_NgPoint3Str* minCorner, _NgPoint3Str* maxCorner) {
    const NglProjection live = nglLiveProjection();
    const double* p = live.projection;
    const double* m = live.modelView;
    *minCorner = {-(p[12] + 1) / p[0] - m[12], -(p[13] + 1) / p[5] - m[13], -((p[14] + 1) / p[10] + m[14])};
    *maxCorner = {2 / p[0] - (p[12] + 1) / p[0] - m[12], 2 / p[5] - (p[13] + 1) / p[5] - m[13],
                  -((p[14] + 1) / p[10] - 2 / p[10] + m[14])};
    return 0;
}

// --- lengths of pixels -------------------------------------------------------------------------------------

void ngl_get_ortho_scale(double* scale) {
    *scale = view().pixelSize;
}

double ngl_get_ortho_scale_given_point(_NgPoint3Str* point) {
    const _NgPoint3Str& camera = view().cameraPosition;
    const bool cameraUnset = isNoCamera(camera.x) && isNoCamera(camera.y) && isNoCamera(camera.z);
    if (!NglIsPerspective() || cameraUnset)
        return view().pixelSize;
    const float halfAngleRad = std::atan(1.0f / view().projectionF[1][1]);
    const float tangent = std::tan(halfAngleRad);
    return MathDistance(*point, camera) * (2.0f * tangent) / kScaleDivisor;
}

double ngl_get_model_dist_for_screen_distance(double distance) {
    const bool usable = distance != 0 && !std::isnan(distance);
    return distanceAlongBottomRow(nglRecordProjectionF(view()), 1,
                                  usable ? distance : kDefaultScreenDistancePx);
}

void UtlRecomputeOrthoScale(double* scale) {
    // The points are 9 pixels apart and the divisor is 10. Deliberate: marker sizes are tuned to this scale,
    // which differs from the record's pixel size.
    *scale = static_cast<float>(distanceAlongBottomRow(nglLiveProjection(), 1, 10) / 10);
}

// --- the record's vectors, viewport and camera -------------------------------------------------------------

void ngl_get_view_vector(_NgPoint3Str* vector) {
    *vector = view().view;
}

void ngl_get_view_x_vector(_NgPoint3Str* vector) {
    *vector = view().viewX;
}

void ngl_get_view_y_vector(_NgPoint3Str* vector) {
    *vector = view().viewY;
}

void ngl_get_viewport(int* x, int* y, int* width, int* height) {
    *x = view().viewport[0];
    *y = view().viewport[1];
    *width = view().viewport[2];
    *height = view().viewport[3];
}

void ngl_set_viewport(int x0, int y0, int x1, int y1) {
    const int width = x1 - x0, height = y1 - y0;
    if (width != 0 && height != 0)
        glViewport(x0, y0, width, height); // a negative size is GL's to refuse
}

void ngl_get_camera_position(_NgPoint3Str* position) {
    *position = view().cameraPosition;
}

void ngl_set_camera_position(_NgPoint3Str* position) {
    nglRecord().live.cameraPosition = *position;
}

void ngl_get_std_matrices(double modelView[16], double projection[16], int viewport[4]) {
    const NglProjection live = nglLiveProjection();
    std::copy_n(live.modelView, 16, modelView);
    std::copy_n(live.projection, 16, projection);
    std::copy_n(live.viewport, 4, viewport);
}
