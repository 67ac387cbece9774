#version 330 core
// The second factor of the split sum (Karis, 2013): scale and bias of the reflectance at right angles, by the
// cosine to the eye (x) and the roughness (y).
in vec2 texCoord;
out vec4 color;
vec2 hammersley(uint i, uint n);
vec3 sampleHalfVector(vec2 u, float roughness);
const uint SAMPLES = 1024u;

/// Masking of one side (Schlick, 1994).
float masking(float cosine, float k) {
    return cosine / (cosine * (1.0 - k) + k);
}

void main() {
    float cosEye = max(texCoord.x, 0.001);
    float roughness = texCoord.y;
    float k = roughness * roughness / 2.0; // the one for environment light (Karis, 2013)
    vec3 eye = vec3(sqrt(1.0 - cosEye * cosEye), 0.0, cosEye);
    vec2 sum = vec2(0.0);
    for (uint i = 0u; i < SAMPLES; ++i) {
        vec3 halfway = sampleHalfVector(hammersley(i, SAMPLES), roughness);
        float cosEyeHalf = max(dot(eye, halfway), 0.0);
        float cosLight = 2.0 * dot(eye, halfway) * halfway.z - eye.z;
        if (cosLight > 0.0) {
            float visible =
                masking(cosLight, k) * masking(cosEye, k) * cosEyeHalf / (halfway.z * cosEye);
            float fresnel = pow(1.0 - cosEyeHalf, 5.0); // Schlick, 1994
            sum += vec2(1.0 - fresnel, fresnel) * visible;
        }
    }
    color = vec4(sum / float(SAMPLES), 0.0, 1.0);
}
