#version 330 core
// The unit cube around the eye, seen through one capture view; what a fragment needs is its direction.
layout(location = 0) in vec3 g_position;
uniform mat4 g_projmat;
uniform mat4 g_viewmat;
uniform mat4 g_modelmat;
out vec3 direction;

void main() {
    direction = g_position;
    gl_Position = g_projmat * g_viewmat * g_modelmat * vec4(g_position, 1.0);
}
