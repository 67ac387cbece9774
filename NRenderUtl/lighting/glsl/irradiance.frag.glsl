#version 330 core
// Diffuse irradiance of a direction, divided by pi: the mean of 2 L cos over the hemisphere, which its
// uniform samples cover with density 1 / (2 pi).
in vec3 direction;
out vec4 color;
uniform samplerCube g_environmentmap;
vec2 hammersley(uint i, uint n);
vec3 sampleHemisphere(vec2 u);
mat3 frameOf(vec3 normal);
const uint SAMPLES = 65536u;

/// The samples in an order in which neighbours follow each other, for the caches' sake: 64 at a time share the
/// upper bits of both coordinates, of which the second has its bits reversed.
uint inOrder(uint i) {
    return (i & 0xF800u) | ((i & 0x3Fu) << 5u) | ((i >> 6u) & 0x1Fu);
}

void main() {
    mat3 frame = frameOf(normalize(direction));
    vec3 sum = vec3(0.0);
    for (uint i = 0u; i < SAMPLES; ++i) {
        vec3 light = sampleHemisphere(hammersley(inOrder(i), SAMPLES)); // its z is the cosine
        sum += 2.0 * textureLod(g_environmentmap, frame * light, 0.0).rgb * max(0.0, light.z);
    }
    color = vec4(sum / float(SAMPLES), 1.0);
}
