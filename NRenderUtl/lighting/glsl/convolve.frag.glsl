#version 330 core
// Light of a direction: a part of the sum over samples about it, each by its cosine. Of the irradiance, and
// of the first factor of the split sum (Karis, "Real Shading in Unreal Engine 4", 2013): the environment seen
// by a rough mirror at right angles.
in vec3 direction;
out vec4 color;
uniform samplerCube g_environmentmap;
uniform samplerBuffer g_samples; // direction about the normal, level
uniform int g_first;
uniform int g_count;
uniform float g_scale;

/// Columns: two tangents, the normal.
mat3 frameOf(vec3 normal) {
    vec3 tangent = cross(normal, vec3(0.0, 1.0, 0.0));
    if (dot(tangent, tangent) < 0.00001)
        tangent = cross(normal, vec3(1.0, 0.0, 0.0));
    tangent = normalize(tangent);
    return mat3(normalize(cross(normal, tangent)), tangent, normal);
}

void main() {
    mat3 frame = frameOf(normalize(direction));
    vec3 sum = vec3(0.0);
    int last = g_first + g_count;
    for (int i = g_first; i < last; i += 2) { // two, so that one can wait for memory together with the other
        vec4 light = texelFetch(g_samples, i), next = texelFetch(g_samples, i + 1);
        vec3 radiance = textureLod(g_environmentmap, frame * light.xyz, light.w).rgb;
        vec3 nextRadiance = textureLod(g_environmentmap, frame * next.xyz, next.w).rgb;
        sum += radiance * light.z + nextRadiance * next.z;
    }
    color = vec4(sum * g_scale, 0.0);
}
