// Geometry stage for triangles.
#if __VERSION__ >= 150
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;
#endif

vec4 faceColor(int litCorner);
void emitCorner(int i, vec4 color);

void main() {
    vec4 color = faceColor(1);
    emitCorner(0, color);
    emitCorner(1, color);
    emitCorner(2, color);
    EndPrimitive();
}
