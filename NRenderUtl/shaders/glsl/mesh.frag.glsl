#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of the mesh program without a geometry stage: tests and colours each fragment's element.

in VertexData {
    vec3 position;
#ifndef PARAMETER_BLOCK
    flat vec4 color;
#endif
    vec2 texcoord;
    vec3 normal;
    flat int sharp;
#ifdef ELEMENT_ATTRIBUTE
    flat int primitive;
#endif
#ifdef FLAT_SHADE
    flat vec2 shade; // ambient and diffuse of plain lights, beside the number at no cost
#endif
#ifdef PARAMETER_BLOCK
    float alpha; // without a contour
#endif
} VertexIn;

#ifdef PARAMETER_BLOCK
// Codes of colours of front and back, or the only one, of selected and of highlighted elements. The one that
// comes first a driver in software need not gather for each fragment.
uniform int g_sides[4];
vec3 colorOfCode(int code);
#else
uniform vec4 g_fcolor;
uniform vec4 g_bcolor;
#endif
uniform int g_bd;
uniform int g_nfconn;
uniform int g_bct;
uniform int g_ct;
uniform int g_use_clr_scale;
uniform int g_bw;
uniform int g_bsw;
uniform int g_bfbcol;
uniform int g_transparent;
uniform float g_alphavalue;
uniform int g_smooth;
uniform int g_useelemnormbuff;
uniform mat4 g_normalmat;
uniform isamplerBuffer g_fpbuff;
uniform isamplerBuffer g_dbuff;
uniform isamplerBuffer g_fporgconnbuff;
uniform samplerBuffer g_elnormbuff;

bool isElementClipped(int element);
bool isElementFailing(int element);
bool isElementVisible(int element, int derived, inout vec4 color, out bool ownColor, out bool selected);
vec4 lightColor(vec4 color, vec3 position, vec3 normal);
void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color);

#ifdef PARAMETER_BLOCK
vec4 plainColor() {
    return vec4(colorOfCode(g_sides[0]), 1.0);
}

vec4 sideColor() {
    return vec4(colorOfCode(gl_FrontFacing ? g_sides[0] : g_sides[1]), 1.0);
}

float alphaValue() {
    return g_bct == 1 ? g_alphavalue : VertexIn.alpha;
}
#else
vec4 plainColor() {
    return VertexIn.color;
}

vec4 sideColor() {
    return gl_FrontFacing ? g_fcolor : g_bcolor;
}

float alphaValue() {
    return g_alphavalue;
}
#endif

vec4 surfaceColor() {
    return g_bfbcol == 1 && g_bw == 0 ? sideColor() : plainColor();
}

int primitiveNumber() {
#ifdef ELEMENT_ATTRIBUTE
    return VertexIn.primitive;
#else
    return gl_PrimitiveID;
#endif
}

int elementOf(int primitive) {
    if (g_nfconn == 1)
        return texelFetch(g_fpbuff, primitive).r;
    return g_bd == 1 ? texelFetch(g_dbuff, primitive).r : primitive;
}

vec3 elementNormal(int primitive) {
    if (g_nfconn == 1)
        primitive = texelFetch(g_fporgconnbuff, primitive).r;
    return (g_normalmat * vec4(texelFetch(g_elnormbuff, primitive).xyz, 1.0)).xyz;
}

vec3 fragmentNormal(int primitive) {
    vec3 normal = cross(dFdy(VertexIn.position), dFdx(VertexIn.position));
#ifdef WINDING_NORMALS
    // The cross product points away from the eye on both sides; the normal of the winding does on back faces.
    if (gl_FrontFacing)
        normal = -normal;
#endif
    if (g_smooth == 1)
        normal = VertexIn.normal;
    else if (g_useelemnormbuff == 1)
        normal = elementNormal(primitive);
#ifdef PARAMETER_BLOCK
    if (g_smooth == 1)
        return normal; // lightColor takes any length
#endif
    return normalize(normal);
}

void main() {
    int primitive = primitiveNumber();
    vec3 normal = fragmentNormal(primitive); // before any discard, which leaves derivatives undefined
    int element = elementOf(primitive);
    if (isElementClipped(element) || (g_nfconn == 0 && isElementFailing(element)))
        discard;
    vec4 elementColor = plainColor();
    bool ownColor, selected;
    if (!isElementVisible(element, g_bd, elementColor, ownColor, selected))
        discard;

    vec4 color = surfaceColor();
    bool contour = g_bct == 1 && !selected;
    if (g_bw == 0) {
        vec4 base = contour ? vec4(1.0) : selected || ownColor ? elementColor : color;
        color = lightColor(base, VertexIn.position, normal);
    } else {
        color = contour ? vec4(1.0) : g_bsw == 1 ? color : elementColor;
    }
    if (contour) {
        vec4 contourColor;
        getContourColor(g_use_clr_scale, element, g_ct, VertexIn.texcoord, contourColor);
        color *= contourColor;
    }
    if (g_transparent == 1)
        color.a = alphaValue();
    gl_FragColor = color;
}
