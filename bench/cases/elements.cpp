// Element meshes: steady frames, changes of some of their elements, first frames.
#include <memory>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

using ngl::NglElementAttributes;
using ngl::NglElementMesh;
using ngl::NglElements;

constexpr double kCovered = 0.7;

struct Model {
    Model(unsigned size, bool quads) : sheet(size, quads) {
        openSheetView();
        const RenderColorScale scale = makeScale();
        check(mesh.Create(inputOf(sheet)) == 0 && mesh.SetColorScale(&scale) == 0, "no mesh");
    }
    NglElements all() const { return NglElements::Range(0, sheet.elementCount()); }

    Sheet sheet;
    NglElementMesh mesh;
};

using Prepare = std::function<void(Model&)>;
using Change = std::function<void(Model&, unsigned turn)>;

std::function<Work(unsigned)> frames(const Prepare& prepare, const Change& change = {}, bool quads = false) {
    return [=](unsigned size) {
        const auto model = std::make_shared<Model>(size, quads);
        prepare(*model);
        return Work{[=](unsigned turn) {
                        if (change)
                            change(*model, turn);
                        model->mesh.Draw();
                    },
                    true, kCovered};
    };
}

// --- what is shown -----------------------------------------------------------------------------------------

void showPlain(Model&) {}

void showNodeValues(Model& model) {
    model.mesh.SetNodeValues(model.sheet.nodeValues.data());
}

void showElementValues(Model& model) {
    model.mesh.SetElementValues(model.sheet.elementValues.data());
}

void showColors(Model& model) {
    model.mesh.SetColors(model.all(), model.sheet.colors.data());
}

/// In another way than by default.
Prepare with(const Prepare& show, const std::function<void(NglElementAttributes&)>& set) {
    return [=](Model& model) {
        show(model);
        NglElementAttributes attributes;
        set(attributes);
        model.mesh.SetAttributes(attributes);
    };
}

Prepare by(ngl::NglElementRoute route, const Prepare& show) {
    return with(show, [=](NglElementAttributes& attributes) { attributes.route = route; });
}

// --- what changes from frame to frame ----------------------------------------------------------------------

/// Shows the tenth that the last frame hid, and hides the next.
void hideNextTenth(Model& model, unsigned turn) {
    const std::uint32_t tenth = model.sheet.elementCount() / 10;
    model.mesh.SetVisible(NglElements::Range((turn + 9) % 10 * tenth, tenth), true);
    model.mesh.SetVisible(NglElements::Range(turn % 10 * tenth, tenth), false);
}

/// All elements take the colour of the next one.
void recolor(Model& model, unsigned) {
    auto& colors = model.sheet.colors;
    std::rotate(colors.begin(), colors.begin() + 1, colors.end());
    model.mesh.SetColors(model.all(), colors.data());
}

void selectNext(Model& model, unsigned turn) {
    const std::uint32_t count = model.sheet.elementCount();
    model.mesh.SetSelection(NglElements::One((turn + count - 1) * 7 % count), ngl::NglElementNotSelected);
    model.mesh.SetSelection(NglElements::One(turn * 7 % count), ngl::NglElementHighlighted);
}

/// Another range of the same bands.
void rerange(Model& model, unsigned turn) {
    std::vector<RenderColorScale::ColorBand> bands = makeScale().GetColorBands();
    const float stretch = 1 + static_cast<float>(turn % 10) / 20;
    for (RenderColorScale::ColorBand& band : bands) {
        band.min_val *= stretch;
        band.max_val *= stretch;
    }
    RenderColorScale scale;
    scale.SetColorBands(bands);
    model.mesh.SetColorScale(&scale);
}

/// The next step of an animated field.
void revalue(Model& model, unsigned) {
    auto& values = model.sheet.nodeValues;
    std::rotate(values.begin(), values.begin() + 1, values.end());
    model.mesh.SetNodeValues(values.data());
}

// --- first frame -------------------------------------------------------------------------------------------

Work firstFrame(unsigned size) {
    const auto sheet = std::make_shared<Sheet>(size);
    const auto mesh = std::make_shared<NglElementMesh>();
    openSheetView();
    return {[=, scale = makeScale()](unsigned) {
                check(mesh->Create(inputOf(*sheet)) == 0, "no mesh");
                mesh->SetColorScale(&scale);
                mesh->SetNodeValues(sheet->nodeValues.data());
                mesh->Draw();
            },
            true, kCovered};
}

} // namespace

std::vector<Case> elementCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, large = {100000, 1000000},
                                one = {100000};
    const auto shading = [](ngl::NglElementShading shading) {
        return with(showNodeValues, [=](NglElementAttributes& attributes) { attributes.shading = shading; });
    };
    const auto unlit = with(showNodeValues, [](NglElementAttributes& a) { a.lit = false; });
    const auto transparent = with(showNodeValues, [](NglElementAttributes& a) { a.opacity = 0.5f; });
    const auto sides = with(showPlain, [](NglElementAttributes& a) { a.frontAndBack = true; });
    return {{"mesh.bands", all, frames(showNodeValues)},
            {"mesh.colors", large, frames(showColors)},
            {"mesh.element_values", one, frames(showElementValues)},
            {"mesh.plain", large, frames(showPlain)},
            {"mesh.quads", {1000000}, frames(showNodeValues, {}, true)},
            {"mesh.hide", large, frames(showNodeValues, hideNextTenth)},
            {"mesh.hide_colored", one, frames(showColors, hideNextTenth)},
            {"mesh.recolor", large, frames(showColors, recolor)},
            {"mesh.select", one, frames(showColors, selectNext)},
            {"mesh.rerange", large, frames(showNodeValues, rerange)},
            {"mesh.revalue", large, frames(showNodeValues, revalue)},
            {"mesh.flat", one, frames(shading(ngl::NglElementFlat))},
            {"mesh.face_normals", one, frames(shading(ngl::NglElementNormals))},
            {"mesh.unlit", one, frames(unlit)},
            {"mesh.front_and_back", one, frames(sides)},
            {"mesh.transparent", one, frames(transparent)},
            {"mesh.by_mesh_program", one, frames(by(ngl::NglElementRouteMesh, showColors))},
            {"mesh.by_geometry_stage", one, frames(by(ngl::NglElementRouteGeometry, showColors))},
            {"mesh.by_fixed_function", one, frames(by(ngl::NglElementRouteFixed, showNodeValues))},
            {"mesh.first_frame", all, firstFrame, "", true}};
}

} // namespace nrubench
