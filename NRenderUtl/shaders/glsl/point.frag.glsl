#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of the point program: flat squares, or spheres drawn on the point's square.

in PointData {
    vec3 position;
    flat vec4 color;
    vec2 texcoord;
} VertexIn;

uniform int g_bd;
uniform int g_bct;
uniform int g_ct;
uniform int g_use_clr_scale;
uniform int g_advdisp;
uniform int g_transparent;
uniform float g_alphavalue;

bool isElementVisible(int element, int derived, inout vec4 color, out bool ownColor, out bool selected);
vec4 lightColor(vec4 color, vec3 position, vec3 normal);
void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color);

// Of the unit sphere over the point's square; the square's corners lie outside.
vec3 sphereNormal() {
    vec2 xy = gl_PointCoord * 2.0 - 1.0;
    float square = dot(xy, xy);
    if (square > 1.0)
        discard;
    return vec3(xy, sqrt(1.0 - square));
}

void main() {
    vec3 faceNormal = normalize(cross(dFdy(VertexIn.position), dFdx(VertexIn.position)));
    vec3 normal = g_advdisp == 1 ? sphereNormal() : faceNormal;
    vec4 elementColor = VertexIn.color;
    bool ownColor, selected;
    if (!isElementVisible(gl_PrimitiveID, g_bd, elementColor, ownColor, selected))
        discard;

    bool contour = g_bct == 1 && !selected;
    vec4 color = contour ? vec4(1.0) : VertexIn.color;
    if (g_advdisp == 1) {
        vec4 base = contour ? vec4(1.0) : selected || ownColor ? elementColor : VertexIn.color;
        color = lightColor(base, VertexIn.position, normal);
    }
    if (contour) {
        vec4 contourColor;
        getContourColor(g_use_clr_scale, gl_PrimitiveID, g_ct, VertexIn.texcoord, contourColor);
        color *= contourColor;
    }
    if ((selected || ownColor) && g_advdisp == 1)
        color = elementColor; // deliberate: such a sphere is told apart by its flat colour
    if (g_transparent == 1)
        color.a = g_alphavalue;
    gl_FragColor = color;
}
