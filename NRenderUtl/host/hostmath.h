// The host math library: column-major 4x4 matrices in OpenGL's order of products, vectors, planes and lines.
#pragma once

#include "NRenderUtl/ntypes.h"

/// 4x4 matrix as 16 doubles, element k of OpenGL's column-major order. `double[4][4]` has the same layout.
using NgMatrix = double[4][4];

// --- matrices ----------------------------------------------------------------------------------------------

void NglSetIdentity(NgMatrix m);
/// out := a * b (b is applied to points first). out may be a or b.
void NglMultiply(const NgMatrix a, const NgMatrix b, NgMatrix out);
/// m := m * b, as glMultMatrix does.
void NglConcatenate(NgMatrix m, const NgMatrix b);
void NglTranspose(const NgMatrix m, NgMatrix out);
/// Returns 0, or -1 for a singular matrix or one with NaN, which leaves out as the identity.
int NglInverse(const NgMatrix m, NgMatrix out);
void NglSetTranslation(NgMatrix m, const _NgPoint3Str& offset);
void NglSetScale(NgMatrix m, double sx, double sy, double sz);
/// m := a rotation by angle degrees about an axis of any length, as glRotate. Returns 0; -1 for a zero axis
/// (identity).
int NglSetRotation(NgMatrix m, double angleDeg, const _NgPoint3Str& axis);
/// m := m * translation, m * scale, m * rotation.
void NglTranslate(NgMatrix m, double x, double y, double z);
void NglScale(NgMatrix m, double sx, double sy, double sz);
int NglRotate(NgMatrix m, double angleDeg, const _NgPoint3Str& axis);
/// m := a right-handed orthonormal frame with origin `start` and z axis towards `end`, turned by rollDeg
/// about z. The x and y axes depend on the direction alone and are well-conditioned for every direction (Duff
/// et al., "Building an Orthonormal Basis, Revisited", JCGT 2017). Returns 0; -1 when the points coincide,
/// which gives a pure translation to start.
int NglAlignZAxisToLine(const _NgPoint3Str& start, const _NgPoint3Str& end, double rollDeg, NgMatrix m);
/// out := m * (p, 1), w ignored. out may be p.
void NglTransform33p(const _NgPoint3Str& p, const NgMatrix m, _NgPoint3Str& out);
void NglToFloat(const NgMatrix m, float out[4][4]);
void NglToDouble(const float m[4][4], NgMatrix out);

// --- vectors -----------------------------------------------------------------------------------------------

_NgPoint3Str MathAdd(const _NgPoint3Str& a, const _NgPoint3Str& b);
_NgPoint3Str MathDifference(const _NgPoint3Str& a, const _NgPoint3Str& b); ///< a - b
_NgPoint3Str MathScaled(const _NgPoint3Str& a, double s);
double MathDot(const _NgPoint3Str& a, const _NgPoint3Str& b);
_NgPoint3Str MathCross(const _NgPoint3Str& a, const _NgPoint3Str& b);
double MathLength(const _NgPoint3Str& a);
double MathDistance(const _NgPoint3Str& a, const _NgPoint3Str& b);
float MathFltPoint3Distance(const _NgFPoint3Str& a, const _NgFPoint3Str& b);
/// Scales to unit length. Returns 0; -1 and unchanged for a vector that is zero, infinite or NaN.
int MathNormalise(_NgPoint3Str& v);
/// Angle between two vectors in degrees, 0 to 180, well-conditioned near both ends; 0 when either has no
/// length.
double MathAngleDeg(const _NgPoint3Str& a, const _NgPoint3Str& b);

// --- planes and lines --------------------------------------------------------------------------------------

/// Plane a x + b y + c z + d = 0.
struct NgPlane {
    double a, b, c, d;
};

/// Plane with unit normal (p1 - p0) x (p2 - p0). Returns 0; -1 for points on one line, plane unchanged.
int MathPlaneFromPoints(const _NgPoint3Str& p0, const _NgPoint3Str& p1, const _NgPoint3Str& p2,
                        NgPlane& plane);
/// Point where the infinite line through p and q meets the plane. Returns 0; -1, out unchanged, when the line
/// is parallel to the plane or has no length, or the plane no normal.
int MathIntersectLinePlane(const _NgPoint3Str& p, const _NgPoint3Str& q, const NgPlane& plane,
                           _NgPoint3Str& out);
/// Point of the infinite line through a and b nearest to p, and its parameter t (0 at a, 1 at b).
/// Returns 0; -1 for a line without length, which gives a and t = 0. t may be null.
int MathNearestPointOnLine(const _NgPoint3Str& a, const _NgPoint3Str& b, const _NgPoint3Str& p,
                           _NgPoint3Str& out, double* t);
/// The same on the segment: t is clamped to [0, 1].
int MathNearestPointOnSegment(const _NgPoint3Str& a, const _NgPoint3Str& b, const _NgPoint3Str& p,
                              _NgPoint3Str& out, double* t);

/// Where the nearest point of a segment lies.
enum class NgSegmentSpot { Inside, Start, End };

/// Point of the segment a-b nearest to the infinite line through p and q.
struct NgSegmentNearest {
    _NgPoint3Str point; ///< on the segment
    double t;           ///< unclamped parameter of the nearest point of the segment's line: 0 at a, 1 at b
    double distance;    ///< from point to the line through p and q
    NgSegmentSpot spot; ///< Start for t <= 0, End for t >= 1
};
/// A segment parallel to the line, or without length, gives t = 0 at the start; a line without length counts
/// as the point p.
NgSegmentNearest MathNearestPointOnSegmentFromLine(const _NgPoint3Str& a, const _NgPoint3Str& b,
                                                   const _NgPoint3Str& p, const _NgPoint3Str& q);

// --- single precision --------------------------------------------------------------------------------------

struct NgFVector3 {
    float x = 0, y = 0, z = 0;
    NgFVector3 operator+(const NgFVector3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    NgFVector3 operator-(const NgFVector3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    NgFVector3 operator*(float s) const { return {x * s, y * s, z * s}; }
    float dot(const NgFVector3& o) const { return x * o.x + y * o.y + z * o.z; }
    NgFVector3 cross(const NgFVector3& o) const;
    float length() const;
    /// Returns 0; -1 and unchanged for a vector without a direction.
    int normalise();
};
using NgFPoint3 = NgFVector3;

struct NgFPlane {
    float a = 0, b = 0, c = 0, d = 0;
    /// Signed distance times the length of the normal.
    float evaluate(const NgFPoint3& p) const { return a * p.x + b * p.y + c * p.z + d; }
};

/// 4x4 float matrix, column-major.
struct NgFMatrix4 {
    float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    NgFMatrix4 operator*(const NgFMatrix4& right) const;
    NgFMatrix4 transposed() const;
    /// Returns 0, or -1 for a singular matrix, which leaves out as the identity.
    int inverse(NgFMatrix4& out) const;
    NgFPoint3 transformPoint(const NgFPoint3& p) const;
    NgFVector3 transformVector(const NgFVector3& v) const;
};
