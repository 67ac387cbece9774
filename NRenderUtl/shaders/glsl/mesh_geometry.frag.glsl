#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
#extension GL_ARB_fragment_layer_viewport : enable
// Fragment stage behind a geometry stage, which has decided what is shown. gl_PrimitiveID is the element.

in GSVertexData {
    vec3 position;
    flat vec4 color;
    vec2 texcoord;
    vec3 normal;
    flat int contour;
} VertexIn;

uniform int g_ct;
uniform int g_use_clr_scale;
uniform int g_bw;
uniform int g_bfbcol;
uniform vec4 g_fcolor;
uniform vec4 g_bcolor;
uniform int g_transparent;
uniform float g_alphavalue;

vec4 lightColor(vec4 color, vec3 position, vec3 normal);
void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color);

vec4 baseColor() {
    if (VertexIn.contour == 1)
        return vec4(1.0);
    if (g_bfbcol == 1 && g_bw == 0)
        return gl_FrontFacing ? g_fcolor : g_bcolor;
    return VertexIn.color;
}

void main() {
    vec4 color = baseColor();
    if (g_bw == 0) {
        color = lightColor(color, VertexIn.position, normalize(VertexIn.normal));
        if (VertexIn.contour == 1) {
            vec4 contourColor;
            getContourColor(g_use_clr_scale, gl_PrimitiveID, g_ct, VertexIn.texcoord, contourColor);
            color *= contourColor;
        }
    }
    if (g_transparent == 1)
        color.a = g_alphavalue;
    gl_FragColor = color;
}
