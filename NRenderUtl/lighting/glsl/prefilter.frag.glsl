#version 330 core
// The first factor of the split sum (Karis, "Real Shading in Unreal Engine 4", 2013): the environment seen by
// a rough mirror at right angles, with samples filtered by the solid angle that each stands for (Krivanek and
// Colbert, "Real-time Shading with Filtered Importance Sampling", 2008, equations 11 and 13).
in vec3 direction;
out vec4 color;
uniform samplerCube g_environmentmap;
uniform float g_roughness;
vec2 hammersley(uint i, uint n);
vec3 sampleHalfVector(vec2 u, float roughness);
mat3 frameOf(vec3 normal);
const float PI = 3.14159265359;
const uint SAMPLES = 1024u;
// Deliberately that of 512 texels a side, half of what the faces have: one level finer.
const float TEXEL = 4.0 * PI / (6.0 * 512.0 * 512.0);

/// Normal distribution (Trowbridge and Reitz, 1975; Walter et al., 2007, equation 33).
float distribution(float cosHalf) {
    float alpha = g_roughness * g_roughness;
    float alpha2 = alpha * alpha;
    float d = cosHalf * cosHalf * (alpha2 - 1.0) + 1.0;
    return alpha2 / (PI * d * d);
}

/// Level for one of the samples. The density of the light's direction is D cos / (4 cos), here with one
/// cosine, as the eye is at the normal.
float levelOf(float cosHalf) {
    float pdf = distribution(cosHalf) * 0.25;
    float sampleAngle = 1.0 / (float(SAMPLES) * pdf);
    return max(0.5 * log2(sampleAngle / TEXEL) + 1.0, 0.0);
}

void main() {
    mat3 frame = frameOf(normalize(direction));
    if (g_roughness == 0.0) { // a mirror: all samples are one direction, of infinite density
        color = vec4(textureLod(g_environmentmap, frame[2], 0.0).rgb, 1.0);
        return;
    }
    vec3 sum = vec3(0.0);
    float weight = 0.0;
    for (uint i = 0u; i < SAMPLES; ++i) {
        vec3 halfway = sampleHalfVector(hammersley(i, SAMPLES), g_roughness);
        vec3 light = 2.0 * halfway.z * halfway - vec3(0.0, 0.0, 1.0);
        if (light.z > 0.0) {
            sum += textureLod(g_environmentmap, frame * light, levelOf(halfway.z)).rgb * light.z;
            weight += light.z;
        }
    }
    color = vec4(sum / weight, 1.0);
}
