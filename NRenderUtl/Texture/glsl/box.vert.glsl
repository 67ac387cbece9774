#version 150 compatibility
// Vertex stage of the box program: pixels from the box's lower left corner.
in vec3 g_pos_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;

out vec2 position_px;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = eye;
    position_px = eye.xy;
}
