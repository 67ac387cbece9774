#version 330 core
// Radiance of a direction from an equirectangular image, whose first row is straight up (+y).
in vec3 direction;
out vec4 color;
uniform sampler2D g_equirectmap;
const float PI = 3.14159265359;

void main() {
    vec3 v = normalize(direction);
    vec2 place = vec2(0.5 + atan(v.z, v.x) / (2.0 * PI), 0.5 - asin(clamp(v.y, -1.0, 1.0)) / PI);
    color = vec4(texture(g_equirectmap, place).rgb, 1.0);
}
