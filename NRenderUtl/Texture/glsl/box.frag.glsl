#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Fragment stage of the box program: a fill with rounded corners and a border.
in vec2 position_px;
in vec2 center_px;
in vec4 fill;
in vec4 radii_px; // right top, right bottom, left top, left bottom
in float thickness_px;
in vec4 borderColor;
in vec2 hasCornersAndBorder;

float roundedBoxSDF(vec2 fromCenter, vec2 halfSize, float radius);
vec4 withRoundedEdge(vec4 color, float d, int rounded, int border, float thickness, vec4 borderColor);

float radiusAt(vec2 fromCenter) {
    vec2 side = fromCenter.x > 0.0 ? radii_px.xy : radii_px.zw;
    return fromCenter.y > 0.0 ? side.x : side.y;
}

vec4 withCornersAndBorder(ivec2 has) {
    vec2 fromCenter = position_px - center_px;
    float d = roundedBoxSDF(fromCenter, center_px - thickness_px / 2.0 - 1.0, radiusAt(fromCenter));
    return withRoundedEdge(fill, d, has.x, has.y, thickness_px, borderColor);
}

void main() {
    ivec2 has = ivec2(hasCornersAndBorder + 0.5);
    gl_FragColor = has != ivec2(0) ? withCornersAndBorder(has) : fill;
}
