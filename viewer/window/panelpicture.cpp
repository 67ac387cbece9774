// The panel's rows about the picture: views, edges and faces, bodies, markers.
#include "viewer/window/panel.h"

#include <imgui.h>

#include <algorithm>

#include "viewer/bodies/materials.h"
#include "viewer/window/widgets.h"

namespace nruview {

using widgets::button;
using widgets::choose;
using widgets::section;
using widgets::slide;
using widgets::toggle;

namespace {

constexpr double kOpacityOverTensors = 0.2;

} // namespace

/// A switch among the options.
void Panel::option(const char* name, bool isOn, const std::function<void(Options&, bool)>& set) {
    if (toggle(name, isOn))
        change([=](Options& options) { set(options, isOn); });
}

/// A field among those given, or none of them.
void Panel::chooseField(const char* name, const std::vector<std::string>& fields, const std::string& current,
                        const char* none, const std::function<void(Options&, const std::string&)>& set) {
    std::vector<std::string> rows = {none};
    rows.insert(rows.end(), fields.begin(), fields.end());
    const auto found = std::find(fields.begin(), fields.end(), current);
    int row = found == fields.end() ? 0 : static_cast<int>(found - fields.begin()) + 1;
    if (choose(name, rows, row))
        change([=](Options& options) { set(options, row == 0 ? "" : rows[static_cast<std::size_t>(row)]); });
}

void Panel::layOutViews() {
    constexpr std::array<std::array<const char*, 3>, 8> kViews = {{{"Front", "0,0,1", "1"},
                                                                   {"Right", "1,0,0", "3"},
                                                                   {"Top", "0,1,0", "5"},
                                                                   {"Iso", "iso", "0"},
                                                                   {"Back", "0,0,-1", "2"},
                                                                   {"Left", "-1,0,0", "4"},
                                                                   {"Bottom", "0,-1,0", "6"},
                                                                   {"Fit", "", "F"}}};
    for (int i = 0; i < 8; ++i) {
        const auto& [label, view, key] = kViews[static_cast<std::size_t>(i)];
        if (!button(label, i % 4, 4, key))
            continue;
        if (*view == '\0')
            later([this] { m_workspace.fit(); });
        else
            later([this, axes = parseView(view)] { m_workspace.look(axes); });
    }
}

void Panel::layOutPicture() {
    if (!section("Picture", true))
        return;
    layOutViews();
    const SceneSettings& scene = options().scene;
    int colors = static_cast<int>(options().shown.colorBy);
    if (!m_workspace.shown().model.parts.empty() && choose("Colour by", {"field", "block", "plain"}, colors))
        change([=](Options& options) { options.shown.colorBy = static_cast<ColorBy>(colors); });
    option("Perspective", options().perspective, [](Options& options, bool on) { options.perspective = on; });
    int edges = scene.edges ? static_cast<int>(*scene.edges) + 1 : 0;
    if (choose("Edges", {"automatic", "all", "feature edges", "none"}, edges))
        change([=](Options& options) {
            options.scene.edges = edges == 0 ? std::nullopt : std::optional(static_cast<EdgeMode>(edges - 1));
        });
    int shading = static_cast<int>(scene.shading);
    if (choose("Shading", {"smooth", "flat triangles", "element faces"}, shading))
        change([=](Options& options) { options.scene.shading = static_cast<Shading>(shading); });
    double opacity = scene.opacity;
    if (slide("Opacity", opacity, 0.0, 1.0, "%.2f"))
        change([=](Options& options) { options.scene.opacity = opacity; });
    std::uint32_t background = options().background;
    if (widgets::color("Background", background))
        change([=](Options& options) { options.background = background; });
    const LabelSettings& labels = options().labels;
    option("Legend", labels.legend, [](Options& options, bool on) { options.labels.legend = on; });
    option("Extremes", labels.marks, [](Options& options, bool on) { options.labels.marks = on; });
    option("Axes", labels.axes, [](Options& options, bool on) { options.labels.axes = on; });
}

void Panel::layOutBody() {
    if (!options().shown.field.empty() || !section("Surface", false))
        return;
    const BodySettings& body = options().body;
    std::uint32_t color = body.color.value_or(0xFFCDB9A8);
    if (widgets::color("Colour", color))
        change([=](Options& options) { options.body.color = color; });
    option("Realistic", body.physical, [](Options& options, bool on) { options.body.physical = on; });
    if (!body.physical)
        return;
    const std::string material = body.material.empty() ? kDefaultMaterial : body.material;
    const auto found = std::find(m_materials.begin(), m_materials.end(), material);
    int row = static_cast<int>(found - m_materials.begin());
    if (choose("Material", m_materials, row))
        change([=, this](Options& options) {
            options.body.material = m_materials[static_cast<std::size_t>(row)];
        });
    const bool isFile = !body.environment.empty() && body.environment != BodySettings::kStudio;
    int light = body.environment.empty() ? 0 : isFile ? 2 : 1;
    if (choose("Light", {"four lamps", "studio", "file below"}, light) && light < 2)
        change([=](Options& options) { options.body.environment = light == 0 ? "" : BodySettings::kStudio; });
    std::string file = isFile ? body.environment : "";
    if (widgets::text("HDR file", file))
        change([=](Options& options) { options.body.environment = file; });
    if (!body.environment.empty())
        option("Shown behind", body.environmentBackground,
               [](Options& options, bool on) { options.body.environmentBackground = on; });
}

void Panel::layOutMarkers() {
    if (!section("Markers and symbols", false))
        return;
    const MarkerSettings& markers = options().markers;
    chooseField("Arrows", m_choices.vectors, markers.arrows, "none",
                [](Options& options, const std::string& field) { options.markers.arrows = field; });
    chooseField("Spheres", m_choices.nodeResults, markers.spheres, "none",
                [](Options& options, const std::string& field) { options.markers.spheres = field; });
    chooseField("Ellipsoids", m_choices.tensors, markers.tensors, "none",
                [](Options& options, const std::string& field) {
                    options.markers.tensors = field;
                    if (!field.empty() && options.scene.opacity >= 1.0)
                        options.scene.opacity = kOpacityOverTensors;
                });
    option("Markers", markers.solids, [](Options& options, bool on) { options.markers.solids = on; });
    option("Symbols", markers.symbols, [](Options& options, bool on) { options.markers.symbols = on; });
}

} // namespace nruview
