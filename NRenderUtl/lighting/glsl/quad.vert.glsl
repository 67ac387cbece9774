#version 330 core
// The whole target, with texture coordinates from 0 to 1.
layout(location = 0) in vec3 g_position;
out vec2 texCoord;

void main() {
    texCoord = 0.5 * g_position.xy + 0.5;
    gl_Position = vec4(g_position, 1.0);
}
