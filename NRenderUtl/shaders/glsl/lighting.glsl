// Lights and materials: a classic eight-light model in eye space, physically based shading in object space.

struct g_LightParams {
    int status;
    vec4 ambient;
    vec4 diffuse;
    vec4 specular;
    vec4 position;
    float constattn;
    float linattn;
    float quadattn;
};
struct g_PBRLightParams {
    int status;
    vec4 position;
};
struct g_MatParams {
    vec4 emission;
    vec4 ambient;
    vec4 diffuse;
    vec4 specular;
    float shininess;
};
struct g_PBRMatParams {
    float metalness;
    float roughness;
    float reflectivity;
    float amb_occlusion;
};
uniform g_LightParams g_lights[8];
uniform g_PBRLightParams g_pbrlights[8];
uniform g_MatParams g_frontmat;
uniform g_MatParams g_backmat;
uniform g_PBRMatParams g_pbrMat;
uniform int g_lightsOff;
uniform int g_usepbrmat;
uniform int g_hdrreflection;
uniform vec3 g_cameraposition;
uniform samplerCube g_irradianceMap;
uniform samplerCube g_prefilterMap;
uniform sampler2D g_brdfLUT;

const float kPi = 3.14159265359;
const float kAmbientScale = 1.74; // deliberate weights of the classic model
const float kDiffuseScale = 0.5;
const float kSpecularScale = 0.9; // deliberate weight of the microfacet term
const float kMaxReflectionLevel = 2.0;

// cosine^shininess with cosines below 0 as 0; pow(0, 0) is not defined, fixed function takes 1.
float highlight(float cosine, float shininess) {
    return shininess == 0.0 ? 1.0 : pow(max(0.0, cosine), shininess);
}

// Number of the last light that is on, or 0. Loops over lights end there: on a processor without a GPU each
// pass costs as much for a light that is off.
int lastLight() {
    int last = 7;
    while (last > 0 && g_lights[last].status != 1)
        --last;
    return last;
}

// What the lights give, before the colour and the emission of the surface.
struct Illumination {
    vec4 ambientDiffuse;
    vec4 specular;
};

void addLight(g_LightParams light, vec3 position, vec3 normal, inout Illumination sum) {
    vec3 toLight = light.position.xyz - position;
    float d = length(toLight);
    toLight /= d;
    float brightness = 1.0 / (light.constattn + light.linattn * d + light.quadattn * d * d);
    float cosLight = dot(normal, toLight);
#ifndef NO_HIGHLIGHTS
    float cosHalf = dot(normal, normalize(vec3(0.0, 0.0, 1.0) + toLight)); // the viewer stays on +z
    bool front = cosLight > 0.0;
    float shine = highlight(front ? cosHalf : -cosHalf, front ? g_frontmat.shininess : g_backmat.shininess);
    vec4 specular = front ? g_frontmat.specular : g_backmat.specular;
    if (cosLight != 0.0)
        sum.specular += light.specular * specular * (brightness * shine);
#endif
    // Ambient and diffuse weigh the same on both sides.
    sum.ambientDiffuse += light.ambient * (brightness * kAmbientScale);
    sum.ambientDiffuse += light.diffuse * (brightness * kDiffuseScale * abs(cosLight));
}

// Blinn 1977, both sides lit.
vec4 computeFragmentColorStandard(vec3 position, vec3 normal, vec4 color) {
    Illumination sum = Illumination(vec4(0.0), vec4(0.0));
#ifdef ONLY_LIGHT
    addLight(g_lights[ONLY_LIGHT], position, normal, sum);
#else
    int last = lastLight(), i = 0;
    do {
        if (g_lights[i].status == 1)
            addLight(g_lights[i], position, normal, sum);
    } while (++i <= last);
#endif
    color = g_frontmat.emission + g_backmat.emission + sum.ambientDiffuse * color + sum.specular;
    return clamp(color, 0.0, 1.0);
}

// Schlick 1994, equation 15.
vec3 fresnel(vec3 f0, float cosine) {
    float c = 1.0 - cosine;
    return f0 + (1.0 - f0) * (c * c * c * c * c);
}

// Walter et al. 2007, equation 33, with alpha = roughness^2.
float ggxDistribution(float cosHalf, float roughness) {
    float alpha = roughness * roughness;
    float alpha2 = alpha * alpha;
    float denominator = cosHalf * cosHalf * (alpha2 - 1.0) + 1.0;
    return alpha2 / (kPi * denominator * denominator);
}

// Schlick 1994, equation 19, of both directions, with the k of Karis 2013 for direct light.
float ggxShadowing(float cosLi, float cosLo, float roughness) {
    float k = (roughness + 1.0) * (roughness + 1.0) / 8.0;
    return cosLi / (cosLi * (1.0 - k) + k) * (cosLo / (cosLo * (1.0 - k) + k));
}

// Cook and Torrance 1982 with white light.
vec3 directTerm(vec3 albedo, vec3 f0, vec3 normal, vec3 toLight, vec3 toViewer) {
    vec3 halfway = normalize(toViewer + toLight);
    float cosLi = max(0.0, dot(normal, toLight));
    float cosLo = max(0.0, dot(normal, toViewer));
    float d = ggxDistribution(max(0.0, dot(normal, halfway)), g_pbrMat.roughness);
    float g = ggxShadowing(cosLi, cosLo, g_pbrMat.roughness);
    vec3 f = fresnel(f0, max(0.0, dot(halfway, toViewer)));
    vec3 diffuse = (1.0 - g_pbrMat.metalness) * albedo / kPi;
    vec3 specular = f * (d * g * kSpecularScale / max(0.00001, 4.0 * cosLi * cosLo));
    return (diffuse + specular) * cosLi;
}

vec3 directLight(vec3 albedo, vec3 f0, vec3 normal, vec3 toViewer) {
    if (!(dot(normal, toViewer) > 0.0))
        normal = -normal;
    vec3 sum = vec3(0.0);
    int last = 7, i = 0;
    while (last > 0 && g_pbrlights[last].status != 1)
        --last;
    do {
        if (g_pbrlights[i].status == 1)
            sum += directTerm(albedo, f0, normal, normalize(g_pbrlights[i].position.xyz), toViewer);
    } while (++i <= last);
    return sum;
}

// Split-sum approximation, Karis 2013.
vec3 environmentLight(vec3 albedo, vec3 f0, vec3 normal, vec3 toViewer) {
    float cosLo = dot(normal, toViewer);
    if (cosLo < 0.0) {
        normal = -normal;
        cosLo = -cosLo;
    }
    vec3 reflected = 2.0 * cosLo * normal - toViewer;
    vec3 kd = mix(1.0 - fresnel(f0, cosLo), vec3(0.0), g_pbrMat.metalness);
    vec3 irradiance = texture(g_irradianceMap, normal).rgb;
    vec3 prefiltered = textureLod(g_prefilterMap, reflected, g_pbrMat.roughness * kMaxReflectionLevel).rgb;
    vec2 brdf = texture(g_brdfLUT, vec2(cosLo, g_pbrMat.roughness)).rg;
    return kd * albedo * irradiance + (f0 * brdf.x + brdf.y) * prefiltered;
}

vec4 physicalColor(vec4 color, vec3 position, vec3 normal) {
    vec3 albedo = pow(color.rgb, vec3(2.2));
    vec3 toViewer = normalize(g_cameraposition - position);
    vec3 f0 = mix(vec3(g_pbrMat.reflectivity), albedo, g_pbrMat.metalness);
    vec3 light = g_hdrreflection == 1 ? environmentLight(albedo, f0, normal, toViewer)
                                      : directLight(albedo, f0, normal, toViewer);
    light = light / (light + 1.0); // Reinhard et al. 2002, equation 3
    return vec4(pow(light, vec3(1.0 / 2.2)), 1.0);
}

// The colour as lit; normal of unit length.
vec4 lightColor(vec4 color, vec3 position, vec3 normal) {
    if (g_lightsOff != 0)
        return color;
    return g_usepbrmat == 1 ? physicalColor(color, position, normal)
                            : computeFragmentColorStandard(position, normal, color);
}
