#version 150 compatibility
#extension GL_EXT_geometry_shader4 : enable
// Geometry stage for triangles: leaves out what is not shown, and gives facets their normal.
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;

in VertexData {
    vec3 position;
    flat vec4 color;
    vec2 texcoord;
    vec3 normal;
    flat int sharp;
} VertexIn[3];

bool beginElement(int primitive, vec4 vertexColor, vec3 p0, vec3 p1, vec3 p2);
void emitCorner(vec3 position, vec2 texcoord, vec3 normal, int sharp);

void main() {
    if (!beginElement(gl_PrimitiveIDIn, VertexIn[0].color, VertexIn[0].position, VertexIn[1].position,
                      VertexIn[2].position))
        return;
    for (int i = 0; i < 3; ++i) {
        gl_Position = gl_in[i].gl_Position;
        gl_ClipVertex = gl_in[i].gl_ClipVertex;
        emitCorner(VertexIn[i].position, VertexIn[i].texcoord, VertexIn[i].normal, VertexIn[i].sharp);
    }
    EndPrimitive();
}
