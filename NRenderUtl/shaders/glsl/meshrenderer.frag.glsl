#version 150 compatibility
// Fragment stage of the mesh renderer: one colour for the mesh, or one for each side.

#ifdef PARAMETER_BLOCK
// Codes of colours of front and back. They come first, where a driver in software need not gather the one in
// front for each fragment; for the same reason the alpha is no uniform here.
uniform int g_sides[2];
#endif

in VertexData {
    vec3 position;
    vec3 normal;
#ifdef PARAMETER_BLOCK
    float alpha;
#endif
} VertexIn;

vec4 lightColor(vec4 color, vec3 position, vec3 normal);

#ifdef PARAMETER_BLOCK
vec3 colorOfCode(int code);
#ifdef PLAIN_LIGHTS
const int g_smooth = 1;
#endif

void main() {
    int code = gl_FrontFacing ? g_sides[0] : g_sides[1];
    gl_FragColor = lightColor(vec4(colorOfCode(code), VertexIn.alpha), VertexIn.position, VertexIn.normal);
}
#else
uniform vec3 g_color;
uniform int g_bfbcol;
uniform vec4 g_fcolor;
uniform vec4 g_bcolor;
uniform int g_transparent;
uniform float g_alphavalue;

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
#endif
