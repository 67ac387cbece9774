#version 150 compatibility
// Fragment stage of the batch program.

in BatchData {
    vec4 color;
    vec2 texcoord;
} VertexIn;

uniform int g_bct;
uniform int g_ct;
uniform int g_use_clr_scale;
uniform vec3 g_es_col;
uniform vec3 g_eh_col;

void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color);

// The texture's rows are the contour at t = 0, selection at 0.25 and highlight at 0.5. A colour scale has no
// rows, so these colours come beside it.
vec4 contourColor() {
    if (g_use_clr_scale == 1 && VertexIn.texcoord.t > 0.375)
        return vec4(g_eh_col, 1.0);
    if (g_use_clr_scale == 1 && VertexIn.texcoord.t > 0.125)
        return vec4(g_es_col, 1.0);
    vec4 color;
    getContourColor(g_use_clr_scale, 0, g_ct, VertexIn.texcoord, color);
    return color;
}

void main() {
    gl_FragColor = g_bct == 1 ? VertexIn.color * contourColor() : VertexIn.color;
}
