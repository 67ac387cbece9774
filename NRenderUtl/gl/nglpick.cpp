// Picking geometry: from a screen point to model space.
#include <cmath>
#include <cstdio>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostmath.h"

namespace {

constexpr int kNoUsablePoint = 24;
constexpr double kParallelDeg = 2.0;
constexpr double kSamePixel = 1.0;
/// Edges of the triangle that spans a view plane: long beside the rounding of its corners.
constexpr double kViewPlaneSpan = 100.0;

struct Ray {
    _NgPoint3Str p, q; ///< near point and a second one, model space
};

Ray pickRay(int sx, int sy) {
    Ray ray;
    NglGetViewVector(sx, sy, &ray.p.x, &ray.p.y, &ray.p.z, &ray.q.x, &ray.q.y, &ray.q.z);
    return ray;
}

int pickPlane(const NgPlane& plane, int sx, int sy, _NgPoint3Str& out) {
    const Ray ray = pickRay(sx, sy);
    return MathIntersectLinePlane(ray.p, ray.q, plane, out);
}

bool nearlyParallel(const Ray& ray, const NgPlane& plane) {
    const double angle = MathAngleDeg(MathDifference(ray.q, ray.p), {plane.a, plane.b, plane.c});
    return std::fabs(angle - 90) < kParallelDeg;
}

bool strictlyInside(const _NgPoint3Str& p, const _NgPoint3Str& min, const _NgPoint3Str& max) {
    return min.x < p.x && p.x < max.x && min.y < p.y && p.y < max.y && min.z < p.z && p.z < max.z;
}

_NgPoint3Str screenPoint(_NgPoint3Str model) {
    _NgPoint2Str screen;
    ngl_transform_32_s(&model, &screen);
    return {screen.x, screen.y, 0};
}

void getWorldToView(NgMatrix m) {
    NgMatrix global;
    ngl_get_view_matrix(m);
    ngl_get_global_matrix(global);
    NglConcatenate(m, global);
}

} // namespace

int MathGetViewVector(int sx, int sy, double* px, double* py, double* pz, double* qx, double* qy,
                      double* qz) {
    return NglGetViewVector(sx, sy, px, py, pz, qx, qy, qz);
}

// --- planes ------------------------------------------------------------------------------------------------

int MathGetPlanePoint(_NgPoint3Str* out, double a, double b, double c, double d, int sx, int sy) {
    return pickPlane({a, b, c, d}, sx, sy, *out);
}

int MathPickPointOnPlaneEqn(double a, double b, double c, double d, int sx, int sy, _NgPoint3Str* out) {
    return pickPlane({a, b, c, d}, sx, sy, *out);
}

int MathGetPointOnPlane(const _NgPoint3Str* points, int sx, int sy, _NgPoint3Str* out) {
    NgPlane plane;
    if (MathPlaneFromPoints(points[0], points[1], points[2], plane) != 0) {
        std::fputs("Cannot form Plane equation\n", stdout); // where hosts look for it, not a console message
        return -1;
    }
    return pickPlane(plane, sx, sy, *out);
}

int MathGet3dPtFromClickPtGivenRefPt(const _NgPoint3Str* reference, int sx, int sy, _NgPoint3Str* out) {
    const _NgPoint3Str ref = *reference; // out may be the reference
    *out = ref;
    const Ray ray = pickRay(sx, sy);
    const _NgPoint3Str n = MathDifference(ray.q, ray.p);
    return MathIntersectLinePlane(ray.p, ray.q, {n.x, n.y, n.z, -MathDot(n, ref)}, *out) == -1 ? 0 : 1;
}

int MathDblGetPlanePoint(int sx, int sy, const double* a, const double* b, const double* c, const double* d,
                         const _NgPoint3Str* min, const _NgPoint3Str* max, _NgPoint3Str* out) {
    return __MathGetPlanePoint(sx, sy, *a, *b, *c, *d, min, max, out);
}

int __MathGetPlanePoint(int sx, int sy, double a, double b, double c, double d, const _NgPoint3Str* min,
                        const _NgPoint3Str* max, _NgPoint3Str* out) {
    const Ray ray = pickRay(sx, sy);
    const NgPlane plane = {a, b, c, d};
    if (nearlyParallel(ray, plane))
        return kNoUsablePoint;
    _NgPoint3Str point;
    const int failed = MathIntersectLinePlane(ray.p, ray.q, plane, point);
    if (failed != 0)
        return failed;
    const bool inside = strictlyInside(point, *min, *max); // before out is written, which may be a corner
    *out = point;
    return inside ? 0 : kNoUsablePoint;
}

void MathGetViewPlaneFromPoint(const _NgPoint3Str* p, double* a, double* b, double* c, double* d) {
    NgMatrix toView, global, fromView;
    getWorldToView(toView);
    ngl_get_global_matrix(global);
    NglInverse(global, fromView); // the view matrix is the identity and needs no undoing
    _NgPoint3Str origin;
    NglTransform33p(*p, toView, origin);
    _NgPoint3Str corners[3] = {origin, MathAdd(origin, {kViewPlaneSpan, 0, 0}),
                               MathAdd(origin, {0, kViewPlaneSpan, 0})};
    for (_NgPoint3Str& corner : corners)
        NglTransform33p(corner, fromView, corner);
    NgPlane plane{};
    MathPlaneFromPoints(corners[0], corners[1], corners[2], plane);
    *a = plane.a;
    *b = plane.b;
    *c = plane.c;
    *d = plane.d;
}

// --- lines -------------------------------------------------------------------------------------------------

int MathGetNearestPointOnLineFromScreenPt(const _NgPoint3Str* a, const _NgPoint3Str* b, int sx, int sy,
                                          _NgPoint3Str* out) {
    const _NgPoint3Str screenA = screenPoint(*a), screenB = screenPoint(*b);
    if (std::fabs(screenB.x - screenA.x) < kSamePixel && std::fabs(screenB.y - screenA.y) < kSamePixel) {
        *out = *a;
        return 1;
    }
    const _NgPoint3Str cursor = {static_cast<double>(sx), static_cast<double>(sy), 0};
    _NgPoint3Str nearest;
    double fraction = 0;
    MathNearestPointOnLine(screenA, screenB, cursor, nearest, &fraction);
    // Deliberate: the fraction on the screen is taken over as it is, in perspective too, and goes beyond the
    // ends, so that a drag can extend the line.
    *out = MathAdd(*a, MathScaled(MathDifference(*b, *a), fraction));
    return 0;
}

void NglGetLineFromScreenPt(int sx, int sy, _NgPoint3Str* p, _NgPoint3Str* q) {
    _NgPoint3Str front, back;
    ngl_get_ortho_3d_p(&front, &back);
    ngl_convert_screen_to_view(sx, sy, &front.x, &front.y);
    back.x = front.x;
    back.y = front.y;
    NgMatrix toModel;
    ngl_get_global_matrix(toModel);
    NglTranspose(toModel, toModel); // the inverse, as of every rotation
    NglTransform33p(front, toModel, *p);
    NglTransform33p(back, toModel, *q);
}

// --- view space --------------------------------------------------------------------------------------------

void MathTransformWorldToView(const _NgPoint3Str* in, _NgPoint3Str* out) {
    NgMatrix m;
    getWorldToView(m);
    NglTransform33p(*in, m, *out);
}
