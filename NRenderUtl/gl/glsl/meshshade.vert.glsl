// Vertex stage of the face shading programs: position and colour as they come.
#if __VERSION__ >= 150
out vec4 diffuseColor;
#else
varying out vec4 diffuseColor;
#endif

void main() {
    gl_Position = gl_Vertex;
    diffuseColor = gl_Color;
}
