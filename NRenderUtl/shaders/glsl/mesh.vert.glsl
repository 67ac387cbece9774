#version 150 compatibility
// Vertex stage of all mesh programs.

in vec3 g_pos_attrib;
in vec4 g_tex_attrib;
in vec4 g_vnorm_attrib; // smooth normal, in w the sharp-edge flag
in vec3 g_norm_attrib;  // normal that excludes sharp edges
#ifdef ELEMENT_ATTRIBUTE
in float g_elem_attrib; // whole numbers are exact up to 2^24
#endif

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_normalmat;
uniform mat4 g_texmat;
uniform vec3 g_color;
uniform int g_usepbrmat;
uniform int g_smooth;
uniform int g_norm_excl_sharpedge;
uniform int g_clipped;
uniform int g_ct;
uniform int g_use_clr_scale;
#ifdef PARAMETER_BLOCK
uniform vec3 g_entries; // as in blockbands.glsl
uniform samplerBuffer g_block;
uniform int g_bct;
uniform float g_alphavalue;
#endif

out VertexData {
    vec3 position; // eye space; object space where g_usepbrmat is 1, and so is the normal; or as lightColor says
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
    float alpha;
#endif
} VertexOut;

vec3 vertexNormal() {
    vec3 normal = g_norm_excl_sharpedge == 1 ? g_norm_attrib : g_vnorm_attrib.xyz;
    return normalize(g_usepbrmat == 1 ? normal : (g_normalmat * vec4(normal, 1.0)).xyz);
}

vec2 contourCoordinate() {
    if (g_ct != 1 && g_ct != 3)
        return vec2(0.0);
#if defined(BAND_CELLS)
    return vec2(g_tex_attrib.s, 0.0);
#elif defined(PARAMETER_BLOCK)
    return vec2(g_tex_attrib.s, g_tex_attrib.s * g_entries.y + g_entries.z);
#else
    return g_use_clr_scale == 1 ? g_tex_attrib.st : (g_texmat * g_tex_attrib).st;
#endif
}

void main() {
    vec4 position = vec4(g_pos_attrib, 1.0);
    vec4 eye = g_mvmat * position;
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped

    VertexOut.position = g_usepbrmat == 1 ? g_pos_attrib : eye.xyz;
#ifdef PLAIN_LIGHTS
#if LIGHTS == 1
    if (g_smooth == 1)
        VertexOut.position = texelFetch(g_block, BLOCK_PLAIN_LIGHTS).xyz - eye.xyz;
#endif
#endif
#ifndef PARAMETER_BLOCK
    VertexOut.color = vec4(g_color, 1.0);
#endif
#ifdef FLAT_SHADE
    VertexOut.shade = texelFetch(g_block, BLOCK_PLAIN).xw;
#endif
#ifdef PARAMETER_BLOCK
    VertexOut.alpha = g_bct == 1 ? 1.0 : g_alphavalue;
#endif
    VertexOut.texcoord = contourCoordinate();
    VertexOut.normal = g_smooth == 1 ? vertexNormal() : vec3(0.0);
    VertexOut.sharp = g_smooth == 1 && g_norm_excl_sharpedge != 1 ? int(g_vnorm_attrib.w) : 0;
#ifdef ELEMENT_ATTRIBUTE
    VertexOut.primitive = int(g_elem_attrib);
#endif
}
