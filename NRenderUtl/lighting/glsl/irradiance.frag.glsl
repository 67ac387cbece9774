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

void main() {
    mat3 frame = frameOf(normalize(direction));
    vec3 sum = vec3(0.0);
    for (uint i = 0u; i < SAMPLES; ++i) {
        vec3 light = sampleHemisphere(hammersley(i, SAMPLES)); // its z is the cosine
        sum += 2.0 * textureLod(g_environmentmap, frame * light, 0.0).rgb * max(0.0, light.z);
    }
    color = vec4(sum / float(SAMPLES), 1.0);
}
