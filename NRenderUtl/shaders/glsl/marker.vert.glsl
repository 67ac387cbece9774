#version 150 compatibility
// Vertex stage of the 3D markers: a unit shape, placed by one matrix a marker.

in vec3 g_pos_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform mat4 g_texmat;
uniform int g_bct;
uniform int g_halfvertcnt;
uniform int g_clipped;
#ifdef INSTANCES
in mat4 g_transmat;
in vec4 g_colorwithalpha;
in float g_texcoord1;
in float g_texcoord2;
in float g_values;
#else
uniform vec4 g_colorwithalpha;
uniform mat4 g_transmat;
uniform float g_texcoord1;
uniform float g_texcoord2;
#endif

out VertexData {
#ifdef PLAIN_LIGHT
    // The even colour fills fourth components: drivers in software set up each vector for each triangle.
    vec4 normal;
    vec4 toLight;
    flat vec4 facing;
#else
    vec3 normal; // eye space, as the position
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

// The direction of the inverse transpose times p. By cofactors, of a matrix brought near 1: thin markers keep
// their digits.
vec3 normalOf(mat3 m, vec3 p) {
    m *= inversesqrt(dot(m[0], m[0]) + dot(m[1], m[1]) + dot(m[2], m[2]));
    vec3 cofactor0 = cross(m[1], m[2]);
    vec3 normal = p.x * cofactor0 + p.y * cross(m[2], m[0]) + p.z * cross(m[0], m[1]);
    return normalize(dot(m[0], cofactor0) < 0.0 ? -normal : normal);
}

void main() {
    mat4 modelMat = g_mvmat * g_transmat;
    vec4 eye = modelMat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped

    // The position is the normal: shapes look rounded. The start itself looks back along the axis.
    vec3 outward = g_pos_attrib == vec3(0.0) ? vec3(0.0, 0.0, -1.0) : g_pos_attrib;
    vec3 normal = normalOf(mat3(modelMat), outward);
#ifdef PLAIN_LIGHT
    vec3 color = g_bct == 1 ? vec3(1.0) : g_colorwithalpha.rgb; // instances bring the white of values
    vec3 even = evenColor(color);
    VertexOut.normal = vec4(normal, even.r);
    VertexOut.toLight = vec4(toLight(eye.xyz), even.g);
    VertexOut.facing = vec4(facingColor(color), even.b);
#else
    VertexOut.normal = normal;
    VertexOut.position = eye.xyz;
    VertexOut.color = g_colorwithalpha;
#endif
    float value = gl_VertexID < g_halfvertcnt ? g_texcoord1 : g_texcoord2;
    VertexOut.texCoord = (g_texmat * vec4(value, 0.0, 0.0, 1.0)).st;
#ifdef VALUES_BY_MARKER
    VertexOut.values = g_values;
#endif
}
