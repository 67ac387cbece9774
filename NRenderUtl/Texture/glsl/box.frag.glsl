#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of the box program: a fill with rounded corners and a border.
in vec2 position_px;

uniform int g_width;
uniform int g_height;
uniform int g_wire_draw;
uniform vec4 g_filled_col;
uniform int g_rounded_corner;
uniform vec4 g_corner_radius; // right top, right bottom, left top, left bottom
uniform int g_border;
uniform int g_border_thickness;
uniform vec4 g_border_col;

float roundedBoxSDF(vec2 fromCenter, vec2 halfSize, float radius);
vec4 withRoundedEdge(vec4 color, float d, int rounded, int border, float thickness, vec4 borderColor);

float radiusAt(vec2 fromCenter) {
    vec2 side = fromCenter.x > 0.0 ? g_corner_radius.xy : g_corner_radius.zw;
    return fromCenter.y > 0.0 ? side.x : side.y;
}

vec4 withCornersAndBorder(vec4 color) {
    vec2 center = vec2(g_width, g_height) / 2.0;
    vec2 fromCenter = position_px - center;
    float thickness = g_border == 1 ? float(g_border_thickness) : 0.0;
    float radius = g_rounded_corner == 1 ? radiusAt(fromCenter) : 0.0;
    float d = roundedBoxSDF(fromCenter, center - thickness / 2.0 - 1.0, radius);
    return withRoundedEdge(color, d, g_rounded_corner, g_border, thickness, g_border_col);
}

void main() {
    vec4 color = g_wire_draw == 1 ? vec4(1.0) : g_filled_col;
    gl_FragColor = g_rounded_corner == 1 || g_border == 1 ? withCornersAndBorder(color) : color;
}
