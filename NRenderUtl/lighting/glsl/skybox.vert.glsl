#version 330 core
// The unit cube around the eye, always on the far plane.
layout(location = 0) in vec3 g_position;
uniform mat4 g_projmat;
uniform mat4 g_viewmat;
out vec3 direction;

void main() {
    direction = -g_position;
    vec4 clip = g_projmat * mat4(mat3(g_viewmat)) * vec4(g_position, 1.0);
    gl_Position = clip.xyww;
}
