#version 330 core
// The second factor of the split sum (Karis, 2013): scale and bias of the reflectance at right angles, by the
// cosine to the eye (x) and the roughness (y). Masking is that of Schlick (1994).
in vec2 texCoord;
out vec4 color;
uniform samplerBuffer g_samples; // half vectors, row by row: x, z and 1 / z
uniform int g_first;             // row with which they begin
uniform int g_count;             // of them in a row

void main() {
    float cosEye = max(texCoord.x, 0.001);
    float sinEye = sqrt(1.0 - cosEye * cosEye);
    float k = texCoord.y * texCoord.y / 2.0; // the one for environment light (Karis, 2013)
    int first = (int(gl_FragCoord.y) - g_first) * g_count;
    int last = first + g_count;
    vec2 sum = vec2(0.0);
    for (int i = first; i < last; ++i) {
        vec3 halfway = texelFetch(g_samples, i).xyz;
        float cosEyeHalf = max(sinEye * halfway.x + cosEye * halfway.y, 0.0);
        float cosLight = max(2.0 * cosEyeHalf * halfway.y - cosEye, 0.0); // below the horizon: nothing
        float visible = cosLight / (cosLight * (1.0 - k) + k) * cosEyeHalf * halfway.z;
        float away = 1.0 - cosEyeHalf;
        float fresnel = away * away * away * away * away; // Schlick, 1994
        sum += vec2(visible - visible * fresnel, visible * fresnel);
    }
    // What masks the eye is the same for all, and its cosine cancels.
    color = vec4(sum / ((cosEye * (1.0 - k) + k) * float(last - first)), 0.0, 1.0);
}
