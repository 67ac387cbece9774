#version 150 compatibility
// Vertex stage of the 3D markers that rays find: the corners of a flat outline about each, in eye space, or the
// middle of each as a point that covers it. Where depth alone gives the scale, all that a ray needs is the same
// for a marker, but for where its pixel is.

in vec3 g_pos_attrib;
#ifdef BY_DEPTH
in vec4 g_point; // window position of the middle, and what a pixel there is in eye space
in float g_size; // of a point, in pixels
#endif
in vec4 g_place; // start or centre, radius
#ifndef SPHERES
in vec4 g_axis; // of unit length, length
#endif
in vec4 g_col_attrib;
#ifdef VALUES_BY_MARKER
in vec3 g_values; // contour value at the start and at the end, and 1 where they show
#endif

uniform mat4 g_projmat;
uniform mat4 g_texmat;
uniform vec4 g_viewpoint; // the viewer, or with w = 0 the direction to the viewer

out RayData {
#ifdef BY_DEPTH
    flat vec4 through;
    flat vec4 along;
    flat vec4 point;
    flat float spread; // of the rays: 1 for those of a viewer, 0 for parallel ones
#else
    vec4 through; // point of the ray, in w the growth of clip w along it
    vec4 along;   // direction of the ray, in w the growth of window depth times clip w
#endif
    flat vec4 place;
#ifndef SPHERES
    flat vec4 axis;
#endif
#ifdef PLAIN_LIGHT
    flat vec3 even; // colour by plainlight.glsl
    flat vec3 facing;
#else
    flat vec4 color;
#endif
#ifdef VALUES_BY_MARKER
    flat vec4 texCoords; // at the start and at the end
    flat float values;
#endif
} RayOut;

#ifdef PLAIN_LIGHT
vec3 evenColor(vec3 color);
vec3 facingColor(vec3 color);
#endif

void main() {
    gl_Position = g_projmat * vec4(g_pos_attrib, 1.0);
    gl_ClipVertex = vec4(0.0); // zero lies on every plane: never clipped
    vec3 through = g_pos_attrib;
#ifdef BY_DEPTH
    through = g_place.xyz;
#ifndef SPHERES
    through += 0.5 * g_axis.w * g_axis.xyz;
#endif
    gl_PointSize = g_size;
    RayOut.point = g_point;
    RayOut.spread = g_viewpoint.w;
#endif
    vec3 along = through * g_viewpoint.w - g_viewpoint.xyz;
    vec4 growth = g_projmat * vec4(along, 0.0);
    RayOut.through = vec4(through, growth.w);
    RayOut.along = vec4(along, 0.5 * (gl_DepthRange.diff * growth.z +
                                      (gl_DepthRange.near + gl_DepthRange.far) * growth.w));
    RayOut.place = g_place;
#ifndef SPHERES
    RayOut.axis = g_axis;
#endif
#ifdef PLAIN_LIGHT
    RayOut.even = evenColor(g_col_attrib.rgb);
    RayOut.facing = facingColor(g_col_attrib.rgb);
#else
    RayOut.color = g_col_attrib;
#endif
#ifdef VALUES_BY_MARKER
    RayOut.texCoords = vec4((g_texmat * vec4(g_values.x, 0.0, 0.0, 1.0)).st,
                            (g_texmat * vec4(g_values.y, 0.0, 0.0, 1.0)).st);
    RayOut.values = g_values.z;
#endif
}
