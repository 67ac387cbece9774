#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of textures in a rectangle of the window, in pixels of the texture.

in vec2 uv;

uniform sampler2D g_img_tex;
uniform int g_texture_width;
uniform int g_texture_height;
uniform int g_rounded_corner;
uniform int g_corner_radius;
uniform int g_border;
uniform int g_border_thickness;
uniform vec4 g_border_col;

float roundedBoxSDF(vec2 fromCenter, vec2 halfSize, float radius);
vec4 withRoundedEdge(vec4 color, float d, int rounded, int border, float thickness, vec4 borderColor);

void main() {
    vec4 color = texture(g_img_tex, uv);
    vec2 size = vec2(g_texture_width, g_texture_height);
    vec2 position = (abs(uv - 0.5) + 0.5) * size; // all four corners fold onto one
    float radius = g_rounded_corner == 1 ? float(g_corner_radius) : 0.0;
    float d = roundedBoxSDF(position - size / 2.0, size / 2.0, radius);
    gl_FragColor =
        withRoundedEdge(color, d, g_rounded_corner, g_border, float(g_border_thickness), g_border_col);
}
