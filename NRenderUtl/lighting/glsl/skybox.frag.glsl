#version 330 core
// The environment behind the scene (tone mapping: Reinhard et al., "Photographic Tone Reproduction for Digital
// Images", 2002, equation 3).
in vec3 direction;
out vec4 color;
uniform samplerCube g_skyboxmap;

void main() {
    vec3 c = texture(g_skyboxmap, direction).rgb;
    c = c / (c + 1.0);
    color = vec4(pow(c, vec3(1.0 / 2.2)), 1.0);
}
