#version 150 compatibility
#extension GL_EXT_geometry_shader4 : enable
// Geometry stage for quads, which arrive as lines with adjacency: as for triangles.
layout(lines_adjacency) in;
layout(triangle_strip, max_vertices = 4) out;

in VertexData {
    vec3 position;
    flat vec4 color;
    vec2 texcoord;
    vec3 normal;
    flat int sharp;
} VertexIn[4];

bool beginElement(int primitive, vec4 vertexColor, vec3 p0, vec3 p1, vec3 p2);
void emitCorner(vec3 position, vec2 texcoord, vec3 normal, int sharp);

const int kStrip[4] = int[4](1, 2, 0, 3); // both triangles keep the quad's sense of rotation

void main() {
    if (!beginElement(gl_PrimitiveIDIn, VertexIn[0].color, VertexIn[0].position, VertexIn[1].position,
                      VertexIn[2].position))
        return;
    for (int k = 0; k < 4; ++k) {
        int i = kStrip[k];
        gl_Position = gl_in[i].gl_Position;
        gl_ClipVertex = gl_in[i].gl_ClipVertex;
        emitCorner(VertexIn[i].position, VertexIn[i].texcoord, VertexIn[i].normal, VertexIn[i].sharp);
    }
    EndPrimitive();
}
