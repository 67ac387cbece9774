#include "NRenderUtl/mesh/elementlighting.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "NRenderUtl/gl/nglrecord.h"

namespace {

using Vector = ElementLighting::Vector;

// The model's own weights; the programs carry the same two.
constexpr float kAmbientWeight = 1.74f, kDiffuseWeight = 0.5f;

Vector rgb(const float (&color)[4], float weight = 1.0f) {
    return {color[0] * weight, color[1] * weight, color[2] * weight};
}

Vector rgb(NgColorLong color) {
    return {static_cast<float>(color & 0xFF) / 255.0f, static_cast<float>(color >> 8 & 0xFF) / 255.0f,
            static_cast<float>(color >> 16 & 0xFF) / 255.0f};
}

float dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// A vector without length keeps it.
Vector unit(const Vector& v) {
    const float squared = dot(v, v);
    const float factor = squared > 0.0f ? 1.0f / std::sqrt(squared) : 0.0f;
    return {v[0] * factor, v[1] * factor, v[2] * factor};
}

void add(Vector& sum, const Vector& color, float factor) {
    for (int i = 0; i < 3; ++i)
        sum[i] += color[i] * factor;
}

/// NaN becomes 0.
float clamped(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

std::uint8_t byteOf(float value) {
    return static_cast<std::uint8_t>(value * 255.0f + 0.5f);
}

bool isBlack(const Vector& color) {
    return color == Vector{};
}

Vector eyePosition(const std::array<float, 12>& m, const Vector& p) {
    return {m[0] * p[0] + m[1] * p[1] + m[2] * p[2] + m[3], m[4] * p[0] + m[5] * p[1] + m[6] * p[2] + m[7],
            m[8] * p[0] + m[9] * p[1] + m[10] * p[2] + m[11]};
}

Vector eyeNormal(const std::array<float, 9>& m, const Vector& n) {
    return unit({m[0] * n[0] + m[1] * n[1] + m[2] * n[2], m[3] * n[0] + m[4] * n[1] + m[5] * n[2],
                 m[6] * n[0] + m[7] * n[1] + m[8] * n[2]});
}

/// What falls on a point: the share of its base colour that is returned, and what comes on top of it.
struct Incident {
    Vector share{}, extra{};
};

/// The half vector belongs to a viewer far out on +z.
void addSpecular(const ElementLighting::Light& light, const ElementLighting::Side& side, const Vector& normal,
                 const Vector& direction, float brightness, Vector& sum) {
    const Vector half = unit({direction[0], direction[1], direction[2] + 1.0f});
    const float shine = brightness * std::pow(std::max(dot(normal, half), 0.0f), side.shininess);
    for (int i = 0; i < 3; ++i)
        sum[i] += light.specular[i] * side.specular[i] * shine;
}

void addLight(const ElementLighting& lighting, const ElementLighting::Light& light, const Vector& position,
              const Vector& normal, Incident& sum) {
    Vector direction = light.position;
    add(direction, position, -1.0f);
    const float distance = std::sqrt(dot(direction, direction));
    const auto& [constant, linear, quadratic] = light.attenuation;
    const float brightness = 1.0f / (constant + distance * (linear + distance * quadratic));
    direction = unit(direction);
    const float cosine = dot(normal, direction);
    add(sum.share, light.ambient, brightness);
    add(sum.share, light.diffuse, brightness * std::abs(cosine));
    const ElementLighting::Side& side = cosine > 0.0f ? lighting.front : lighting.back;
    if (cosine == 0.0f || isBlack(light.specular) || isBlack(side.specular))
        return;
    const float sign = cosine > 0.0f ? 1.0f : -1.0f;
    addSpecular(light, side, {normal[0] * sign, normal[1] * sign, normal[2] * sign}, direction, brightness,
                sum.extra);
}

} // namespace

ElementLighting recordLighting() {
    const _NglInfoStr& record = nglRecord().live;
    ElementLighting lighting;
    for (const NglLightParams& light : record.lights)
        if (light.enabled == 1)
            lighting.lights[lighting.count++] = {
                rgb(light.position),
                rgb(light.ambient, kAmbientWeight),
                rgb(light.diffuse, kDiffuseWeight),
                rgb(light.specular),
                {light.constantAttenuation, light.linearAttenuation, light.quadraticAttenuation}};
    lighting.front = {rgb(record.frontMaterial.specular), record.frontMaterial.shininess};
    lighting.back = {rgb(record.backMaterial.specular), record.backMaterial.shininess};
    lighting.emission = rgb(record.frontMaterial.emission);
    add(lighting.emission, rgb(record.backMaterial.emission), 1.0f);
    return lighting;
}

ElementEye::ElementEye(const double m[16]) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            position[4 * row + column] = static_cast<float>(m[4 * column + row]);
    // The cofactors are the inverse transpose but for the determinant, of which the sign counts.
    double cofactors[9], determinant = 0;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            const int r1 = (row + 1) % 3, r2 = (row + 2) % 3, c1 = (column + 1) % 3, c2 = (column + 2) % 3;
            cofactors[3 * row + column] = m[4 * c1 + r1] * m[4 * c2 + r2] - m[4 * c2 + r1] * m[4 * c1 + r2];
        }
    for (int column = 0; column < 3; ++column)
        determinant += m[4 * column] * cofactors[column];
    const double factor = determinant < 0 ? -1 : 1;
    std::transform(cofactors, cofactors + 9, normal.begin(),
                   [factor](double cofactor) { return static_cast<float>(cofactor * factor); });
}

void lightVertices(const ElementLighting& lighting, const ElementEye& eye, const ElementPaint& paint,
                   std::uint8_t alpha, std::span<const Vector> positions, std::span<const Vector> normals,
                   std::span<ElementColor> colors) {
    const Vector base = rgb(paint.base), filter = rgb(paint.filter);
    for (std::size_t v = 0; v < colors.size(); ++v) {
        const Vector position = eyePosition(eye.position, positions[v]);
        const Vector normal = eyeNormal(eye.normal, normals[v]);
        Incident sum{{}, lighting.emission};
        for (int i = 0; i < lighting.count; ++i)
            addLight(lighting, lighting.lights[i], position, normal, sum);
        for (int i = 0; i < 3; ++i)
            colors[v][i] = byteOf(clamped(sum.share[i] * base[i] + sum.extra[i]) * filter[i]);
        colors[v][3] = alpha;
    }
}

ElementColor unlitColor(const ElementPaint& paint, std::uint8_t alpha) {
    const Vector base = rgb(paint.base), filter = rgb(paint.filter);
    return {byteOf(base[0] * filter[0]), byteOf(base[1] * filter[1]), byteOf(base[2] * filter[2]), alpha};
}
