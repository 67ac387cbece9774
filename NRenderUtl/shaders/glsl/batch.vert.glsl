#version 150 compatibility
// Vertex stage of the batch program: points or line ends in colours of their own or with a contour coordinate.

in vec3 g_pos_attrib;
in vec2 g_tex_attrib;
in vec4 g_col_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_texmat;
uniform int g_clipped;
uniform int g_bct;
uniform int g_use_clr_scale;
uniform float g_ptsize;

out BatchData {
    vec4 color;
    vec2 texcoord;
} VertexOut;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped
    gl_PointSize = g_ptsize;

    // The current colour is under the contour, as where fixed function modulates the texture.
    VertexOut.color = g_bct == 1 ? gl_Color : g_col_attrib;
    bool scaled = g_bct == 1 && g_use_clr_scale != 1;
    VertexOut.texcoord = scaled ? (g_texmat * vec4(g_tex_attrib, 0.0, 1.0)).st : g_tex_attrib;
}
