// Rounded corners and borders by the signed distance from a box, in pixels.
const float kSoftness = 2.0;

// Negative inside (Quilez, "2D distance functions", rounded box).
float roundedBoxSDF(vec2 fromCenter, vec2 halfSize, float radius) {
    vec2 q = abs(fromCenter) - halfSize + radius;
    return min(max(q.x, q.y), 0.0) + length(max(q, 0.0)) - radius;
}

vec4 withRoundedEdge(vec4 color, float d, int rounded, int border, float thickness, vec4 borderColor) {
    // Deliberate: the fade begins at the colour's own alpha, so that the fainter the fill, the softer its edge.
    float smoothed = 1.0 - smoothstep(color.a, kSoftness, d);
    if (rounded == 1)
        color.a = min(color.a, smoothed);
    if (border == 1) {
        float borderAlpha = 1.0 - smoothstep(thickness - kSoftness, thickness, abs(d));
        color = mix(color, borderColor, min(borderAlpha, smoothed));
    }
    return color;
}
