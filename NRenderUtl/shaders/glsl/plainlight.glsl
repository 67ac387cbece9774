// The classic model of lighting.glsl for one light that neither fades nor shines, and for opaque colours. The
// vertex stage takes a colour as far as all its fragments share: a driver in software gathers each component
// of a uniform anew for every few of them.

uniform vec4 g_lightposition;
uniform vec4 g_lightambient;
uniform vec4 g_lightdiffuse;
uniform vec4 g_emission; // of both sides

const float kAmbientScale = 1.74; // deliberate weights of the classic model
const float kDiffuseScale = 0.5;

// What a colour shows whichever way it faces, and what more where it faces the light.
vec3 evenColor(vec3 color) {
    return g_emission.rgb + g_lightambient.rgb * kAmbientScale * color;
}
vec3 facingColor(vec3 color) {
    return g_lightdiffuse.rgb * kDiffuseScale * color;
}

vec3 toLight(vec3 position) {
    return g_lightposition.xyz - position;
}

// Both sides lit; directions of any length.
vec3 plainlyLit(vec3 even, vec3 facing, vec3 toLight, vec3 normal) {
    float cosLight = dot(normal, toLight) * inversesqrt(dot(normal, normal) * dot(toLight, toLight));
    return clamp(even + facing * abs(cosLight), 0.0, 1.0);
}
