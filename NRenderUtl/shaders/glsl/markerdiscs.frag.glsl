#version 150 compatibility
// Fragment stage of spheres in parallel views: how far the sphere bulges towards the viewer above a disc.

in DiscData {
    flat vec4 disc;
#ifdef PLAIN_LIGHT
    flat vec4 even;
    flat vec4 facing;
#else
    flat vec4 color;
    flat vec2 centre;
#endif
} DiscIn;

uniform vec4 g_bulge; // a pixel's width and height in eye space, z towards the viewer, and depth by length

#ifdef PLAIN_LIGHT
vec3 plainlyLit(vec3 even, vec3 facing, vec3 toLight, vec3 normal);
#else
vec4 computeFragmentColorStandard(vec3 position, vec3 normal, vec4 color);
#endif

void main() {
    vec2 offset = (gl_FragCoord.xy - DiscIn.disc.xy) * g_bulge.xy;
    float height2 = DiscIn.disc.w * DiscIn.disc.w - dot(offset, offset);
    if (!(height2 >= 0.0))
        discard;
    float height = sqrt(height2);
    gl_FragDepth = gl_FragCoord.z + height * g_bulge.w;
    vec3 normal = vec3(offset, height * g_bulge.z);
#ifdef PLAIN_LIGHT
    vec3 toLight = vec3(DiscIn.even.a, DiscIn.facing.a, DiscIn.disc.z) - normal;
    gl_FragColor = vec4(plainlyLit(DiscIn.even.rgb, DiscIn.facing.rgb, toLight, normal), 1.0);
#else
    vec3 position = vec3(DiscIn.centre, DiscIn.disc.z) + normal;
    gl_FragColor = computeFragmentColorStandard(position, normalize(normal), DiscIn.color);
#endif
}
