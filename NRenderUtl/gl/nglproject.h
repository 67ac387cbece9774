// Projections: the matrices and viewport a point goes through, GLU's mapping both ways, and the depth offset
// that the view-point pushes use.
#pragma once

#include "NRenderUtl/gl/ngl.h"

/// Matrices (column-major) and viewport that lead from model space to the window, y upward.
struct NglProjection {
    double modelView[16];
    double projection[16];
    int viewport[4];
};

/// The current context's matrices and viewport.
NglProjection nglLiveProjection();
/// Those of a record, double precision or the single-precision copies widened.
NglProjection nglRecordProjection(const _NglInfoStr& info);
NglProjection nglRecordProjectionF(const _NglInfoStr& info);

/// Model point to window point with depth, and back. A point that has no image (on the eye plane, singular
/// matrices) gives zeros.
_NgPoint3Str nglProject(const NglProjection& projection, const _NgPoint3Str& model);
_NgPoint3Str nglUnproject(const NglProjection& projection, double wx, double wy, double wz);
/// Unit vector, model space, from one window point to another.
_NgPoint3Str nglUnprojectDirection(const NglProjection& projection, const _NgPoint3Str& from,
                                   const _NgPoint3Str& to);

/// Distance along the view vector, negative towards the viewer, that lifts drawing n pushes off a surface in
/// a view volume of the given depth: 150 steps of the current depth buffer, each at least 1e-8 and at most
/// 0.2.
double nglDepthOffset(double boxDepth, int n);
