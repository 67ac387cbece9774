// Quasi-random samples and their distributions about a normal, for the programs that integrate by them.
const float TWO_PI = 6.28318530718;

/// Radical inverse of base 2 by reversing bits (van der Corput, 1935; Dammertz, "Hammersley Points on the
/// Hemisphere", 2012).
float radicalInverse(uint bits) {
    bits = (bits << 16u) | (bits >> 16u);
    bits = ((bits & 0x55555555u) << 1u) | ((bits & 0xAAAAAAAAu) >> 1u);
    bits = ((bits & 0x33333333u) << 2u) | ((bits & 0xCCCCCCCCu) >> 2u);
    bits = ((bits & 0x0F0F0F0Fu) << 4u) | ((bits & 0xF0F0F0F0u) >> 4u);
    bits = ((bits & 0x00FF00FFu) << 8u) | ((bits & 0xFF00FF00u) >> 8u);
    return float(bits) * 2.3283064365386963e-10; // 2^-32
}

/// Point i of n of the Hammersley set (Hammersley, 1960).
vec2 hammersley(uint i, uint n) {
    return vec2(float(i) / float(n), radicalInverse(i));
}

/// Direction about +z, uniform over the hemisphere (Pharr, Jakob and Humphreys, "Physically Based Rendering",
/// 3rd edition, 2016, section 13.6.1).
vec3 sampleHemisphere(vec2 u) {
    float radius = sqrt(max(0.0, 1.0 - u.x * u.x));
    float phi = TWO_PI * u.y;
    return vec3(radius * cos(phi), radius * sin(phi), u.x);
}

/// Half vector about +z, distributed as D cos (Walter et al., "Microfacet Models for Refraction through Rough
/// Surfaces", 2007, equations 35 and 36) with alpha = roughness^2 (Burley, 2012; Karis, 2013).
vec3 sampleHalfVector(vec2 u, float roughness) {
    float alpha = roughness * roughness;
    float cosTheta = sqrt((1.0 - u.y) / (1.0 + (alpha * alpha - 1.0) * u.y));
    float sinTheta = sqrt(max(0.0, 1.0 - cosTheta * cosTheta));
    float phi = TWO_PI * u.x;
    return vec3(sinTheta * cos(phi), sinTheta * sin(phi), cosTheta);
}

/// Columns: two tangents, the normal.
mat3 frameOf(vec3 normal) {
    vec3 tangent = cross(normal, vec3(0.0, 1.0, 0.0));
    if (dot(tangent, tangent) < 0.00001)
        tangent = cross(normal, vec3(1.0, 0.0, 0.0));
    tangent = normalize(tangent);
    return mat3(normalize(cross(normal, tangent)), tangent, normal);
}
