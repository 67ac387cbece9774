#version 150 compatibility
// Fragment stage of the mesh renderer's physically based programs: the model of lighting.glsl with one kind of
// light, written for drivers in software, where each operation of a fragment counts.

in VertexData {
    vec3 toViewer;
    vec3 normal;
    flat vec3 frontAlbedo;
    flat vec3 backAlbedo;
    flat vec4 material; // metalness, roughness, reflectivity of the share that is no metal, share of diffuse light
} VertexIn;

uniform int g_transparent;
uniform float g_alphavalue;
#ifdef LIGHT_RIG
uniform samplerBuffer g_block; // directions of the five lights
#else
uniform samplerCube g_irradianceMap;
uniform samplerCube g_prefilterMap;
uniform sampler2D g_brdfLUT;

const float kMaxReflectionLevel = 2.0;
#endif
const float kPi = 3.14159265359;
const float kSpecularScale = 0.9; // deliberate weight of the microfacet term

vec3 unit(vec3 v) {
    return v * inversesqrt(dot(v, v));
}

#ifdef LIGHT_RIG
// Cook and Torrance 1982 by squares, so that no half vector has its length taken: for unit vectors its square
// is 2 + 2 cos(Lo, Li), and twice the cosine to either is its length.
struct Sums {
    float diffuse;  // cosines
    float specular; // distribution x shadowing, but for the factors that all lights share
    float grazing;  // the same by Schlick's power
};

void addLight(vec3 toLight, vec3 normal, vec3 toViewer, float cosLo, float k, float alpha2, inout Sums sums) {
    float cosLi = clamp(dot(normal, toLight), 0.0, 1.0);
    float half2 = 2.0 + 2.0 * dot(toViewer, toLight);
    float cosHalf = cosLo + cosLi; // times the length of the half vector
    float denominator = cosHalf * cosHalf * (alpha2 - 1.0) + half2;
    float numerator = half2 * cosLi;
    float divisor = denominator * denominator * (cosLi * (1.0 - k) + k) * max(0.00001, 4.0 * cosLi * cosLo);
    float term = numerator * numerator / (divisor + 1e-30); // 0 where light and viewer are opposite
    float c = 1.0 - sqrt(abs(0.25 * half2));
    float c2 = c * c;
    sums.diffuse += cosLi;
    sums.specular += term;
    sums.grazing += term * (c2 * c2 * c);
}

vec3 incidentLight(vec3 albedo, vec3 f0, vec3 normal, vec3 toViewer, float cosLo) {
    float roughness = VertexIn.material.y;
    float alpha2 = roughness * roughness * roughness * roughness;
    float k = (roughness + 1.0) * (roughness + 1.0) / 8.0;
    Sums sums = Sums(0.0, 0.0, 0.0);
    addLight(texelFetch(g_block, 0).xyz, normal, toViewer, cosLo, k, alpha2, sums);
    addLight(texelFetch(g_block, 1).xyz, normal, toViewer, cosLo, k, alpha2, sums);
    addLight(texelFetch(g_block, 2).xyz, normal, toViewer, cosLo, k, alpha2, sums);
    addLight(texelFetch(g_block, 3).xyz, normal, toViewer, cosLo, k, alpha2, sums);
    addLight(texelFetch(g_block, 4).xyz, normal, toViewer, cosLo, k, alpha2, sums);
    float weight = alpha2 * (kSpecularScale / kPi) * cosLo / (cosLo * (1.0 - k) + k);
    return VertexIn.material.w / kPi * sums.diffuse * albedo +
           weight * (f0 * (sums.specular - sums.grazing) + sums.grazing);
}
#else
// Split-sum approximation, Karis 2013.
vec3 incidentLight(vec3 albedo, vec3 f0, vec3 normal, vec3 toViewer, float cosLo) {
    float roughness = VertexIn.material.y;
    float c = 1.0 - cosLo;
    float c2 = c * c;
    vec3 kd = (1.0 - f0) * (VertexIn.material.w * (1.0 - c2 * c2 * c));
    vec3 irradiance = textureLod(g_irradianceMap, normal, 0.0).rgb;
    vec3 reflected = 2.0 * cosLo * normal - toViewer;
    vec3 prefiltered = textureLod(g_prefilterMap, reflected, roughness * kMaxReflectionLevel).rgb;
    vec2 brdf = textureLod(g_brdfLUT, vec2(cosLo, roughness), 0.0).rg;
    return kd * albedo * irradiance + (f0 * brdf.x + brdf.y) * prefiltered;
}
#endif

void main() {
    vec3 normal = unit(VertexIn.normal), toViewer = unit(VertexIn.toViewer);
    float cosLo = dot(normal, toViewer);
    if (cosLo < 0.0)
        normal = -normal;
    vec3 albedo = gl_FrontFacing ? VertexIn.frontAlbedo : VertexIn.backAlbedo;
    vec3 f0 = VertexIn.material.z + VertexIn.material.x * albedo;
    vec3 light = incidentLight(albedo, f0, normal, toViewer, abs(cosLo));
    light = light / (light + 1.0); // Reinhard et al. 2002, equation 3
    gl_FragColor = vec4(pow(light, vec3(1.0 / 2.2)), g_transparent == 1 ? g_alphavalue : 1.0);
}
