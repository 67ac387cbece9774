#version 150 compatibility
// Fragment stage of the mesh renderer: one colour for the mesh, or one for each side.

in VertexData {
    vec3 position;
    vec3 normal;
} VertexIn;

uniform vec3 g_color;
uniform int g_bfbcol;
uniform vec4 g_fcolor;
uniform vec4 g_bcolor;
uniform int g_transparent;
uniform float g_alphavalue;

#ifdef PLAIN_LIGHTS
const int g_smooth = 1;
#endif

vec4 lightColor(vec4 color, vec3 position, vec3 normal);

vec4 surfaceColor() {
    if (g_bfbcol == 1)
        return gl_FrontFacing ? g_fcolor : g_bcolor;
    return vec4(g_color, 1.0);
}

void main() {
    vec4 color = lightColor(surfaceColor(), VertexIn.position, normalize(VertexIn.normal));
    if (g_transparent == 1)
        color.a = g_alphavalue;
    gl_FragColor = color;
}
