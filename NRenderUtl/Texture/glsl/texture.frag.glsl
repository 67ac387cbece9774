#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of textures in a rectangle of the window, or in the disc within a square, in pixels of the
// texture.

in vec2 uv;
in vec2 size_px;
in float radius_px;
in float thickness_px;
in vec4 borderColor;
in vec2 hasCornersAndBorder;
in float isDisc;

uniform sampler2D g_img_tex;

float roundedBoxSDF(vec2 fromCenter, vec2 halfSize, float radius);
vec4 withRoundedEdge(vec4 color, float d, int rounded, int border, float thickness, vec4 borderColor);

bool isOutsideDisc() {
    vec2 fromCenter = (2.0 * uv - 1.0) * size_px;
    return isDisc > 0.5 && dot(fromCenter, fromCenter) > size_px.x * size_px.x;
}

void main() {
    if (isOutsideDisc())
        discard;
    vec4 color = texture(g_img_tex, uv);
    vec2 position = (abs(uv - 0.5) + 0.5) * size_px; // all four corners fold onto one
    float d = roundedBoxSDF(position - size_px / 2.0, size_px / 2.0, radius_px);
    ivec2 has = ivec2(hasCornersAndBorder + 0.5);
    gl_FragColor = withRoundedEdge(color, d, has.x, has.y, thickness_px, borderColor);
}
