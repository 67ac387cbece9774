#version 150 compatibility
// Vertex stage of 3D markers whose vertices come in eye space, with their normals.

in vec3 g_pos_attrib;
in vec3 g_norm_attrib;
in vec4 g_col_attrib;
#ifdef VALUES_BY_MARKER
in vec2 g_values; // contour value, and 1 where it shows
#endif

uniform mat4 g_projmat;
uniform mat4 g_texmat;
uniform int g_clipped;

out VertexData {
#ifdef PLAIN_LIGHT
    vec4 normal; // in the fourth components the even colour
    vec4 toLight;
    flat vec4 facing;
#else
    vec3 normal;
    vec3 position;
    vec4 color;
#endif
    vec2 texCoord;
#ifdef VALUES_BY_MARKER
    flat float values;
#endif
} VertexOut;

#ifdef PLAIN_LIGHT
vec3 evenColor(vec3 color);
vec3 facingColor(vec3 color);
vec3 toLight(vec3 position);
#endif

void main() {
    vec4 eye = vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped
#ifdef PLAIN_LIGHT
    vec3 even = evenColor(g_col_attrib.rgb); // white where values show
    VertexOut.normal = vec4(g_norm_attrib, even.r);
    VertexOut.toLight = vec4(toLight(g_pos_attrib), even.g);
    VertexOut.facing = vec4(facingColor(g_col_attrib.rgb), even.b);
#else
    VertexOut.normal = g_norm_attrib;
    VertexOut.position = g_pos_attrib;
    VertexOut.color = g_col_attrib;
#endif
#ifdef VALUES_BY_MARKER
    VertexOut.texCoord = (g_texmat * vec4(g_values.x, 0.0, 0.0, 1.0)).st;
    VertexOut.values = g_values.y;
#else
    VertexOut.texCoord = vec2(0.0);
#endif
}
