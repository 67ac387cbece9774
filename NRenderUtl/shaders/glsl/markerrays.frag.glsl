#version 150 compatibility
// Fragment stage of the 3D markers that rays find: the point of a sphere or cylinder that is nearest to the
// viewer, shaded as the vertices of the shape would be.

in RayData {
#ifdef BY_DEPTH
    flat vec4 through;
    flat vec4 along;
    flat vec4 point;
    flat float spread;
#else
    vec4 through;
    vec4 along;
#endif
    flat vec4 place;
#ifndef SPHERES
    flat vec4 axis;
#endif
#ifdef PLAIN_LIGHT
    flat vec3 even;
    flat vec3 facing;
#else
    flat vec4 color;
#endif
#ifdef VALUES_BY_MARKER
    flat vec4 texCoords;
    flat float values;
#endif
} RayIn;

uniform sampler2D g_ctt;

#ifdef PLAIN_LIGHT
vec3 toLight(vec3 position);
vec3 plainlyLit(vec3 even, vec3 facing, vec3 toLight, vec3 normal);
#else
vec4 computeFragmentColorStandard(vec3 position, vec3 normal, vec4 color);
#endif

struct Hit {
    float t; // along the ray
    bool inside;
    vec3 normal; // of any length
    float z;     // 0 at the start, 1 at the end
};

#ifdef SPHERES
Hit findHit(vec3 through, vec3 along) {
    vec3 p = through - RayIn.place.xyz;
    float r = RayIn.place.w, a = dot(along, along), b = dot(along, p);
    float discriminant = b * b - a * (dot(p, p) - r * r);
    float t = (-b - sqrt(max(discriminant, 0.0))) / a;
    return Hit(t, discriminant >= 0.0, p + t * along, 0.0);
}
#else
// The vertices' normals, which are their positions, are interpolated over the triangles: on the side from the
// start, square to the axis, to the end, and on a cap from its middle, along the axis, to its rim.
Hit findHit(vec3 through, vec3 along) {
    vec3 axis = RayIn.axis.xyz, p = through - RayIn.place.xyz;
    float r = RayIn.place.w, size = RayIn.axis.w;
    float alongAxis = dot(axis, along), z = dot(axis, p);
    vec3 d = along - axis * alongAxis, q = p - axis * z;
    float a = dot(d, d), b = dot(d, q), discriminant = b * b - a * (dot(q, q) - r * r);
    float t = (-b - sqrt(max(discriminant, 0.0))) / a;
    float side = z + t * alongAxis;
    float slope = r / size, endRadial = inversesqrt(1.0 + slope * slope), endAxial = slope * endRadial;
    // Along the axis there is no side to hit.
    if (discriminant >= 0.0 && side >= 0.0 && side <= size && a > 1e-10 * dot(along, along)) {
        float w = side / size;
        return Hit(t, true, (q + t * d) / r * mix(1.0, endRadial, w) + axis * (w * endAxial), w);
    }
    bool end = alongAxis < 0.0;
    t = ((end ? size : 0.0) - z) / alongAxis;
    vec3 radial = (q + t * d) / r;
    float rho = min(1.0, length(radial));
    vec3 normal = end ? radial * endRadial + axis * mix(1.0, endAxial, rho) : radial - axis * (1.0 - rho);
    return Hit(t, dot(radial, radial) <= 1.0, normal, end ? 1.0 : 0.0);
}
#endif

void main() {
    vec3 through = RayIn.through.xyz, along = RayIn.along.xyz;
#ifdef BY_DEPTH
    vec2 offset = (gl_FragCoord.xy - RayIn.point.xy) * RayIn.point.zw;
    through.xy += offset;
    along.xy += offset * RayIn.spread;
#endif
    Hit hit = findHit(through, along);
    if (!hit.inside)
        discard;
    vec3 position = through + hit.t * along;
    float step = hit.t * gl_FragCoord.w;
    gl_FragDepth = (gl_FragCoord.z + step * RayIn.along.w) / (1.0 + step * RayIn.through.w);
#ifdef PLAIN_LIGHT
    vec4 color = vec4(plainlyLit(RayIn.even, RayIn.facing, toLight(position), hit.normal), 1.0);
#else // white where values show
    vec4 color = computeFragmentColorStandard(position, normalize(hit.normal), RayIn.color);
#endif
#ifdef VALUES_BY_MARKER
    if (RayIn.values == 1.0)
        color *= texture(g_ctt, mix(RayIn.texCoords.xy, RayIn.texCoords.zw, hit.z));
#endif
    gl_FragColor = color;
}
