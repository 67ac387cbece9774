// Geometry stage for quads, which arrive as lines with adjacency.
#if __VERSION__ >= 150
layout(lines_adjacency) in;
layout(triangle_strip, max_vertices = 4) out;
#endif

vec4 faceColor(int litCorner);
void emitCorner(int i, vec4 color);

void main() {
    vec4 color = faceColor(0);
    emitCorner(1, color);
    emitCorner(2, color);
    emitCorner(0, color);
    emitCorner(3, color);
    EndPrimitive();
}
