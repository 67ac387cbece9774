#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of the 3D markers: one colour, or contour values on lit white. Always the classic model:
// markers are signs, not bodies with a material.

in VertexData {
#ifdef PLAIN_LIGHT
    vec4 normal;
    vec4 toLight;
    flat vec4 facing;
#else
    vec3 normal;
    vec3 position;
    vec4 color;
#endif
    vec2 texCoord;
#ifdef VALUES_BY_MARKER
    flat float values; // 1 where the marker shows contour values
#endif
} VertexIn;

uniform int g_bct;
uniform sampler2D g_ctt;
uniform int g_transparent;
uniform float g_alphavalue;

#ifdef PLAIN_LIGHT
vec3 plainlyLit(vec3 even, vec3 facing, vec3 toLight, vec3 normal);
#else
vec4 computeFragmentColorStandard(vec3 position, vec3 normal, vec4 color);
#endif

void main() {
#ifdef VALUES_BY_MARKER
    bool values = VertexIn.values == 1.0;
#else
    bool values = g_bct == 1;
#endif
#ifdef PLAIN_LIGHT
    vec3 even = vec3(VertexIn.normal.w, VertexIn.toLight.w, VertexIn.facing.w);
    vec4 color =
        vec4(plainlyLit(even, VertexIn.facing.rgb, VertexIn.toLight.xyz, VertexIn.normal.xyz), 1.0);
#else
    vec4 base = values ? vec4(1.0) : VertexIn.color;
    vec4 color = computeFragmentColorStandard(VertexIn.position, normalize(VertexIn.normal), base);
#endif
    if (values)
        color *= texture(g_ctt, VertexIn.texCoord);
    if (g_transparent == 1)
        color.a = g_alphavalue;
    gl_FragColor = color;
}
