// The library's mesh renderer takes lights and materials from the view record and colours from the palette:
// both are lent to it for the length of a draw.
#include "viewer/bodies/bodies.h"

#include <epoxy/gl.h>

#include <algorithm>

#include "viewer/bodies/cutbody.h"
#include "viewer/bodies/materials.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/blockcolors.h"

namespace nruview {

namespace {

constexpr NgColorLong kNeutral = 0xFFCDB9A8; ///< light steel blue
constexpr NgColorLong kBehind = 0xFF5A6EC8;  ///< a dull red that no part should show
// Where the renderer looks for colours.
constexpr int kColorIndex = 0, kFrontIndex = 8, kBackIndex = 61, kColors = 64;

/// A lamp of the classic rig, far away in a direction of eye space.
struct Lamp {
    float x, y, z;
    float ambient, diffuse, specular;
};

// A key light from the upper left and a weaker one from the right, one from above, one from below and one
// along the view, so that rounded and sunken shapes show. The programs weigh ambient light with 1.74 and
// diffuse light with 0.5, and light both sides of a face.
constexpr Lamp kRig[] = {
    {-0.45f, 0.60f, 1.00f, 0.12f, 0.85f, 0.40f}, {0.90f, 0.15f, 0.60f, 0.04f, 0.30f, 0.12f},
    {0.00f, 1.00f, 0.25f, 0.04f, 0.28f, 0.0f},   {0.15f, -0.80f, 0.60f, 0.0f, 0.10f, 0.0f},
    {0.00f, 0.00f, 1.00f, 0.0f, 0.30f, 0.0f},
};
constexpr float kFar = 1e5f, kShininess = 32.0f;

NglLightParams lightOf(const Lamp& lamp) {
    const auto grey = [](float value, float(&rgba)[4]) {
        rgba[0] = rgba[1] = rgba[2] = value;
        rgba[3] = 1.0f;
    };
    NglLightParams light{};
    light.enabled = 1;
    grey(lamp.ambient, light.ambient);
    grey(lamp.diffuse, light.diffuse);
    grey(lamp.specular, light.specular);
    light.position[0] = kFar * lamp.x;
    light.position[1] = kFar * lamp.y;
    light.position[2] = kFar * lamp.z;
    light.position[3] = 1.0f;
    light.constantAttenuation = 1.0f;
    return light;
}

/// The record has the rig and a glossy material for the length of a block.
class RigInRecord {
public:
    RigInRecord() : m_record(*NglGetNglInfo()), m_saved(m_record) {
        for (NglLightParams& light : m_record.lights)
            light.enabled = 0;
        std::transform(std::begin(kRig), std::end(kRig), m_record.lights, lightOf);
        for (NglMatParams* material : {&m_record.frontMaterial, &m_record.backMaterial}) {
            std::fill_n(material->emission, 3, 0.0f);
            material->emission[3] = 1.0f; // GL's own, by which the programs know that bodies are opaque
            std::fill_n(material->specular, 4, 1.0f);
            material->shininess = kShininess;
        }
    }
    ~RigInRecord() {
        std::copy(std::begin(m_saved.lights), std::end(m_saved.lights), m_record.lights);
        m_record.frontMaterial = m_saved.frontMaterial;
        m_record.backMaterial = m_saved.backMaterial;
    }
    RigInRecord(const RigInRecord&) = delete;
    RigInRecord& operator=(const RigInRecord&) = delete;

private:
    _NglInfoStr& m_record;
    const _NglInfoStr m_saved;
};

/// The bodies' colours in place of the palette's, none of them complemented against the background.
class PaletteInUse {
public:
    explicit PaletteInUse(const std::vector<NgColorLong>& palette) {
        NglUpdateComplementColor(static_cast<int>(palette.size()), palette.data());
    }
    ~PaletteInUse() {
        NglSetForceComplement();
        NglUpdateColor(NglMaxColor, NglGetColors());
    }
    PaletteInUse(const PaletteInUse&) = delete;
    PaletteInUse& operator=(const PaletteInUse&) = delete;
};

/// Light through what is behind, all of which is seen.
class Blending {
public:
    explicit Blending(bool on) : m_on(on) {
        if (!on)
            return;
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDepthMask(GL_FALSE);
    }
    ~Blending() {
        if (!m_on)
            return;
        glDepthMask(GL_TRUE);
        glDisable(GL_BLEND);
    }
    Blending(const Blending&) = delete;
    Blending& operator=(const Blending&) = delete;

private:
    const bool m_on;
};

Point middleOf(const BodyMesh& mesh) {
    Bounds bounds;
    for (std::size_t i = 0; i + 2 < mesh.positions.size(); i += 3)
        bounds.add({mesh.positions[i], mesh.positions[i + 1], mesh.positions[i + 2]});
    return 0.5 * bounds.low + 0.5 * bounds.high;
}

bool standsOut(const ElementSettings& elements) {
    return !elements.selected.empty() || !elements.highlighted.empty() || !elements.colored.empty();
}

} // namespace

bool areBodies(const ShownModel& shown, const SceneSettings& settings, const BodySettings& body) {
    const bool isPlain =
        !shown.scalars && settings.shading == Shading::Smooth && !standsOut(shown.elements.settings);
    return isPlain && (body.isAskedFor() || shown.model.isSurface);
}

NgColorLong partColor(const ModelPart& part, const BodySettings& settings) {
    const NgColorLong own = !settings.physical          ? kNeutral
                            : settings.material.empty() ? materialColor(kDefaultMaterial)
                                                        : materialColor(settings.material);
    return settings.color.value_or(part.color.value_or(own));
}

NgColorLong frontColor(const BodySettings& settings) {
    return settings.frontColor.value_or(kNeutral);
}

NgColorLong backColor(const BodySettings& settings) {
    return settings.backColor.value_or(kBehind);
}

Bodies::Bodies(const ShownModel& shown, const BodySettings& settings, double opacity) : m_palette(kColors) {
    ngl::_RenderAttributes attributes;
    attributes.color = kColorIndex;
    attributes.frontAndBackRender = settings.hasSides();
    if (settings.physical)
        attributes.materialName = GuString(checkedMaterial(settings.material));
    m_palette[kFrontIndex] = frontColor(settings);
    m_palette[kBackIndex] = backColor(settings);
    std::vector<BodyMesh> meshes = makeBodyMeshes(shown);
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        const ModelPart part = shown.model.parts.empty() ? ModelPart{} : shown.model.parts[i];
        attributes.alpha = static_cast<float>(opacity * part.opacity);
        attributes.transparency = attributes.alpha < 1.0f;
        const Point middle = middleOf(meshes[i]);
        const NgColorLong color = shown.colorBy == ColorBy::Block ? blockColor(i) : partColor(part, settings);
        m_bodies.push_back({std::move(meshes[i]), {}, middle, color, attributes});
    }
}

void Bodies::cut(const ShownModel& shown) {
    for (std::size_t i = 0; i < m_bodies.size(); ++i) {
        Body& body = m_bodies[i];
        body.cut.reset();
        if (!shown.section)
            continue;
        body.cut = cutBody(body.whole, shown.section->plane);
        addCap(*body.cut, shown, i);
    }
}

bool Bodies::canDraw() {
    if (IsFastRendererEnabled() == 0 || !m_renderer.RenderBegin(ngl::NglMeshRenderer::RenderPassOpaque))
        return false;
    m_renderer.RenderEnd();
    return true;
}

void Bodies::drawOpaque() {
    std::vector<const Body*> bodies;
    for (const Body& body : m_bodies)
        if (!body.attributes.transparency)
            bodies.push_back(&body);
    draw(bodies, ngl::NglMeshRenderer::RenderPassOpaque);
}

void Bodies::drawTransparent() {
    std::vector<const Body*> bodies;
    for (const Body& body : m_bodies)
        if (body.attributes.transparency)
            bodies.push_back(&body);
    _NgPoint3Str away;
    ngl_get_view_vector(&away);
    const auto depth = [&](const Body* body) { return dot(body->middle, {away.x, away.y, away.z}); };
    std::stable_sort(bodies.begin(), bodies.end(),
                     [&](const Body* a, const Body* b) { return depth(a) > depth(b); });
    draw(bodies, ngl::NglMeshRenderer::RenderPassTransparent);
}

void Bodies::draw(const std::vector<const Body*>& bodies, ngl::NglMeshRenderer::RenderPass pass) {
    if (bodies.empty())
        return;
    const RigInRecord rig;
    const PaletteInUse palette(m_palette);
    const Blending blending(pass == ngl::NglMeshRenderer::RenderPassTransparent);
    if (!m_renderer.RenderBegin(pass))
        return;
    for (const Body* body : bodies) {
        m_palette[kColorIndex] = body->color;
        const BodyMesh& mesh = body->cut ? *body->cut : body->whole;
        m_renderer.Render(mesh.positions.data(), mesh.normals.data(),
                          static_cast<unsigned int>(mesh.triangles.size() / 3), mesh.triangles.data(),
                          static_cast<unsigned int>(mesh.quads.size() / 4), mesh.quads.data(),
                          body->attributes);
    }
    m_renderer.RenderEnd();
}

} // namespace nruview
