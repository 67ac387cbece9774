#version 150 compatibility
// Vertex stage of the 3D markers that rays find: the corners of a flat outline about each, in eye space, or the
// middle of each as a point that covers it.

in vec3 g_pos_attrib;
#ifdef POINTS
in vec4 g_point; // window position, and what a pixel there is in eye space
in float g_size; // pixels
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
#ifdef POINTS
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
    flat vec4 color;
#ifdef VALUES_BY_MARKER
    flat vec4 texCoords; // at the start and at the end
    flat float values;
#endif
} RayOut;

void main() {
    vec4 corner = g_projmat * vec4(g_pos_attrib, 1.0);
    vec3 along = g_pos_attrib * g_viewpoint.w - g_viewpoint.xyz;
    vec4 growth = g_projmat * vec4(along, 0.0);
    gl_Position = corner;
    gl_ClipVertex = vec4(0.0); // zero lies on every plane: never clipped
    RayOut.through = vec4(g_pos_attrib, growth.w);
    RayOut.along = vec4(along, 0.5 * (gl_DepthRange.diff * growth.z +
                                      (gl_DepthRange.near + gl_DepthRange.far) * growth.w));
#ifdef POINTS
    gl_PointSize = g_size;
    RayOut.point = g_point;
    RayOut.spread = g_viewpoint.w;
#endif
    RayOut.place = g_place;
#ifndef SPHERES
    RayOut.axis = g_axis;
#endif
    RayOut.color = g_col_attrib;
#ifdef VALUES_BY_MARKER
    RayOut.texCoords = vec4((g_texmat * vec4(g_values.x, 0.0, 0.0, 1.0)).st,
                            (g_texmat * vec4(g_values.y, 0.0, 0.0, 1.0)).st);
    RayOut.values = g_values.z;
#endif
}
