#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of textures in a rectangle of the window: corners and border by the signed distance to a
// rounded box, in pixels of the texture.

in vec2 uv;

uniform sampler2D g_img_tex;
uniform int g_texture_width;
uniform int g_texture_height;
uniform int g_rounded_corner;
uniform int g_corner_radius;
uniform int g_border;
uniform int g_border_thickness;
uniform vec4 g_border_col;

const float kSoftness = 2.0;

float roundedBoxSDF(vec2 fromCentre, vec2 halfSize, float radius) {
    vec2 q = abs(fromCentre) - halfSize + radius;
    return min(max(q.x, q.y), 0.0) + length(max(q, 0.0)) - radius;
}

vec4 withCornersAndBorder(vec4 color) {
    vec2 size = vec2(g_texture_width, g_texture_height);
    vec2 position = (abs(uv - 0.5) + 0.5) * size; // all four corners fold onto one
    float radius = g_rounded_corner == 1 ? float(g_corner_radius) : 0.0;
    float d = roundedBoxSDF(position - size / 2.0, size / 2.0, radius);

    // Deliberate: the fade starts at the sample's own alpha, so that translucent pictures fade earlier.
    float inside = 1.0 - smoothstep(color.a, kSoftness, d);
    if (g_rounded_corner == 1)
        color.a = min(color.a, inside);
    if (g_border == 1) {
        float thickness = float(g_border_thickness);
        float border = 1.0 - smoothstep(thickness - kSoftness, thickness, abs(d));
        color = mix(color, g_border_col, min(border, inside));
    }
    return color;
}

void main() {
    vec4 color = texture(g_img_tex, uv);
    gl_FragColor = g_rounded_corner == 1 || g_border == 1 ? withCornersAndBorder(color) : color;
}
