#version 150 compatibility
// Vertex stage of the mesh renderer.

in vec3 g_pos_attrib;
in vec3 g_vnorm_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_normalmat;
uniform int g_usepbrmat;
uniform int g_clipped;
#ifdef PARAMETER_BLOCK
uniform samplerBuffer g_block;
uniform int g_transparent;
uniform float g_alphavalue;
#endif

out VertexData {
    vec3 position; // eye space; object space where g_usepbrmat is 1, and so is the normal; or as lightColor says
    vec3 normal;
#ifdef PARAMETER_BLOCK
    float alpha;
#endif
} VertexOut;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped

    VertexOut.position = g_usepbrmat == 1 ? g_pos_attrib : eye.xyz;
#ifdef PLAIN_LIGHTS
#if LIGHTS == 1
    VertexOut.position = texelFetch(g_block, BLOCK_PLAIN_LIGHTS).xyz - eye.xyz;
#endif
#endif
#ifdef PARAMETER_BLOCK
    VertexOut.alpha = g_transparent == 1 ? g_alphavalue : 1.0;
#endif
    VertexOut.normal = normalize(g_usepbrmat == 1 ? g_vnorm_attrib : (g_normalmat * vec4(g_vnorm_attrib, 1.0)).xyz);
}
