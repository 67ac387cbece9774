#version 150 compatibility
// Vertex stage of textures in a rectangle of the window, in pixels of the texture, and what all fragments of
// the rectangle share, for the reason that the box program has.

in vec3 g_pos_attrib;
in vec2 g_tex_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_texmat;
uniform int g_texture_width;
uniform int g_texture_height;
uniform int g_disc; // whether to draw but the disc within a square
uniform int g_rounded_corner;
uniform int g_corner_radius;
uniform int g_border;
uniform int g_border_thickness;
uniform vec4 g_border_col;

out vec2 uv;
out vec2 size_px;
out float radius_px;
out float thickness_px;
out vec4 borderColor;
out vec2 hasCornersAndBorder;
out float isDisc;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = eye; // planes of the host's clip as they do in fixed function
    uv = (g_texmat * vec4(g_tex_attrib, 0.0, 1.0)).st;
    size_px = vec2(g_texture_width, g_texture_height);
    hasCornersAndBorder = vec2(g_rounded_corner == 1, g_border == 1);
    isDisc = g_disc == 1 ? 1.0 : 0.0;
    radius_px = g_rounded_corner == 1 ? float(g_corner_radius) : 0.0;
    thickness_px = g_border == 1 ? float(g_border_thickness) : 0.0;
    borderColor = g_border == 1 ? g_border_col : vec4(0.0);
}
