#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of the 3D markers: one colour, or contour values on lit white. Always the classic model:
// markers are signs, not bodies with a material.

in VertexData {
    vec4 color;
    vec3 normal;
    vec3 position;
    vec2 texCoord;
} VertexIn;

uniform int g_bct;
uniform sampler2D g_ctt;
uniform int g_transparent;
uniform float g_alphavalue;

vec4 classicColor(vec4 color, vec3 position, vec3 normal);

void main() {
    vec4 base = g_bct == 1 ? vec4(1.0) : VertexIn.color;
    vec4 color = classicColor(base, VertexIn.position, normalize(VertexIn.normal));
    if (g_bct == 1)
        color *= texture(g_ctt, VertexIn.texCoord);
    if (g_transparent == 1)
        color.a = g_alphavalue;
    gl_FragColor = color;
}
