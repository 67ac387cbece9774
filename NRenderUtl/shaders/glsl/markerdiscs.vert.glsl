#version 150 compatibility
// Vertex stage of spheres in parallel views that scale all depths alike: a point about each.

in vec3 g_pos_attrib; // centre, eye space
in vec2 g_disc; // radius, and size of the point in pixels
in vec4 g_col_attrib;

uniform mat4 g_projmat;
uniform vec4 g_window; // position in the window by that in normalized device coordinates: scale, offset

out DiscData {
    flat vec4 disc; // middle in the window, depth in eye space, radius
#ifdef PLAIN_LIGHT
    flat vec4 even;   // colour by plainlight.glsl
    flat vec4 facing; // in both alphas x and y from the centre to the light, of which disc then has z
#else
    flat vec4 color;
    flat vec2 centre;
#endif
} DiscOut;

#ifdef PLAIN_LIGHT
vec3 evenColor(vec3 color);
vec3 facingColor(vec3 color);
vec3 toLight(vec3 position);
#endif

void main() {
    gl_Position = g_projmat * vec4(g_pos_attrib, 1.0);
    gl_ClipVertex = vec4(0.0); // zero lies on every plane: never clipped
    gl_PointSize = g_disc.y;
    DiscOut.disc = vec4(gl_Position.xy / gl_Position.w * g_window.xy + g_window.zw, g_pos_attrib.z, g_disc.x);
#ifdef PLAIN_LIGHT
    vec3 light = toLight(g_pos_attrib);
    DiscOut.disc.z = light.z;
    DiscOut.even = vec4(evenColor(g_col_attrib.rgb), light.x);
    DiscOut.facing = vec4(facingColor(g_col_attrib.rgb), light.y);
#else
    DiscOut.color = g_col_attrib;
    DiscOut.centre = g_pos_attrib.xy;
#endif
}
