#version 150 compatibility
// Vertex stage of the box program: pixels from the box's lower left corner, and what all fragments of the box
// share. Its uniforms are read here alone: where one of the fragment stage has changed, drivers take over all
// of their state for a draw. Not flat, so that a driver may draw the two triangles as one rectangle.
in vec3 g_pos_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform int g_width;
uniform int g_height;
uniform int g_wire_draw;
uniform vec4 g_filled_col;
uniform int g_rounded_corner;
uniform vec4 g_corner_radius; // right top, right bottom, left top, left bottom
uniform int g_border;
uniform int g_border_thickness;
uniform vec4 g_border_col;

out vec2 position_px;
out vec2 center_px;
out vec4 fill;
out vec4 radii_px;
out float thickness_px;
out vec4 borderColor;
out vec2 hasCornersAndBorder;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = eye;
    position_px = eye.xy;
    center_px = vec2(g_width, g_height) / 2.0;
    fill = g_wire_draw == 1 ? vec4(1.0) : g_filled_col;
    hasCornersAndBorder = vec2(g_rounded_corner == 1, g_border == 1);
    radii_px = g_rounded_corner == 1 ? g_corner_radius : vec4(0.0);
    thickness_px = g_border == 1 ? float(g_border_thickness) : 0.0;
    borderColor = g_border == 1 ? g_border_col : vec4(0.0);
}
