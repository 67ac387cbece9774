// The classic model of lighting.glsl, with lights and materials from a buffer: a driver in software gathers
// each component of a uniform anew for every few fragments, and fetches four components of a texel for less.

uniform samplerBuffer g_block; // laid out by blocklayout.h
uniform int g_lightsOff;

const float kAmbientScale = 1.74; // deliberate weights of the classic model
const float kDiffuseScale = 0.5;

#ifndef NO_HIGHLIGHTS
// cosine^shininess with cosines below 0 as 0; pow(0, 0) is not defined, fixed function takes 1.
float highlight(float cosine, float shininess) {
    return shininess == 0.0 ? 1.0 : pow(max(0.0, cosine), shininess);
}
#endif

#ifdef PLAIN_LIGHTS
// A light's share of diffuse light and its highlight; normal of unit length.
vec2 plainLight(vec3 toLight, vec3 normal, float diffuse, float specular, float shininess) {
    float across = dot(normal.xy, toLight.xy), across2 = dot(toLight.xy, toLight.xy);
    float distance2 = across2 + toLight.z * toLight.z, inverse = inversesqrt(distance2);
    float cosLight = (across + normal.z * toLight.z) * inverse;
    float share = diffuse * abs(cosLight);
#ifdef NO_HIGHLIGHTS
    return vec2(share, 0.0);
#else
    // The viewer stays on +z: the half vector, times the distance, differs from toLight in z alone.
    float halfZ = toLight.z + distance2 * inverse;
    float cosHalf = (across + normal.z * halfZ) * inversesqrt(across2 + halfZ * halfZ);
    float shine = highlight(cosLight > 0.0 ? cosHalf : -cosHalf, shininess);
    return vec2(share, cosLight != 0.0 ? specular * shine : 0.0);
#endif
}

// The model in numbers: what is grey needs no colours. Of a surface with the normals of vertices and one
// light, position is the vector to the light.
vec4 lightColor(vec4 color, vec3 position, vec3 normal) {
    if (g_lightsOff != 0)
        return color;
    vec4 plain = texelFetch(g_block, BLOCK_PLAIN);
#if LIGHTS == 1
    vec3 toLight = g_smooth == 1 ? position : texelFetch(g_block, BLOCK_PLAIN_LIGHTS).xyz - position;
    vec2 sum = plainLight(toLight, normal, plain.w, plain.z, plain.y);
#else
    vec2 sum = vec2(0.0);
    for (int i = 0; i < LIGHTS; ++i) {
        vec4 light = texelFetch(g_block, BLOCK_PLAIN_LIGHTS + i);
        int j = i - 2;
        float specular = i < 2 ? plain[2 + i] : texelFetch(g_block, BLOCK_PLAIN_SPECULAR + j / 4)[j % 4];
        sum += plainLight(light.xyz - position, normal, light.w, specular, plain.y);
    }
#endif
    return vec4(clamp((plain.x + sum.x) * color.rgb + sum.y, 0.0, 1.0), color.a);
}
#else
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

// The colour as lit; normal of unit length.
vec4 lightColor(vec4 color, vec3 position, vec3 normal) {
    if (g_lightsOff != 0)
        return color;
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
