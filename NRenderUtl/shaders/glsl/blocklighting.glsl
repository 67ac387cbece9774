// The classic model of lighting.glsl, with lights and materials from a buffer: a driver in software gathers
// each component of a uniform anew for every few fragments, and fetches four components of a texel for less.

uniform samplerBuffer g_block; // laid out by blocklayout.h
uniform int g_lightsOff;

// Of a byte each for red, green and blue.
vec3 colorOfCode(int code) {
    return vec3(code & 255, code >> 8 & 255, code >> 16) * (1.0 / 255.0);
}

const float kAmbientScale = 1.74; // deliberate weights of the classic model
const float kDiffuseScale = 0.5;

#ifdef PLAIN_LIGHTS
// A light's share of diffuse light, but for the length of the normal, and its highlight.
vec2 plainLight(vec3 toLight, vec3 normal, float normal2, float diffuse, float specular, float halfShininess) {
    float across = dot(normal.xy, toLight.xy), across2 = dot(toLight.xy, toLight.xy);
    float towards = across + normal.z * toLight.z, d = sqrt(across2 + toLight.z * toLight.z);
    float share = diffuse * abs(towards) / d;
#ifdef NO_HIGHLIGHTS
    return vec2(share, 0.0);
#else
    // The viewer stays on +z: the half vector, times the distance, differs from toLight in z alone. Its
    // cosine is left squared, which spares the roots of its length and the normal's.
    float halfZ = toLight.z + d, cosHalf = across + normal.z * halfZ;
    float cosHalf2 = cosHalf * cosHalf / ((across2 + halfZ * halfZ) * normal2);
    return vec2(share, cosHalf * towards > 0.0 ? specular * pow(cosHalf2, halfShininess) : 0.0);
#endif
}

// The model in numbers: what is grey needs no colours. Of a surface with the normals of vertices and one
// light, position is the vector to the light. The normal has any length.
vec4 lightColor(vec4 color, vec3 position, vec3 normal) {
    if (g_lightsOff != 0)
        return color;
    float normal2 = dot(normal, normal);
#ifdef FLAT_SHADE
    vec4 plain = VertexIn.shade.xxxy;
#else
    vec4 plain = texelFetch(g_block, BLOCK_PLAIN);
#endif
#if LIGHTS == 1
    vec3 toLight = g_smooth == 1 ? position : texelFetch(g_block, BLOCK_PLAIN_LIGHTS).xyz - position;
#ifdef NO_HIGHLIGHTS
    float cosLight = dot(normal, toLight) * inversesqrt(normal2 * dot(toLight, toLight));
    return vec4(clamp((plain.x + plain.w * abs(cosLight)) * color.rgb, 0.0, 1.0), color.a);
#endif
    vec2 sum = plainLight(toLight, normal, normal2, plain.w, plain.z, plain.y);
#else
    vec2 sum = vec2(0.0);
    for (int i = 0; i < LIGHTS; ++i) {
        vec4 light = texelFetch(g_block, BLOCK_PLAIN_LIGHTS + i);
        int j = i - 2;
        float specular = i < 2 ? plain[2 + i] : texelFetch(g_block, BLOCK_PLAIN_SPECULAR + j / 4)[j % 4];
        sum += plainLight(light.xyz - position, normal, normal2, light.w, specular, plain.y);
    }
#endif
    float shade = plain.x + sum.x * inversesqrt(normal2);
    return vec4(clamp(shade * color.rgb + sum.y, 0.0, 1.0), color.a);
}
#else
#ifndef NO_HIGHLIGHTS
// cosine^shininess with cosines below 0 as 0; pow(0, 0) is not defined, fixed function takes 1.
float highlight(float cosine, float shininess) {
    return shininess == 0.0 ? 1.0 : pow(max(0.0, cosine), shininess);
}
#endif

// Adds what the light at a texel gives, before the colour of the surface and after it. Whether another
// follows.
bool addLight(int at, vec3 position, vec3 normal, inout vec3 ambientDiffuse, inout vec3 specular) {
    vec4 place = texelFetch(g_block, at); // with the constant, linear and quadratic attenuation in w
    vec4 ambient = texelFetch(g_block, at + 1);
    vec4 diffuse = texelFetch(g_block, at + 2);
    vec3 toLight = place.xyz - position;
    float d = length(toLight);
    toLight /= d;
#ifdef NO_ATTENUATION
    float brightness = 1.0;
#else
    float brightness = 1.0 / (place.w + ambient.w * d + diffuse.w * d * d);
#endif
    float cosLight = dot(normal, toLight);
    // Ambient and diffuse weigh the same on both sides.
    ambientDiffuse += ambient.rgb * (brightness * kAmbientScale);
    ambientDiffuse += diffuse.rgb * (brightness * kDiffuseScale * abs(cosLight));
#ifdef NO_HIGHLIGHTS
    return texelFetch(g_block, at + 3).w != 0.0;
#else
    float cosHalf = dot(normal, normalize(vec3(0.0, 0.0, 1.0) + toLight)); // the viewer stays on +z
    bool front = cosLight > 0.0;
    vec4 material = texelFetch(g_block, front ? BLOCK_FRONT : BLOCK_BACK); // specular, shininess
    vec4 lightSpecular = texelFetch(g_block, at + 3);
    float shine = highlight(front ? cosHalf : -cosHalf, material.w);
    if (cosLight != 0.0)
        specular += lightSpecular.rgb * material.rgb * (brightness * shine);
    return lightSpecular.w != 0.0;
#endif
}

// The colour as lit.
vec4 lightColor(vec4 color, vec3 position, vec3 normal) {
    if (g_lightsOff != 0)
        return color;
    normal = normalize(normal);
    vec3 ambientDiffuse = vec3(0.0), specular = vec3(0.0);
#ifdef LIGHTS
    for (int i = 0; i < LIGHTS; ++i)
        addLight(BLOCK_LIGHTS + 4 * i, position, normal, ambientDiffuse, specular);
#else
    int at = BLOCK_LIGHTS;
    bool more;
    do {
        more = addLight(at, position, normal, ambientDiffuse, specular);
        at += 4;
    } while (more);
#endif
    vec3 emission = texelFetch(g_block, BLOCK_EMISSION).rgb;
    return vec4(clamp(emission + ambientDiffuse * color.rgb + specular, 0.0, 1.0), color.a);
}
#endif
