#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Vertex stage of the point program.

in vec3 g_pos_attrib;
in vec4 g_tex_attrib;
in float g_param_size_attrib;
in float g_diameter_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_texmat;
uniform vec3 g_color;
uniform float g_ptsize_scale;
uniform int g_advdisp;
uniform int g_advparamset;
uniform int g_clipped;
uniform int g_bct;
uniform int g_use_clr_scale;

out PointData {
    vec3 position; // eye space
    flat vec4 color;
    vec2 texcoord;
} VertexOut;

vec2 contourCoordinate() {
    if (g_bct != 1)
        return vec2(0.0);
    return g_use_clr_scale == 1 ? g_tex_attrib.st : (g_texmat * g_tex_attrib).st;
}

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped
    bool sizeSet = g_advdisp == 1 && g_advparamset == 1;
    gl_PointSize = g_ptsize_scale * (sizeSet ? g_param_size_attrib : g_diameter_attrib);

    VertexOut.position = eye.xyz;
    VertexOut.color = vec4(g_color, 1.0);
    VertexOut.texcoord = contourCoordinate();
}
