// Picking geometry: from a screen point to model space.
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostmath.h"

int MathGet3dPtFromClickPtGivenRefPt(_NgPoint3Str* reference, int sx, int sy, _NgPoint3Str* out) {
    const _NgPoint3Str ref = *reference; // out may be the reference
    *out = ref;
    _NgPoint3Str p, q;
    NglGetViewVector(sx, sy, &p.x, &p.y, &p.z, &q.x, &q.y, &q.z);
    const _NgPoint3Str n = MathDifference(q, p);
    return MathIntersectLinePlane(p, q, {n.x, n.y, n.z, -MathDot(n, ref)}, *out) == -1 ? 0 : 1;
}
