#version 150 compatibility
// Vertex stage of textures in a rectangle of the window.

in vec3 g_pos_attrib;
in vec2 g_tex_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_texmat;

out vec2 uv;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = eye; // planes of the host's clip as they do in fixed function
    uv = (g_texmat * vec4(g_tex_attrib, 0.0, 1.0)).st;
}
