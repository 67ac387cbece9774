// The shading rules of the catalogue's programs in plain C++, for one fragment at a time: the other route to
// their pixels. Lighting is in double precision; band look-ups compare in float as the shaders do.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/nmesh.h"

namespace nrutest {

using glm::dmat4;
using glm::dvec2;
using glm::dvec3;
using glm::dvec4;

inline dvec4 vec4Of(const float (&v)[4]) {
    return {v[0], v[1], v[2], v[3]};
}

// --- contour colours ---------------------------------------------------------------------------------------

inline glm::vec3 channels(NgColorLong color) {
    return glm::vec3(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF) / 255.0f;
}

/// Bands one after the other, where the library halves intervals: -1 in a gap and for NaN.
inline int bandOf(const RenderColorScale& scale, float value) {
    const auto& bands = scale.GetColorBands();
    const auto band = std::find_if(bands.begin(), bands.end(), [=](const RenderColorScale::ColorBand& b) {
        return b.min_val <= value && value < b.max_val;
    });
    return band == bands.end() ? -1 : static_cast<int>(band - bands.begin());
}

/// The shaders' colour of a value: the range comes first, a gap has the colour below the range.
inline glm::vec3 shaderBandColor(const RenderColorScale& scale, bool smeared, float value) {
    const auto& bands = scale.GetColorBands();
    const auto orBand = [](NgColorLong color, const RenderColorScale::ColorBand& band) {
        return channels(color == 0xFFFFFFFF ? band.color : color);
    };
    const glm::vec3 below = orBand(scale.GetOutOfRangeMinColor(), bands.front());
    const float minimum = scale.GetMinValue(), maximum = scale.GetMaxValue();
    if (value < minimum)
        return below;
    if (value > maximum)
        return orBand(scale.GetOutOfRangeMaxColor(), bands.back());
    if (minimum == maximum)
        return channels(bands[bands.size() / 2].color);
    if (value == maximum)
        return channels(bands.back().color);
    const int index = bandOf(scale, value);
    if (index < 0)
        return below;
    const auto& band = bands[index];
    const glm::vec3 color = channels(band.color);
    if (!smeared || index + 1 == static_cast<int>(bands.size()))
        return color;
    const float t = (value - band.min_val) / (band.max_val - band.min_val);
    return color + t * (channels(bands[index + 1].color) - color);
}

/// What a contour is read from: bands, or a texture sampled at the nearest texel. Values are within bands.
struct Contour {
    static constexpr int kWidth = 16, kHeight = 2;
    explicit Contour(int valueCount = 0) {
        std::vector<RenderColorScale::ColorBand> bands;
        for (unsigned i = 0; i < 12; ++i)
            bands.push_back({i / 12.0f, (i + 1) / 12.0f, 0x10F008 + i * 0x13EC15});
        scale.SetColorBands(bands);
        for (int i = 0; i < kWidth * kHeight; ++i)
            texture.push_back({i / 32.0f, 1 - i / 40.0f, i * i / 1024.0f, (40 - i) / 40.0f});
        for (int i = 0; i < valueCount; ++i)
            elementValues.push_back((i * 17 % 96 + 0.5f) / 96);
    }
    RenderColorScale scale;
    std::vector<glm::vec4> texture;
    dmat4 textureMatrix{1};
    int scaled = 0;               // g_bts
    float factor = 1, offset = 0; // g_tsf, g_ttf
    std::vector<float> elementValues;

    dvec4 sample(double s, double t) const {
        const auto texel = [](double x, int size) {
            return std::clamp(int(std::floor(x * size)), 0, size - 1);
        };
        return texture[texel(t, kHeight) * kWidth + texel(s, kWidth)];
    }
    /// Type 1: smeared, 2: the element's value, else bands; types 1 and 3 by the attribute.
    dvec4 color(bool useScale, int type, int element, dvec4 attribute) const {
        const float value = type == 2 ? elementValues[element] : static_cast<float>(attribute.s);
        if (useScale)
            return {shaderBandColor(scale, type == 1, value), 1};
        if (type == 2)
            return sample((value - offset) * (scaled == 1 ? factor : 1), 0);
        const dvec4 coordinate = textureMatrix * attribute;
        return sample(coordinate.s, coordinate.t);
    }
};

// --- lighting ----------------------------------------------------------------------------------------------

struct Lighting {
    std::array<NglLightParams, 8> lights{};
    NglMatParams front{}, back{};
    int off = 0, physicallyBased = 0, environment = 0;
    std::array<NglLightParams, 8> pbrLights{};
    double metalness = 0, roughness = 0.5, reflectivity = 0.5;
    dvec3 camera{32, 32, 90};

    dvec4 shade(dvec4 color, dvec3 N, dvec3 position) const {
        if (off)
            return color;
        return physicallyBased ? pbr(color, N, position) : classic(color, N, position);
    }

    dvec4 classic(dvec4 color, dvec3 N, dvec3 V) const {
        dvec4 ambient(0), diffuse(0), frontSpecular(0), backSpecular(0);
        for (const NglLightParams& light : lights) {
            if (light.enabled != 1)
                continue;
            const dvec3 toLight = dvec3(vec4Of(light.position)) - V;
            const double d = length(toLight);
            const double brightness = 1 / (light.constantAttenuation + light.linearAttenuation * d +
                                           light.quadraticAttenuation * d * d);
            const dvec3 L = toLight / d, H = normalize(dvec3(0, 0, 1) + L);
            ambient += vec4Of(light.ambient) * brightness * 1.74;
            diffuse += vec4Of(light.diffuse) * brightness * 0.5 * std::abs(dot(N, L));
            const bool isFront = dot(N, L) > 0;
            const dvec4 highlight = vec4Of(light.specular) * brightness *
                                    std::pow(std::max(isFront ? dot(N, H) : -dot(N, H), 0.0),
                                             double(isFront ? front.shininess : back.shininess));
            if (dot(N, L) != 0)
                (isFront ? frontSpecular : backSpecular) += highlight;
        }
        const dvec4 sum = vec4Of(front.emission) + vec4Of(back.emission) + (ambient + diffuse) * color +
                          frontSpecular * vec4Of(front.specular) + backSpecular * vec4Of(back.specular);
        return clamp(sum, 0.0, 1.0);
    }

    /// Direct lights of radiance 1, before tone mapping.
    dvec3 pbrRadiance(dvec3 albedo, dvec3 N, dvec3 position) const {
        const double pi = 3.14159265359, alpha2 = std::pow(roughness, 4), k = std::pow(roughness + 1, 2) / 8;
        const dvec3 Lo = normalize(camera - position), F0 = mix(dvec3(reflectivity), albedo, metalness);
        if (!(dot(N, Lo) > 0))
            N = -N;
        dvec3 sum(0);
        for (const NglLightParams& light : pbrLights) {
            if (light.enabled != 1)
                continue;
            const dvec3 Li = normalize(dvec3(vec4Of(light.position))), Lh = normalize(Lo + Li);
            const double cosLi = std::max(0.0, dot(N, Li)), cosLo = std::max(0.0, dot(N, Lo)),
                         cosLh = std::max(0.0, dot(N, Lh));
            const double D = alpha2 / (pi * std::pow(cosLh * cosLh * (alpha2 - 1) + 1, 2));
            const dvec3 F = F0 + (1.0 - F0) * std::pow(1 - std::max(0.0, dot(Lh, Lo)), 5);
            const double G = cosLi / (cosLi * (1 - k) + k) * (cosLo / (cosLo * (1 - k) + k));
            sum += ((1 - metalness) * albedo / pi + F * D * G * 0.9 / std::max(0.00001, 4 * cosLi * cosLo)) *
                   cosLi;
        }
        return sum;
    }

    /// Environment maps of one colour a face, darker with each level.
    static constexpr int kLevels = 5, kTableSize = 64;
    static dvec3 faceColor(int face, double level) {
        return dvec3(face + 1, face * 5 % 6, 3) / 6.0 * (1 - level / 8);
    }
    static dvec3 mapColor(dvec3 v, double level) {
        const dvec3 size = abs(v);
        const int axis = size.x > size.y ? (size.x > size.z ? 0 : 2) : (size.y > size.z ? 1 : 2);
        return faceColor(2 * axis + (v[axis] < 0), level);
    }

    /// Light of the environment; the table's two values are its coordinates.
    dvec3 environmentRadiance(dvec3 albedo, dvec3 N, dvec3 position) const {
        const dvec3 Lo = normalize(camera - position), F0 = mix(dvec3(reflectivity), albedo, metalness);
        if (dot(N, Lo) < 0)
            N = -N;
        const double cosLo = dot(N, Lo), margin = 0.5 / kTableSize;
        const dvec3 F = F0 + (1.0 - F0) * std::pow(1 - cosLo, 5);
        const dvec2 brdf = clamp(dvec2(cosLo, roughness), margin, 1 - margin);
        return (1.0 - F) * (1 - metalness) * albedo * mapColor(N, 0) +
               (F0 * brdf.x + brdf.y) * mapColor(2 * cosLo * N - Lo, roughness * 2);
    }

    dvec4 pbr(dvec4 color, dvec3 N, dvec3 position) const {
        const dvec3 albedo = pow(dvec3(color), dvec3(2.2));
        const dvec3 radiance =
            environment ? environmentRadiance(albedo, N, position) : pbrRadiance(albedo, N, position);
        return {pow(radiance / (radiance + 1.0), dvec3(1 / 2.2)), 1};
    }
};

// --- elements ----------------------------------------------------------------------------------------------

/// The programs' integer uniforms, each under its name without "g_".
struct MeshSettings {
    int nfconn = 0, bd = 0, clip_flag = 0, bvlf = 0, nvlf = 0, ncvl = 0, bao = 1, nvlp = 0, behs = 0, bem = 0;
    int bw = 0, bsw = 0, bfbcol = 0, bct = 0, ct = 0, use_clr_scale = 0, transparent = 0;
    int smooth = 0, useelemnormbuff = 0, norm_excl_sharpedge = 0;
    int advdisp = 0, advparamset = 0; // points only
};
struct MeshSetting {
    const char* name;
    int MeshSettings::*field;
    std::vector<int> values; // that a mesh is tried with
};
using S = MeshSettings;
inline const MeshSetting kMeshSettings[] = {{"g_nfconn", &S::nfconn, {0, 0, 1}},
                                            {"g_bd", &S::bd, {0, 1}},
                                            {"g_clip_flag", &S::clip_flag, {0, 1, 2, 3}},
                                            {"g_bvlf", &S::bvlf, {0, 1}},
                                            {"g_nvlf", &S::nvlf, {1, 2, 3}},
                                            {"g_ncvl", &S::ncvl, {1, 2, 3, 5}},
                                            {"g_bao", &S::bao, {0, 1}},
                                            {"g_nvlp", &S::nvlp, {0, 1}},
                                            {"g_behs", &S::behs, {0, 1}},
                                            {"g_bem", &S::bem, {0, 1}},
                                            {"g_bw", &S::bw, {0, 0, 1, 2}},
                                            {"g_bsw", &S::bsw, {0, 1}},
                                            {"g_bfbcol", &S::bfbcol, {0, 1}},
                                            {"g_bct", &S::bct, {0, 1}},
                                            {"g_ct", &S::ct, {1, 2, 3}},
                                            {"g_use_clr_scale", &S::use_clr_scale, {0, 1}},
                                            {"g_transparent", &S::transparent, {0, 1}},
                                            {"g_smooth", &S::smooth, {0, 0, 1}},
                                            {"g_useelemnormbuff", &S::useelemnormbuff, {0, 1}},
                                            {"g_norm_excl_sharpedge", &S::norm_excl_sharpedge, {0, 1}},
                                            {"g_advdisp", &S::advdisp, {0}},
                                            {"g_advparamset", &S::advparamset, {0}}};

struct ElementFacts {
    int clipCode = 0, visible = 1, picked = 0; // 1 = selected, 2 = highlighted
    int failsAt = -1, failsBelow = -1;
    glm::ivec4 color{0}; // a = 1: the element's own
};

/// What one draw reads beside the settings.
struct MeshFacts {
    std::vector<ElementFacts> elements;
    std::vector<int> failingElement, derivedElement, originalPrimitive; // by primitive
    std::vector<dvec3> normals;                                         // by primitive
    Contour contour;
    dvec4 vertexColor{0.5, 0.25, 0.75, 1}, frontColor{0.25, 0.75, 0.5, 1}, backColor{0.75, 0.5, 0.125, 1};
    dvec3 selectedColor{1, 0.5, 0}, highlightedColor{0, 0.5, 1};
    double alpha = 0.375;
    dmat4 normalMatrix{1};
};

/// One fragment and the primitive that it belongs to.
struct Fragment {
    int primitive;
    bool front;
    dvec3 position;      // of the lighting's space
    dvec3 cornerNormal;  // cross(P1 - P0, P2 - P0), normalised
    dvec3 vertexNormal;  // g_vnorm_attrib, transformed
    dvec3 normalNoSharp; // g_norm_attrib, transformed
    bool sharp;
    dvec4 texture;
};

/// The colour that an element takes and why; nothing when it is left out.
struct ElementLook {
    dvec4 color;
    bool picked, own;
};

inline int elementOf(const MeshSettings& s, const MeshFacts& facts, int primitive) {
    if (s.nfconn == 1)
        return facts.failingElement[primitive];
    return s.bd == 1 ? facts.derivedElement[primitive] : primitive;
}

inline bool isFailing(const MeshSettings& s, const ElementFacts& e) {
    if (s.nfconn != 0 || s.bvlf != 1)
        return false;
    const bool at = e.failsAt != -1 && s.ncvl >= e.failsAt,
               below = e.failsBelow != -1 && s.ncvl < e.failsBelow;
    // Both levels: what fails between at and below, else what fails at and above or below.
    if (s.nvlf == 3)
        return e.failsAt != -1 && e.failsBelow != -1 && e.failsAt < e.failsBelow ? below : at || below;
    return (s.nvlf == 1 && at) || (s.nvlf == 2 && below);
}

/// Visibility, then selection and highlight, then the element's own colour.
inline std::optional<ElementLook> visibleLook(const MeshSettings& s, const MeshFacts& facts, int element) {
    const ElementFacts& e = facts.elements[element];
    ElementLook look{facts.vertexColor, s.behs == 1 && (e.picked == 1 || e.picked == 2), false};
    if (look.picked)
        look.color = dvec4(e.picked == 1 ? facts.selectedColor : facts.highlightedColor, look.color.a);
    if (!look.picked && s.bem == 1)
        look.own = e.color.a != 0;
    if (look.own && e.color.a == 1) // deliberate: the alpha is divided too
        look.color = dvec4(dvec3(e.color), look.color.a) / 255.0;
    const bool asks = s.bao == 0 || (s.bd == 1 && s.nvlp == 1);
    if (asks && e.visible == 0 && !look.picked && !look.own)
        return {};
    return look;
}

inline std::optional<ElementLook> lookOf(const MeshSettings& s, const MeshFacts& facts, int element) {
    const ElementFacts& e = facts.elements[element];
    if ((s.clip_flag == 1 && e.clipCode >= 2) || (s.clip_flag == 3 && e.clipCode <= 2) || isFailing(s, e))
        return {};
    return visibleLook(s, facts, element);
}

inline dvec4 withAlpha(const MeshSettings& s, const MeshFacts& facts, dvec4 color) {
    return s.transparent == 1 ? dvec4(dvec3(color), facts.alpha) : color;
}

/// The mesh program without a geometry stage.
inline std::optional<dvec4> meshFragment(const MeshSettings& s, const MeshFacts& facts,
                                         const Lighting& lighting, const Fragment& f) {
    const int element = elementOf(s, facts, f.primitive);
    const auto look = lookOf(s, facts, element);
    if (!look)
        return {};
    dvec4 color = facts.vertexColor;
    if (s.bfbcol == 1 && s.bw == 0)
        color = f.front ? facts.frontColor : facts.backColor;
    dvec3 N = f.cornerNormal.z > 0 ? -f.cornerNormal : f.cornerNormal; // derivatives: away from the viewer
    if (s.smooth == 1)
        N = s.norm_excl_sharpedge == 1 ? f.normalNoSharp : f.vertexNormal;
    else if (s.useelemnormbuff == 1)
        N = dvec3(
            facts.normalMatrix *
            dvec4(facts.normals[s.nfconn == 1 ? facts.originalPrimitive[f.primitive] : f.primitive], 0));
    dvec4 lit(1);
    if (s.bw == 0) {
        const dvec4 own = look->own ? look->color : color;
        const dvec4 base = look->picked ? look->color : s.bct == 1 ? dvec4(1) : own;
        lit = lighting.shade(base, normalize(N), f.position);
    }
    dvec4 result = s.bw == 0 ? lit : s.bsw == 1 ? color : look->color;
    if (s.bct == 1 && !look->picked)
        result = lit * facts.contour.color(s.use_clr_scale == 1, s.ct, element, f.texture);
    return withAlpha(s, facts, result);
}

/// The programs with a geometry stage.
inline std::optional<dvec4> geometryFragment(const MeshSettings& s, const MeshFacts& facts,
                                             const Lighting& lighting, const Fragment& f) {
    const int element = elementOf(s, facts, f.primitive);
    const auto look = lookOf(s, facts, element);
    if (!look)
        return {};
    const bool contoured = s.bct == 1 && !look->picked;
    dvec4 base = s.bw == 1 && s.bsw == 1 ? facts.vertexColor : look->color;
    if (contoured)
        base = dvec4(1);
    else if (s.bfbcol == 1 && s.bw == 0)
        base = f.front ? facts.frontColor : facts.backColor;
    const bool excludesSharp = s.norm_excl_sharpedge == 1;
    const bool smooth = s.smooth == 1 && (excludesSharp || !f.sharp);
    const dvec3 N = !smooth ? f.cornerNormal : excludesSharp ? f.normalNoSharp : f.vertexNormal;
    dvec4 result = base;
    if (s.bw == 0)
        result = lighting.shade(base, normalize(N), f.position);
    if (s.bw == 0 && contoured)
        result *= facts.contour.color(s.use_clr_scale == 1, s.ct, element, f.texture);
    return withAlpha(s, facts, result);
}

/// The point program at a place of the point, -1..1 to the right and downward.
inline std::optional<dvec4> pointFragment(const MeshSettings& s, const MeshFacts& facts,
                                          const Lighting& lighting, const Fragment& f, dvec2 place) {
    if (s.advdisp == 1 && dot(place, place) > 1)
        return {};
    const auto look = visibleLook(s, facts, f.primitive);
    if (!look)
        return {};
    const bool contoured = s.bct == 1 && !look->picked;
    dvec4 result = contoured ? dvec4(1) : facts.vertexColor; // flat points show the contour colour alone
    if (s.advdisp == 1) {
        const dvec4 own = look->own ? look->color : facts.vertexColor;
        const dvec4 base = look->picked ? look->color : s.bct == 1 ? dvec4(1) : own;
        result = lighting.shade(base, {place, std::sqrt(1 - dot(place, place))}, f.position);
    }
    if (contoured)
        result *= facts.contour.color(s.use_clr_scale == 1, s.ct, f.primitive, f.texture);
    if ((look->picked || look->own) && s.advdisp == 1)
        result = look->color;
    return withAlpha(s, facts, result);
}

} // namespace nrutest
